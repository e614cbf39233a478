// The comparisons first, then the look, which puts the records of a walk beside the rows that the
// platform told, those without an answer included.
#include "engine/volumes/SystemSight.h"

#include <algorithm>
#include <cerrno>
#include <tuple>
#include <utility>

#include "engine/text/UtilityFunction.h"
#include "engine/volumes/SpaceLevel.h"
#include "platform/ForwardingVolumes.h"
#include "platform/error.h"

namespace orrinvale {
namespace {

auto placeOf(const ZvVolumeInfo& volume) {
    return std::tie(volume.volRefNumber, volume.volRootDir);
}

// Both shares that are shown somewhere: the free one is truncated, the used one rounded up.
auto percentsOf(const ZvVolumeInfo& volume) {
    const VolumeSpace space = spaceOf(volume);
    return std::pair(freePercent(space), usedPercent(space));
}

bool showsSame(const SeenVolume& a, const SeenVolume& b) {
    const auto shown = [](const SeenVolume& each) {
        const ZvVolumeInfo& volume = *each.record;
        return std::tie(volume.volRefNumber, volume.volRootDir, volume.volType,
                        volume.bIsDefaultVol, volume.volumeName, volume.freeSpace,
                        volume.totalSpace, volume.bCanEject, each.silence);
    };
    return shown(a) == shown(b) && percentsOf(*a.record) == percentsOf(*b.record);
}

}  // namespace

bool hasSameSequence(const SystemSight& a, const SystemSight& b) {
    return std::ranges::equal(a.volumes, b.volumes,
                              [](const SeenVolume& one, const SeenVolume& other) {
                                  return placeOf(*one.record) == placeOf(*other.record);
                              });
}

bool hasSameRows(const SystemSight& a, const SystemSight& b) {
    const auto rowOf = [](const SeenVolume& each) {
        const ZvVolumeInfo& volume = *each.record;
        return std::tie(volume.volRefNumber, volume.volRootDir, volume.volType, volume.bCanEject,
                        volume.bIsDefaultVol);
    };
    return std::ranges::equal(a.volumes, b.volumes, {}, rowOf, rowOf);
}

bool showsSameVolumes(const SystemSight& a, const SystemSight& b) {
    return std::ranges::equal(a.volumes, b.volumes, showsSame);
}

bool showsSameMemory(const SystemSight& a, const SystemSight& b) {
    if (!a.memoryState || !b.memoryState) return !a.memoryState && !b.memoryState;
    const auto text = &UtilityFunction::covertCleanMemory;
    const auto state = [&](const MemoryState& each) {
        return std::tuple(each.available ? text(*each.available) : std::string(),
                          text(each.swapTotal), text(each.swapUsed), each.pressure);
    };
    return state(*a.memoryState) == state(*b.memoryState);
}

const SeenVolume* findVolume(const SystemSight& sight, std::int16_t volRefNumber,
                             const std::string& volRootDir) {
    const auto found = std::ranges::find_if(sight.volumes, [&](const SeenVolume& each) {
        return placeOf(*each.record) == std::tie(volRefNumber, volRootDir);
    });
    return found == sight.volumes.end() ? nullptr : &*found;
}

const SeenVolume* bootVolume(const std::vector<SeenVolume>& volumes) {
    const auto boot = std::ranges::find_if(volumes, [](const SeenVolume& each) {
        return each.record->bIsDefaultVol && each.hasAnswered();
    });
    return boot == volumes.end() ? nullptr : &*boot;
}

// A walk of VolumesInfo has no place for what does not answer, so its questions are looked at.
class VolumeLook::RowNotes final : public ForwardingVolumes {
public:
    struct Row {
        IndexedVolume volume;
        std::int32_t status = noErr;
    };

    using ForwardingVolumes::ForwardingVolumes;

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override {
        if (volumeIndex == 1) rows.clear();
        const std::int32_t status = ForwardingVolumes::FSGetVolumeInfo(volumeIndex, answer);
        if (status != nsvErr) rows.push_back({answer, status});
        return status;
    }

    std::vector<Row> rows;  // of the latest walk
};

namespace {

// Folders of other users and of their services.
bool isRefused(const IndexedVolume& volume) {
    return volume.errorNumber == EACCES || volume.errorNumber == EPERM;
}

}  // namespace

VolumeLook::VolumeLook(Volumes& platform) : m_notes(std::make_unique<RowNotes>(platform)) {}

VolumeLook::~VolumeLook() = default;

std::vector<SeenVolume> VolumeLook::take() {
    const VolumesInfo::VolumeArray& records =
        m_info ? m_info->getAllVolsInfo() : m_info.emplace(*m_notes).volsArray();
    const SystemSight last{std::exchange(m_last, {}), {}};
    auto record = records.begin();
    for (const RowNotes::Row& row : m_notes->rows) {
        const IndexedVolume& volume = row.volume;
        const bool hasRecord = record != records.end() &&
                               placeOf(**record) == std::tie(volume.refNumber, volume.rootPath);
        if (hasRecord) m_last.push_back({*record++, {}});
        if (hasRecord || row.status == noErr) continue;
        const SeenVolume* const known = findVolume(last, volume.refNumber, volume.rootPath);
        if (known == nullptr && (volume.rootPath.empty() || isRefused(volume))) continue;
        if (auto kept = known != nullptr ? known->record : m_info->recordWithoutSize(volume))
            m_last.push_back(
                {std::move(kept), systemError("statfs", {}, volume.errorNumber).reason()});
    }
    return m_last;
}

}  // namespace orrinvale
