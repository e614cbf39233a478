// ShareOutlook: what sharing the space of a plan's copies would come to, told before anybody
// agrees.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/base/Progress.h"
#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/duplicates/share/ShareDoor.h"
#include "engine/duplicates/share/ShareList.h"

namespace orrinvale {

struct ShareOutlook {
    struct Way {
        std::size_t files = 0;
        std::uint64_t bytes = 0;  ///< that come free at the most
    };
    Way extents = {};
    Way links = {};           ///< what extents can not share
    std::size_t already = 0;  ///< have nothing to give
    /// Taken out of the plan: folders and symbolic links, and groups of which no copy stays.
    std::size_t noFiles = 0, wholeGroups = 0;
    std::vector<StayedEntry> kept = {};         ///< what neither way can share, with the reasons
    std::shared_ptr<ShareList> list = nullptr;  ///< the plan, for the job that does it
};

/// What of a plan can share at all. Folders and symbolic links are taken out, and groups of which
/// no copy stays.
struct ShareablePlan {
    DuplicatePlan plan;
    std::vector<StayedEntry> folders = {};  ///< that were taken out, with the reason
    std::size_t links = 0, wholeGroups = 0;
};
[[nodiscard]] ShareablePlan shareableOf(DuplicatePlan plan);

/// By hard links too where that is asked for. Changes nothing and reads no contents: those are
/// compared when it is done. Up to a stop. May wait for slow disks; any thread.
[[nodiscard]] ShareOutlook lookAtSharing(const FileSystem& files, ProtectedPlaces places,
                                         DuplicatePlan plan, bool mayLink, ProgressBox& progress,
                                         const std::atomic<bool>& stop);

/// What a door for this list is told.
[[nodiscard]] ShareDoor::Order shareOrder(const std::shared_ptr<ShareList>& list, bool mayLink,
                                          bool onlyLooks = false);

}  // namespace orrinvale
