// The three forms in which the result of a duplicate search is printed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "cli/Output.h"
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/folders/FolderFates.h"
#include "engine/duplicates/keep/KeepRule.h"
#include "engine/duplicates/scope/SearchRequest.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// What is printed of a search that has ended. The first two outlive it, and the rules where there
/// are any.
struct DuplicatesReport {
    const DuplicateFilesOpt& search;
    const SearchRequest& request;
    enum class Order : std::uint8_t { Found, Gain };

    const KeepRules* rules = nullptr;         ///< null: nobody asked which copies would stay
    const FolderFindings* folders = nullptr;  ///< null: nobody asked for equal folders
    Order order = Order::Found;

    /// Which folders stay by the rules; nothing where there are none.
    [[nodiscard]] std::optional<FolderFates> fates() const;
    /// The copies are told already, by equal folders that they lie in.
    [[nodiscard]] bool isTold(const DuplicateGroup& group) const;
};

/// Totals of a result.
struct DuplicatesSummary {
    std::uint64_t files = 0;    ///< listed files
    std::uint64_t bundles = 0;  ///< listed bundles
    std::uint64_t groups = 0;
    std::uint64_t leaves = 0;
    std::uint64_t bytes = 0;  ///< of all leaves
    std::uint64_t reclaimable =
        0;  ///< what goes when one leaf of each group stays; links to one file count once
    std::uint64_t removable = 0;                 ///< leaves that would go by the rules
    std::uint64_t gain = 0;                      ///< bytes that this would give back
    std::uint64_t told = 0;                      ///< groups that equal folders tell of
    std::vector<std::string> emptyFolders = {};  ///< of rules: no copy lies there
};

[[nodiscard]] DuplicatesSummary summarize(const DuplicatesReport& report);

void printJson(Output& out, const DuplicatesReport& report, const DuplicatesSummary& summary,
               const std::vector<Error>& skipped, bool stopped);
/// Of all leaves, or with rules of those that would go.
void printPaths(Output& out, const DuplicatesReport& report);
void printListing(Output& out, const DuplicatesReport& report, const DuplicatesSummary& summary,
                  bool colour);

}  // namespace orrinvale::cli
