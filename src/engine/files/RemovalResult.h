// RemovalResult: what became of one entry that was to go, in terms that pages, the command and the log share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orrinvale {

/// Why an entry is still there. Pages choose by it what they tell, and the administrator's tool follows Rights alone.
enum class StayReason : std::uint8_t {
    Rights,     ///< EACCES or EPERM: this user may not
    Protected,  ///< nobody may: a mount point, a home, the program's own files
    Changed,    ///< it is not what the scan saw
    CameLater,  ///< the scan did not list it
    NoCopy,     ///< nothing that holds the same stands elsewhere any more
    InUse,      ///< a program has it open for writing
    Aside,      ///< set aside, and its own name was taken meanwhile
    System      ///< any other error of the system
};

/// One entry that is still there.
struct StayedEntry {
    std::string path;    ///< exact bytes
    std::string reason;  ///< "Permission denied", "changed since the scan", "a mount point", ...
    StayReason kind = StayReason::System;
};

/// What became of one removal.
struct RemovalResult {
    using Failure = StayedEntry;
    bool gone = false;              ///< the entry was looked up again and is not there
    bool stopped = false;           ///< the caller's flag ended it
    bool refused = false;           ///< it may not go, whoever asks; nothing was touched
    bool byOthers = false;          ///< it was gone before we came to it
    std::uint64_t removed = 0;      ///< entries that went, the chosen one included
    std::uint64_t failed = 0;       ///< entries that could not be removed; not the folders that stay because of them
    std::vector<Failure> failures;  ///< the first `mostFailures` of them
    std::optional<std::int64_t> changed =
        std::nullopt;  ///< the time of change that our own doing gave to what is left of the file: its
                       ///< other names after it went, itself after it came back
    static constexpr std::size_t mostFailures = 100;
};

}  // namespace orrinvale
