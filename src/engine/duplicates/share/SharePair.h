// SharePair: a copy and the one that stays, both held open, and how the former becomes another name
// of the latter.
#pragma once

#include <atomic>
#include <optional>
#include <tl/expected.hpp>

#include "engine/files/HeldEntry.h"
#include "engine/removal/RemovalDoor.h"
#include "engine/removal/SetAside.h"

namespace orrinvale {

struct SharePair {
    HeldEntry held;  ///< the copy
    KeptCopy kept;
    Descriptor file;      ///< the copy, open for reading
    Descriptor keptFile;  ///< likewise
    FileAttributes keptNow;

    /// Both are files and what the search saw of them. Else why not.
    [[nodiscard]] static tl::expected<SharePair, StayedEntry> open(
        const FileSystem& files, HeldEntry held, const std::optional<KeptCopy>& kept);

    [[nodiscard]] bool isOneFile() const {
        return held.attributes.device == keptNow.device && held.attributes.inode == keptNow.inode;
    }
    /// Whether both, and what the name stands for, are as they were when they were opened, but for
    /// the number of names.
    [[nodiscard]] bool isUnchanged(const FileSystem& files) const;
};

/// What speaks against a hard link, as far as a look tells; nothing where the two may become one
/// file.
[[nodiscard]] std::optional<StayedEntry> objectionToLink(RenameGround& ground,
                                                         const SharePair& pair);

/// Compares, sets aside, links, and removes what is aside, or puts it back.
[[nodiscard]] RemovalResult linkCopy(const FileSystem& files, RenameGround& ground,
                                     const SharePair& pair, const LeavingEntry& entry,
                                     const std::atomic<bool>& stop);

/// A result that tells how the two have their bytes in common, and what that gives back.
[[nodiscard]] RemovalResult sharedBy(RemovalResult::Shared::By by, const SharePair& pair,
                                     std::uint64_t bytes);

}  // namespace orrinvale
