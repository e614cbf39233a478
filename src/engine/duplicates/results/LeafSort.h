// LeafSort: sorts a result in pieces, so that the window is drawn in between.
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include "engine/duplicates/tree/TreeNode.h"

namespace orrinvale {

/// The groups at once, and the copies within them a little at a time. When it is done the tree is
/// as one sort of all levels leaves it. Holds plain pointers: finish() or drop() before the tree
/// loses groups or is sorted again. Main thread only.
class LeafSort final {
public:
    void begin(TreeNode& tree, SortKey key, bool descending);

    /// One group now, whenever its turn would come.
    void sortNow(TreeNode& group) const;

    /// Goes on until that moment, or to the end. True when there is nothing left to sort.
    bool step(std::chrono::steady_clock::time_point until);
    void finish() { static_cast<void>(step(std::chrono::steady_clock::time_point::max())); }
    void drop() { m_groups.clear(); }
    [[nodiscard]] bool isPending() const { return !m_groups.empty(); }

private:
    std::vector<TreeNode*> m_groups;  // still to be sorted within
    SortKey m_key = SortKey::Name;
    bool m_descending = false;
};

}  // namespace orrinvale
