// What tells one file system from all others for longer than a mount, and the clock of its files.
// linux/LastingVolume.cpp implements it; engine/duplicates/cache and diskusage/history ask.
#pragma once

#include <cstdint>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Names a file system, and of several subvolumes one. Equal names are one file system.
struct VolumeName {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    friend bool operator==(const VolumeName&, const VolumeName&) = default;
};

/// The name of the file system of an open folder, made of its UUID, its subvolume and its device.
/// Only of those that keep inode numbers as long as their files, and times of change to the
/// nanosecond: ext4, XFS, btrfs and F2FS. ENOTSUP for all others, layers among them, and where
/// there is no UUID.
[[nodiscard]] SysResult<VolumeName> lastingVolume(int folder);

/// Whether what lies at a place is what lay there before: the UUID with the subvolume, wherever the
/// device is plugged in, so that copies of a disk have one name. All file systems of a kind that
/// has no UUID have one too. Never the empty name.
[[nodiscard]] SysResult<VolumeName> volumeAtPlace(int folder);

/// Now, by the clock that files on such a file system have their times from: nanoseconds since
/// 1970-01-01 UTC.
[[nodiscard]] std::int64_t fileClock();

}  // namespace orrinvale
