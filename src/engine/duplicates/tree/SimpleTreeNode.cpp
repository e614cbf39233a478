// Making of nodes, also from the dictionary form of a tree.
#include "engine/duplicates/tree/SimpleTreeNode.h"

#include <typeinfo>
#include <utility>

namespace orrinvale {

SimpleTreeNode::SimpleTreeNode(const Dictionary& dictionary)
    : TreeNode(SimpleNodeData::groupDataWithName(dictionary.Group), nullptr, {}) {
    for (const auto& entry : dictionary.Entries) {
        const auto* const group = std::get_if<Dictionary>(&entry);
        insertChild(group ? treeFromDictionary(*group)
                          : treeNodeWithData(
                                SimpleNodeData::leafDataWithName(std::get<std::string>(entry))),
                    numberOfChildren());
    }
}

std::shared_ptr<SimpleTreeNode> SimpleTreeNode::treeNodeWithData(
    std::shared_ptr<TreeNodeData> data) {
    return std::make_shared<SimpleTreeNode>(std::move(data), nullptr, std::vector<Pointer>{});
}

std::shared_ptr<SimpleTreeNode> SimpleTreeNode::treeFromDictionary(const Dictionary& dictionary) {
    return std::make_shared<SimpleTreeNode>(dictionary);
}

SimpleNodeData* simpleData(const TreeNode& node) {
    TreeNodeData* const data = node.nodeData().get();
    // The class is final, so that a look at the type is enough; a dynamic cast took a third of a
    // walk over all leaves.
    return data != nullptr && typeid(*data) == typeid(SimpleNodeData)
               ? static_cast<SimpleNodeData*>(data)
               : nullptr;
}

std::size_t countTicked(const TreeNode& group) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i)
        if (simpleData(*group.childAtIndex(i))->selectNum() == 1) ++count;
    return count;
}

}  // namespace orrinvale
