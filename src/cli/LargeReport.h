// The printed forms of a tree of large files.
#pragma once

#include <cstdint>
#include <vector>

#include "cli/Output.h"
#include "engine/largefiles/FileNodeTree.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// How much of the tree is printed.
struct LargeExtent {
    std::uint64_t depth = 1;                ///< levels; 1 is what lies directly in the folder
    std::uint64_t top = ~std::uint64_t{0};  ///< entries of each folder, the biggest
};

/// Each form orders no more of the tree than it prints.
void printJson(Output& out, FileNodeTree& tree, const LargeExtent& extent,
               const std::vector<Error>& skipped, bool stopped);
void printPaths(Output& out, FileNodeTree& tree, const LargeExtent& extent);
void printListing(Output& out, FileNodeTree& tree, const LargeExtent& extent, bool colour);

}  // namespace orrinvale::cli
