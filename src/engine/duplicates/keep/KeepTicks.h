// KeepTicks: what a person asks of all groups of a view at once, ticked in pieces, so that the
// window is drawn in between.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "engine/duplicates/keep/KeepRule.h"
#include "engine/duplicates/results/DuplicateSelection.h"

namespace orrinvale {

/// Folders are decided before the files in them: what lies in one that is ticked goes with it, and
/// rules take nothing out of an equal one that stays.
///
/// Holds the tree by a plain pointer: finish() or drop() before it changes, is sorted, or a copy is
/// ticked otherwise. Main thread only.
class KeepTicks final {
public:
    /// What becomes of a group: `ticked` has its ticks and gets the new ones.
    using Decide =
        std::function<void(std::span<const KeepMember>, std::vector<std::uint8_t>& ticked)>;

    /// The selection outlives the object.
    explicit KeepTicks(DuplicateSelection& selection) : m_selection(selection) {}

    /// Each group is ticked by the rules, whatever was ticked in it before.
    void keep(TreeNode& tree, KeepRules rules);
    /// tickWithin() and untickWithin(), in every group.
    void tickFolder(TreeNode& tree, std::string folder);
    void untickFolder(TreeNode& tree, std::string folder);

    /// Goes on until that moment, or to the end. True when there is nothing left to do.
    bool step(std::chrono::steady_clock::time_point until);
    void finish() { static_cast<void>(step(std::chrono::steady_clock::time_point::max())); }
    /// Leaves the groups that it did not come to as they are.
    void drop();
    [[nodiscard]] bool isPending() const { return m_tree != nullptr; }
    /// The folders of the first rule of keep(), behind its end, where no copy lies in any of them;
    /// once.
    [[nodiscard]] std::vector<std::string> takeEmptyFolders();

private:
    void begin(TreeNode& tree, Decide decide);
    void decideGroup(TreeNode& group);

    DuplicateSelection& m_selection;
    TreeNode* m_tree = nullptr;             // not owned; null when nothing is left to do
    std::vector<TreeNode*> m_wholeFolders;  // groups of equal folders, decided before all others
    std::size_t m_next = 0;                 // of all groups, behind those
    bool m_sparesCounterparts = false;      // what lies in a folder that stays does
    Decide m_decide;
    std::vector<std::string> m_folders;  // of the first rule, until a copy in one is met
    std::vector<KeepMember> m_members;   // of the group in hand; kept for their room
    std::vector<std::uint8_t> m_ticked;
    std::vector<std::uint8_t> m_before;
    std::vector<std::size_t> m_standing;  // places of the members in the group
    std::vector<std::uint8_t> m_spread;   // ticks by these places
};

}  // namespace orrinvale
