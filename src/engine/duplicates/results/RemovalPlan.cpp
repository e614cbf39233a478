// RemovalPlan: see RemovalPlan.h.
#include "engine/duplicates/results/RemovalPlan.h"

#include <algorithm>
#include <unordered_set>

#include "engine/base/Log.h"

namespace orrinvale {
namespace {

enum class Found { Same, Changed, Gone };

Found lookUp(const FileSystem& files, const std::string& path, const std::optional<EntryIdentity>& identity) {
    const auto now = files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    if (!now) return Found::Gone;
    return !identity || identity->isStill(*now) ? Found::Same : Found::Changed;
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
        group.members.push_back({simpleData(child)->name(), simpleData(child)->identity()});
    }
    m_groups.push_back(std::move(group));
}

const RemovalPlan::Member& RemovalPlan::member(std::size_t index) const {
    const Place& place = m_entries.at(index).place;
    return m_groups[place.group].members[place.member];
}

const std::string& RemovalPlan::path(std::size_t index) const { return member(index).path; }

const std::optional<EntryIdentity>& RemovalPlan::identity(std::size_t index) const { return member(index).identity; }

std::optional<std::string> RemovalPlan::objection(std::size_t index, const FileSystem& files) const {
    const Group& group = m_groups[m_entries.at(index).place.group];
    const Member& wanted = member(index);
    std::optional<std::string> reason;
    switch (lookUp(files, wanted.path, wanted.identity)) {
        case Found::Gone: reason = "is gone already"; break;
        case Found::Changed: reason = "changed since the scan"; break;
        case Found::Same:
            // From the end, where the copy that stays by itself stands.
            if (!group.whollyTicked &&
                std::none_of(group.members.rbegin(), group.members.rend(), [&](const Member& other) {
                    return &other != &wanted && !other.removed &&
                           lookUp(files, other.path, other.identity) == Found::Same;
                }))
                reason = "no other verified copy is left";
            break;
    }
    if (reason) Log::line(fmt::format("Not removed, {}: {}", *reason, wanted.path));
    return reason;
}

void RemovalPlan::removed(std::size_t index, const FileSystem& files) {
    const Place place = m_entries.at(index).place;
    Group& group = m_groups[place.group];
    Member& gone = group.members[place.member];
    gone.removed = true;
    if (!gone.identity) return;
    for (Member& other : group.members) {
        if (other.removed || !other.identity || other.identity->device != gone.identity->device ||
            other.identity->inode != gone.identity->inode)
            continue;
        const auto now = files.attributes(FileSystem::noParent, other.path.c_str(), Links::Keep);
        if (now && now->inode == other.identity->inode && now->device == other.identity->device)
            other.identity->changed = now->changed;
    }
}

}  // namespace orrinvale
