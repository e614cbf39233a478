// Loops over fathers and lists: a tree may be ten thousand levels deep.
#include "engine/diskusage/UsageSelection.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <set>

namespace orrinvale {
namespace {

// In one pass: a column may have a hundred thousand rows.
FSNode::State stateFromChildren(const FSNode& node) {
    bool isNone = true;
    bool isAll = true;
    for (const FSNode* const child : node.children()) {
        isNone = isNone && child->isButtonState() == FSNode::NotSelected;
        isAll = isAll && child->isButtonState() == FSNode::Selected;
        if (!isNone && !isAll) return FSNode::Mixed;
    }
    if (isNone) return FSNode::NotSelected;
    return node.isWhole() ? FSNode::Selected : FSNode::Mixed;
}

std::size_t depthOf(const FSNode& node) {
    std::size_t depth = 0;
    for (const FSNode* above = node.father(); above != nullptr; above = above->father()) ++depth;
    return depth;
}

}  // namespace

void clickBox(FSNode& node) {
    const bool isOn = node.isButtonState() != FSNode::Selected;
    node.setIsButtonState(isOn ? FSNode::Selected : FSNode::NotSelected);
    if (node.father() != nullptr) setAllSelectListsStae(*node.father());
    setChildrenState(node, node.isButtonState());
}

void setAllSelectListsStae(FSNode& node) {
    for (FSNode* each = &node; each != nullptr; each = each->father())
        each->setIsButtonState(stateFromChildren(*each));
}

void setChildrenState(FSNode& node, FSNode::State state) {
    const FSNode::State given = state == FSNode::Mixed ? FSNode::Selected : state;
    for (FSNode* const child : node.children()) child->setIsButtonState(given);
}

std::span<FSNode* const> openColumn(FSNode& node) {
    if (node.isButtonState() != FSNode::Mixed) setChildrenState(node, node.isButtonState());
    return node.children();
}

void untick(std::span<FSNode* const> nodes) {
    for (FSNode* const node : nodes)
        if (node->isButtonState() == FSNode::Selected) clickBox(*node);
}

void passStatesDown(FSNode& node) {
    std::vector<FSNode*> way;
    for (FSNode* each = &node; each != nullptr; each = each->father()) way.push_back(each);
    for (auto each = way.rbegin(); each != way.rend(); ++each)
        static_cast<void>(openColumn(**each));
}

std::vector<FSNode*> prePareDelData(const FSNode* root) {
    std::vector<FSNode*> ticked;
    if (root == nullptr) return ticked;
    std::vector<std::span<FSNode* const>> levels{root->children()};
    while (!levels.empty()) {
        std::span<FSNode* const>& left = levels.back();
        if (left.empty()) {
            levels.pop_back();
            continue;
        }
        FSNode* const node = left.front();
        left = left.subspan(1);
        if (node->isButtonState() == FSNode::Selected) ticked.push_back(node);
        else if (node->isButtonState() == FSNode::Mixed) levels.push_back(node->children());
    }
    return ticked;
}

bool hasTicks(const FSNode& root) {
    return std::ranges::any_of(root.children(), [](const FSNode* node) {
        return node->isButtonState() != FSNode::NotSelected;
    });
}

// Each folder above is worked out once, the deepest first, however many entries of it were in the
// list.
void settleStates(std::span<FSNode* const> delNodesArr) {
    std::map<std::size_t, std::set<FSNode*>, std::greater<>> byDepth;
    for (FSNode* const node : delNodesArr) {
        node->setIsButtonState(stateFromChildren(*node));
        FSNode* above = node->father();
        for (std::size_t depth = depthOf(*node); above != nullptr; above = above->father())
            if (!byDepth[--depth].insert(above).second) break;
    }
    for (const auto& [depth, folders] : byDepth)
        for (FSNode* const folder : folders) folder->setIsButtonState(stateFromChildren(*folder));
}

}  // namespace orrinvale
