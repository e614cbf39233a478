// plan/PlanRemoval.h says what may be touched and which copy stays.
#include "engine/duplicates/share/ShareList.h"

#include <map>

#include "engine/base/saturating.h"
#include "platform/freeSpace.h"
#include "platform/paths.h"

namespace orrinvale {

ShareList::ShareList(const FileSystem& files, const DuplicatePlan& plan) : m_copies(files, plan) {
    m_account.resize(m_copies.size());
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members) {
            if (member.goes) m_folders.insert(folderOf(member.path));
            if (member.isProtected)
                m_protectedFiles.emplace(member.identity.device, member.identity.inode);
        }
}

bool ShareList::mayLinkTo(const KeptCopy& kept) {
    return !m_protectedFiles.contains({kept.identity.device, kept.identity.inode}) &&
           !m_copies.isGuarded(kept.path);
}

void ShareList::settled(std::size_t index, const RemovalResult& result) {
    using As = Settled::As;
    Settled& account = m_account[index];
    if (result.shared) {
        account = {As::Shared, *result.shared};
        addSaturating(m_promised, result.shared->bytes);
    } else if (result.gone) {
        account.as = As::GoneByOthers;
    } else if (!result.failures.empty()) {
        account.as = As::Stayed;
        account.reason = result.failures.front().reason;
    }
    m_copies.settled(index, result);
}

std::optional<std::int64_t> freeSpaceBehind(const std::set<std::string>& folders) {
    std::map<std::string, std::uint64_t> spaces;
    for (const std::string& folder : folders) {
        const auto [place, isNew] = spaces.try_emplace(spaceOf(folder));
        if (!isNew) continue;
        const auto free = settledFreeSpace(folder);
        if (!free) return std::nullopt;
        place->second = *free;
    }
    std::int64_t sum = 0;
    for (const auto& [space, free] : spaces) sum += static_cast<std::int64_t>(free);
    return sum;
}

}  // namespace orrinvale
