// PlainDoor: removal with this user's own rights. Copies are set aside first (SetAside.h),
// everything else goes by SafeRemoval.
#pragma once

#include <memory>
#include <utility>

#include "engine/files/HeldEntry.h"
#include "engine/files/OwnChanges.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/SecondHand.h"
#include "engine/removal/RemovalDoor.h"
#include "engine/removal/SetAside.h"

namespace orrinvale {

/// The file system outlives it.
class PlainDoor final : public RemovalDoor {
public:
    /// `own` is what earlier removals of the same scan's entries did to their files.
    PlainDoor(const FileSystem& files, ProtectedPlaces places,
              std::shared_ptr<OwnChanges> own = std::make_shared<OwnChanges>())
        : m_files(files), m_places(std::move(places)), m_ground(files), m_own(std::move(own)) {}

    RemovalResult remove(const LeavingEntry& entry, const std::atomic<bool>& stop) override;

    void flush() override { m_ground.flush(); }

    [[nodiscard]] const ProtectedPlaces& places() const { return m_places; }

private:
    [[nodiscard]] RemovalResult removeCopy(const HeldEntry& held, const LeavingEntry& entry,
                                           const std::atomic<bool>& stop);
    [[nodiscard]] RemovalResult removeAside(SetAside& aside, const HeldEntry& held,
                                            const LeavingEntry& entry,
                                            const std::atomic<bool>& stop) const;
    [[nodiscard]] RemovalResult removeInPlace(const HeldEntry& held, const LeavingEntry& entry,
                                              const std::atomic<bool>& stop);
    void unlink(const HeldEntry& held, const std::string& name, const LeavingEntry& entry,
                const std::atomic<bool>& stop, RemovalResult& result) const;

    const FileSystem& m_files;
    const ProtectedPlaces m_places;
    RenameGround m_ground;
    const std::shared_ptr<OwnChanges> m_own;
    HeldParents m_parents;
    SecondHand m_second;
    bool m_isToldPlain = false;  // that copies go without being set aside, once
};

}  // namespace orrinvale
