// PageRemoval: one removal of the duplicate page, or one sharing in its place, while it runs and
// for as long as its result is told.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/duplicates/plan/TrashUndo.h"
#include "engine/duplicates/plan/UndoableRemoval.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "engine/duplicates/share/ShareList.h"
#include "engine/removal/RemovalJob.h"

namespace orrinvale {

/// Main thread only.
struct PageRemoval {
    std::vector<TreeNode::Pointer> ticked;  ///< when the person confirmed
    bool isToTrash = false;
    std::shared_ptr<RemovalPlan> plan;   ///< null where copies share their space instead of going
    std::shared_ptr<ShareList> sharing;  ///< then
    std::shared_ptr<UndoableRemoval> undoable;   ///< around the plan, of what goes to the trash
    std::unique_ptr<RemovalJob> job;             ///< once it has begun, up to its end
    std::vector<TreeNode::Pointer> delNodesArr;  ///< what has left the tree
    RemovalOutcome outcome;                      ///< at its end
    std::optional<UndoOutcome> undone;           ///< what came back from the trash
    std::optional<std::int64_t> gained;          ///< by how much free space grew by the sharing
};

}  // namespace orrinvale
