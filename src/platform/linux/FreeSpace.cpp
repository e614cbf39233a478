// The free space of a file system (platform/freeSpace.h), asked for after syncfs(2).
#include "platform/freeSpace.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/MountTable.h"

namespace orrinvale {

SysResult<std::uint64_t> settledFreeSpace(const std::string& folder) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen()) return tl::unexpected(errno);
    if (::syncfs(opened.get()) != 0) return tl::unexpected(errno);
    struct statvfs space {};
    if (::fstatvfs(opened.get(), &space) != 0) return tl::unexpected(errno);
    return std::uint64_t{space.f_bfree} * space.f_frsize;
}

// Each subvolume of a btrfs has a device of its own for stat(2), and an id of its own for
// statfs(2); the table of mounts alone gives that of the whole.
std::string spaceOf(const std::string& folder) {
    struct statx entry {};
    if (::statx(AT_FDCWD, folder.c_str(), 0, STATX_MNT_ID, &entry) != 0) return folder;
    const auto table = parseMountInfo(readMountInfo().value_or(std::string()));
    const auto mount = std::ranges::find(table, entry.stx_mnt_id, &MountEntry::id);
    if ((entry.stx_mask & STATX_MNT_ID) == 0 || mount == table.end())
        return fmt::format("{}:{}", entry.stx_dev_major, entry.stx_dev_minor);
    if (mount->type == "zfs") return mount->source.substr(0, mount->source.find('/'));
    return fmt::format("{}:{}", mount->major, mount->minor);
}

}  // namespace orrinvale
