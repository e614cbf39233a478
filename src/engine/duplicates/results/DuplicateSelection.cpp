// DuplicateSelection: see DuplicateSelection.h.
#include "engine/duplicates/results/DuplicateSelection.h"

#include <fmt/format.h>

namespace orrinvale {
namespace {

std::size_t countTicked(const TreeNode& group) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i)
        if (simpleData(*group.childAtIndex(i))->selectNum() == 1) ++count;
    return count;
}

void showGroup(TreeNode& group, std::int32_t selectNum, std::size_t ticked) {
    SimpleNodeData* const data = simpleData(group);
    data->setSelectNum(selectNum);
    data->setShowSelectNumStr(fmt::format("{}/{}", ticked, group.numberOfChildren()));
}

}  // namespace

void TickedLeaves::append(TreeNode::Pointer leaf) {
    m_places.emplace(leaf.get(), m_entries.size());
    m_entries.push_back(std::move(leaf));
    ++m_size;
}

void TickedLeaves::remove(const TreeNode* leaf) {
    const auto [from, to] = m_places.equal_range(leaf);
    for (auto place = from; place != to; ++place) {
        m_entries[place->second].reset();
        --m_size;
    }
    m_places.erase(from, to);
    constexpr std::size_t fewGaps = 64;
    if (m_entries.size() > 2 * m_size + fewGaps) closeGaps();
}

void TickedLeaves::closeGaps() {
    std::erase(m_entries, nullptr);
    m_places.clear();
    for (std::size_t i = 0; i < m_entries.size(); ++i) m_places.emplace(m_entries[i].get(), i);
}

void TickedLeaves::clear() {
    m_entries.clear();
    m_places.clear();
    m_size = 0;
}

std::vector<TreeNode::Pointer> TickedLeaves::entries() const {
    std::vector<TreeNode::Pointer> result;
    result.reserve(m_size);
    for (const auto& leaf : m_entries)
        if (leaf) result.push_back(leaf);
    return result;
}

LeafClick DuplicateSelection::clickLeaf(const TreeNode::Pointer& leaf) {
    TreeNode& group = *leaf->nodeParent();
    SimpleNodeData& data = *simpleData(*leaf);
    const std::size_t copies = group.numberOfChildren();
    if (data.selectNum() == 1) {
        data.setSelectNum(0);
        m_ticked.remove(leaf.get());
        const std::size_t ticked = countTicked(group);
        showGroup(group, ticked == 0 ? 0 : 2, ticked);
        return LeafClick::Cleared;
    }
    const std::size_t ticked = countTicked(group);
    if (ticked + 1 >= copies) return LeafClick::Question;
    data.setSelectNum(1);
    m_ticked.append(leaf);
    showGroup(group, 2, ticked + 1);
    return LeafClick::Ticked;
}

void DuplicateSelection::tickLast(const TreeNode::Pointer& leaf) {
    SimpleNodeData& data = *simpleData(*leaf);
    if (data.selectNum() == 1) return;
    data.setSelectNum(1);
    m_ticked.append(leaf);
    TreeNode& group = *leaf->nodeParent();
    showGroup(group, 1, group.numberOfChildren());
}

void DuplicateSelection::clickGroup(TreeNode& group) {
    if (simpleData(group)->selectNum() != 0) clearGroup(group, group.numberOfChildren());
    else if (const auto last = group.lastChild()) tickAllBut(*last);
}

void DuplicateSelection::tickAllBut(TreeNode& leaf) {
    TreeNode& group = *leaf.nodeParent();
    const std::size_t copies = group.numberOfChildren();
    for (std::size_t i = 0; i < copies; ++i) {
        const TreeNode::Pointer& child = group.childAtIndex(i);
        SimpleNodeData& data = *simpleData(*child);
        if (child.get() == &leaf) {
            data.setSelectNum(0);
            m_ticked.remove(child.get());
        } else if (data.selectNum() != 1) {
            data.setSelectNum(1);
            m_ticked.append(child);
        }
    }
    showGroup(group, 2, copies - 1);
}

void DuplicateSelection::clearGroup(TreeNode& group, std::size_t shownCount) {
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i) {
        const TreeNode::Pointer& child = group.childAtIndex(i);
        SimpleNodeData& data = *simpleData(*child);
        if (data.selectNum() == 1) m_ticked.remove(child.get());
        data.setSelectNum(0);
    }
    SimpleNodeData& data = *simpleData(group);
    data.setSelectNum(0);
    data.setShowSelectNumStr(fmt::format("0/{}", shownCount));
}

void DuplicateSelection::setAll(TreeNode& tree, bool on) {
    const std::size_t groups = tree.numberOfChildren();
    for (std::size_t g = 0; g < groups; ++g) {
        TreeNode& group = *tree.childAtIndex(g);
        if (!on) {
            clearGroup(group, groups);  // put right when the row is drawn again
            continue;
        }
        const std::size_t copies = group.numberOfChildren();
        for (std::size_t i = 0; i + 1 < copies; ++i) {
            const TreeNode::Pointer& child = group.childAtIndex(i);
            simpleData(*child)->setSelectNum(1);
            m_ticked.append(child);
        }
        showGroup(group, 2, copies == 0 ? 0 : copies - 1);
    }
}

void DuplicateSelection::clearTree(TreeNode& tree) {
    for (std::size_t g = 0; g < tree.numberOfChildren(); ++g) {
        TreeNode& group = *tree.childAtIndex(g);
        clearGroup(group, group.numberOfChildren());
    }
}

HeaderBox DuplicateSelection::headerBox(const TreeNode& tree) {
    HeaderBox box;
    std::size_t none = 0;
    std::size_t all = 0;
    const std::size_t groups = tree.numberOfChildren();
    for (std::size_t g = 0; g < groups; ++g) {
        const TreeNode& group = *tree.childAtIndex(g);
        const std::int32_t state = simpleData(group)->selectNum();
        none += state == 0 ? 1U : 0U;
        all += state == 1 ? 1U : 0U;
        box.leaves += group.numberOfChildren();
    }
    box.isOn = none != groups;
    box.picture = pictureOf(!box.isOn ? 0 : all == groups ? 1 : 2);
    return box;
}

std::string_view DuplicateSelection::pictureOf(std::int32_t selectNum) {
    switch (selectNum) {
        case 1: return "option_yes";
        case 2: return "option_a";
        default: return "option_no";
    }
}

}  // namespace orrinvale
