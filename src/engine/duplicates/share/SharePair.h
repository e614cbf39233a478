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

/// Why the two of a pair keep their own bytes.
struct PairObjection {
    StayedEntry why;
    bool isOfThese = false;  ///< another copy may give its bytes all the same
};

struct SharePair {
    HeldEntry held;  ///< the copy
    KeptCopy kept;
    Descriptor file;      ///< the copy, open for reading
    Descriptor keptFile;  ///< likewise
    FileAttributes keptNow;

    /// Both are files and what the search saw of them. Else why not.
    [[nodiscard]] static tl::expected<SharePair, PairObjection> open(
        const FileSystem& files, HeldEntry held, const std::optional<KeptCopy>& kept);

    [[nodiscard]] bool isOneFile() const {
        return held.attributes.device == keptNow.device && held.attributes.inode == keptNow.inode;
    }
    /// Whether both, and what the name stands for, are as they were when they were opened, but for
    /// the number of names.
    [[nodiscard]] bool isUnchanged(const FileSystem& files) const;
};

/// What speaks against a hard link, as far as a look tells; nothing where the two may become one
/// file. `names` that the copy that stays has by now.
[[nodiscard]] std::optional<PairObjection> objectionToLink(RenameGround& ground,
                                                           const SharePair& pair,
                                                           std::uint32_t names);

/// What became of a hard link.
struct LinkEnd {
    RemovalResult result;
    bool isOfThese = false;  ///< PairObjection::isOfThese, where the copy has its own name again
    std::optional<std::int64_t> keptChanged =
        std::nullopt;  ///< the time of change that a link which was taken back gave to what stays
};

/// Compares, sets aside, links, and removes what is aside, or puts it back. objectionToLink() had
/// nothing against it; `look` is of the copy that stays.
[[nodiscard]] LinkEnd linkCopy(const FileSystem& files, RenameGround& ground, const SharePair& pair,
                               const LeavingEntry& entry, CopyLook& look,
                               const std::atomic<bool>& stop);

/// A result that tells how the two have their bytes in common, and what that gives back.
[[nodiscard]] RemovalResult sharedBy(RemovalResult::Shared::By by, const SharePair& pair,
                                     std::uint64_t bytes);

}  // namespace orrinvale
