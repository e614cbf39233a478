// SafeRemoval: removes an entry, contents included, without ever following a link or resolving a path twice.
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "engine/files/EntryIdentity.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/RemovalResult.h"
#include "platform/files.h"

namespace orrinvale {

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
