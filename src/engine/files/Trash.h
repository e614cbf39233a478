// Trash: moves entries where every desktop finds them again, as freedesktop.org lays down for all
// of them (version 1.0). TrashFolder is one such place.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
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

    /// Moves one after another: what they have in common is asked once, and anew after a tenth of a
    /// second, and their records are made durable together. One thread.
    class Series final {
    public:
        /// Makes the records of all that was moved durable, which may wait for a slow disk. Until
        /// then an entry may lose its record when the power goes, so that whoever moves many has to
        /// know where they were.
        void sync();
        /// The folder that the last entry left.
        [[nodiscard]] const FileAttributes& folder() const { return m_from.attributes; }
        /// Of a move that failed: the entry lies in the trash all the same, since its name could
        /// not be given back to it.
        [[nodiscard]] bool isLeftInTrash() const { return m_isLeftInTrash; }

    private:
        friend class Trash;
        std::optional<TrashFolder> m_home;
        std::chrono::steady_clock::time_point m_known;  // since when all of this is known
        std::optional<SharedFolder> m_parent;  // held, so that no other folder gets its descriptor
        TrashFolder::Leaving m_from;           // the same
        bool m_isLeftInTrash = false;
        bool m_isOnHome = false;                // it is on the volume of the home folder's trash
        std::optional<TrashFolder> m_ofVolume;  // that took the last entry, else
        std::map<std::uint64_t, Descriptor> m_unsynced;  // folders of records, by device
    };

    /// The same for an entry that is held already, alone or in a series, which may be null.
    [[nodiscard]] tl::expected<std::string, std::string> move(
        const HeldEntry& held, const TrashFolder::LastLook& lastLook = {},
        Series* series = nullptr) const;

    /// The trashes that entries of a folder go to, those that are there; nothing is made.
    [[nodiscard]] std::vector<TrashFolder> trashesOf(const std::string& folder) const;

    /// Why move() would leave the entry where it is, as far as a look tells beforehand; nothing is
    /// made and nothing moved.
    [[nodiscard]] std::optional<std::string> objection(const std::string& path) const;

private:
    using Found = tl::expected<TrashFolder, std::string>;
    /// The answer of a trash; nothing, with the reason where there is none yet, for another one.
    using TakeTo = std::function<std::optional<tl::expected<std::string, std::string>>(
        const TrashFolder&, std::string& reason)>;

    [[nodiscard]] tl::expected<std::string, std::string> moveHeld(
        const HeldEntry& held, const TrashFolder::LastLook& lastLook, Series& series,
        TrashFolder::Records records) const;
    [[nodiscard]] std::optional<std::string> enter(const HeldEntry& held, Series& series) const;
    [[nodiscard]] tl::expected<std::string, std::string> moveOnVolume(const HeldEntry& held,
                                                                      Series& series,
                                                                      std::string reason,
                                                                      const TakeTo& takeTo) const;
    [[nodiscard]] std::string homeTrash() const;
    [[nodiscard]] bool isOnVolumeOf(const HeldEntry& held, std::string folder) const;
    [[nodiscard]] SysResult<Descriptor> rootOfVolume(const HeldEntry& held) const;
    [[nodiscard]] std::optional<std::string> objectionToHome(std::string folder) const;
    [[nodiscard]] std::optional<std::string> objectionToVolume(int root) const;
    [[nodiscard]] Found openHome() const;
    [[nodiscard]] const TrashFolder* openHome(Series& series, std::string& reason) const;
    [[nodiscard]] Found openShared(int root) const;
    [[nodiscard]] Found openOwn(int root) const;

    const FileSystem& m_files;
    const ProtectedPlaces& m_places;
    const FolderVariables m_variables;
};

}  // namespace orrinvale
