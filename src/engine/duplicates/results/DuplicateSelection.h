// DuplicateSelection: which copies are ticked, and the rule that one copy of a group stays unless a
// person insists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/duplicates/keep/GainCount.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"

namespace orrinvale {

/// The ticked leaves over all views, in the order in which they were ticked. A leaf may stand in it
/// twice. Main thread only.
class TickedLeaves final {
public:
    void append(TreeNode::Pointer leaf) { m_entries.push_back(std::move(leaf)); }

    /// Take every occurrence out, in one pass: of one leaf, of all these leaves, and of all leaves
    /// that are clear.
    void remove(const TreeNode* leaf);
    void removeAll(std::span<const TreeNode::Pointer> leaves);
    void removeClear();
    /// Takes out what stands in no group any more.
    void removeOrphans();
    void clear() { m_entries.clear(); }

    /// How many there are, doubles included.
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    [[nodiscard]] bool empty() const { return m_entries.empty(); }
    [[nodiscard]] std::vector<TreeNode::Pointer> entries() const { return m_entries; }

private:
    std::vector<TreeNode::Pointer> m_entries;
};

/// What a click on the box of a leaf came to.
enum class LeafClick {
    Ticked,
    Cleared,
    Protected,  ///< nothing changed: it lies in a protected folder, or in a folder that is ticked
    Question    ///< nothing changed: no copy of its group, or of one that has a copy in the folder,
                ///< would be left, so ask, and then call tickLast()
};

/// The box over the list: on or off, its picture, and the count of copies in the view.
struct HeaderBox {
    bool isOn = false;
    std::string_view picture;
    std::size_t leaves = 0;
};

/// What the ticked copies come to, each once however often it stands in the list.
struct TickedSums {
    std::size_t copies = 0;
    std::size_t outside = 0;  ///< of these, not below the folder that was searched
    std::uint64_t bytes = 0;  ///< that their removal gives back, see GainCount
};

/// Whether no copy of the group stays by what is ticked: each goes by its own tick or with a
/// folder.
[[nodiscard]] bool losesAll(const TreeNode& group);

/// Keeps `selectNum` and `showSelectNumStr` of leaves and groups true. What is protected is never
/// ticked, whoever asks, and is the copy that stays where one is left out. What lies in a folder
/// that is ticked is neither; what lies in an equal of that is ticked by its own box alone. Main
/// thread only.
class DuplicateSelection final {
public:
    /// `inFolders`: the leaves that lie in folders, as ResultViews has them, a group's next to each
    /// other.
    using Leaves = std::span<const TreeNode::Pointer>;

    [[nodiscard]] LeafClick clickLeaf(const TreeNode::Pointer& leaf, Leaves inFolders = {});

    /// How many groups lose all their copies when this leaf is ticked, for which nobody has asked
    /// yet.
    [[nodiscard]] static std::size_t groupsLost(const TreeNode& leaf, Leaves inFolders);

    /// Ticks what takes the last copy of a group: the person insists, for all groups that lose
    /// theirs by it.
    void tickLast(const TreeNode::Pointer& leaf, Leaves inFolders = {});

    /// Clears a group that has ticks; ticks all copies but the last, in the present order, of one
    /// that has none.
    void clickGroup(TreeNode& group);

    /// Ticks all copies but one of a leaf's group: that leaf stays clear.
    void tickAllBut(const TreeNode& leaf);

    /// Ticks and clears the copies of a group: 1 for each that is to be ticked. Leaves that become
    /// clear stay in allSelectNumArr() until its removeClear().
    void setTicks(TreeNode& group, std::span<const std::uint8_t> ticked);

    /// The box over the list: ticks all copies but the last in every group of the view, whatever
    /// was ticked before, or clears the view.
    void setAll(TreeNode& tree, bool on);

    /// Clears those of the leaves that lie in a folder that is ticked by now: they go with it. A
    /// group that would lose all its copies by that, which nobody has asked for, has one tick less.
    void clearGoing(Leaves inFolders);

    /// Clears every leaf and group of the view.
    void clearTree(TreeNode& tree);

    [[nodiscard]] static HeaderBox headerBox(const TreeNode& tree);

    /// Whether any copy of the view is ticked.
    [[nodiscard]] static bool hasTicks(const TreeNode& tree);

    /// "option_no", "option_yes" or "option_a" for the states 0, 1 and 2.
    [[nodiscard]] static std::string_view pictureOf(std::int32_t selectNum);

    /// Of what was ticked and cleared here. After any other change of allSelectNumArr(), such as
    /// the end of a removal, recount() puts them right.
    [[nodiscard]] const TickedSums& sums() const { return m_sums; }
    void recount();

    [[nodiscard]] TickedLeaves& allSelectNumArr() { return m_ticked; }
    [[nodiscard]] const TickedLeaves& allSelectNumArr() const { return m_ticked; }

private:
    void tick(const TreeNode::Pointer& leaf);
    void clear(SimpleNodeData& leaf);
    void clearLeaves(TreeNode& group, std::size_t shownCount);
    void tickInHeader(TreeNode& group);
    void clearGoing(Leaves inFolders, bool isOfFolders);
    [[nodiscard]] bool settle(TreeNode& group);
    void count(const SimpleNodeData& leaf, bool isTicked);

    TickedLeaves m_ticked;
    TickedSums m_sums;
    GainCount m_gain;         // behind m_sums.bytes
    bool m_isSettled = true;  // nothing since clearGoing() made a group lose all its copies unasked
};

}  // namespace orrinvale
