// The members hold views, so that they are made when all texts stand where they stay.
#include "engine/duplicates/keep/GroupMembers.h"

#include <utility>

#include "engine/duplicates/LinkPlaces.h"

namespace orrinvale {

void GroupMembers::add(std::string path, const EntryIdentity& identity, std::uint64_t size) {
    m_paths.push_back(std::move(path));
    m_identities.push_back(identity);
    m_sizes.push_back(size);
}

const std::vector<KeepMember>& GroupMembers::of(const DuplicateGroup& group) {
    m_paths.clear();
    m_identities.clear();
    m_sizes.clear();
    m_members.clear();
    for (const AppAttrbItem* bundle : group.bundles)
        add(bundle->DirectoryPathName, identityOf(*bundle), bundle->DirectorySize);
    for (const fileAttrbItem* file : group.files)
        add(file->filePathName(), identityOf(*file), file->fileSize);
    const LinkPlaces* const places = m_search.linkPlaces();
    for (std::size_t i = 0; i < m_paths.size(); ++i) {
        KeepMember member;
        member.path = m_paths[i];
        member.identity = &m_identities[i];
        const LinkPlaces::Place* place = nullptr;
        if (i < group.bundles.size()) {
            const AppAttrbItem& bundle = *group.bundles[i];
            place = places != nullptr ? places->of(bundle) : nullptr;
            member.isProtected = m_search.isProtected(bundle);
        } else {
            const fileAttrbItem& file = *group.files[i - group.bundles.size()];
            place = places != nullptr ? places->of(file) : nullptr;
            member.isProtected = m_search.isProtected(file);
            member.modified = file.ModificationDate().nanoseconds;
            member.links = file.links;
        }
        if (place != nullptr) member.place = place->target;
        m_members.push_back(member);
    }
    return m_members;
}

}  // namespace orrinvale
