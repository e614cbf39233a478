// A group stands in two trees, all and its kind's; what leaves the one leaves the other.
#include "engine/duplicates/results/ResultViews.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "engine/duplicates/folders/FolderRows.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale {
namespace {

std::size_t codeOf(FileKind kind) { return static_cast<std::size_t>(kind); }

std::shared_ptr<SimpleTreeNode> newRoot() {
    return SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName("Root"));
}

// Leaves leave their groups and groups the root, so that who still holds one of them holds nothing
// else.
void takeApart(TreeNode& root) {
    for (const auto& group : root.children()) {
        const auto leaves = group->children();
        group->_removeChildrenIdenticalTo(leaves);
    }
    const auto groups = root.children();
    root._removeChildrenIdenticalTo(groups);
}

void removeGroups(TreeNode& root, const std::unordered_set<const TreeNode*>& groups) {
    std::vector<TreeNode::Pointer> found;
    for (std::size_t i = 0; i < root.numberOfChildren(); ++i)
        if (groups.contains(root.childAtIndex(i).get())) found.push_back(root.childAtIndex(i));
    root._removeChildrenIdenticalTo(found);
}

// Of copies that all are there is nothing to tick.
void learnProtected(TreeNode& group) {
    bool isProtected = group.numberOfChildren() != 0;
    for (std::size_t i = 0; i < group.numberOfChildren() && isProtected; ++i)
        isProtected = simpleData(*group.childAtIndex(i))->isProtected();
    simpleData(group)->setProtected(isProtected);
}

bool liesInOne(const SimpleNodeData& leaf,
               const std::unordered_set<const SimpleNodeData*>& folders) {
    const FolderTies* ties = leaf.folderTies();
    while (ties != nullptr && ties->within != nullptr) {
        if (folders.contains(ties->within.get())) return true;
        ties = ties->within->folderTies();
    }
    return false;
}

void addSize(std::uint64_t& sum, std::uint64_t size) {
    sum += std::min(size, std::numeric_limits<std::uint64_t>::max() - sum);
}

}  // namespace

void ResultViews::setResult(std::shared_ptr<SimpleTreeNode> all) {
    m_all = std::move(all);
    m_sizes = {};
    for (std::size_t code = 1; code < m_types.size(); ++code) m_types[code] = newRoot();
    if (!m_all) return;
    for (std::size_t i = 0; i < m_all->numberOfChildren(); ++i) sortIn(m_all->childAtIndex(i));
    findInFolders();
}

// A search finds the folders first, so that the first group tells whether there are any.
void ResultViews::findInFolders() {
    m_inFolders.clear();
    m_hasWholeFolders = m_all->numberOfChildren() != 0 &&
                        simpleData(*m_all->childAtIndex(0))->wholeFolder() != nullptr;
    if (!m_hasWholeFolders) return;
    for (std::size_t i = 0; i < m_all->numberOfChildren(); ++i) {
        const TreeNode& group = *m_all->childAtIndex(i);
        for (std::size_t leaf = 0; leaf < group.numberOfChildren(); ++leaf)
            if (const FolderTies* const ties = simpleData(*group.childAtIndex(leaf))->folderTies();
                ties != nullptr && ties->within != nullptr)
                m_inFolders.push_back(group.childAtIndex(leaf));
    }
}

void ResultViews::sortIn(const TreeNode::Pointer& group) {
    SimpleNodeData* const data = simpleData(*group);
    if (data == nullptr || data->Mark()) return;
    const std::size_t code = codeOf(kindOfExtension(data->extendName()));
    data->setMark(true);
    data->setFileType(static_cast<std::int32_t>(code));
    addSize(m_sizes[code], data->fileSize());
    m_types[code]->insertChild(group, m_types[code]->numberOfChildren());
}

void ResultViews::clear() {
    for (auto& type : m_types) {
        if (type) takeApart(*type);
        type.reset();
    }
    if (m_all) takeApart(*m_all);
    m_all.reset();
    m_inFolders.clear();
    m_hasWholeFolders = false;
    m_sizes = {};
}

SimpleTreeNode* ResultViews::tree(std::size_t row) const {
    const auto& kind = resultRows.at(row).kind;
    return kind ? m_types[codeOf(*kind)].get() : m_all.get();
}

std::uint64_t ResultViews::size(std::size_t row) const {
    if (const auto& kind = resultRows.at(row).kind) return m_sizes[codeOf(*kind)];
    std::uint64_t sum = 0;
    for (const std::uint64_t size : m_sizes) addSize(sum, size);
    return sum;
}

std::string ResultViews::sizeText(std::size_t row) const {
    const std::uint64_t bytes = size(row);
    return bytes == 0 ? "0.0KB" : UtilityFunction::convertVolSpace(bytes);
}

std::size_t ResultViews::leafCount(const TreeNode& tree) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < tree.numberOfChildren(); ++i)
        count += tree.childAtIndex(i)->numberOfChildren();
    return count;
}

void ResultViews::shrink(const SimpleNodeData& group, std::uint64_t bytes) {
    const auto code = static_cast<std::size_t>(group.fileType());
    if (code == 0 || code >= m_sizes.size()) return;
    m_sizes[code] -= std::min(bytes, m_sizes[code]);
}

// One group's part of a batch, leaf by leaf in its order, but with one look at the copies that
// stay. True when the group is none any more.
bool ResultViews::removeFromGroup(TreeNode& group, std::span<const TreeNode::Pointer> leaves) {
    SimpleNodeData& data = *simpleData(group);
    group._removeChildrenIdenticalTo(leaves);
    if (!data.Mark()) return false;  // out of the views since an earlier batch
    std::size_t left = group.numberOfChildren() + leaves.size();
    std::size_t ticked = countTicked(group);
    for (const auto& leaf : leaves) ticked += simpleData(*leaf)->selectNum() == 1 ? 1U : 0U;
    for (const auto& leaf : leaves) {
        const SimpleNodeData& gone = *simpleData(*leaf);
        const std::uint64_t bytes = gone.fileSize();
        data.setFileSize(data.fileSize() - std::min(bytes, data.fileSize()));
        shrink(data, bytes);
        --left;
        ticked -= gone.selectNum() == 1 ? 1U : 0U;
        // One of which nothing was ticked loses a copy with its folder.
        const bool single = left == 1 && data.selectNum() != 1;
        if (single) shrink(data, bytes);  // the copy that stays is no duplicate any more
        if (left == 0 || single) {
            data.setMark(false);
            return true;
        }
        if (data.selectNum() == 2) data.setSelectNum(ticked != 0 ? 2 : 0);
    }
    learnProtected(group);
    if (data.wholeFolder() != nullptr) data.setName(folderGroupName(group));
    // Of a partly ticked group the first number says whether, not how many, until the next tick in
    // it.
    const std::size_t shown = data.selectNum() == 1 ? left : data.selectNum() == 2 ? 1 : 0;
    data.setShowSelectNumStr(fmt::format("{}/{}", shown, left));
    return false;
}

void ResultViews::removeLeaves(std::span<const TreeNode::Pointer> leaves) {
    // By group: a group may hold as many copies as a batch has leaves, and must not be walked for
    // each of them.
    std::unordered_map<TreeNode*, std::vector<TreeNode::Pointer>> byGroup;
    std::unordered_set<const SimpleNodeData*> folders;
    const auto take = [&](const TreeNode::Pointer& leaf) {
        TreeNode* const group = leaf->nodeParent();
        if (group != nullptr && simpleData(*group) != nullptr && simpleData(*leaf) != nullptr)
            byGroup[group].push_back(leaf);
    };
    for (const auto& leaf : leaves) {
        take(leaf);
        if (const SimpleNodeData* const data = simpleData(*leaf);
            data != nullptr && data->wholeFolder() != nullptr)
            folders.insert(data);
    }
    if (!folders.empty()) {
        const std::unordered_set<TreeNode::Pointer> named(leaves.begin(), leaves.end());
        std::erase_if(m_inFolders, [&](const TreeNode::Pointer& leaf) {
            if (!liesInOne(*simpleData(*leaf), folders)) return false;
            if (!named.contains(leaf)) take(leaf);
            return true;
        });
    }
    std::unordered_set<const TreeNode*> groups;
    for (const auto& [group, gone] : byGroup)
        if (removeFromGroup(*group, gone)) groups.insert(group);
    if (groups.empty()) return;
    for (const auto& type : m_types)
        if (type) removeGroups(*type, groups);
    if (m_all) removeGroups(*m_all, groups);
}

}  // namespace orrinvale
