// What walks over a whole result share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

#include "engine/duplicates/tree/SimpleTreeNode.h"

namespace orrinvale {

/// A sorted tree lies all over the memory, and a walk over a large one mostly waits for it. So each
/// link of the way to a leaf is asked for a few groups ahead, when the link before it has come.
inline void expectGroups(const TreeNode& tree, std::size_t after) {
    const auto ahead = [&](std::size_t distance) -> const TreeNode* {
        const std::size_t index = after + distance;
        return index < tree.numberOfChildren() ? tree.childAtIndex(index).get() : nullptr;
    };
    const auto leaves = [](const TreeNode& group) {
        return std::min(group.numberOfChildren(), std::size_t{8});
    };
    if (const TreeNode* const group = ahead(16)) __builtin_prefetch(group);
    if (const TreeNode* const group = ahead(12)) {
        __builtin_prefetch(group->nodeData().get(), 1);
        if (group->numberOfChildren() > 0) __builtin_prefetch(&group->firstChild());
    }
    if (const TreeNode* const group = ahead(8))
        for (std::size_t i = 0; i < leaves(*group); ++i)
            __builtin_prefetch(group->childAtIndex(i).get(), 1);
    if (const TreeNode* const group = ahead(4))
        for (std::size_t i = 0; i < leaves(*group); ++i)
            __builtin_prefetch(group->childAtIndex(i)->nodeData().get(), 1);
}

/// The groups of equal folders in a view, the largest folders first, which is the order of whatever
/// is decided of them: a folder has more entries than any that lies in it.
[[nodiscard]] inline std::vector<TreeNode*> wholeFoldersOf(const TreeNode& tree) {
    std::vector<TreeNode*> groups;
    for (std::size_t g = 0; g < tree.numberOfChildren(); ++g)
        if (simpleData(*tree.childAtIndex(g))->wholeFolder() != nullptr)
            groups.push_back(tree.childAtIndex(g).get());
    std::ranges::stable_sort(groups, std::ranges::greater(), [](const TreeNode* group) {
        return simpleData(*group)->wholeFolder()->entries;
    });
    return groups;
}

}  // namespace orrinvale
