// One sight of all volumes is taken at index 1; the walk by index then reads from it.
#include "platform/linux/LinuxVolumes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "platform/linux/LinuxVolumesChoice.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::int16_t kBufferVersion = 3;  // the first with extended attributes
constexpr std::int16_t kMemoryRow = 5;      // never a volume's number
constexpr std::int16_t kLastNumber = std::numeric_limits<std::int16_t>::max();

// In a changed root that is no mount of its own, the table does not hold "/".
void addMissingRoot(std::vector<MountEntry>& mounts) {
    if (!mounts.empty() && mounts.front().point == "/") return;
    constexpr unsigned mountId = 0x1000;  // STATX_MNT_ID
    struct statx attributes {};
    if (::statx(AT_FDCWD, "/", AT_STATX_DONT_SYNC, mountId, &attributes) != 0) return;
    MountEntry root;
    root.id = attributes.stx_mnt_id;
    root.major = attributes.stx_dev_major;
    root.minor = attributes.stx_dev_minor;
    root.root = root.point = "/";
    mounts.insert(mounts.begin(), std::move(root));
}

}  // namespace

LinuxVolumes::LinuxVolumes(LinuxVolumePlaces places, std::chrono::milliseconds patience,
                           LinuxVolumesSpace::Ask askForSpace)
    : m_mountInfo(std::move(places.mountInfo)),
      m_devices(places.sys, std::move(places.udev)),
      m_ejection(m_mountInfo, std::move(places.swaps), m_devices),
      m_askForSpace(std::move(askForSpace)),
      m_space(patience, m_askForSpace) {}

std::int32_t LinuxVolumes::FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) {
    const auto self = std::this_thread::get_id();
    std::shared_ptr<const Table> table;
    if (volumeIndex == 1) {
        auto fresh = std::make_shared<Table>(takeTable());
        askForSpace(*fresh);
        table = std::move(fresh);
    }
    {
        const std::lock_guard lock(m_mutex);
        if (table) m_walks[self] = table;
        else if (const auto found = m_walks.find(self); found != m_walks.end())
            table = found->second;
        if (!table || volumeIndex == 0 || volumeIndex > table->size()) {
            m_walks.erase(self);
            return nsvErr;
        }
    }
    return describe((*table)[volumeIndex - 1], answer);
}

std::int32_t LinuxVolumes::describe(const Row& row, IndexedVolume& answer) const {
    answer = IndexedVolume{row.refNumber, {}, {}, row.mount.point, row.space.error};
    answer.name = volumeNameOf(row.mount, m_devices);
    if (row.space.error != 0) return ioErr;
    answer.info = {row.space.total, row.space.free, row.space.reserved};
    return noErr;
}

std::int32_t LinuxVolumes::FSGetVolumeParms(std::int16_t refNumber, GetVolParmsInfoBuffer& buffer) {
    std::shared_ptr<const Table> table;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_walks.find(std::this_thread::get_id());
        if (found != m_walks.end()) table = found->second;
    }
    if (!table) table = std::make_shared<Table>(takeTable());  // asked outside of a walk
    const auto row = std::find_if(table->begin(), table->end(),
                                  [&](const Row& each) { return each.refNumber == refNumber; });
    if (row == table->end()) return ioErr;
    const std::string device = m_devices.deviceOf(row->mount);
    buffer.vMVersion = kBufferVersion;
    buffer.vMServerAdr = serverAddressOf(row->mount);
    buffer.vMExtendedAttributes = m_devices.extendedAttributes(device);
    buffer.vMDeviceID = lastPathComponent(device);
    return noErr;
}

std::int32_t LinuxVolumes::FSEjectVolumeSync(std::int16_t refNumber, std::uint32_t /*options*/,
                                             EjectDissent& dissent) {
    Standing wanted;
    {
        const std::lock_guard lock(m_mutex);
        const auto owner = m_owners.find(refNumber);
        if (owner != m_owners.end()) wanted = owner->second;
    }
    auto outcome = m_ejection.eject(wanted.mount,
                                    wanted.diskSequence);  // the mount of no number stands nowhere
    const std::lock_guard lock(m_mutex);
    if (m_goneAlong.erase(refNumber) != 0 && outcome.status == nsvErr) return noErr;
    if (outcome.status == noErr) noteGone(outcome.gone, refNumber);
    dissent = std::move(outcome.dissent);
    return outcome.status;
}

void LinuxVolumes::noteGone(const std::vector<MountEntry>& mounts, std::int16_t asked) {
    for (const MountEntry& mount : mounts)
        for (const auto& [number, owner] : m_owners)
            if (number != asked && isSameMount(owner.mount, mount)) m_goneAlong.insert(number);
}

LinuxVolumes::Table LinuxVolumes::takeTable() {
    const auto mountTable = parseMountInfo(readMountInfo(m_mountInfo).value_or(std::string()));
    auto mounts = chooseVolumes(mountTable);
    addMissingRoot(mounts);
    std::vector<Standing> all;
    all.reserve(mounts.size());
    for (MountEntry& mount : mounts) {
        std::string sequence = m_devices.sequenceOf(m_devices.deviceOf(mount));
        all.push_back({std::move(mount), std::move(sequence)});
    }
    Table table;
    table.reserve(all.size());
    const std::lock_guard lock(m_mutex);
    for (const Standing& each : all)
        table.push_back(
            {each.mount, numberOf(each, all), {}, answersAtOnce(mountTable, each.mount)});
    return table;
}

// Threads cost wake-ups, of a machine that rests maybe, so that what can not wait is asked here.
void LinuxVolumes::askForSpace(Table& table) {
    std::vector<SpaceQuestion> questions;
    std::vector<Row*> asked;
    for (Row& row : table) {
        SpaceQuestion question{row.mount.id, ::makedev(row.mount.major, row.mount.minor),
                               row.mount.point};
        if (row.isAtOnce) {
            row.space = m_askForSpace(question);
        } else {
            questions.push_back(std::move(question));
            asked.push_back(&row);
        }
    }
    if (!questions.empty()) {
        const auto answers = m_space.ask(questions);
        for (std::size_t i = 0; i < asked.size(); ++i) asked[i]->space = answers[i];
    }
    std::erase_if(table, [](const Row& row) { return row.space.gone; });
}

std::int16_t LinuxVolumes::numberOf(const Standing& standing, const std::vector<Standing>& all) {
    const MountEntry& mount = standing.mount;
    for (const auto& [number, owner] : m_owners) {
        if (!isSameMount(owner.mount, mount) || owner.diskSequence != standing.diskSequence)
            continue;
        m_goneAlong.erase(number);  // back again
        return number;
    }
    if (m_owners.size() + 1 >= static_cast<std::size_t>(kLastNumber)) forgetAllBut(all);
    std::int16_t number = kLastNumber;
    if (mount.id > 0 && mount.id <= static_cast<std::uint64_t>(kLastNumber))
        number = static_cast<std::int16_t>(mount.id);
    const auto isTaken = [&] { return number == kMemoryRow || m_owners.contains(number); };
    if (isTaken()) number = kLastNumber;
    while (number > 0 && isTaken()) --number;
    m_owners[number] = standing;
    return number;
}

void LinuxVolumes::forgetAllBut(const std::vector<Standing>& all) {
    std::erase_if(m_owners, [&](const auto& numbered) {
        const Standing& owner = numbered.second;
        return std::none_of(all.begin(), all.end(), [&](const Standing& each) {
            return isSameMount(each.mount, owner.mount) && each.diskSequence == owner.diskSequence;
        });
    });
}

std::optional<RegistryMatching> LinuxVolumes::IOBSDNameMatching(const char* bsdName) const {
    if (bsdName == nullptr || *bsdName == 0 || std::strchr(bsdName, '/') != nullptr)
        return std::nullopt;
    return RegistryMatching{bsdName};
}

RegistryEntryRef LinuxVolumes::IOServiceGetMatchingService(const RegistryMatching& matching) const {
    return registryEntryOf(m_devices, m_devices.deviceNamed(matching.bsdName));
}

std::uint32_t LinuxVolumes::IORegistryEntryCreateIterator(
    const RegistryEntry& entry, std::unique_ptr<RegistryIterator>& iterator) const {
    iterator = registryParentsOf(entry);
    return iterator ? 0 : ENODEV;
}

}  // namespace orrinvale
