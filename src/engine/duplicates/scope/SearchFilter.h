// SearchFilter: what a duplicate search leaves out, beside hidden and system entries.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/duplicates/FileKind.h"
#include "engine/duplicates/scope/PathPattern.h"
#include "engine/files/FolderNode.h"
#include "engine/files/SkipList.h"

namespace orrinvale {

/// What one exclusion file says of its folder and of all below it. Lives as long as the walk.
struct ExclusionList {
    const ExclusionList* above = nullptr;  ///< of a folder further up
    std::size_t start = 0;                 ///< where paths from its folder begin, in a whole path
    std::vector<PathPattern> patterns;
};

/// A value: what was asked for. Files larger than nothing and of every kind pass at first.
struct SearchFilter {
    /// The name of exclusion files.
    static constexpr const char* fileName = ".orrinvaleignore";

    std::uint64_t smallest = 0;  ///< bytes, of a file or of a whole bundle
    std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    std::vector<FileKind> kinds = {};          ///< none: all; bundles are Others
    std::vector<PathPattern> exclusions = {};  ///< files, and folders with all that is in them
    bool readsFiles = false;                   ///< exclusion files count

    [[nodiscard]] bool takesSize(std::uint64_t bytes) const {
        return bytes >= smallest && bytes <= largest;
    }
    [[nodiscard]] bool takesKind(FileKind kind) const;
    [[nodiscard]] bool takesKindOf(std::string_view name) const;
    [[nodiscard]] bool leavesOutPaths() const { return !exclusions.empty() || readsFiles; }

    /// Whether the entry is left out, by the patterns and by the lists that hold for its folder, of
    /// which the last one that speaks of it decides.
    [[nodiscard]] bool leavesOut(const FolderNode& folder, const char* name, bool isFolder,
                                 std::size_t rootLength, const ExclusionList* lists) const;
};

/// Reads the exclusion file of an open folder, whose path this is; null where there is none or it
/// says nothing. A file that can not be read, or has lines that are no patterns, is added to
/// `skipped`.
[[nodiscard]] std::unique_ptr<ExclusionList> readExclusions(const FileSystem& files, int folder,
                                                            const FolderNode& node,
                                                            const ExclusionList* above,
                                                            SkipList& skipped);

/// Where and why the first line of the exclusion file at the path is no pattern, and how many more
/// are none; empty where all are, or it can not be read.
[[nodiscard]] std::string exclusionFault(const FileSystem& files, const std::string& path);

}  // namespace orrinvale
