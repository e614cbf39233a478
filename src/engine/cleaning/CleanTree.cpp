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

// Each node here is made with such data; to ask for its kind at each of 20,000 leaves takes longer
// than all else that a click does.
SimpleNodeData& dataOf(const TreeNode& node) {
    return static_cast<SimpleNodeData&>(*node.nodeData());
}

bool isTicked(const TreeNode& leaf) { return dataOf(leaf).selectNum() == 1; }

TreeNode::Pointer leafOf(const CleanFileInfo& row, const CleanRow* seen) {
    auto leaf = SimpleNodeData::leafDataWithName(row.path);
    leaf->setIconRep(row.icon);
    leaf->setFileSize(UtilityFunction::getVolSpaceFromString(row.size));
    if (seen != nullptr) leaf->setModificationDate(Date{seen->newest});
    return SimpleTreeNode::treeNodeWithData(std::move(leaf));
}

}  // namespace

std::size_t categoryOfGroup(std::string_view name) {
    const auto found = std::ranges::find(groupNames, name);
    return found != groupNames.end() ? std::size_t(found - groupNames.begin()) : 0;
}

void CleanTree::clear() {
    if (m_treeData != nullptr)
        endAside(std::pair(std::exchange(m_treeData, nullptr), std::exchange(m_groups, {})));
}

// Old groups end here, and only what nobody shows any more elsewhere: where a leaf was taken over
// another thread must not look at it.
void CleanTree::constructTree(const std::vector<ScanViewController*>& scanObjsArr) {
    auto root = std::exchange(m_treeData, nullptr);
    std::vector<Group> past = std::exchange(m_groups, {});
    m_treeData = SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName("Root"));
    for (ScanViewController* const list : scanObjsArr) {
        if (!list->scanFiles || list->scanFiles->empty()) continue;
        const auto before = std::ranges::find(past, list, &Group::list);
        const bool isKnown = before != past.end();
        if (isKnown && isAsBefore(*before)) {
            root->removeChild(before->node.get());
            m_groups.push_back(std::move(*before));
            past.erase(before);
            showTicks(m_groups.back());
        } else {
            m_groups.push_back(makeGroup(*list, isKnown ? &*before : nullptr));
        }
        m_treeData->insertChild(m_groups.back().node, m_treeData->numberOfChildren());
    }
    root.reset();
    for (Group& each : past) each.node.reset();
    if (!past.empty()) endAside(std::move(past));
}

TreeNode::Pointer groupOfRows(const ScanViewController::Rows& rows,
                              const std::vector<CleanRow>& seen,
                              std::vector<TreeNode::Pointer> stayed) {
    const auto data = SimpleNodeData::groupDataWithName({});
    std::vector<TreeNode::Pointer> leaves = std::move(stayed);
    leaves.resize(rows.size());
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (leaves[i] == nullptr)
            leaves[i] = leafOf(*rows[i], i < seen.size() ? &seen[i] : nullptr);
        addSaturating(bytes, dataOf(*leaves[i]).fileSize());
    }
    data->setFileSize(bytes);
    auto group = std::make_shared<SimpleTreeNode>(data, nullptr, std::move(leaves));
    for (std::size_t i = 0; i < rows.size(); ++i)
        group->childAtIndex(i)->setNodeParent(group.get());
    return group;
}

// The same rows, in the order of the list.
bool CleanTree::isAsBefore(const Group& group) {
    const ScanViewController::Rows& rows = *group.list->scanFiles;
    if (rows.size() != group.byRow.size()) return false;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = group.byRow[i];
        if (row.info != rows[i] || row.bytes != rows[i]->fileSizeNum ||
            group.node->childAtIndex(i) != row.leaf)
            return false;
    }
    return true;
}

// Rows leave a list, and the others keep their order.
std::vector<TreeNode::Pointer> CleanTree::leavesThatStay(const Group& before,
                                                         const ScanViewController::Rows& rows) {
    std::vector<TreeNode::Pointer> leaves(rows.size());
    auto old = before.byRow.begin();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        old = std::find_if(old, before.byRow.end(),
                           [&row = rows[i]](const Row& each) { return each.info == row; });
        if (old == before.byRow.end()) break;
        if (old->bytes == rows[i]->fileSizeNum) leaves[i] = old->leaf;
        ++old;
    }
    return leaves;
}

CleanTree::Group CleanTree::makeGroup(ScanViewController& list, const Group* before) {
    Group group{
        .node = list.takeGroup(), .category = categoryOfList(list), .list = &list, .byRow = {}};
    const ScanViewController::Rows& rows = *list.scanFiles;
    if (group.node == nullptr)
        group.node = groupOfRows(
            rows, list.listing().rows,
            before != nullptr ? leavesThatStay(*before, rows) : std::vector<TreeNode::Pointer>());
    const auto name = namesOf(static_cast<CleanCategory>(group.category)).display;
    dataOf(*group.node).setName(std::string(name));
    group.byRow.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const TreeNode::Pointer& leaf = group.node->childAtIndex(i);
        group.byRow.push_back({leaf, rows[i], rows[i]->fileSizeNum});
        dataOf(*leaf).setSelectNum(rows[i]->bIsSelected ? 1 : 0);
        if (rows[i]->bIsSelected) ++group.ticked;
    }
    showGroup(group);
    return group;
}

void CleanTree::showTicks(Group& group) {
    for (std::size_t i = 0; i < group.byRow.size(); ++i)
        setLeaf(group, *group.byRow[i].leaf, group.byRow[i].info->bIsSelected);
    showGroup(group);
}

void CleanTree::showGroup(Group& group) {
    SimpleNodeData& data = dataOf(*group.node);
    const std::size_t all = group.byRow.size();
    data.setSelectNum(group.ticked == 0 ? 0 : group.ticked == all ? 1 : 2);
    data.setShowSelectNumStr(fmt::format("{}/{}", group.ticked, all));
}

TreeNode* CleanTree::group(std::size_t category) const {
    const auto found = std::ranges::find(m_groups, category, &Group::category);
    return found != m_groups.end() ? found->node.get() : nullptr;
}

CleanTree::Group& CleanTree::groupOf(const TreeNode& node) {
    const TreeNode* const wanted = dataOf(node).isLeaf() ? node.nodeParent() : &node;
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
    dataOf(leaf).setSelectNum(isOn ? 1 : 0);
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
        (*group.list->scanFiles)[i]->bIsSelected = isTicked(*group.byRow[i].leaf);
    showGroup(group);
    group.list->selectButton = group.ticked == group.byRow.size();
}

void CleanTree::clickGroup(TreeNode& node) {
    Group& group = groupOf(node);
    setAll(group, dataOf(*group.node).selectNum() == 0);
}

void CleanTree::setAllSelectOrNoSelect(bool isOn) {
    for (Group& group : m_groups) setAll(group, isOn);
}

void CleanTree::setAll(Group& group, bool isOn) const {
    for (const Row& row : group.byRow) dataOf(*row.leaf).setSelectNum(isOn ? 1 : 0);
    group.ticked = isOn ? group.byRow.size() : 0;
    showGroup(group);
    if (isOn) group.list->setAllCheckBoxSelect();
    else group.list->setNoCheckBoxSelect();
}

TreeNode::Pointer CleanTree::takeOut(std::size_t category, std::string_view path) {
    const auto group = std::ranges::find(m_groups, category, &Group::category);
    if (group == m_groups.end()) return nullptr;
    const auto row = std::ranges::find_if(
        group->byRow, [path](const Row& each) { return dataOf(*each.leaf).name() == path; });
    if (row == group->byRow.end()) return nullptr;
    TreeNode::Pointer node = group->node;
    if (group->byRow.size() == 1) {
        m_treeData->removeChild(node.get());
        m_groups.erase(group);
        return node;
    }
    TreeNode::Pointer leaf = row->leaf;
    setLeaf(*group, *leaf, false);
    group->byRow.erase(row);
    node->removeChild(leaf.get());
    SimpleNodeData& data = dataOf(*node);
    data.setFileSize(data.fileSize() - std::min(data.fileSize(), dataOf(*leaf).fileSize()));
    showGroup(*group);
    return leaf;
}

void CleanTree::refOutlineWhenClickScanView() {
    for (Group& group : m_groups) {
        // While a clean goes on the list may be shorter; the tree is built anew behind it.
        if (!group.list->scanFiles || group.list->scanFiles->size() != group.byRow.size()) continue;
        showTicks(group);
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
            return dataOf(*group.node).selectNum() == state;
        });
    };
    return m_groups.empty() || are(0) ? 0 : are(1) ? 1 : 2;
}

}  // namespace orrinvale
