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

    [[nodiscard]] bool isSameAs(const AskedRoot& other) const {
        return real == other.real ||
               (!inodePasses && seen.device == other.seen.device && seen.inode == other.seen.inode);
    }
    [[nodiscard]] bool isCoveredBy(const AskedRoot& other) const {
        return isSameAs(other) || isWithin(real, other.real);
    }
};

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
    for (std::size_t i = 0; i < asked.size(); ++i) {
        // Of two that are one folder the first is searched.
        const auto covers = [&](const AskedRoot& other) {
            const auto at = static_cast<std::size_t>(&other - asked.data());
            return at != i && asked[i].isCoveredBy(other) && (at < i || !asked[i].isSameAs(other));
        };
        const auto other = std::ranges::find_if(asked, covers);
        if (other == asked.end()) found.roots.push_back(asked[i].path);
        else found.covered.push_back({asked[i].path, other->path, asked[i].isSameAs(*other)});
    }
    for (const AskedRoot& a : asked)
        for (const AskedRoot& b : asked)
            found.mayRepeat |= a.seen.device == b.seen.device && a.seen.mount != b.seen.mount;
    return found;
}

}  // namespace orrinvale
