// SimpleTreeNode: a node of the result tree, which is a root, groups, and leaves. Its data is a
// SimpleNodeData.
#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "engine/duplicates/tree/SimpleNodeData.h"
#include "engine/duplicates/tree/TreeNode.h"

namespace orrinvale {

/// A tree as a plain value: the name of a group, and its members in order, each the name of a leaf
/// or a group in turn.
struct Dictionary {
    std::string Group;
    std::vector<std::variant<std::string, Dictionary>> Entries;
};

class SimpleTreeNode final : public TreeNode {
public:
    using TreeNode::TreeNode;

    /// A group without a parent, with everything below it. Nests as deep as the dictionary does.
    explicit SimpleTreeNode(const Dictionary& dictionary);

    [[nodiscard]] static std::shared_ptr<SimpleTreeNode> treeNodeWithData(
        std::shared_ptr<TreeNodeData> data);
    [[nodiscard]] static std::shared_ptr<SimpleTreeNode> treeFromDictionary(
        const Dictionary& dictionary);
};

/// The node's data as what the results are made of; null when it carries none or another kind.
[[nodiscard]] SimpleNodeData* simpleData(const TreeNode& node);

/// How many copies of a group are ticked.
[[nodiscard]] std::size_t countTicked(const TreeNode& group);

}  // namespace orrinvale
