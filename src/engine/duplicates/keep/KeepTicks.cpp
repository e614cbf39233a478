// One group after another, in the order of the tree; the clock is asked now and then.
#include "engine/duplicates/keep/KeepTicks.h"

#include <algorithm>
#include <utility>

#include "engine/duplicates/results/treeWalk.h"

namespace orrinvale {
namespace {

KeepMember keepMemberOf(const SimpleNodeData& leaf) {
    KeepMember member;
    member.path = leaf.name();
    if (leaf.ModificationDate()) member.modified = leaf.ModificationDate()->nanoseconds;
    if (leaf.identity()) member.identity = &*leaf.identity();
    member.links = leaf.hardLinks();
    member.place = leaf.linkTarget();
    member.isProtected = leaf.isProtected();
    return member;
}

}  // namespace

void KeepTicks::begin(TreeNode& tree, Decide decide) {
    finish();
    m_tree = &tree;
    m_next = 0;
    m_wholeFolders = wholeFoldersOf(tree);
    m_sparesCounterparts = false;
    m_decide = std::move(decide);
    m_folders.clear();
}

void KeepTicks::keep(TreeNode& tree, KeepRules rules) {
    std::vector<std::string> folders;
    if (!rules.empty()) folders = rules.front().folders;
    begin(tree, [this, rules = std::move(rules)](std::span<const KeepMember> members,
                                                 std::vector<std::uint8_t>& ticked) {
        decideKept(rules, members, ticked);
        for (std::uint8_t& each : ticked) each = each != 0 ? 0 : 1;
        const auto isMet = [&](const std::string& folder) {
            return std::ranges::any_of(
                members, [&](const KeepMember& each) { return liesIn(each, folder); });
        };
        if (std::ranges::any_of(m_folders, isMet)) m_folders.clear();
    });
    m_folders = std::move(folders);
    m_sparesCounterparts = true;
}

std::vector<std::string> KeepTicks::takeEmptyFolders() {
    return isPending() ? std::vector<std::string>() : std::exchange(m_folders, {});
}

void KeepTicks::tickFolder(TreeNode& tree, std::string folder) {
    begin(tree, [folder = std::move(folder)](std::span<const KeepMember> members,
                                             std::vector<std::uint8_t>& ticked) {
        tickWithin(folder, members, ticked);
    });
}

void KeepTicks::untickFolder(TreeNode& tree, std::string folder) {
    begin(tree, [folder = std::move(folder)](std::span<const KeepMember> members,
                                             std::vector<std::uint8_t>& ticked) {
        untickWithin(folder, members, ticked);
    });
}

void KeepTicks::drop() {
    if (std::exchange(m_tree, nullptr) != nullptr) m_selection.allSelectNumArr().removeClear();
}

bool KeepTicks::step(std::chrono::steady_clock::time_point until) {
    if (m_tree == nullptr) return true;
    constexpr std::size_t atOnce = 1024;  // copies between two looks at the clock
    const std::size_t groups = m_tree->numberOfChildren();
    for (TreeNode* const folders : std::exchange(m_wholeFolders, {})) decideGroup(*folders);
    do {  // at least a few, however late it is
        for (std::size_t copies = 0; m_next < groups && copies < atOnce; ++m_next) {
            expectGroups(*m_tree, m_next);
            if (simpleData(*m_tree->childAtIndex(m_next))->wholeFolder() == nullptr)
                decideGroup(*m_tree->childAtIndex(m_next));
            copies += m_tree->childAtIndex(m_next)->numberOfChildren();
        }
    } while (m_next < groups && std::chrono::steady_clock::now() < until);
    if (m_next < groups) return false;
    m_tree = nullptr;
    m_selection.allSelectNumArr().removeClear();
    return true;
}

void KeepTicks::decideGroup(TreeNode& group) {
    const std::size_t copies = group.numberOfChildren();
    m_members.clear();
    m_ticked.clear();
    m_before.clear();
    m_standing.clear();
    for (std::size_t i = 0; i < copies; ++i) {
        const SimpleNodeData& leaf = *simpleData(*group.childAtIndex(i));
        m_before.push_back(leaf.selectNum() == 1 ? 1 : 0);
        const FolderHold hold = leaf.folderTies() == nullptr ? FolderHold::Free : holdOf(leaf);
        if (hold == FolderHold::Goes) continue;
        m_standing.push_back(i);
        m_members.push_back(keepMemberOf(leaf));
        m_members.back().isProtected |= m_sparesCounterparts && hold == FolderHold::Stays;
        m_ticked.push_back(m_before.back());
    }
    m_decide(m_members, m_ticked);
    std::vector<std::uint8_t>& after = m_standing.size() == copies ? m_ticked : m_spread;
    if (m_standing.size() != copies) {
        m_spread.assign(copies, 0);
        for (std::size_t i = 0; i < m_standing.size(); ++i) m_spread[m_standing[i]] = m_ticked[i];
    }
    if (after != m_before) m_selection.setTicks(group, after);
}

}  // namespace orrinvale
