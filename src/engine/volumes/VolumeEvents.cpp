// Two looks side by side, by reference number and root.
#include "engine/volumes/VolumeEvents.h"

#include <algorithm>
#include <utility>

#include "engine/volumes/SpaceLevel.h"

namespace orrinvale {
namespace {

const SeenVolume* sameIn(const SystemSight& sight, const ZvVolumeInfo& volume) {
    return findVolume(sight, volume.volRefNumber, volume.volRootDir);
}

bool has(const std::vector<VolumePlace>& places, const VolumePlace& place) {
    return std::ranges::find(places, place) != places.end();
}

}  // namespace

bool VolumeEvents::hasMoved(const ZvVolumeInfo& before, const ZvVolumeInfo& now) const {
    const VolumeSpace old = spaceOf(before);
    const VolumeSpace space = spaceOf(now);
    const std::uint64_t moved = std::max(old.free, space.free) - std::min(old.free, space.free);
    return moved > 0 && (moved >= space.total / 100 ||
                         isShortOfSpace(old, m_level) != isShortOfSpace(space, m_level));
}

std::vector<VolumeEvent> VolumeEvents::take(const std::vector<SeenVolume>& seen) {
    SystemSight sight;
    std::vector<VolumePlace> neverAnswered;
    for (const SeenVolume& each : seen) {
        if (each.hasAnswered()) sight.volumes.push_back(each);
        else neverAnswered.push_back({each.record->volRefNumber, each.record->volRootDir});
    }
    const SystemSight before = std::exchange(m_told, sight);
    const SystemSight last = std::exchange(m_last, sight);
    std::vector<VolumeEvent> events;
    if (std::exchange(m_isFirst, false)) {
        m_asleep = neverAnswered;
        return events;
    }
    const std::vector<VolumePlace> asleep = m_asleep;
    std::erase_if(m_asleep, [&](const VolumePlace& each) { return !has(neverAnswered, each); });
    for (const SeenVolume& each : last.volumes)
        if (sameIn(sight, *each.record) == nullptr)
            events.push_back({VolumeEvent::Kind::Unmount, each.record});
    for (SeenVolume& each : m_told.volumes) {
        const SeenVolume* const known = sameIn(before, *each.record);
        if (known == nullptr) {
            const VolumePlace place{each.record->volRefNumber, each.record->volRootDir};
            if (!has(asleep, place)) events.push_back({VolumeEvent::Kind::Mount, each.record});
            continue;
        }
        if (known->record->volumeName != each.record->volumeName)
            events.push_back({VolumeEvent::Kind::Rename, each.record});
        if (hasMoved(*known->record, *each.record)) {
            events.push_back({VolumeEvent::Kind::Free, each.record});
            continue;
        }
        // The figures stay those that were told; of the rest the newest is known.
        auto told = std::make_shared<ZvVolumeInfo>(*known->record);
        told->volumeName = each.record->volumeName;
        each.record = std::move(told);
    }
    return events;
}

}  // namespace orrinvale
