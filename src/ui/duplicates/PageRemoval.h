// PageRemoval: one removal of the duplicate page, while it runs and for as long as its result is
// told.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "engine/duplicates/results/RemovalPlan.h"
#include "engine/removal/RemovalJob.h"

namespace orrinvale {

/// Main thread only.
struct PageRemoval {
    std::vector<TreeNode::Pointer> ticked;  ///< when the person confirmed
    std::shared_ptr<RemovalPlan> plan;
    std::unique_ptr<RemovalJob> job;             ///< once it has begun, up to its end
    std::vector<TreeNode::Pointer> delNodesArr;  ///< what has left the tree
    RemovalOutcome outcome;                      ///< at its end
};

}  // namespace orrinvale
