// The removal of `orrinvale-cli clean --remove`: the program's one removal job, waited for.
#pragma once

#include <vector>

#include "cli/CleanReport.h"

namespace orrinvale::cli {

enum class Ending : std::uint8_t;
enum class Telling : std::uint8_t;

struct CleanRemovalResult {
    CleanOutcome outcome;
    std::uint64_t goneBytes = 0;  ///< as the rows count them
    bool isWhole = true;          ///< nothing failed; what rules keep, changed or came since the
                                  ///< scan is no failure
    Ending ending{};
};

/// Removes all rows of the categories.
[[nodiscard]] CleanRemovalResult removeRows(const CleanParts& parts,
                                            const std::vector<ScannedCategory>& scanned,
                                            Telling telling);

}  // namespace orrinvale::cli
