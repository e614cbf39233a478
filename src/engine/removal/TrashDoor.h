// TrashDoor: the way out to the desktop's trash, from where a person can bring things back.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "engine/files/HeldEntry.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/Trash.h"
#include "engine/removal/RemovalDoor.h"

namespace orrinvale {

/// Whole entries go, a folder with all that is in it by then. What is not there any more is gone. A
/// copy goes after the comparison, and comes back when the one that stays does not stand any more.
/// The file system outlives it.
class TrashDoor final : public RemovalDoor {
public:
    TrashDoor(const FileSystem& files, ProtectedPlaces places,
              FolderVariables variables = FolderVariables::ofThisProcess())
        : m_files(files),
          m_places(std::move(places)),
          m_trash(files, m_places, std::move(variables)) {}

    /// No record waits for a flush() that is never asked for.
    ~TrashDoor() override { m_series.sync(); }
    TrashDoor(const TrashDoor&) = delete;
    TrashDoor& operator=(const TrashDoor&) = delete;

    [[nodiscard]] bool setsAside() const override { return false; }
    void flush() override { m_series.sync(); }
    [[nodiscard]] RemovalResult remove(const LeavingEntry& entry,
                                       const std::atomic<bool>& stop) override;

private:
    [[nodiscard]] std::optional<StayedEntry> lookAgain(
        const HeldEntry& held, CopyLook& look, std::chrono::steady_clock::time_point begun) const;
    [[nodiscard]] bool isAbsent(const std::string& path) const;
    void move(const HeldEntry& held, CopyLook* look, RemovalResult& result);

    const FileSystem& m_files;
    const ProtectedPlaces m_places;
    const Trash m_trash;
    HeldParents m_parents;
    Trash::Series m_series;
};

}  // namespace orrinvale
