// planOfTicks: what a person has ticked in a result, as a plan.
#pragma once

#include <atomic>
#include <cstddef>
#include <span>

#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/duplicates/plan/makePlan.h"
#include "engine/duplicates/tree/TreeNode.h"

namespace orrinvale {

/// A plan of this user and this moment, with the groups of these leaves, each once. Of what is
/// protected nothing goes. The nodes are read on the calling thread.
[[nodiscard]] DuplicatePlan planOfTicks(std::span<const TreeNode::Pointer> ticked,
                                        const PlanOrigin& origin);

/// What faultOf() has against ticks that a person may set all the same.
struct LeftOutOfPlan {
    std::size_t groups = 0;   ///< of which all copies are ticked
    std::size_t links = 0;    ///< that are ticked
    std::size_t folders = 0;  ///< that addListings() took out
};

/// Takes that out of a plan, and the groups of which nothing goes then.
LeftOutOfPlan takeOutUnplannable(DuplicatePlan& plan);

/// Adds what is in folders that are equal as wholes, which a search does not keep. Takes those out
/// that are not any more what the search saw, and says how many; and groups of which nothing goes
/// then. Asks the disk.
std::size_t addListings(DuplicatePlan& plan, const FileSystem& files,
                        const DuplicateFilesOpt& search);

/// For undo: the same for folders that go, up to a stop, and leaves the rest of the plan as it is.
void noteListings(DuplicatePlan& plan, const FileSystem& files, const DuplicateFilesOpt& search,
                  const std::atomic<bool>& stop);

/// Adds the hashes of the search that the ticks are of, as makePlan() has them. Not while it runs.
void addContents(DuplicatePlan& plan, const DuplicateFilesOpt& search);

}  // namespace orrinvale
