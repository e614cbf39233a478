// Counters are kept by group, so that a click costs the same in a list of any length.
#include "engine/cleaning/CleanTree.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "engine/base/endAside.h"
#include "engine/base/saturating.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale {
namespace {

constexpr std::array<std::string_view, 6> groupNames{
    "Sytem Caches", "User Caches", "System Logs", "User Logs", "User Trash", "User Downloads"};

std::size_t categoryOfList(const ScanViewController& list) { return std::stoul(list.dicKeyStr); }

bool isTicked(const TreeNode& leaf) { return simpleData(leaf)->selectNum() == 1; }

}  // namespace

std::size_t categoryOfGroup(std::string_view name) {
    const auto found = std::ranges::find(groupNames, name);
    return found != groupNames.end() ? std::size_t(found - groupNames.begin()) : 0;
}

void CleanTree::clear() {
    if (m_treeData != nullptr)
        endAside(std::pair(std::exchange(m_treeData, nullptr), std::exchange(m_groups, {})));
}

void CleanTree::constructTree(const std::vector<ScanViewController*>& scanObjsArr) {
    clear();
    m_treeData = SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName("Root"));
    for (ScanViewController* const list : scanObjsArr) {
        if (!list->scanFiles || list->scanFiles->empty()) continue;
        Group& group = m_groups.emplace_back(makeGroup(*list));
        m_treeData->insertChild(group.node, m_treeData->numberOfChildren());
    }
}

CleanTree::Group CleanTree::makeGroup(ScanViewController& list) const {
    Group group{.node = {}, .category = categoryOfList(list), .list = &list, .byRow = {}};
    const auto name = namesOf(static_cast<CleanCategory>(group.category)).display;
    const auto data = SimpleNodeData::groupDataWithName(std::string(name));
    group.node = SimpleTreeNode::treeNodeWithData(data);
    const std::vector<CleanRow>& rows = list.listing().rows;
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < list.scanFiles->size(); ++i) {
        const CleanFileInfo& info = *(*list.scanFiles)[i];
        auto leafData = SimpleNodeData::leafDataWithName(info.path);
        leafData->setIconRep(info.icon);
        leafData->setFileSize(UtilityFunction::getVolSpaceFromString(info.size));
        leafData->setSelectNum(info.bIsSelected ? 1 : 0);
        if (i < rows.size()) leafData->setModificationDate(Date{rows[i].newest});
        addSaturating(bytes, leafData->fileSize());
        group.ticked += info.bIsSelected ? 1 : 0;
        auto leaf = SimpleTreeNode::treeNodeWithData(std::move(leafData));
        group.byRow.push_back(leaf.get());
        group.node->insertChild(std::move(leaf), i);
    }
    data->setFileSize(bytes);
    showGroup(group);
    return group;
}

void CleanTree::showGroup(Group& group) {
    SimpleNodeData& data = *simpleData(*group.node);
    const std::size_t all = group.byRow.size();
    data.setSelectNum(group.ticked == 0 ? 0 : group.ticked == all ? 1 : 2);
    data.setShowSelectNumStr(fmt::format("{}/{}", group.ticked, all));
}

TreeNode* CleanTree::group(std::size_t category) const {
    const auto found = std::ranges::find(m_groups, category, &Group::category);
    return found != m_groups.end() ? found->node.get() : nullptr;
}

CleanTree::Group& CleanTree::groupOf(const TreeNode& node) {
    const TreeNode* const wanted = simpleData(node)->isLeaf() ? node.nodeParent() : &node;
    const auto found = std::ranges::find_if(
        m_groups, [wanted](const Group& each) { return each.node.get() == wanted; });
    if (found == m_groups.end()) throw std::out_of_range("no node of this tree");
    return *found;
}

std::size_t CleanTree::categoryOf(const TreeNode& node) const {
    return const_cast<CleanTree*>(this)->groupOf(node).category;
}

void CleanTree::setLeaf(Group& group, TreeNode& leaf, bool isOn) {
    if (isTicked(leaf) == isOn) return;
    simpleData(leaf)->setSelectNum(isOn ? 1 : 0);
    group.ticked += isOn ? 1 : std::size_t(-1);
}

void CleanTree::clickLeaf(TreeNode& leaf) {
    TreeNode* const one = &leaf;
    clickLeaves(*groupOf(leaf).node, std::span(&one, 1));
}

void CleanTree::clickLeaves(TreeNode& node, std::span<TreeNode* const> leaves) {
    setLeaves(node, leaves,
              !std::ranges::all_of(leaves, [](const TreeNode* leaf) { return isTicked(*leaf); }));
}

void CleanTree::setLeaves(TreeNode& node, std::span<TreeNode* const> leaves, bool isOn) {
    Group& group = groupOf(node);
    for (TreeNode* const leaf : leaves) setLeaf(group, *leaf, isOn);
    for (std::size_t i = 0; i < group.byRow.size(); ++i)
        (*group.list->scanFiles)[i]->bIsSelected = isTicked(*group.byRow[i]);
    showGroup(group);
    group.list->selectButton = group.ticked == group.byRow.size();
}

void CleanTree::clickGroup(TreeNode& node) {
    Group& group = groupOf(node);
    setAll(group, simpleData(*group.node)->selectNum() == 0);
}

void CleanTree::setAllSelectOrNoSelect(bool isOn) {
    for (Group& group : m_groups) setAll(group, isOn);
}

void CleanTree::setAll(Group& group, bool isOn) const {
    for (TreeNode* const leaf : group.byRow) simpleData(*leaf)->setSelectNum(isOn ? 1 : 0);
    group.ticked = isOn ? group.byRow.size() : 0;
    showGroup(group);
    if (isOn) group.list->setAllCheckBoxSelect();
    else group.list->setNoCheckBoxSelect();
}

TreeNode::Pointer CleanTree::takeOut(std::size_t category, std::string_view path) {
    const auto group = std::ranges::find(m_groups, category, &Group::category);
    if (group == m_groups.end()) return nullptr;
    const auto row = std::ranges::find_if(
        group->byRow, [path](const TreeNode* leaf) { return simpleData(*leaf)->name() == path; });
    if (row == group->byRow.end()) return nullptr;
    TreeNode::Pointer node = group->node;
    if (group->byRow.size() == 1) {
        m_treeData->removeChild(node.get());
        m_groups.erase(group);
        return node;
    }
    TreeNode::Pointer leaf = node->childAtIndex(node->indexOfChild(*row).value());
    setLeaf(*group, *leaf, false);
    group->byRow.erase(row);
    node->removeChild(leaf.get());
    SimpleNodeData& data = *simpleData(*node);
    data.setFileSize(data.fileSize() - std::min(data.fileSize(), simpleData(*leaf)->fileSize()));
    showGroup(*group);
    return leaf;
}

void CleanTree::refOutlineWhenClickScanView() {
    for (Group& group : m_groups) {
        // While a clean goes on the list may be shorter; the tree is built anew behind it.
        if (!group.list->scanFiles || group.list->scanFiles->size() != group.byRow.size()) continue;
        for (std::size_t i = 0; i < group.byRow.size(); ++i)
            setLeaf(group, *group.byRow[i], (*group.list->scanFiles)[i]->bIsSelected);
        showGroup(group);
    }
}

std::size_t CleanTree::allSelectNumArr() const {
    std::size_t count = 0;
    for (const Group& group : m_groups) count += group.ticked;
    return count;
}

std::int32_t CleanTree::changeAllSelectCheckBoxState() const {
    const auto are = [this](std::int32_t state) {
        return std::ranges::all_of(m_groups, [state](const Group& group) {
            return simpleData(*group.node)->selectNum() == state;
        });
    };
    return m_groups.empty() || are(0) ? 0 : are(1) ? 1 : 2;
}

}  // namespace orrinvale
