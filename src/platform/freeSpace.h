// The free space of a file system. linux/FreeSpace.cpp implements it.
#pragma once

#include <cstdint>
#include <string>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Bytes that are free on the file system of a folder, once it has written all that it holds back:
/// until then what was removed or written need not show. May wait for a slow disk.
[[nodiscard]] SysResult<std::uint64_t> settledFreeSpace(const std::string& folder);

/// What tells the file system of a folder from all others whose free space is not the same: that
/// of the subvolumes of one btrfs, of the data sets of one ZFS pool and of all mounts of one disk
/// is. May wait for a slow disk.
[[nodiscard]] std::string spaceOf(const std::string& folder);

}  // namespace orrinvale
