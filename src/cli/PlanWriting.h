// What `orrinvale-cli duplicates --plan FILE` does beside its listing.
#pragma once

#include <string>

#include "engine/duplicates/plan/makePlan.h"

namespace orrinvale::cli {

/// Writes the plan of a search that has ended, and tells how much it takes, unless `isQuiet`, or
/// what was wrong. False when it could not be written.
[[nodiscard]] bool writePlanFile(const std::string& file, const DuplicateFilesOpt& search,
                                 const PlanOrigin& origin, bool isQuiet);

}  // namespace orrinvale::cli
