// Groups at once, then the copies of as many groups as fit into a turn.
#include "engine/duplicates/results/LeafSort.h"

#include <algorithm>
#include <functional>
#include <span>

namespace orrinvale {

void LeafSort::begin(TreeNode& tree, SortKey key, bool descending) {
    m_key = key;
    m_descending = descending;
    TreeNode* const top = &tree;
    TreeNode::sortLevel({&top, 1}, key, descending);
    m_groups.clear();
    for (std::size_t i = 0; i < tree.numberOfChildren(); ++i)
        m_groups.push_back(tree.childAtIndex(i).get());
    // As they lie in memory, from the end: the order of a sorted tree leads all over it.
    std::sort(m_groups.begin(), m_groups.end(), std::greater<>());
}

void LeafSort::sortNow(TreeNode& group) const {
    TreeNode* const only = &group;
    TreeNode::sortLevel({&only, 1}, m_key, m_descending);
}

bool LeafSort::step(std::chrono::steady_clock::time_point until) {
    constexpr std::size_t atOnce = 256;  // groups between two looks at the clock
    while (!m_groups.empty() && std::chrono::steady_clock::now() < until) {
        const std::size_t count = std::min(atOnce, m_groups.size());
        TreeNode::sortLevel(std::span(m_groups).last(count), m_key, m_descending);
        m_groups.resize(m_groups.size() - count);
    }
    return m_groups.empty();
}

}  // namespace orrinvale
