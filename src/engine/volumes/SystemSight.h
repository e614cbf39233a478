// SystemSight: what one look at the volumes and the memory saw, and what two looks differ in.
// VolumeLook takes the looks; services/volumes/SystemWatch.h takes one every two seconds for all
// that show volumes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/volumes/VolumesInfo.h"
#include "engine/volumes/ZvVolumeInfo.h"
#include "platform/memory.h"
#include "platform/volumes.h"

namespace orrinvale {

/// One volume, and whether it answered.
struct SeenVolume {
    std::shared_ptr<const ZvVolumeInfo> record;  ///< never null
    /// Why it does not answer, in the system's English words; empty when it does. The record is
    /// that of its last answer then.
    std::string silence{};

    /// False for one that never answered, whose record has no figures.
    [[nodiscard]] bool hasAnswered() const { return record->nTotalSize != 0; }
};

/// Where a mount stands.
struct VolumePlace {
    std::int16_t refNumber = 0;
    std::string root;  ///< exact bytes
    friend bool operator==(const VolumePlace&, const VolumePlace&) = default;
};

/// Of a part that nobody wanted to know the last look is kept, or there is nothing.
struct SystemSight {
    std::vector<SeenVolume> volumes;  ///< in the platform's order
    std::optional<MemoryState> memoryState;
};

/// Whether both have the same volumes at the same places: the sequence of reference number and
/// root. A count would not do: one that came while another went must never stand in its row.
[[nodiscard]] bool hasSameSequence(const SystemSight& a, const SystemSight& b);

/// Whether rows that were made for one hold for the other: the same sequence, in the same groups,
/// with the same ejection. Names and figures are written into rows that stand.
[[nodiscard]] bool hasSameRows(const SystemSight& a, const SystemSight& b);

/// Whether nobody could see a difference: sequence, names, texts of sizes, percentages, groups,
/// ejection, silence.
[[nodiscard]] bool showsSameVolumes(const SystemSight& a, const SystemSight& b);

/// Likewise of the memory's state.
[[nodiscard]] bool showsSameMemory(const SystemSight& a, const SystemSight& b);

/// Null where no volume has this number and this root.
[[nodiscard]] const SeenVolume* findVolume(const SystemSight& sight, std::int16_t volRefNumber,
                                           const std::string& volRootDir);

/// Null where there is none, or none that ever answered.
[[nodiscard]] const SeenVolume* bootVolume(const std::vector<SeenVolume>& volumes);

/// Takes looks at the volumes. One that does not answer has its place all the same, with the
/// figures of its last answer, or with none; only what this user may not look at is left out before
/// it has answered once. One thread.
class VolumeLook final {
public:
    /// `platform` outlives the object.
    explicit VolumeLook(Volumes& platform);
    ~VolumeLook();
    VolumeLook(const VolumeLook&) = delete;
    VolumeLook& operator=(const VolumeLook&) = delete;

    /// Waits for the platform as a walk of VolumesInfo does.
    [[nodiscard]] std::vector<SeenVolume> take();

private:
    class RowNotes;

    const std::unique_ptr<RowNotes> m_notes;
    std::optional<VolumesInfo> m_info;  // from the first look on
    std::vector<SeenVolume> m_last;
};

}  // namespace orrinvale
