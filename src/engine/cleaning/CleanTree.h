// CleanTree: what six scans found as one tree, a group for each category that has rows, and its
// ticks. The lists keep the same ticks; whoever changes one side brings the other along by this.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "engine/cleaning/ScanViewController.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"

namespace orrinvale {

/// The category by the name of its group. The first one's name is spelled as it always was, so that
/// a group of that category is found by being none of the others.
[[nodiscard]] std::size_t categoryOfGroup(std::string_view name);

/// Rows of a list as the leaves of a group that has no name yet; `seen` has their ages. `stayed`
/// has the leaves that are there already, at the places of their rows. All others are made, not
/// ticked. Any thread: the main one only for rows that stayed of a list.
[[nodiscard]] TreeNode::Pointer groupOfRows(const ScanViewController::Rows& rows,
                                            const std::vector<CleanRow>& seen,
                                            std::vector<TreeNode::Pointer> stayed = {});

/// Holds rows of the lists, which outlive it or are forgotten before. Main thread only.
class CleanTree final {
public:
    /// Of these lists, whose dicKeyStr is their category. One without rows gives no group. Leaves
    /// of rows that are as they were in the last tree are taken over from it.
    void constructTree(const std::vector<ScanViewController*>& scanObjsArr);
    void clear();

    /// The root; null before.
    [[nodiscard]] SimpleTreeNode* treeData() const { return m_treeData.get(); }
    /// Null for a category without rows.
    [[nodiscard]] TreeNode* group(std::size_t category) const;
    /// Of a leaf that of its group.
    [[nodiscard]] std::size_t categoryOf(const TreeNode& node) const;

    /// Each brings the list along, and its button.
    void clickLeaf(TreeNode& leaf);
    void clickGroup(TreeNode& node);
    /// Of a list that is filtered: ticks these leaves of one group, or clears them where all are
    /// ticked.
    void clickLeaves(TreeNode& node, std::span<TreeNode* const> leaves);
    void setLeaves(TreeNode& node, std::span<TreeNode* const> leaves, bool isOn);
    void setAllSelectOrNoSelect(bool isOn);
    /// Takes out the row of a list that has just lost it, and its group with the last one. Returned
    /// is what went, for whoever still points to it; null where there is no such row.
    [[nodiscard]] TreeNode::Pointer takeOut(std::size_t category, std::string_view path);

    /// Takes over what is ticked in the lists.
    void refOutlineWhenClickScanView();

    /// How many leaves are ticked.
    [[nodiscard]] std::size_t allSelectNumArr() const;
    /// 0 where no group has ticks, 1 where all are ticked as a whole, 2 otherwise.
    [[nodiscard]] std::int32_t changeAllSelectCheckBoxState() const;

private:
    struct Row {
        TreeNode::Pointer leaf;
        std::shared_ptr<CleanFileInfo> info;  // as held, so that no newer one has its address
        std::uint64_t bytes;                  // that the leaf shows
    };
    struct Group {
        TreeNode::Pointer node;
        std::size_t category;
        ScanViewController* list;
        std::vector<Row> byRow;  // in the order of the list, however the tree is sorted
        std::size_t ticked = 0;
    };
    [[nodiscard]] static Group makeGroup(ScanViewController& list, const Group* before);
    [[nodiscard]] static bool isAsBefore(const Group& group);
    [[nodiscard]] static std::vector<TreeNode::Pointer> leavesThatStay(
        const Group& before, const ScanViewController::Rows& rows);
    static void showTicks(Group& group);
    [[nodiscard]] Group& groupOf(const TreeNode& node);
    void setAll(Group& group, bool isOn) const;
    static void setLeaf(Group& group, TreeNode& leaf, bool isOn);
    static void showGroup(Group& group);

    std::shared_ptr<SimpleTreeNode> m_treeData;
    std::vector<Group> m_groups;
};

}  // namespace orrinvale
