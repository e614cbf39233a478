// SafeRemoval: removes an entry, contents included, without ever following a link or resolving a
// path twice.
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "engine/files/EntryIdentity.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/OwnChanges.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/RemovalResult.h"
#include "engine/files/SecondHand.h"
#include "engine/files/SeenEntries.h"
#include "engine/files/writers.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// The file system and the places must outlive it. Any thread; with changes of our own, the one
/// thread that removes what one scan saw.
class SafeRemoval final {
public:
    /// What the removals of one scan's entries share. None of it is owned, and each may be null:
    /// then each removal knows of its own changes alone, holds its own parent, and works alone.
    struct Shared {
        OwnChanges* own = nullptr;
        HeldParents* parents = nullptr;
        SecondHand* second = nullptr;
    };
    SafeRemoval(const FileSystem& files, const ProtectedPlaces& places)
        : SafeRemoval(files, places, Shared{}) {}
    SafeRemoval(const FileSystem& files, const ProtectedPlaces& places, OwnChanges* own)
        : SafeRemoval(files, places, Shared{.own = own}) {}
    SafeRemoval(const FileSystem& files, const ProtectedPlaces& places, const Shared& shared)
        : m_files(files), m_places(places), m_shared(shared) {}

    /// Removes the entry at an absolute path, and everything below it. The parent is opened once
    /// and held; below it each folder is entered by name from its parent and never through a link;
    /// a folder on another device or mount is not entered. With `expected` the entry must still be
    /// what the scan saw. With `seen` of a folder only what the scan saw in it goes; what came or
    /// changed since stays, together with the folders above it. What can not be removed stays and
    /// is counted; its siblings go. What `ask` asks about stays while it is written to. Depth and
    /// width are free: neither the call stack nor the count of descriptors grows with them. A
    /// protected place is refused before anything is touched. One line in the log tells the result.
    [[nodiscard]] RemovalResult remove(const std::string& path,
                                       const std::optional<EntryIdentity>& expected,
                                       const std::atomic<bool>* stop = nullptr,
                                       const SeenEntries* seen = nullptr,
                                       AskWriters ask = AskWriters::OfNone) const;

    /// What is to be told where HeldEntry::at() had an objection: removes nothing, and looks at
    /// the folders above alone.
    [[nodiscard]] RemovalResult notHeld(const std::string& path,
                                        const std::optional<EntryIdentity>& expected,
                                        const HeldEntry::Objection& objection) const;

private:
    struct Asked {
        const std::atomic<bool>* stop;
        const SeenEntries* seen;
        OwnChanges& own;
        AskWriters ask;
    };
    void removeHeld(const HeldEntry& held, const Asked& asked, RemovalResult& result) const;
    [[nodiscard]] bool removeFolder(const HeldEntry& held, const Asked& asked,
                                    RemovalResult& result) const;
    [[nodiscard]] bool removeFile(const HeldEntry& held, const Asked& asked,
                                  RemovalResult& result) const;
    void lookAgain(const HeldEntry& held, bool isOurs, RemovalResult& result) const;
    [[nodiscard]] bool isSurelyAbsent(const std::string& path,
                                      const std::optional<EntryIdentity>& expected) const;

    const FileSystem& m_files;
    const ProtectedPlaces& m_places;
    const Shared m_shared;
};

}  // namespace orrinvale
