// EntryIdentity: what a scan saw of an entry, kept so that a removal can tell whether it is the same entry still.
#pragma once

#include <cstdint>

#include "platform/files.h"

namespace orrinvale {

/// Device, inode and type name an entry for as long as it exists; size and times show whether a file was written since. File systems
/// give the number of a folder that went to the next one at once, which only the time of its making tells.
struct EntryIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileType type = FileType::Unknown;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970-01-01 UTC
    std::int64_t changed = 0;   ///< the same, of the inode
    std::int64_t born = 0;      ///< 0 where it is not known
    bool knowsContents =
        true;  ///< false for a scan that kept neither size nor times, for which a written file is the same still

    [[nodiscard]] static EntryIdentity of(const FileAttributes& seen) {
        return {.device = seen.device,
                .inode = seen.inode,
                .type = seen.type,
                .size = seen.size,
                .modified = seen.modified,
                .changed = seen.changed,
                .born = seen.born,
                .knowsContents = true};
    }

    /// True when `now` describes this entry, and a regular file still has its size and times, where the scan kept them. Folders change
    /// their times with every entry that goes, so that only the one of their making is compared, where both sides know it; so it is
    /// with links, and with files of which no more is known.
    [[nodiscard]] bool isStill(const FileAttributes& now) const {
        if (device != now.device || inode != now.inode || type != now.type) return false;
        if (type == FileType::Regular && knowsContents)
            return size == now.size && modified == now.modified && changed == now.changed;
        return born == 0 || now.born == 0 || born == now.born;
    }
};

}  // namespace orrinvale
