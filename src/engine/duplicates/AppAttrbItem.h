// One application bundle of a duplicate search. FindDuplicateApp.h compares them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/duplicates/fileAttrbItem.h"

namespace orrinvale {

struct AppAttrbItem {
    FileArray AllFileInDirectory;     ///< everything in it that is no folder
    std::uint64_t DirectorySize = 0;  ///< bytes, the sum of these
    std::string DirectoryPathName;    ///< full path
    std::string DirectoryName;        ///< last component
    std::uint64_t device = 0;         ///< identity of the bundle folder, as seen when it was listed
    std::uint64_t inode = 0;
    std::int64_t modified = 0;            ///< nanoseconds since 1970 UTC
    bool inodePasses = false;             ///< `inode` need not last: see EntryIdentity
    bool isLink = false;                  ///< a symbolic link stands at the path
    std::vector<std::string> otherPaths;  ///< by which the search met the same folder again
    std::uint64_t digest = 0;             ///< of all that is in it, as BundleListing makes it
    std::vector<std::uint64_t> likeness;  ///< equal bundles agree in it: sorted sizes, and hashes
                                          ///< of the files' own first bytes
    bool taken = false;                   ///< stands in a group
};

/// A group of equal bundles, the one that opened it last.
using AppGroup = std::vector<std::shared_ptr<AppAttrbItem>>;

}  // namespace orrinvale
