// What a click does to leaves, groups and the header's box, and the counts that follow it.
#include "engine/duplicates/results/DuplicateSelection.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "engine/duplicates/results/treeWalk.h"

namespace orrinvale {
namespace {

void showGroup(TreeNode& group, std::int32_t selectNum, std::size_t ticked) {
    SimpleNodeData* const data = simpleData(group);
    data->setSelectNum(selectNum);
    data->setShowSelectNumStr(fmt::format("{}/{}", ticked, group.numberOfChildren()));
}

bool isProtectedCopy(const TreeNode::Pointer& leaf) {
    const SimpleNodeData& data = *simpleData(*leaf);
    return data.isProtected() &&
           !(data.identity() && data.identity()->type == FileType::SymbolicLink);
}

// Most leaves lie in none.
FolderHold quickHold(const SimpleNodeData& leaf) {
    return leaf.folderTies() == nullptr ? FolderHold::Free : holdOf(leaf);
}

bool isHeldAs(const TreeNode& leaf, FolderHold hold) {
    return quickHold(*simpleData(leaf)) == hold;
}

// Neither a rule nor a box of many ticks it.
bool isHeld(const SimpleNodeData& leaf) {
    return leaf.isProtected() || quickHold(leaf) != FolderHold::Free;
}

// The copy that a click on a group leaves: a protected one where there is any, else one in a folder
// that stays, else the last. A protected link is no copy, and neither is what goes with its folder.
const TreeNode* copyThatStays(const TreeNode& group) {
    for (std::size_t i = group.numberOfChildren(); i-- > 0;)
        if (isProtectedCopy(group.childAtIndex(i))) return group.childAtIndex(i).get();
    for (const FolderHold hold : {FolderHold::Stays, FolderHold::Free})
        for (std::size_t i = group.numberOfChildren(); i-- > 0;)
            if (const TreeNode::Pointer& leaf = group.childAtIndex(i);
                !simpleData(*leaf)->isProtected() && isHeldAs(*leaf, hold))
                return leaf.get();
    return group.lastChild().get();
}

std::size_t countGoing(const TreeNode& group) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i)
        count += isHeldAs(*group.childAtIndex(i), FolderHold::Goes) ? 1U : 0U;
    return count;
}

bool liesIn(const SimpleNodeData& leaf, const SimpleNodeData& folder) {
    const FolderTies* ties = leaf.folderTies();
    while (ties != nullptr && ties->within != nullptr && ties->within.get() != &folder)
        ties = ties->within->folderTies();
    return ties != nullptr && ties->within != nullptr;
}

// `each(group)` once for each group that has one of the leaves.
template <class Each> void forGroups(DuplicateSelection::Leaves inFolders, Each each) {
    const TreeNode* last = nullptr;
    for (const TreeNode::Pointer& leaf : inFolders) {
        TreeNode* const group = leaf->nodeParent();
        if (group != nullptr && group != last) each(*group);
        last = group;
    }
}

// What is ticked elsewhere may have left a group no other copy than those in the folder.
std::size_t othersLost(const SimpleNodeData& folder, DuplicateSelection::Leaves inFolders) {
    std::size_t lost = 0;
    forGroups(inFolders, [&](const TreeNode& group) {
        if (simpleData(group)->selectNum() != 2) return;
        bool holdsCopy = false;
        bool losesEach = true;
        for (std::size_t i = 0; i < group.numberOfChildren() && losesEach; ++i) {
            const SimpleNodeData& copy = *simpleData(*group.childAtIndex(i));
            const bool isInIt = liesIn(copy, folder);
            holdsCopy |= isInIt;
            losesEach = isInIt || copy.selectNum() == 1 || quickHold(copy) == FolderHold::Goes;
        }
        lost += holdsCopy && losesEach ? 1U : 0U;
    });
    return lost;
}

}  // namespace

bool losesAll(const TreeNode& group) {
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i)
        if (const SimpleNodeData& copy = *simpleData(*group.childAtIndex(i));
            copy.selectNum() != 1 && quickHold(copy) != FolderHold::Goes)
            return false;
    return group.numberOfChildren() != 0;
}

void TickedLeaves::remove(const TreeNode* leaf) {
    std::erase_if(m_entries,
                  [leaf](const TreeNode::Pointer& entry) { return entry.get() == leaf; });
}

void TickedLeaves::removeAll(std::span<const TreeNode::Pointer> leaves) {
    std::vector<const TreeNode*> removed;
    removed.reserve(leaves.size());
    for (const auto& leaf : leaves) removed.push_back(leaf.get());
    std::sort(removed.begin(), removed.end(), std::less<>());
    std::erase_if(m_entries, [&](const TreeNode::Pointer& entry) {
        return std::binary_search(removed.begin(), removed.end(), entry.get(), std::less<>());
    });
}

void TickedLeaves::removeClear() {
    std::erase_if(m_entries, [](const TreeNode::Pointer& entry) {
        return simpleData(*entry)->selectNum() == 0;
    });
}

void TickedLeaves::removeOrphans() {
    std::erase_if(m_entries,
                  [](const TreeNode::Pointer& entry) { return entry->nodeParent() == nullptr; });
}

LeafClick DuplicateSelection::clickLeaf(const TreeNode::Pointer& leaf, Leaves inFolders) {
    TreeNode& group = *leaf->nodeParent();
    SimpleNodeData& data = *simpleData(*leaf);
    if (data.isProtected() || quickHold(data) == FolderHold::Goes) return LeafClick::Protected;
    if (data.selectNum() == 1) {
        clear(data);
        m_ticked.remove(leaf.get());
        const std::size_t ticked = countTicked(group);
        showGroup(group, ticked == 0 ? 0 : 2, ticked);
        return LeafClick::Cleared;
    }
    const std::size_t ticked = countTicked(group);
    if (groupsLost(*leaf, inFolders) != 0) return LeafClick::Question;
    tick(leaf);
    showGroup(group, 2, ticked + 1);
    return LeafClick::Ticked;
}

std::size_t DuplicateSelection::groupsLost(const TreeNode& leaf, Leaves inFolders) {
    const TreeNode& group = *leaf.nodeParent();
    const bool isLastOfItsOwn =
        countTicked(group) + 1 + countGoing(group) >= group.numberOfChildren();
    const SimpleNodeData& data = *simpleData(leaf);
    return (isLastOfItsOwn ? 1U : 0U) +
           (data.wholeFolder() != nullptr ? othersLost(data, inFolders) : 0U);
}

void DuplicateSelection::tickLast(const TreeNode::Pointer& leaf, Leaves inFolders) {
    const SimpleNodeData& data = *simpleData(*leaf);
    if (data.selectNum() == 1 || data.isProtected() || quickHold(data) == FolderHold::Goes) return;
    tick(leaf);
    TreeNode& group = *leaf->nodeParent();
    showGroup(group, losesAll(group) ? 1 : 2, countTicked(group));
    if (data.wholeFolder() == nullptr) return;
    forGroups(inFolders, [](TreeNode& other) {
        if (simpleData(other)->selectNum() == 2 && losesAll(other))
            showGroup(other, 1, countTicked(other));
    });
}

void DuplicateSelection::clickGroup(TreeNode& group) {
    if (simpleData(group)->selectNum() != 0) {
        clearLeaves(group, group.numberOfChildren());
        m_ticked.removeAll(group.children());
    } else if (const TreeNode* const stays = copyThatStays(group)) {
        tickAllBut(*stays);
    }
}

void DuplicateSelection::tickAllBut(const TreeNode& leaf) {
    TreeNode& group = *leaf.nodeParent();
    if (simpleData(group)->isProtected()) return;
    bool isHeldBack = false;
    m_isSettled = m_isSettled && !isHeldAs(leaf, FolderHold::Goes);
    for (const TreeNode::Pointer& child : group.children()) {
        SimpleNodeData& data = *simpleData(*child);
        if (child.get() == &leaf) {
            clear(data);
            m_ticked.remove(child.get());
        } else if (isHeld(data)) {
            isHeldBack = true;
        } else if (data.selectNum() != 1) {
            tick(child);
        }
    }
    // What is held may have been ticked by its own box: that tick stays, and is shown.
    const std::size_t ticked = countTicked(group);
    showGroup(group, ticked == 0 && isHeldBack ? 0 : 2, ticked);
}

void DuplicateSelection::setTicks(TreeNode& group, std::span<const std::uint8_t> ticked) {
    const std::size_t copies = std::min(group.numberOfChildren(), ticked.size());
    // That all copies go has been asked for no group that was not so before.
    const bool wasWhole = simpleData(group)->selectNum() == 1;
    std::size_t count = 0;
    for (std::size_t i = 0; i < copies; ++i) {
        const TreeNode::Pointer& leaf = group.childAtIndex(i);
        SimpleNodeData& data = *simpleData(*leaf);
        const bool isTicked =
            ticked[i] != 0 && !data.isProtected() && quickHold(data) != FolderHold::Goes;
        if (!isTicked) clear(data);
        else if (data.selectNum() != 1) tick(leaf);
        m_isSettled = m_isSettled && data.folderTies() == nullptr;
        count += isTicked ? 1U : 0U;
    }
    const bool isWhole = wasWhole && count == group.numberOfChildren();
    showGroup(group, count == 0 ? 0 : isWhole ? 1 : 2, count);
}

void DuplicateSelection::clearLeaves(TreeNode& group, std::size_t shownCount) {
    // A group is in state 0 only while none of its leaves is ticked.
    if (simpleData(group)->selectNum() != 0)
        for (std::size_t i = 0; i < group.numberOfChildren(); ++i)
            clear(*simpleData(*group.childAtIndex(i)));
    SimpleNodeData& data = *simpleData(group);
    data.setSelectNum(0);
    data.setShowSelectNumStr(fmt::format("0/{}", shownCount));
}

void DuplicateSelection::setAll(TreeNode& tree, bool on) {
    const std::size_t groups = tree.numberOfChildren();
    m_isSettled = m_isSettled && !on;
    if (on)
        for (TreeNode* const folders : wholeFoldersOf(tree)) tickInHeader(*folders);
    for (std::size_t g = 0; g < groups; ++g) {
        expectGroups(tree, g);
        TreeNode& group = *tree.childAtIndex(g);
        if (!on) {
            clearLeaves(group, groups);  // put right when the row is drawn again
            continue;
        }
        if (simpleData(group)->wholeFolder() == nullptr) tickInHeader(group);
    }
    if (!on) m_ticked.removeClear();
}

void DuplicateSelection::tickInHeader(TreeNode& group) {
    if (simpleData(group)->isProtected()) return;
    if (group.numberOfChildren() == 0) return;
    const TreeNode* const stays = copyThatStays(group);
    bool isHeldBack = false;
    // Of folders it never ticks all, also where the one that stays was ticked before.
    if (simpleData(group)->wholeFolder() != nullptr && simpleData(*stays)->selectNum() == 1) {
        clear(*simpleData(*stays));
        m_ticked.removeClear();
    }
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i) {
        const TreeNode::Pointer& leaf = group.childAtIndex(i);
        const bool isLeafHeld = isHeld(*simpleData(*leaf));
        isHeldBack |= isLeafHeld;
        if (leaf.get() == stays || isLeafHeld) continue;
        tick(leaf);
    }
    const std::size_t ticked = countTicked(group);
    showGroup(group, ticked == 0 && isHeldBack ? 0 : 2, ticked);
}

// The folders first: one that is cleared may be what others would go with. A click on a file, of
// which there are many, needs no look at all groups with copies in folders.
void DuplicateSelection::clearGoing(Leaves inFolders) {
    for (const bool areFolders : {true, false}) clearGoing(inFolders, areFolders);
    m_isSettled = true;
}

void DuplicateSelection::clearGoing(Leaves inFolders, bool isOfFolders) {
    bool isAnyCleared = false;
    for (const TreeNode::Pointer& leaf : inFolders) {
        SimpleNodeData& data = *simpleData(*leaf);
        if (leaf->nodeParent() == nullptr || data.selectNum() != 1 ||
            (data.wholeFolder() != nullptr) != isOfFolders || quickHold(data) != FolderHold::Goes)
            continue;
        clear(data);
        isAnyCleared = true;
    }
    if (m_isSettled && !isAnyCleared) return;
    forGroups(inFolders, [&](TreeNode& group) {
        const SimpleNodeData& data = *simpleData(group);
        if (data.selectNum() != 0 && (data.wholeFolder() != nullptr) == isOfFolders)
            isAnyCleared |= settle(group);
    });
    if (isAnyCleared) m_ticked.removeClear();
}

// All copies of a group go only where that was asked for. True when it has one tick less.
bool DuplicateSelection::settle(TreeNode& group) {
    const bool wasWhole = simpleData(group)->selectNum() == 1;
    const bool isWhole = losesAll(group);
    std::size_t ticked = countTicked(group);
    const bool hasOneTooMany = isWhole && !wasWhole && ticked != 0;
    for (std::size_t i = group.numberOfChildren(); i-- > 0 && hasOneTooMany;) {
        SimpleNodeData& copy = *simpleData(*group.childAtIndex(i));
        if (copy.selectNum() != 1) continue;
        clear(copy);
        --ticked;
        break;
    }
    showGroup(group, ticked == 0 ? 0 : wasWhole && isWhole ? 1 : 2, ticked);
    return hasOneTooMany;
}

void DuplicateSelection::clearTree(TreeNode& tree) {
    for (std::size_t g = 0; g < tree.numberOfChildren(); ++g) {
        expectGroups(tree, g);
        TreeNode& group = *tree.childAtIndex(g);
        clearLeaves(group, group.numberOfChildren());
    }
    m_ticked.removeClear();
}

void DuplicateSelection::tick(const TreeNode::Pointer& leaf) {
    SimpleNodeData& data = *simpleData(*leaf);
    if (data.selectNum() != 1) count(data, true);
    data.setSelectNum(1);
    m_ticked.append(leaf);
}

void DuplicateSelection::clear(SimpleNodeData& leaf) {
    if (leaf.selectNum() == 1) count(leaf, false);
    leaf.setSelectNum(0);
}

void DuplicateSelection::count(const SimpleNodeData& leaf, bool isTicked) {
    const auto change = [isTicked](auto& sum, auto by) {
        sum = isTicked ? sum + by : sum - std::min<decltype(sum + by)>(sum, by);
    };
    m_isSettled = m_isSettled && leaf.wholeFolder() == nullptr;
    change(m_sums.copies, std::size_t{1});
    if (leaf.liesOutside()) change(m_sums.outside, std::size_t{1});
    const EntryIdentity* const identity = leaf.identity() ? &*leaf.identity() : nullptr;
    const std::uint64_t bytes =
        leaf.wholeFolder() != nullptr ? leaf.wholeFolder()->gain : leaf.fileSize();
    if (isTicked) m_gain.add(identity, leaf.hardLinks(), bytes);
    else m_gain.take(identity, leaf.hardLinks(), bytes);
    m_sums.bytes = m_gain.bytes();
}

void DuplicateSelection::recount() {
    m_sums = {};
    m_gain = {};
    m_isSettled = false;  // copies may have gone
    std::vector<TreeNode::Pointer> leaves = m_ticked.entries();
    std::sort(leaves.begin(), leaves.end());
    leaves.erase(std::unique(leaves.begin(), leaves.end()), leaves.end());
    for (const auto& leaf : leaves) count(*simpleData(*leaf), true);
}

HeaderBox DuplicateSelection::headerBox(const TreeNode& tree) {
    HeaderBox box;
    std::size_t none = 0;
    std::size_t all = 0;
    const std::size_t groups = tree.numberOfChildren();
    for (std::size_t g = 0; g < groups; ++g) {
        const TreeNode& group = *tree.childAtIndex(g);
        const std::int32_t state = simpleData(group)->selectNum();
        none += state == 0 ? 1U : 0U;
        all += state == 1 ? 1U : 0U;
        box.leaves += group.numberOfChildren();
    }
    box.isOn = none != groups;
    box.picture = pictureOf(!box.isOn ? 0 : all == groups ? 1 : 2);
    return box;
}

bool DuplicateSelection::hasTicks(const TreeNode& tree) {
    for (std::size_t g = 0; g < tree.numberOfChildren(); ++g)
        if (simpleData(*tree.childAtIndex(g))->selectNum() != 0) return true;
    return false;
}

std::string_view DuplicateSelection::pictureOf(std::int32_t selectNum) {
    switch (selectNum) {
        case 1: return "option_yes";
        case 2: return "option_a";
        default: return "option_no";
    }
}

}  // namespace orrinvale
