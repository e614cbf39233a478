// Which extents of a file others have too: FIEMAP, which needs no rights beyond reading the file.
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include "platform/linux/LinuxFiles.h"

namespace orrinvale {

bool LinuxFileSystem::sharesExtents(int descriptor) const {
    constexpr std::array<unsigned long, 4> sharing{BTRFS_SUPER_MAGIC, XFS_SUPER_MAGIC, 0xca451a4e,
                                                   0x2fc12fc1};  // bcachefs, ZFS
    struct statfs answer {};
    if (::fstatfs(descriptor, &answer) != 0) return false;
    return std::ranges::find(sharing, static_cast<unsigned long>(answer.f_type)) != sharing.end();
}

SysResult<std::uint64_t> LinuxFileSystem::sharedBytes(int file) const {
    constexpr std::size_t most = 128;  // extents a call
    alignas(fiemap) std::array<std::byte, sizeof(fiemap) + most * sizeof(fiemap_extent)> room;
    std::uint64_t shared = 0;
    std::uint64_t from = 0;
    for (;;) {
        fiemap head{};
        head.fm_start = from;
        head.fm_length = FIEMAP_MAX_OFFSET - from;
        head.fm_extent_count = most;
        std::memcpy(room.data(), &head, sizeof head);
        if (::ioctl(file, FS_IOC_FIEMAP, room.data()) != 0) {
            if (errno == EINTR) continue;
            return tl::unexpected(errno);
        }
        std::memcpy(&head, room.data(), sizeof head);
        for (std::size_t i = 0; i < head.fm_mapped_extents; ++i) {
            fiemap_extent extent;
            std::memcpy(&extent, room.data() + sizeof head + i * sizeof extent, sizeof extent);
            if ((extent.fe_flags & FIEMAP_EXTENT_SHARED) != 0) shared += extent.fe_length;
            if ((extent.fe_flags & FIEMAP_EXTENT_LAST) != 0) return shared;
            from = extent.fe_logical + extent.fe_length;
        }
        if (from <= head.fm_start) return shared;
    }
}

}  // namespace orrinvale
