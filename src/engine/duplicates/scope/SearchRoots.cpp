// Folders are compared by what they are, and by their paths without links.
#include <algorithm>
#include <optional>
#include <utility>

#include "engine/duplicates/scope/SearchRequest.h"
#include "engine/duplicates/searchedPaths.h"
#include "engine/files/FolderNode.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

struct AskedRoot {
    std::string path;
    std::string real;
    Descriptor held;  // while it is, the number of its inode lasts everywhere
    FileAttributes seen;
    bool inodePasses = false;
    const AskedRoot* by = nullptr;  // that it is searched with; null while it is searched itself
    bool isLast = false;            // some of it may be listed with another
};

// Where numbers pass another file system may have the same one behind it, so that times count too.
bool isOneFolder(const AskedRoot& root, const FileAttributes& seen) {
    return root.seen.device == seen.device && root.seen.inode == seen.inode &&
           (!root.inodePasses ||
            (root.seen.modified == seen.modified && root.seen.changed == seen.changed));
}

// The path of the folder from another one; nothing where it does not lie there. Where numbers pass
// a name may be written in several ways, and only the folders above tell.
std::optional<std::string> wayFrom(const FileSystem& files, const AskedRoot& other,
                                   const AskedRoot& root) {
    if (root.real == other.real || isOneFolder(other, root.seen)) return std::string();
    const auto behind = [&root](const std::string& folder) {
        return root.real.substr(folder == "/" ? 1 : folder.size() + 1);
    };
    if (isWithin(root.real, other.real)) return behind(other.real);
    if (!root.inodePasses || root.seen.device != other.seen.device) return std::nullopt;
    for (std::string at = folderOf(root.real); at.size() > 1; at = folderOf(at)) {
        const auto seen = files.attributes(FileSystem::noParent, at.c_str(), Links::Follow);
        if (seen && isOneFolder(other, *seen)) return behind(at);
    }
    return std::nullopt;
}

// Whether a search of the other folder may leave out the one that lies that way.
bool mayLeaveOut(const FileSystem& files, const RootWalk& walk, const AskedRoot& other,
                 const AskedRoot& root, std::string_view way) {
    if (!walk.hidden && (hasHiddenComponent(other.path) || hasHiddenComponent(way))) return true;
    if (way.empty()) return false;
    if (walk.filter.leavesOutPaths()) return true;
    // The kernel's own are entered by nobody who was not sent there.
    if (root.seen.device != other.seen.device &&
        std::ranges::binary_search(files.kernelDevices(), root.seen.device))
        return true;
    if (!walk.systemFolders && other.path == "/" && isSystemFolder(way)) return true;
    std::string at = other.real;
    for (std::string_view name = nextComponent(way); !way.empty(); name = nextComponent(way)) {
        at = joinPath(at, name);
        if (!openFolderByPath(files, at, Links::Keep)) return true;
    }
    return false;
}

// A mount may show a folder within itself, and three paths may then lie in each other in a circle:
// only what is still searched may cover. Of two that are one folder the first is searched.
void dropCovered(const FileSystem& files, const RootWalk& walk, std::vector<AskedRoot>& asked) {
    for (AskedRoot& root : asked)
        for (AskedRoot& other : asked) {
            if (&other == &root || other.by != nullptr) continue;
            const auto way = wayFrom(files, other, root);
            if (!way || (way->empty() && &other > &root)) continue;
            if (mayLeaveOut(files, walk, other, root, *way)) {
                root.isLast = true;
                continue;
            }
            root.by = &other;
            break;
        }
}

}  // namespace

SearchRoots findRoots(const FileSystem& files, const std::vector<std::string>& roots,
                      const RootWalk& walk) {
    SearchRoots found;
    std::vector<AskedRoot> asked;
    const auto passing = files.devicesOfPassingInodes();
    for (const std::string& path : roots) {
        auto folder = openFolderByPath(files, path, Links::Follow);
        const auto seen = folder ? files.attributes(folder->get()) : tl::unexpected(folder.error());
        if (seen)
            asked.push_back({path, files.resolved(path).value_or(path), std::move(*folder), *seen,
                             std::ranges::binary_search(passing, seen->device)});
        else found.failed.push_back(systemError("open", path, seen.error()));
    }
    dropCovered(files, walk, asked);
    std::vector<std::string> last;
    for (const AskedRoot& root : asked) {
        if (root.by == nullptr) {
            (root.isLast ? last : found.roots).push_back(root.path);
            continue;
        }
        const AskedRoot* by = root.by;
        while (by->by != nullptr) by = by->by;
        const bool isSame = root.real == by->real || isOneFolder(*by, root.seen);
        found.covered.push_back({root.path, by->path, isSame});
    }
    found.mayRepeat = !last.empty();
    found.roots.insert(found.roots.end(), last.begin(), last.end());
    for (const AskedRoot& a : asked)
        for (const AskedRoot& b : asked)
            found.mayRepeat |= a.seen.device == b.seen.device && a.seen.mount != b.seen.mount;
    return found;
}

}  // namespace orrinvale
