// SafeRemoval: removes an entry, contents included, without ever following a link or resolving a path twice.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/files/EntryIdentity.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/ProtectedPlaces.h"
#include "platform/files.h"

namespace orrinvale {

/// What became of one removal.
struct RemovalResult {
    struct Failure {
        std::string path;    ///< exact bytes
        std::string reason;  ///< "Permission denied", "changed since the scan", "a mount point", ...
    };
    bool gone = false;              ///< the entry was looked up again and is not there
    bool stopped = false;           ///< the caller's flag ended it
    bool refused = false;           ///< it may not go, whoever asks; nothing was touched
    std::uint64_t removed = 0;      ///< entries that went, the chosen one included
    std::uint64_t failed = 0;       ///< entries that could not be removed; not the folders that stay because of them
    std::vector<Failure> failures;  ///< the first `mostFailures` of them
    static constexpr std::size_t mostFailures = 100;
};

/// Holds no state that changes; any thread. The file system and the places must outlive it.
class SafeRemoval final {
public:
    SafeRemoval(const FileSystem& files, const ProtectedPlaces& places) : m_files(files), m_places(places) {}

    /// Removes the entry at an absolute path, and everything below it. The parent is opened once and held; below it each folder is
    /// entered by name from its parent and never through a link; a folder on another device or mount is not entered. With
    /// `expected` the entry must still be what the scan saw. What can not be removed stays and is counted; its siblings go. Depth
    /// and width are free: neither the call stack nor the count of descriptors grows with them. A protected place is refused
    /// before anything is touched. One line in the log tells the result.
    [[nodiscard]] RemovalResult remove(const std::string& path, const std::optional<EntryIdentity>& expected,
                                       const std::atomic<bool>* stop = nullptr) const;

private:
    void removeHeld(const HeldEntry& held, const std::atomic<bool>* stop, RemovalResult& result) const;
    [[nodiscard]] bool isSurelyAbsent(const std::string& path, const std::optional<EntryIdentity>& expected) const;

    const FileSystem& m_files;
    const ProtectedPlaces& m_places;
};

}  // namespace orrinvale
