// ShareDoor: the way on which a copy does not leave but gives its bytes up for those of the copy
// that stays, as one of the ways out of the program's one removal. ShareList.h has what goes it.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "engine/duplicates/share/ShareGivers.h"
#include "engine/duplicates/share/SharePair.h"
#include "engine/duplicates/share/shareContents.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/removal/RemovalDoor.h"

namespace orrinvale {

/// By extents, where the file system has such; the system compares then. Else, where that is asked
/// for, by a hard link: set aside, compared byte by byte, linked, or put back. What is written to a
/// file by one name reaches all its names, so that two become one only where all but their bytes
/// and times is equal. The file system outlives it.
class ShareDoor final : public RemovalDoor {
public:
    struct Order {
        /// Why no file may become another name of this copy, which has so many names now; empty
        /// where one may. nullptr: none may.
        std::function<std::string_view(const KeptCopy&, std::uint32_t names)> objectionToLink =
            nullptr;
        bool onlyLooks = false;  ///< tells what would become of each, and touches nothing
        /// The group of the copy whose turn it is; nullptr: none but the copy that stays gives.
        std::function<ShareGroup()> group = nullptr;
        /// Told of a copy that stays, or keeps its own bytes, whose time of change is another one
        /// since a link to it was taken back. May be empty.
        std::function<void(const RemovalResult::Shared&)> takenBack = nullptr;
    };
    ShareDoor(const FileSystem& files, ProtectedPlaces places, Order order)
        : m_files(files),
          m_places(std::move(places)),
          m_order(std::move(order)),
          m_ground(files),
          m_givers(files) {}

    [[nodiscard]] bool setsAside() const override {
        return m_order.objectionToLink != nullptr && !m_order.onlyLooks;
    }
    [[nodiscard]] bool replaces() const override { return true; }
    void flush() override { m_ground.flush(); }

    /// RemovalResult::shared where the bytes are in common afterwards; else why not.
    [[nodiscard]] RemovalResult remove(const LeavingEntry& entry,
                                       const std::atomic<bool>& stop) override;

private:
    struct Attempt {
        RemovalResult result;
        bool isOfThese = false;  ///< PairObjection::isOfThese
    };
    struct Ways {
        bool extents = true;
        bool link = true;
    };
    [[nodiscard]] RemovalResult share(LeavingEntry entry, const std::atomic<bool>& stop);
    [[nodiscard]] Attempt shareWithGivers(LeavingEntry& entry, const std::atomic<bool>& stop);
    [[nodiscard]] std::optional<ShareGivers::Kind> kindOf(const LeavingEntry& entry);
    [[nodiscard]] Attempt attempt(LeavingEntry& entry, CopyLook& look, Ways ways,
                                  const std::atomic<bool>& stop);
    [[nodiscard]] bool isOneSpace(const SharePair& pair);
    [[nodiscard]] Attempt shareExtents(const SharePair& pair, const std::atomic<bool>& stop);
    [[nodiscard]] SysResult<ShareEnd> stretchesOf(const SharePair& pair,
                                                  const std::atomic<bool>& stop);
    [[nodiscard]] std::uint32_t nameLooked(const SharePair& pair);
    [[nodiscard]] int writeOut(const SharePair& pair);
    [[nodiscard]] Attempt link(const SharePair& pair, const LeavingEntry& entry, CopyLook& look,
                               const std::atomic<bool>& stop);
    void learn(const SharePair& pair, const LinkEnd& end);

    const FileSystem& m_files;
    const ProtectedPlaces m_places;
    const Order m_order;
    RenameGround m_ground;
    HeldParents m_parents;
    std::set<std::uint64_t> m_withoutExtents;  // devices
    std::set<std::uint64_t> m_writtenOut;      // likewise
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::uint32_t>
        m_looked;  // names, by device and inode
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::uint32_t>
        m_promised;  // names that a file would get, likewise
    ShareGivers m_givers;
};

}  // namespace orrinvale
