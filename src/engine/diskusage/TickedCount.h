// TickedCount: what is ticked, counted afresh for the question before a removal. UsageRemoval.h
// removes what was counted.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/diskusage/FSNode.h"
#include "engine/diskusage/UsageCounts.h"
#include "engine/files/OwnChanges.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/RemovalResult.h"
#include "engine/files/SeenEntries.h"
#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// One entry that is to go, taken from the tree on the thread that owns it.
struct TickedEntry {
    FSNode* node = nullptr;
    std::string path;
    EntryIdentity identity;  ///< as the scan saw it
    bool isFolder = false;
    std::uint64_t size = 0;  ///< as the scan saw it
};

/// In the order of prePareDelData(). Main thread.
[[nodiscard]] std::vector<TickedEntry> tickedEntries(std::span<FSNode* const> delNodesArr);

/// What one of them holds now.
struct CountedEntry : TickedEntry {
    std::shared_ptr<const SeenEntries> seen;  ///< of a folder: what was met below it
};

struct TickedCount {
    /// Ticked, and may not go, or is not what the scan saw.
    struct Staying : StayedEntry {
        FSNode* node = nullptr;
    };
    std::vector<CountedEntry> entries;  ///< what is to go, in the order of the ticked ones
    std::uint64_t files = 0;            ///< whatever is no folder, those under the limit among them
    std::uint64_t folders = 0;          ///< the ticked ones among them
    std::uint64_t size = 0;             ///< bytes, each name of a file
    std::uint64_t onDisk = 0;  ///< what a removal can give back: blocks of files all names of which
                               ///< go, without extents that are shared with others
    bool isUpTo = false;  ///< less may come back: compressed files, or extents shared among those
                          ///< that go and nobody knows with whom else
    std::vector<Error> skipped;    ///< could not be read, and so will stay
    std::vector<Staying> staying;  ///< none of `entries`
    bool hasForeign = false;       ///< something is on another file system, and will stay
    bool hasVolumes = false;       ///< or in a volume of its own within this one
    bool stopped = false;
};

/// What a removal goes by, so that the question promises nothing that it would refuse.
struct RemovalRules {
    ProtectedPlaces places;
    std::shared_ptr<const OwnChanges> own;  ///< which are no changes; may be null
};

/// Counts by as many threads as pay, and returns when it is done or progress.stop is set; any
/// thread but the main one, by runAside() in the window. Entries on other file systems than their
/// ticked one are not counted, since no removal crosses a mount.
[[nodiscard]] TickedCount countTicked(const FileSystem& files, const RemovalRules& rules,
                                      std::vector<TickedEntry> ticked, UsageCounts& progress);

}  // namespace orrinvale
