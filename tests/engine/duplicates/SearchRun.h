// A search from a folder to what a person sees of it, for the tests of the duplicate search.
#pragma once

#include "engine/duplicates/DuplicateFilesOpt.h"
#include "support/test.h"

namespace orrinvale::testing {

struct Found {
    Strings leaves;  ///< sorted
    std::vector<Error> skipped;
    std::size_t groups = 0;
};

/// What a search that has ended found.
inline Found foundBy(const DuplicateFilesOpt& search) {
    Found found;
    found.skipped = search.search()->skipped().entries();
    search.visitGroups([&](const DuplicateGroup& group) {
        ++found.groups;
        for (const auto* file : group.files) found.leaves.push_back(file->filePathName());
        for (const auto* bundle : group.bundles) found.leaves.push_back(bundle->DirectoryPathName);
    });
    std::sort(found.leaves.begin(), found.leaves.end());
    return found;
}

inline Found searched(const std::string& root, const FileSystem& files = LinuxFileSystem(),
                      const SearchOption& option = {true, true}) {
    DuplicateFilesOpt search(files);
    search.setSearchOption(&option);
    search.beginSearchAtPath(root, 0);
    return foundBy(search);
}

}  // namespace orrinvale::testing
