// RemovalResult: what became of one entry that was to go, in terms that pages, the command and the
// log share.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/base/saturating.h"
#include "engine/files/EntryIdentity.h"

namespace orrinvale {

/// Why an entry is still there. Pages choose by it what they tell, and the administrator's tool
/// follows Rights alone.
enum class StayReason : std::uint8_t {
    Rights,     ///< EACCES or EPERM: this user may not
    Protected,  ///< nobody may: a mount point, a home, the program's own files
    Changed,    ///< it is not what the scan saw
    CameLater,  ///< the scan did not list it
    NoCopy,     ///< nothing that holds the same stands elsewhere any more
    InUse,      ///< a program has it open for writing
    Kept,       ///< a rule of cleaning keeps it, which is no failure
    Aside,      ///< set aside, and its own name was taken meanwhile
    System      ///< any other error of the system
};

/// Rights for what this user may not do, System for every other error of the system.
[[nodiscard]] inline StayReason stayReasonOf(int error) {
    return error == EACCES || error == EPERM ? StayReason::Rights : StayReason::System;
}

/// Whether a rule of cleaning is behind it, which is no failure: what changed or came since the
/// scan stays by rule as well.
[[nodiscard]] inline bool isByRule(StayReason reason) {
    return reason == StayReason::Kept || reason == StayReason::Changed ||
           reason == StayReason::CameLater;
}

/// One entry that is still there.
struct StayedEntry {
    std::string path;    ///< exact bytes
    std::string reason;  ///< "Permission denied", "changed since the scan", "a mount point", ...
    StayReason kind = StayReason::System;
    std::optional<EntryIdentity> identity =
        std::nullopt;  ///< of what the system refused within a folder, as it was just before
};

/// What became of one removal.
struct RemovalResult {
    using Failure = StayedEntry;
    bool gone = false;          ///< the entry was looked up again and is not there
    bool stopped = false;       ///< the caller's flag ended it
    bool refused = false;       ///< it may not go, whoever asks; nothing was touched
    bool byOthers = false;      ///< it is gone, and somebody else removed it
    std::uint64_t removed = 0;  ///< entries that went by us, the chosen one included
    std::uint64_t failed =
        0;  ///< entries that could not be removed; not the folders that stay because of them
    std::vector<Failure> failures;  ///< the first `mostFailures` of them
    std::optional<std::int64_t> changed =
        std::nullopt;  ///< the time of change that our own doing gave to what is left of the file:
                       ///< its other names after it went, itself after it came back
    std::optional<std::uint64_t> bytes =
        std::nullopt;  ///< lengths of the files that went, each once however many of its names
                       ///< went; not known of a folder that goes with all that is in it
    std::optional<std::uint64_t> lengths =
        std::nullopt;  ///< the same with each name counted, texts of links among them, as a listing
                       ///< adds up
    /// Of what was moved to the trash.
    struct Moved {
        std::string place;               ///< its path there
        std::uint64_t folderDevice = 0;  ///< the folder that it was in
        std::uint64_t folderInode = 0;
    };
    std::optional<Moved> moved = std::nullopt;
    /// Of what did not go but gave its bytes up for those of the copy that stays.
    struct Shared {
        enum class By : std::uint8_t { Already, Extents, HardLink };
        By by = By::Already;
        std::string with;         ///< the path of the copy that stays
        std::uint64_t bytes = 0;  ///< that it had on the disk for itself
        std::pair<std::uint64_t, std::uint64_t> keptFile = {};  ///< its device and inode
        std::optional<std::int64_t> keptChanged =
            std::nullopt;  ///< the time of change that the copy that stays got by it
    };
    std::optional<Shared> shared = std::nullopt;
    static constexpr std::size_t mostFailures = 100;

    /// Of one name that went, or of none; `isFirst` where no other name of its file went before.
    void addName(std::uint64_t length, bool isFirst) {
        std::uint64_t sum = bytes.value_or(0);
        if (isFirst) addSaturating(sum, length);
        bytes = sum;
        sum = lengths.value_or(0);
        addSaturating(sum, length);
        lengths = sum;
    }
    /// What an earlier attempt at the same entry took.
    void addEarlier(const RemovalResult& earlier) {
        removed += earlier.removed;
        if (!earlier.bytes || !earlier.lengths) return;
        addName(0, true);
        addSaturating(*bytes, *earlier.bytes);
        addSaturating(*lengths, *earlier.lengths);
    }
};

}  // namespace orrinvale
