// The printed forms of a tree of disk usage.
#pragma once

#include <cstdint>
#include <vector>

#include "cli/Output.h"
#include "engine/diskusage/FSNodeTree.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// How much of the tree is printed, and what it was made with.
struct UsageExtent {
    std::uint64_t depth = 1;          ///< levels; 1 is what lies directly in the folder
    std::uint64_t limit = 1'000'000;  ///< bytes
};

void printJson(Output& out, const FSNodeTree& tree, const UsageExtent& extent,
               const std::vector<Error>& skipped, bool stopped);
void printPaths(Output& out, const FSNodeTree& tree, const UsageExtent& extent);
void printListing(Output& out, const FSNodeTree& tree, const UsageExtent& extent, bool colour);

}  // namespace orrinvale::cli
