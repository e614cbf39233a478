// What has to be done, and in which order, so that a drive can be taken away.
// LinuxVolumesEjection.h does it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/DiskService.h"

namespace orrinvale {

/// Paths are those of the service's objects.
struct EjectionPlan {
    std::vector<DiskObject>
        devices;  ///< all that go: the whole one, its partitions, what is unlocked on them
    std::vector<std::string> mounted;  ///< to be unmounted, once for each mount, the deepest first
    std::vector<std::string>
        unlocked;       ///< encrypted devices to be locked again, the innermost first
    std::string loop;   ///< to be taken down; empty for what is no disk image
    std::string drive;  ///< empty where the device lies on none
    bool ejects = false;
    bool powersOff = false;
};

/// The plan for all that goes together with the device of this number: what lies on the same drive,
/// or on the same whole device where there is no drive. Nothing when the service does not know the
/// device.
///
/// A drive is switched off only where nothing else hangs on it: not while the plug holds more
/// drives, such as the other slots of a card reader, and not an optical drive, which a person opens
/// for the next disc.
[[nodiscard]] std::optional<EjectionPlan> planEjection(const std::vector<DiskObject>& objects,
                                                       std::uint64_t device);

}  // namespace orrinvale
