// Loops over fathers and lists: a tree may be ten thousand levels deep.
#include "engine/diskusage/UsageSelection.h"

#include <algorithm>
#include <utility>

namespace orrinvale {
namespace {

FSNode::State stateFromChildren(const FSNode& node) {
    const auto children = node.children();
    const auto countOf = [&](FSNode::State state) {
        return std::ranges::count(children, state, &FSNode::isButtonState);
    };
    const auto none = countOf(FSNode::NotSelected);
    if (none == std::ssize(children)) return FSNode::NotSelected;
    const bool isAll = none == 0 && countOf(FSNode::Mixed) == 0;
    return isAll && node.isWhole() ? FSNode::Selected : FSNode::Mixed;
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

// Each folder above is worked out once for all that was in it.
void settleStates(std::span<FSNode* const> delNodesArr) {
    std::vector<FSNode*> fathers;
    for (FSNode* const node : delNodesArr) {
        node->setIsButtonState(stateFromChildren(*node));
        if (node->father() != nullptr) fathers.push_back(node->father());
    }
    std::ranges::sort(fathers);
    const auto repeated = std::ranges::unique(fathers);
    fathers.erase(repeated.begin(), repeated.end());
    for (FSNode* const father : fathers) setAllSelectListsStae(*father);
}

}  // namespace orrinvale
