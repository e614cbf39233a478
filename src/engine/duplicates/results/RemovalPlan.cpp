// RemovalPlan: see RemovalPlan.h.
#include "engine/duplicates/results/RemovalPlan.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/TreeSize.h"

namespace orrinvale {
namespace {

std::pair<std::uint64_t, std::uint64_t> fileOf(const std::optional<EntryIdentity>& identity) {
    return {identity->device, identity->inode};
}

}  // namespace

RemovalPlan::RemovalPlan(std::span<const TreeNode::Pointer> ticked) {
    std::unordered_map<const TreeNode*, Place> places;
    std::unordered_set<const TreeNode*> seen;
    for (const auto& leaf : ticked) {
        const TreeNode* const parent = leaf->nodeParent();
        if (parent == nullptr || !seen.insert(leaf.get()).second) continue;
        if (!places.contains(leaf.get())) addGroup(*parent, places);
        m_entries.push_back({leaf, places.at(leaf.get())});
    }
}

void RemovalPlan::addGroup(const TreeNode& node, std::unordered_map<const TreeNode*, Place>& places) {
    Group group;
    group.whollyTicked = simpleData(node)->selectNum() == 1;
    for (std::size_t i = 0; i < node.numberOfChildren(); ++i) {
        const TreeNode& child = *node.childAtIndex(i);
        places.emplace(&child, Place{m_groups.size(), i});
        group.members.push_back(
            {simpleData(child)->name(), simpleData(child)->fileSize(), simpleData(child)->identity()});
        if (group.members.back().identity) group.byFile.push_back(i);
    }
    std::sort(group.byFile.begin(), group.byFile.end(), [&](std::size_t left, std::size_t right) {
        return fileOf(group.members[left].identity) < fileOf(group.members[right].identity);
    });
    const std::size_t ring = group.members.size() + 1;
    for (std::size_t i = 0; i < ring; ++i) {
        group.before.push_back((i + ring - 1) % ring);
        group.after.push_back((i + 1) % ring);
    }
    m_groups.push_back(std::move(group));
}

const RemovalPlan::Member& RemovalPlan::member(std::size_t index) const {
    const Place& place = m_entries.at(index).place;
    return m_groups[place.group].members[place.member];
}

// The identity of a folder says nothing of what is in it: of a bundle the bytes are added up again.
RemovalPlan::Found RemovalPlan::lookUp(const Member& member, const FileSystem& files) {
    const auto now = files.attributes(FileSystem::noParent, member.path.c_str(), Links::Keep);
    if (!now) return Found::Gone;
    if (!member.identity) return Found::Same;
    if (!member.identity->isStill(*now)) return Found::Changed;
    if (now->type != FileType::Folder) return Found::Same;
    const auto totals = TreeSize(files).ofPath(member.path);
    return totals && totals->bytes == member.size ? Found::Same : Found::Changed;
}

bool RemovalPlan::isCopyFor(const Member& wanted, const Member& other, const FileSystem& files) {
    if (&other == &wanted || lookUp(other, files) != Found::Same) return false;
    const auto isLink = [](const Member& member) {
        return member.identity && member.identity->type == FileType::SymbolicLink;
    };
    if (!isLink(other)) return true;
    const auto target = files.attributes(FileSystem::noParent, other.path.c_str(), Links::Follow);
    return isLink(wanted) && target && target->type == FileType::Regular;
}

const std::string& RemovalPlan::path(std::size_t index) const { return member(index).path; }

const std::optional<EntryIdentity>& RemovalPlan::identity(std::size_t index) const { return member(index).identity; }

std::optional<std::string> RemovalPlan::objection(std::size_t index, const FileSystem& files) const {
    const Group& group = m_groups[m_entries.at(index).place.group];
    const Member& wanted = member(index);
    std::optional<std::string> reason;
    switch (lookUp(wanted, files)) {
        case Found::Gone: reason = "is gone already"; break;
        case Found::Changed: reason = "changed since the scan"; break;
        case Found::Same:
            if (!group.whollyTicked && !hasOther(group, wanted, files)) reason = "no other verified copy is left";
            break;
    }
    if (reason) Log::line(fmt::format("Not removed, {}: {}", *reason, wanted.path));
    return reason;
}

// From the end, where the copy that stays by itself stands.
bool RemovalPlan::hasOther(const Group& group, const Member& wanted, const FileSystem& files) {
    for (std::size_t i = group.before.front(); i != 0; i = group.before[i]) {
        if (isCopyFor(wanted, group.members[i - 1], files)) return true;
    }
    return false;
}

void RemovalPlan::removed(std::size_t index, const FileSystem& files) {
    const Place place = m_entries.at(index).place;
    Group& group = m_groups[place.group];
    const std::size_t gone = place.member + 1;
    group.before[group.after[gone]] = group.before[gone];
    group.after[group.before[gone]] = group.after[gone];
    group.members[place.member].removed = true;
    if (!group.members[place.member].identity) return;
    const auto same = std::equal_range(
        group.byFile.begin(), group.byFile.end(), place.member, [&](std::size_t left, std::size_t right) {
            return fileOf(group.members[left].identity) < fileOf(group.members[right].identity);
        });
    for (auto each = same.first; each != same.second; ++each) {
        Member& other = group.members[*each];
        if (other.removed) continue;
        const auto now = files.attributes(FileSystem::noParent, other.path.c_str(), Links::Keep);
        if (now && now->inode == other.identity->inode && now->device == other.identity->device)
            other.identity->changed = now->changed;
    }
}

}  // namespace orrinvale
