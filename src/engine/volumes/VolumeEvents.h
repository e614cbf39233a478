// VolumeEvents: what happened to the volumes between two looks, as sentences could tell it.
// SystemSight.h is what a look sees.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/volumes/SystemSight.h"

namespace orrinvale {

struct VolumeEvent {
    enum class Kind : std::uint8_t {
        Mount,
        Unmount,  ///< with what was known of it last
        Rename,   ///< with its new name
        Free      ///< the free space changed by a hundredth of the whole, or across the level
    };
    Kind kind = Kind::Mount;
    std::shared_ptr<const ZvVolumeInfo> volume;
};

/// Compares each look with what was told before, so that a slow leak is told as often as it takes a
/// hundredth, and a volume at the edge of it not at every look. One thread.
class VolumeEvents final {
public:
    /// `level` is that of isShortOfSpace().
    explicit VolumeEvents(float level) : m_level(level) {}

    /// What went, then what came or changed, each in the platform's order. Nothing at the first
    /// look. A volume that does not answer has neither gone nor changed, and one that never has has
    /// not come before it does; if it stood there at the first look, not even then.
    [[nodiscard]] std::vector<VolumeEvent> take(const std::vector<SeenVolume>& seen);

private:
    [[nodiscard]] bool hasMoved(const ZvVolumeInfo& before, const ZvVolumeInfo& now) const;

    const float m_level;
    bool m_isFirst = true;
    SystemSight m_told;                 // the record with which each was told last
    SystemSight m_last;                 // of the same volumes the newest record
    std::vector<VolumePlace> m_asleep;  // who has not answered since the first look
};

}  // namespace orrinvale
