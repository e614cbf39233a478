// TreeNode: an ordered tree with typed data, whose nodes may stand in a second tree too.
// SimpleTreeNode is what the results are made of.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace orrinvale {

/// What a tree can be sorted by.
enum class SortKey { Name, Size, Date };

/// One node's key as a sort compares it: the number first, then the text, which lives as long as
/// the data does.
struct SortValue {
    std::uint64_t number = 0;
    std::string_view text;
    friend auto operator<=>(const SortValue&, const SortValue&) = default;
};

/// What a node carries. This base knows no order: it compares equal to everything.
class TreeNodeData {
public:
    TreeNodeData() = default;
    virtual ~TreeNodeData() = default;
    TreeNodeData(const TreeNodeData&) = delete;
    TreeNodeData& operator=(const TreeNodeData&) = delete;

    /// The order of this data against the other's; the forms with R swap the two. Data of another
    /// class, and data that lacks the key, compare equivalent.
    [[nodiscard]] virtual std::weak_ordering compareName(const TreeNodeData& other) const;
    [[nodiscard]] virtual std::weak_ordering compareSize(const TreeNodeData& other) const;
    [[nodiscard]] virtual std::weak_ordering compareDate(const TreeNodeData& other) const;
    [[nodiscard]] virtual std::weak_ordering compareNameR(const TreeNodeData& other) const;
    [[nodiscard]] virtual std::weak_ordering compareSizeR(const TreeNodeData& other) const;
    [[nodiscard]] virtual std::weak_ordering compareDateR(const TreeNodeData& other) const;

    /// The key in a form that is read once a sort, in the order that the comparison of this key
    /// gives. Nothing when this data compares equivalent to all others by it: a sort leaves such a
    /// node where it stands.
    [[nodiscard]] virtual std::optional<SortValue> sortValue(SortKey key) const;
};

/// Owned by the children array of its parents and by whoever else holds it. The parent is not
/// owned; it is the one set last, whichever trees hold the node. Trees are used on the main thread
/// only and hold no cycles.
class TreeNode {
public:
    using Pointer = std::shared_ptr<TreeNode>;
    using Order = std::weak_ordering (TreeNodeData::*)(const TreeNodeData&) const;

    /// A node with no parent and no children.
    [[nodiscard]] static Pointer treeNodeWithData(std::shared_ptr<TreeNodeData> data);

    /// Takes parent and children as given; the children's parent stays what it was, and the
    /// parent's children too.
    TreeNode(std::shared_ptr<TreeNodeData> data, TreeNode* parent, std::vector<Pointer> children);

    /// Clears the parent link of the children that have this node as parent. Frees a tree of any
    /// depth in constant stack.
    virtual ~TreeNode();
    TreeNode(const TreeNode&) = delete;
    TreeNode& operator=(const TreeNode&) = delete;

    void setNodeData(std::shared_ptr<TreeNodeData> data);
    [[nodiscard]] const std::shared_ptr<TreeNodeData>& nodeData() const { return m_nodeData; }
    void setNodeParent(TreeNode* parent) { m_nodeParent = parent; }
    [[nodiscard]] TreeNode* nodeParent() const { return m_nodeParent; }

    /// Makes this node the child's parent. Another tree that holds the child keeps it. Throws
    /// std::out_of_range for an index above the number of children; the child must not be null.
    void insertChild(Pointer child, std::size_t index);

    /// Takes every occurrence of the child out and clears its parent, whichever that was. Throws
    /// std::out_of_range when it is no child of this node. Frees the child when nobody else holds
    /// it.
    void removeChild(const TreeNode* child);

    /// Clears the parent of all these nodes, children or not, and takes out those that are
    /// children, in one pass.
    void _removeChildrenIdenticalTo(std::span<const Pointer> nodes);

    /// Takes this node out of its parent's children; nothing happens without a parent. Frees this
    /// node when nobody else holds it. Throws as removeChild does when the parent set does not hold
    /// this node.
    void removeFromParent();

    /// Nodes are equal only to themselves, so the two give the same answer: the first place, or
    /// nothing.
    [[nodiscard]] std::optional<std::size_t> indexOfChild(const TreeNode* child) const;
    [[nodiscard]] std::optional<std::size_t> indexOfChildIdenticalTo(const TreeNode* child) const;

    [[nodiscard]] std::size_t numberOfChildren() const { return m_nodeChildren.size(); }

    /// Throw std::out_of_range where there is no such child.
    [[nodiscard]] const Pointer& firstChild() const { return childAtIndex(0); }
    [[nodiscard]] const Pointer& childAtIndex(std::size_t index) const {
        return m_nodeChildren.at(index);
    }

    /// Null when there are no children.
    [[nodiscard]] Pointer lastChild() const;

    /// A copy, which may be walked while the node changes.
    [[nodiscard]] std::vector<Pointer> children() const { return m_nodeChildren; }

    /// True when the given node is this one or an ancestor of it.
    [[nodiscard]] bool isDescendantOfNode(const TreeNode* node) const;
    [[nodiscard]] bool isDescendantOfNodeInArray(std::span<TreeNode* const> nodes) const;

    /// Takes the same children in another order.
    void setOrder(std::vector<Pointer> children) { m_nodeChildren = std::move(children); }

    /// Sort the children, their children, and so on at every level, by one key. Equal keys keep
    /// their order. Nodes that lack the key keep their places among their siblings, and the others
    /// are sorted around them.
    void acendingSortName();
    void acendingSortSize();
    void acendingSortDate();
    void decendingSortName();
    void decendingSortSize();
    void decendingSortDate();

    /// Sorts the children of each of these nodes in the same way, and nothing below them.
    static void sortLevel(std::span<TreeNode* const> nodes, SortKey key, bool descending);

    /// The comparison of the same name of the two nodes' data; equivalent when either node has
    /// none.
    [[nodiscard]] std::weak_ordering compareName(const TreeNode& other) const;
    [[nodiscard]] std::weak_ordering compareSize(const TreeNode& other) const;
    [[nodiscard]] std::weak_ordering compareDate(const TreeNode& other) const;
    [[nodiscard]] std::weak_ordering compareNameR(const TreeNode& other) const;
    [[nodiscard]] std::weak_ordering compareSizeR(const TreeNode& other) const;
    [[nodiscard]] std::weak_ordering compareDateR(const TreeNode& other) const;

    /// The roots of the given nodes, each once, in the order in which the nodes first lead to them.
    /// Not owned. The cost grows with the number of different nodes on the ways up.
    [[nodiscard]] static std::vector<TreeNode*> minimumNodeCoverFromNodesInArray(
        std::span<TreeNode* const> nodes);

private:
    struct SortRoom;
    void sortAllLevels(SortKey key, bool descending);
    void sortChildren(SortKey key, bool descending, SortRoom& room);
    void releaseChildren(std::vector<Pointer>& into);

    TreeNode* m_nodeParent;  // not owned
    std::shared_ptr<TreeNodeData> m_nodeData;
    std::vector<Pointer> m_nodeChildren;  // in the order in which they are shown
};

}  // namespace orrinvale
