// PlanFile: a plan on the disk.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <tl/expected.hpp>

#include "engine/duplicates/plan/DuplicatePlan.h"

namespace orrinvale {

/// A plan of a million copies has some 300 MB.
inline constexpr std::size_t mostPlanBytes = std::size_t{512} << 20U;

/// As many as fit, as they are written. A text may be as long as a plan and say next to nothing,
/// over and over, which takes a multiple of its length as a value.
inline constexpr std::size_t mostPlanMembers = std::size_t{1} << 21U;

/// Writes it for this user alone (0600), in place of an older plan and of nothing else. The old
/// file or the new one stands there, whole, whatever happens. Why it could not be written, in
/// words.
[[nodiscard]] std::optional<std::string> savePlan(const std::string& path,
                                                  const DuplicatePlan& plan);

/// Why savePlan() would refuse the path, as far as a look tells; for before a long search.
[[nodiscard]] std::optional<std::string> objectionToPlanAt(const std::string& path);

/// A sound plan of this user's. Why there is none, in words: that of the system, that others may
/// write to the file, or that of parsePlan().
[[nodiscard]] tl::expected<DuplicatePlan, std::string> loadPlan(const std::string& path);

}  // namespace orrinvale
