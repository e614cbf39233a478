// UsageFolder: a folder of a walk of disk usage, and what pieces of its listing add to it. For the
// sources of UsageWalk alone.
#pragma once

#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "engine/diskusage/UsageWalk.h"
#include "engine/files/FolderWalk.h"

namespace orrinvale {

/// A folder from its finding to the moment at which all that is in it is counted.
struct UsageFolder final : WalkedFolder {
    explicit UsageFolder(UsageWalk& owner) : walk(owner) {}
    ~UsageFolder() override { walk.complete(*this); }

    UsageWalk& walk;
    FSNode* node = nullptr;     // that was made at its finding, as on a level that stands at once
    CountedTop* top = nullptr;  // of the folder directly in the chosen one that this lies in
    SeenEntries::Key key = SeenEntries::chosenFolder;
    std::int64_t born = 0;
    bool isListed = false;
    bool isGone = false;

    // Of all in it that is counted so far; guarded by UsageWalk::mutexOf().
    std::uint8_t marks = 0;       // its own, and of what has no node
    std::uint8_t childMarks = 0;  // of what has one
    std::uint32_t leftOutCount = 0;
    std::uint64_t leftOutSize = 0;
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;  // from the start on with its own blocks
    std::vector<FSNode::Sized> children;
    std::unique_ptr<LinkedFiles> linked;
    RecordedEntry* recorded = nullptr;
};

/// What some entries of a folder add to it.
struct UsageWalk::Piece {
    struct Link {
        std::uint64_t device, inode, onDisk;
        std::uint32_t links;
    };
    struct Passing {
        const CatalogEntry* entry;
        std::uint8_t marks;
    };
    std::uint8_t marks = 0;  // of entries without a node
    std::uint8_t childMarks = 0;
    std::uint32_t leftOutCount = 0;
    std::uint64_t leftOutSize = 0;
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;
    std::uint64_t files = 0;
    std::vector<Passing> passing;  // files; their names lie in the batch in hand
    std::vector<Link> linked;
    std::vector<Passing> large;         // files to be recorded, as those that pass
    RecordedEntry* recorded = nullptr;  // these
    RecordedEntry* lastRecorded = nullptr;
    std::vector<std::pair<SeenEntries::Key, SeenState>> seen;
};

namespace usagewalk {

constexpr std::uint8_t unreadMarks = FSNode::Unread | FSNode::UnreadWithin;
constexpr std::uint8_t foreign = FSNode::Foreign | FSNode::ForeignWithin;

}  // namespace usagewalk

}  // namespace orrinvale
