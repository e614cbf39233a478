// The printed forms of what changed between two scans of a folder.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Output.h"
#include "cli/UsageReport.h"
#include "engine/diskusage/history/ScanDifference.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// The moment that a kept scan must lie before to be the one meant, seconds since 1970: of a day
/// ("2026-11-15") its end, of a minute ("2026-11-15T10:04") its end, both in the process's time
/// zone; of a word what momentOfWord() says. Nothing for every other text.
[[nodiscard]] std::optional<std::int64_t> momentSince(std::string_view text);

/// "2026-11-15 10:04", in the process's time zone.
[[nodiscard]] std::string momentWords(std::int64_t seconds);

void printJson(Output& out, const ScanDifference& difference, const UsageExtent& extent,
               const std::vector<Error>& skipped);
/// What is gone has no path any more and is left out.
void printPaths(Output& out, const ScanDifference& difference, const UsageExtent& extent);
void printListing(Output& out, const ScanDifference& difference, const UsageExtent& extent,
                  bool colour);

/// Why the sizes may not be the whole truth, with two blanks before it; empty where they are.
[[nodiscard]] std::string doubtWords(const ScanChange& change);

}  // namespace orrinvale::cli
