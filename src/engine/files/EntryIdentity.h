// EntryIdentity: what a scan saw of an entry, kept so that a removal can tell whether it is the
// same entry still.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Device, inode and type name an entry for as long as it exists; size and times show whether a
/// file was written since. File systems give the number of a folder that went to the next one at
/// once, which only the time of its making tells. Where numbers do not last an entry is known by
/// where it is found, and by its size and times.
struct EntryIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileType type = FileType::Unknown;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970-01-01 UTC
    std::int64_t changed = 0;   ///< the same, of the inode
    std::int64_t born = 0;      ///< 0 where it is not known
    bool inodePasses = false;   ///< the inode number need not last
                                ///< (FileSystem::devicesOfPassingInodes()) and tells nothing
    std::optional<std::uint64_t> times =
        std::nullopt;  ///< timesOf() both, in place of them, for scans that have to be small

    [[nodiscard]] static EntryIdentity of(const FileAttributes& seen) {
        return {.device = seen.device,
                .inode = seen.inode,
                .type = seen.type,
                .size = seen.size,
                .modified = seen.modified,
                .changed = seen.changed,
                .born = seen.born,
                .inodePasses = false,
                .times = std::nullopt};
    }

    /// For scans that do not ask it of each entry: `devices` is
    /// FileSystem::devicesOfPassingInodes().
    void learnPassing(const std::vector<std::uint64_t>& devices) {
        inodePasses = std::ranges::binary_search(devices, device);
    }

    /// Both times of a file in one number: the upper half stands for `modified`, the lower one for
    /// `changed`.
    [[nodiscard]] static std::uint64_t timesOf(std::int64_t modified, std::int64_t changed) {
        constexpr std::uint64_t spread = 0x9E37'79B9'7F4A'7C15;  // 2^64 over the golden ratio
        const auto half = [](std::int64_t time) {
            return (static_cast<std::uint64_t>(time) * spread) >> 32U;
        };
        return (half(modified) << 32U) | half(changed);
    }

    /// True when `now` describes this entry, and a regular file still has its size and times.
    /// Folders change their times with every entry that goes, so that only the one of their making
    /// is compared, where both sides know it; so it is with links.
    [[nodiscard]] bool isStill(const FileAttributes& now) const {
        if (device != now.device || type != now.type || (inode != now.inode && !inodePasses))
            return false;
        if (type != FileType::Regular) return born == 0 || now.born == 0 || born == now.born;
        if (size != now.size) return false;
        return times ? *times == timesOf(now.modified, now.changed)
                     : modified == now.modified && changed == now.changed;
    }
};

}  // namespace orrinvale
