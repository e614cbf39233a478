// Folders are compared by what they are, and by their paths without links.
#include <algorithm>

#include "engine/duplicates/scope/SearchRequest.h"
#include "engine/files/FolderNode.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

struct AskedRoot {
    std::string path;
    std::string real;
    FileAttributes seen;
    bool inodePasses = false;
    const AskedRoot* by = nullptr;  // that it is searched with; null while it is searched itself

    [[nodiscard]] bool isSameAs(const AskedRoot& other) const {
        return real == other.real ||
               (!inodePasses && seen.device == other.seen.device && seen.inode == other.seen.inode);
    }
    [[nodiscard]] bool isCoveredBy(const AskedRoot& other) const {
        return isSameAs(other) || isWithin(real, other.real);
    }
};

// A mount may show a folder within itself, and three paths may then lie in each other in a circle:
// only what is still searched may cover. Of two that are one folder the first is searched.
void dropCovered(std::vector<AskedRoot>& asked) {
    for (AskedRoot& root : asked) {
        const auto covers = [&root](const AskedRoot& other) {
            return &other != &root && other.by == nullptr && root.isCoveredBy(other) &&
                   (&other < &root || !root.isSameAs(other));
        };
        const auto other = std::ranges::find_if(asked, covers);
        if (other != asked.end()) root.by = &*other;
    }
}

}  // namespace

SearchRoots findRoots(const FileSystem& files, const std::vector<std::string>& roots) {
    SearchRoots found;
    std::vector<AskedRoot> asked;
    const auto passing = files.devicesOfPassingInodes();
    for (const std::string& path : roots) {
        const auto folder = openFolderByPath(files, path, Links::Follow);
        const auto seen = folder ? files.attributes(folder->get()) : tl::unexpected(folder.error());
        if (seen)
            asked.push_back({path, files.resolved(path).value_or(path), *seen,
                             std::ranges::binary_search(passing, seen->device)});
        else found.failed.push_back(systemError("open", path, seen.error()));
    }
    dropCovered(asked);
    for (const AskedRoot& root : asked) {
        if (root.by == nullptr) {
            found.roots.push_back(root.path);
            continue;
        }
        const AskedRoot* by = root.by;
        while (by->by != nullptr) by = by->by;
        found.covered.push_back({root.path, by->path, root.isSameAs(*by)});
    }
    for (const AskedRoot& a : asked)
        for (const AskedRoot& b : asked)
            found.mayRepeat |= a.seen.device == b.seen.device && a.seen.mount != b.seen.mount;
    return found;
}

}  // namespace orrinvale
