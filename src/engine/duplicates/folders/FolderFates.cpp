// A folder has more entries than any that lies in it: so the order of decisions is found.
#include "engine/duplicates/folders/FolderFates.h"

#include <algorithm>

#include "engine/base/saturating.h"

namespace orrinvale {

std::vector<KeepMember> keepMembersOf(const FolderGroup& group) {
    std::vector<KeepMember> members;
    for (const FolderMember& folder : group.members) {
        KeepMember member;
        member.path = folder.path;
        member.modified = folder.modified;
        member.identity = &folder.identity;
        member.place = folder.place;
        member.isProtected = folder.isProtected;
        members.push_back(member);
    }
    return members;
}

FolderFates::FolderFates(const FolderFindings& findings, const KeepRules& rules) : m_rules(rules) {
    std::vector<const FolderGroup*> groups;
    for (const FolderGroup& group : findings.groups) groups.push_back(&group);
    std::ranges::stable_sort(groups, std::ranges::greater(), &FolderGroup::entries);
    for (const FolderGroup* group : groups) decideGroup(*group);
}

void FolderFates::decideGroup(const FolderGroup& group) {
    const std::vector<KeepMember> members = keepMembersOf(group);
    std::vector<std::uint8_t> stays;
    decide(members, stays);
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (of(members[i]) != FolderFate::Open) continue;
        const FolderFate fate = stays[i] != 0 ? FolderFate::Stays : FolderFate::Goes;
        m_fates.emplace(members[i].path, fate);
        if (!members[i].place.empty()) m_fates.emplace(members[i].place, fate);
        if (stays[i] == 0) addSaturating(m_gain, group.gain / (members.size() - 1));
    }
}

FolderFate FolderFates::of(std::string_view path) const {
    while (!m_fates.empty() && !path.empty()) {
        if (const auto found = m_fates.find(path); found != m_fates.end()) return found->second;
        const std::size_t slash = path.rfind('/');
        if (slash == std::string_view::npos) break;
        path = path.substr(0, slash);
    }
    return FolderFate::Open;
}

// What a link leads to lies in a folder too.
FolderFate FolderFates::of(const KeepMember& member) const {
    const FolderFate fate = of(member.path);
    return fate == FolderFate::Open && !member.isSymbolicLink() ? of(member.place) : fate;
}

void FolderFates::decide(std::span<const KeepMember> members,
                         std::vector<std::uint8_t>& stays) const {
    std::vector<KeepMember> open;
    std::vector<std::size_t> places;
    stays.assign(members.size(), 0);
    for (std::size_t i = 0; i < members.size(); ++i) {
        const FolderFate fate = of(members[i]);
        if (fate == FolderFate::Goes) continue;
        open.push_back(members[i]);
        open.back().isProtected |= fate == FolderFate::Stays;
        places.push_back(i);
    }
    std::vector<std::uint8_t> decided;
    decideKept(m_rules, open, decided);
    for (std::size_t i = 0; i < places.size(); ++i) stays[places[i]] = decided[i];
}

}  // namespace orrinvale
