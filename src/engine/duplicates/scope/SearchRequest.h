// SearchRequest: what a duplicate search is asked for, and the folders that it comes down to.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/duplicates/scope/SearchFilter.h"
#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class HashCache;

/// All paths are absolute.
struct SearchRequest {
    std::vector<std::string> roots;                  ///< searched in this order
    std::vector<std::string> protectedFolders = {};  ///< what lies in one is never ticked
    std::uint64_t limit = 0;                         ///< files larger than that, bytes
    SearchFilter filter = {};
    std::shared_ptr<HashCache> cache = nullptr;  ///< of this search alone; null reads everything
    bool findsFolders = false;                   ///< folders that are equal as wholes, too
};

/// A folder that is searched as a part of another.
struct CoveredRoot {
    std::string path;
    std::string by;       ///< the folder that is searched
    bool isSame = false;  ///< the two paths lead to one folder
};

/// What a search looks at, as far as it may leave out a folder in one that it searches.
struct RootWalk {
    const SearchFilter& filter;
    bool hidden = false;
    bool systemFolders = false;
};

/// Folders of which none is another, and none lies in another whose search comes to it. What that
/// search might leave out stands last.
struct SearchRoots {
    std::vector<std::string> roots;
    std::vector<CoveredRoot> covered;
    std::vector<Error> failed;  ///< could not be opened
    bool mayRepeat = false;     ///< two of them may show one entry, through different mounts
};
[[nodiscard]] SearchRoots findRoots(const FileSystem& files, const std::vector<std::string>& roots,
                                    const RootWalk& walk);

}  // namespace orrinvale
