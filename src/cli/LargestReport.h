// The printed forms of the list of largest files.
#pragma once

#include <cstddef>
#include <vector>

#include "cli/Output.h"
#include "engine/largefiles/LargestFiles.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// Each form prints the first `count` rows, and orders no more than these.
void printJson(Output& out, const FileNodeTree& tree, LargestFiles& list, std::size_t count,
               const std::vector<Error>& skipped, bool stopped);
void printPaths(Output& out, LargestFiles& list, std::size_t count);
void printListing(Output& out, const FileNodeTree& tree, LargestFiles& list, std::size_t count,
                  bool colour);

}  // namespace orrinvale::cli
