// EntryIdentity: what a scan saw of an entry, kept so that a removal can tell whether it is the same entry still.
#pragma once

#include <cstdint>

#include "platform/files.h"

namespace orrinvale {

/// Device, inode and type name an entry for as long as it exists; size and times show whether a file was written since.
struct EntryIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileType type = FileType::Unknown;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970-01-01 UTC
    std::int64_t changed = 0;   ///< the same, of the inode

    [[nodiscard]] static EntryIdentity of(const FileAttributes& seen) {
        return {.device = seen.device,
                .inode = seen.inode,
                .type = seen.type,
                .size = seen.size,
                .modified = seen.modified,
                .changed = seen.changed};
    }

    /// True when `now` describes this entry, and a regular file still has its size and times. Folders change their times with
    /// every entry that goes, so that theirs are not compared.
    [[nodiscard]] bool isStill(const FileAttributes& now) const {
        if (device != now.device || inode != now.inode || type != now.type) return false;
        return type != FileType::Regular || (size == now.size && modified == now.modified && changed == now.changed);
    }
};

}  // namespace orrinvale
