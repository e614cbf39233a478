// RemovalDoor: the way out that a job uses: plain, with the administrator right, to the trash, by
// the eraser.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/files/EntryIdentity.h"
#include "engine/files/RemovalResult.h"
#include "engine/files/writers.h"
#include "engine/removal/CopyLook.h"

namespace orrinvale {

class SeenEntries;

/// One entry on its way out.
struct LeavingEntry {
    std::string path;
    std::optional<EntryIdentity> identity;
    CopyLook* look = nullptr;  ///< of a copy
    const SeenEntries* seen =
        nullptr;        ///< of a folder that is no copy; nullptr: all that is in it goes
    std::string token;  ///< to set it aside with; empty where it is to go straight away
    AskWriters ask = AskWriters::OfNone;  ///< of what is no copy
};

/// Used on the removing thread alone.
class RemovalDoor {
public:
    virtual ~RemovalDoor() = default;

    /// Whether copies are set aside on the way, so that a journal has to name them first.
    [[nodiscard]] virtual bool setsAside() const { return true; }

    /// Whether another name of the copy that stays may take the name of what is aside.
    [[nodiscard]] virtual bool replaces() const { return false; }

    /// Makes what went durable, on all file systems that something was set aside on. May wait for a
    /// slow disk.
    virtual void flush() {}

    /// Removes the entry, or says why it stays.
    [[nodiscard]] virtual RemovalResult remove(const LeavingEntry& entry,
                                               const std::atomic<bool>& stop) = 0;

protected:
    RemovalDoor() = default;
    RemovalDoor(const RemovalDoor&) = default;
    RemovalDoor& operator=(const RemovalDoor&) = default;
};

}  // namespace orrinvale
