// The kernel's table of mounts, line by line. LinuxMounts.cpp asks it for scans and removals;
// LinuxVolumesChoice.h says which mounts are volumes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// One line of /proc/self/mountinfo (proc(5)), escapes undone.
struct MountEntry {
    std::uint64_t id = 0;
    std::uint64_t parent =
        0;  ///< the mount that this one stands on; at the top one that is not in the table
    std::uint32_t major =
        0;  ///< of the file system's device; 0 for those without a block device of their own
    std::uint32_t minor = 0;
    std::string root;   ///< what of the file system is seen here, "/" for all of it
    std::string point;  ///< absolute path
    std::string type;
    std::string source;
    std::string superOptions;
    friend bool operator==(const MountEntry&, const MountEntry&) = default;
};

/// Whether two entries, perhaps of tables taken at different times, are one mount as far as a table
/// can tell: the kernel gives the id of a mount that is gone to the next one.
[[nodiscard]] bool isSameMount(const MountEntry& a, const MountEntry& b);

/// What is read of the table at most. The kernel allows 100,000 mounts (fs.mount-max), at 100 to
/// 200 bytes each.
inline constexpr std::size_t mountInfoLimit = 16 * 1024 * 1024;

/// The entries in the table's order. A line that is no entry, or not a whole one, is left out; so
/// is all behind the limit.
[[nodiscard]] std::vector<MountEntry> parseMountInfo(std::string_view text);

/// The text of a table, up to the limit.
[[nodiscard]] SysResult<std::string> readMountInfo(
    const std::string& path = "/proc/self/mountinfo");

}  // namespace orrinvale
