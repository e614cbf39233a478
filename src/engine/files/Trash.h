// Trash: moves entries where every desktop finds them again, as freedesktop.org lays down for all
// of them (version 1.0). TrashFolder is one such place.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <tl/expected.hpp>
#include <vector>

#include "engine/files/HeldEntry.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/TrashFolder.h"
#include "platform/FolderVariables.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Holds no state that changes; any thread. The file system and the places must outlive it.
class Trash final {
public:
    Trash(const FileSystem& files, const ProtectedPlaces& places,
          FolderVariables variables = FolderVariables::ofThisProcess())
        : m_files(files), m_places(places), m_variables(std::move(variables)) {}

    /// Moves the entry at an absolute path, a folder with all that is in it, a link itself: to the
    /// trash of the home folder where that is on the same volume, else to the one at the root of
    /// its own volume, which is made if need be. Nothing is ever copied. With `expected` it must
    /// still be what a scan saw. Where it is now, or why it stays, for people; one line in the log
    /// tells either.
    [[nodiscard]] tl::expected<std::string, std::string> move(
        const std::string& path, const std::optional<EntryIdentity>& expected = std::nullopt) const;

    /// The trash of the home folder, open for many moves, and opened anew after a tenth of a
    /// second. One thread.
    struct OpenHome {
        std::optional<TrashFolder> trash;
        std::chrono::steady_clock::time_point opened;
    };

    /// The same for an entry that is held already. `open`, which may be null, serves entry after
    /// entry.
    [[nodiscard]] tl::expected<std::string, std::string> move(
        const HeldEntry& held, const TrashFolder::LastLook& lastLook = {},
        OpenHome* open = nullptr) const;

    /// The trashes that entries of a folder go to, those that are there; nothing is made.
    [[nodiscard]] std::vector<TrashFolder> trashesOf(const std::string& folder) const;

    /// Why move() would leave the entry where it is, as far as a look tells beforehand; nothing is
    /// made and nothing moved.
    [[nodiscard]] std::optional<std::string> objection(const std::string& path) const;

private:
    using Found = tl::expected<TrashFolder, std::string>;

    [[nodiscard]] tl::expected<std::string, std::string> moveHeld(
        const HeldEntry& held, const TrashFolder::LastLook& lastLook, OpenHome& open) const;
    [[nodiscard]] std::string homeTrash() const;
    [[nodiscard]] bool isOnVolumeOf(const HeldEntry& held, std::string folder) const;
    [[nodiscard]] SysResult<Descriptor> rootOfVolume(const HeldEntry& held) const;
    [[nodiscard]] std::optional<std::string> objectionToHome(std::string folder) const;
    [[nodiscard]] std::optional<std::string> objectionToVolume(int root) const;
    [[nodiscard]] Found openHome() const;
    [[nodiscard]] const TrashFolder* openHome(OpenHome& open, std::string& reason) const;
    [[nodiscard]] Found openShared(int root) const;
    [[nodiscard]] Found openOwn(int root) const;

    const FileSystem& m_files;
    const ProtectedPlaces& m_places;
    const FolderVariables m_variables;
};

}  // namespace orrinvale
