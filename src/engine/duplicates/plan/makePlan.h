// makePlan: what a search has found, decided by rules, as a plan.
#pragma once

#include <string>
#include <vector>

#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/keep/KeepRule.h"
#include "engine/duplicates/plan/DuplicatePlan.h"

namespace orrinvale {

/// What was searched, and how it was decided; absolute paths.
struct PlanOrigin {
    std::vector<std::string> roots;
    std::vector<std::string> protectedFolders;
    KeepRules rules;
    /// For equal folders, which are listed as they are now; null leaves folders out.
    const FileSystem* files = nullptr;
};

/// A plan of this user and this moment without groups.
[[nodiscard]] DuplicatePlan emptyPlan(const PlanOrigin& origin);

/// The same with those of a search that has ended. What can not go by a plan stays: links, and
/// whatever is protected. Groups of which nothing goes are left out. What lies in a folder that
/// goes goes with it; nothing is taken out of one that stays.
[[nodiscard]] DuplicatePlan makePlan(const DuplicateFilesOpt& search, const PlanOrigin& origin);

}  // namespace orrinvale
