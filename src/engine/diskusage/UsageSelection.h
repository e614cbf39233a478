// UsageSelection: the rules of the boxes in the columns of the disk usage page.
#pragma once

#include <span>
#include <vector>

#include "engine/diskusage/FSNode.h"

namespace orrinvale {

// All of these on the thread that owns the tree. None takes the call stack for the depth of it.

/// A click on the box of a node: from 0 or 2 to 1, from 1 to 0; the folders above follow, and its
/// children get its state.
void clickBox(FSNode& node);

/// Works out the state of a folder, and of those above it, from those of the children: 0 when all
/// are 0 or there are none, 1 when all are 1, else 2. A folder that is not FSNode::isWhole() gets 2
/// in place of 1, since ticking the one large file of a folder does not mean the thousand small
/// ones that nobody sees.
void setAllSelectListsStae(FSNode& node);

/// Gives the direct children the state, 1 for 2. Deeper levels follow when their column opens.
void setChildrenState(FSNode& node, FSNode::State state);

/// The children of a node that is shown as a column, to be called each time that a column is
/// loaded: a state of 0 or 1 is passed on to them first, a mixed one is left alone.
[[nodiscard]] std::span<FSNode* const> openColumn(FSNode& node);

/// Takes the ticks from those of the nodes that have one, as a click on each box does.
void untick(std::span<FSNode* const> nodes);

/// Passes the states on from the root to the children of `node`, as when every column on the way to
/// it is loaded anew, so that what stands below is what is seen.
void passStatesDown(FSNode& node);

/// What would go, in the order of the tree: a ticked node as a whole, of a mixed one what is ticked
/// below it. Empty for a null root.
[[nodiscard]] std::vector<FSNode*> prePareDelData(const FSNode* root);

/// Whether anything directly in the root is not in state 0.
[[nodiscard]] bool hasTicks(const FSNode& root);

/// After a removal: works out the states of what was in the list and of the folders above. What
/// stayed is not ticked any more, a folder as its children say.
void settleStates(std::span<FSNode* const> delNodesArr);

}  // namespace orrinvale
