// The three forms in which the result of a duplicate search is printed.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "cli/Output.h"
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// Totals of a result.
struct DuplicatesSummary {
    std::uint64_t files = 0;    ///< listed files
    std::uint64_t bundles = 0;  ///< listed bundles
    std::uint64_t groups = 0;
    std::uint64_t leaves = 0;
    std::uint64_t bytes = 0;  ///< of all leaves
    std::uint64_t reclaimable =
        0;  ///< what goes when one leaf of each group stays; links to one file count once
};

[[nodiscard]] DuplicatesSummary summarize(const DuplicateFilesOpt& search);

void printJson(Output& out, const std::string& root, const DuplicateFilesOpt& search,
               const DuplicatesSummary& summary, const std::vector<Error>& skipped, bool stopped);
void printPaths(Output& out, const DuplicateFilesOpt& search);
void printListing(Output& out, const DuplicateFilesOpt& search, const DuplicatesSummary& summary,
                  bool colour);

}  // namespace orrinvale::cli
