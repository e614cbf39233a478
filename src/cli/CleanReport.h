// The forms in which `orrinvale-cli clean` prints what may go, what stays, and what went.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/cleaning/CategoryScan.h"
#include "engine/files/RemovalResult.h"

namespace orrinvale::cli {

class Output;

struct ScannedCategory {
    CleanCategory category{};
    CategoryListing listing;
};

/// What the scans could not read.
[[nodiscard]] std::vector<Error> skippedOf(const std::vector<ScannedCategory>& scanned);

/// What a removal came to; all of it in bytes on the disk.
struct CleanOutcome {
    std::vector<std::string> removed;  ///< paths that are gone
    std::vector<StayedEntry> failed;   ///< what stayed, by rules or not
    std::uint64_t more = 0;            ///< entries that stayed beside those
    std::uint64_t promised = 0;
    std::optional<std::int64_t> gained;  ///< growth of free space; nothing where it was not told
};

void printCleanJson(Output& out, const std::vector<ScannedCategory>& scanned,
                    const std::optional<CleanOutcome>& outcome, bool stopped);
/// The paths of what may go.
void printCleanPaths(Output& out, const std::vector<ScannedCategory>& scanned);
/// For people; the largest rows of each category first, and not all of many. `now` is in
/// nanoseconds since 1970-01-01 UTC.
void printCleanListing(Output& out, const std::vector<ScannedCategory>& scanned, std::int64_t now,
                       bool colour);
void printCleanOutcome(Output& out, const CleanOutcome& outcome);

/// "3 days", of a stretch of time in nanoseconds.
[[nodiscard]] std::string ageText(std::int64_t age);

}  // namespace orrinvale::cli
