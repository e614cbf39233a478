// ZvVolumeInfo: the record of one mounted volume. VolumesInfo.h makes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/base/IconRequest.h"

namespace orrinvale {

/// The groups of volumes, as volType holds them. The numbers are no order of display.
enum VolumeType : std::int32_t {
    UnknownVolumeType = -1,  ///< not classified yet
    LocalVolume = 0,         ///< fixed, in this machine
    ExternalVolume = 1,      ///< its device is on an external bus
    OpticalVolume = 2,       ///< a CD or a DVD
    NetworkVolume = 3,       ///< given by a server
    DiskImageVolume = 4,     ///< removable and not on an external bus, which is mostly a disk image
};

struct ZvVolumeInfo {
    std::int16_t volRefNumber = 0;  ///< the platform's number of the mount
    std::int32_t volType = UnknownVolumeType;
    bool bIsDefaultVol = false;  ///< the boot volume
    std::string volumeName;      ///< for people; any bytes
    std::string freeSpace;       ///< nFreeSize as text
    std::string totalSpace;      ///< nTotalSize as text
    std::string volRootDir;      ///< exact bytes
    std::optional<IconRequest>
        volIcon;  ///< the picture of the root folder; nothing means no picture
    bool bCanEject = false;
    std::uint64_t nTotalSize = 0;  ///< bytes
    std::uint64_t nFreeSize = 0;   ///< bytes
    std::uint64_t nReservedSize =
        0;  ///< bytes of the total that are held back for the administrator; SpaceLevel.h uses it
};

}  // namespace orrinvale
