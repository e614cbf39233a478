// plan/PlanRemoval.h says what may be touched and which copy stays.
#include "engine/duplicates/share/ShareList.h"

#include <algorithm>
#include <map>

#include "engine/base/saturating.h"
#include "engine/duplicates/share/shareReasons.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

namespace {

bool isOnDevice(const PlanMember& member, std::uint64_t device) {
    return member.identity.device == device;
}

PlanGroup groupOf(std::vector<PlanMember> staying, const std::vector<PlanMember>& going,
                  std::uint64_t device) {
    std::ranges::stable_sort(staying, {}, [&](const PlanMember& each) {
        return std::pair(isOnDevice(each, device), !each.isProtected);
    });
    staying.insert(staying.end(), going.begin(), going.end());
    return {std::move(staying)};
}

// What goes has its bytes in common with the last one that stays: of those on its own disk, if
// there are any, and with one that is not protected, if there is any. What has none on its disk
// comes first, since a name that is made later gives what stays another time of change.
// `numbers` are of the plan's groups, one for each entry that goes.
DuplicatePlan nearestLast(const DuplicatePlan& plan, std::vector<std::size_t>& numbers) {
    DuplicatePlan arranged = plan;
    arranged.groups.clear();
    for (std::size_t number = 0; number < plan.groups.size(); ++number) {
        const PlanGroup& group = plan.groups[number];
        std::vector<PlanMember> staying;
        std::map<std::uint64_t, std::vector<PlanMember>> going;  // by device
        for (const PlanMember& member : group.members)
            (member.goes ? going[member.identity.device] : staying).push_back(member);
        for (const bool isNear : {false, true})
            for (const auto& onDevice : going) {
                const std::uint64_t device = onDevice.first;
                if (isNear == std::ranges::any_of(staying, [&](const PlanMember& each) {
                        return isOnDevice(each, device);
                    }))
                    arranged.groups.push_back(groupOf(staying, onDevice.second, device));
            }
        if (going.empty()) arranged.groups.push_back(group);
        for (const auto& [device, members] : going)
            numbers.insert(numbers.end(), members.size(), number);
    }
    return arranged;
}

}  // namespace

ShareList::ShareList(const FileSystem& files, const DuplicatePlan& plan)
    : m_copies(files, nearestLast(plan, m_groups)),
      m_hasProtected(!plan.protectedFolders.empty()),
      m_folders(std::make_shared<std::set<std::string>>()) {
    m_account.resize(m_copies.size());
    learnStaying(files, plan);
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members) {
            ++m_names[{member.identity.device, member.identity.inode}];
            if (member.goes) m_folders->insert(folderOf(member.path));
            if (member.isProtected)
                m_protectedFiles.emplace(member.identity.device, member.identity.inode);
        }
}

// What is protected gives its extents, but no names, and is asked last.
void ShareList::learnStaying(const FileSystem& files, const DuplicatePlan& plan) {
    const auto passing = files.devicesOfPassingInodes();
    for (std::size_t number = 0; number < plan.groups.size(); ++number) {
        const auto& members = plan.groups[number].members;
        if (std::ranges::count(members, false, &PlanMember::goes) < 2) continue;
        std::vector<KeptCopy>& staying = m_staying[number];
        for (const bool isProtected : {true, false})
            for (const PlanMember& each : members) {
                if (each.goes || each.isProtected != isProtected) continue;
                staying.push_back({each.path, each.identity});
                staying.back().identity.learnPassing(passing);
            }
    }
}

tl::expected<std::unique_ptr<CopyLook>, StayedEntry> ShareList::judge(std::size_t index) {
    m_inHand = index;
    return m_copies.judge(index);
}

ShareGroup ShareList::groupInHand() const {
    const std::size_t number = m_groups[m_inHand];
    const auto staying = m_staying.find(number);
    return {number, staying == m_staying.end() ? nullptr : &staying->second};
}

// The rest of the group has to know it too.
void ShareList::noteTakenBack(const RemovalResult::Shared& touched) {
    RemovalResult told;
    told.shared = touched;
    m_copies.settled(m_inHand, told);
    m_takenBack.push_back(touched);
}

void ShareList::measureGain(std::chrono::milliseconds patience, FreeSpaceLook::Ask ask) {
    m_patience = patience;
    m_ask = std::move(ask);
}

void ShareList::listenTo(const std::atomic<bool>& stop) {
    m_stop = &stop;
    m_copies.listenTo(stop);
}

void ShareList::turnHasCome() {
    m_copies.turnHasCome();
    if (m_ask) m_freeBefore = measured(m_stop);
}

std::optional<std::int64_t> ShareList::measured(const std::atomic<bool>* stop) const {
    m_isMeasuring = true;
    const auto free = FreeSpaceLook(m_folders, m_ask).wait(m_patience, [&] {
        return m_isGainUnwanted || (stop != nullptr && *stop);
    });
    m_isMeasuring = false;
    return free;
}

std::optional<std::int64_t> ShareList::gained() const {
    const auto free = m_freeBefore ? measured(nullptr) : std::nullopt;
    return free ? std::optional(*free - *m_freeBefore) : std::nullopt;
}

// A name that the search left out may lie in a protected folder.
std::string_view ShareList::objectionToLink(const KeptCopy& kept, std::uint32_t names) {
    const FileKey file{kept.identity.device, kept.identity.inode};
    if (m_protectedFiles.contains(file) || m_copies.isGuarded(kept.path))
        return share::keptIsProtected;
    if (!m_hasProtected) return {};
    const auto known = m_names.find(file);
    return known == m_names.end() || names > known->second ? share::keptHasNames
                                                           : std::string_view();
}

// What the entry was has one name less, what it is now one more.
void ShareList::noteLinked(std::size_t index, const FileKey& kept) {
    ++m_names[kept];
    const auto identity = m_copies.identity(index);
    const auto was = m_names.find({identity->device, identity->inode});
    if (was != m_names.end() && was->second > 0) --was->second;
}

void ShareList::settled(std::size_t index, const RemovalResult& result) {
    using As = Settled::As;
    Settled& account = m_account[index];
    if (result.shared) {
        account = {As::Shared, *result.shared};
        addSaturating(m_promised, result.shared->bytes);
        if (result.shared->by == RemovalResult::Shared::By::HardLink && result.shared->keptChanged)
            noteLinked(index, result.shared->keptFile);
    } else if (result.gone) {
        account.as = As::GoneByOthers;
    } else if (!result.failures.empty()) {
        account.as = As::Stayed;
        account.reason = result.failures.front().reason;
    }
    account.changed = result.changed;
    m_copies.settled(index, result);
}

}  // namespace orrinvale
