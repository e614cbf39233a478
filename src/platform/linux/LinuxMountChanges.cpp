// Two sights of the table, sorted, and what differs between them.
#include "platform/linux/LinuxMountChanges.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <utility>

#include "platform/linux/SystemText.h"

namespace orrinvale {
namespace {

// True once after each change: asking is what makes the kernel forget it.
bool hasChanged(int file) {
    pollfd question{file, POLLPRI, 0};
    return ::poll(&question, 1, 0) > 0;
}

Descriptor openTable(const std::string& mountInfo) {
    return Descriptor(::open(mountInfo.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

}  // namespace

Descriptor openMountNews() { return openTable(LinuxVolumePlaces().mountInfo); }

LinuxMountChanges::LinuxMountChanges(LinuxVolumePlaces places)
    : m_devices(places.sys, std::move(places.udev)), m_file(openTable(places.mountInfo)) {
    // The changes from nothing to what stands, which nobody asks for.
    static_cast<void>(look());
}

// A table that changes while it is read, in several pieces, may lack what stands in it all the
// time. The last attempt leaves the kernel's mark alone, so that whoever polls is called again.
std::optional<std::string> LinuxMountChanges::readTable() const {
    constexpr int attempts = 5;
    for (int attempt = 1;; ++attempt) {
        auto text = readSystemText(m_file.get(), mountInfoLimit);
        if (!text) return std::nullopt;
        if (attempt == attempts || !hasChanged(m_file.get())) return std::move(*text);
    }
}

std::optional<LinuxMountChanges::Sight> LinuxMountChanges::takeSight() const {
    const auto text = readTable();
    if (!text) return std::nullopt;
    Sight sight;
    sight.table = parseMountInfo(*text);
    for (MountEntry& mount : chooseVolumes(sight.table)) {
        sight.byKey.emplace(volumeKeyOf(mount), sight.volumes.size());
        sight.volumes.push_back({std::move(mount), {}});
    }
    std::sort(sight.table.begin(), sight.table.end(),
              [](const auto& a, const auto& b) { return a.id < b.id; });
    return sight;
}

bool LinuxMountChanges::Sight::holds(const MountEntry& mount) const {
    const auto at =
        std::lower_bound(table.begin(), table.end(), mount.id,
                         [](const MountEntry& each, std::uint64_t id) { return each.id < id; });
    return at != table.end() && isSameMount(*at, mount);
}

const LinuxMountChanges::Volume* LinuxMountChanges::Sight::find(const MountEntry& mount) const {
    const auto found = byKey.find(volumeKeyOf(mount));
    return found == byKey.end() ? nullptr : &volumes[found->second];
}

// One volume seen through two mounts is the same as long as both stood at the same time, before or
// after. Otherwise it was taken down and put up elsewhere between the looks.
bool LinuxMountChanges::stays(const Volume* before, const Volume* after, const Sight& now) const {
    if (before == nullptr || after == nullptr) return false;
    return isSameMount(before->mount, after->mount) || now.holds(before->mount) ||
           m_last.holds(after->mount);
}

std::vector<MountChange> LinuxMountChanges::look() {
    auto now = takeSight();
    if (!now) return {};
    std::vector<MountChange> changes;
    for (const Volume& before : m_last.volumes)
        if (!stays(&before, now->find(before.mount), *now))
            changes.push_back({false, before.name, before.mount.point});
    for (Volume& after : now->volumes) {
        const Volume* const before = m_last.find(after.mount);
        // A stick that was pulled out has lost its label though it is still mounted.
        const bool isKnown = before != nullptr && isSameMount(before->mount, after.mount);
        after.name = isKnown ? before->name : volumeNameOf(after.mount, m_devices);
        if (!stays(before, &after, *now)) changes.push_back({true, after.name, after.mount.point});
    }
    m_last = std::move(*now);
    return changes;
}

}  // namespace orrinvale
