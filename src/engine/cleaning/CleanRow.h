// CleanRow: one entry directly in a folder of a category, as a scan saw it. CleanWalk.h makes them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/cleaning/CleanablePlaces.h"
#include "engine/files/EntryIdentity.h"
#include "engine/files/SeenEntries.h"

namespace orrinvale {

/// Sizes count what may go, and that alone.
struct CleanRow {
    std::string path;  ///< by the folder's name, exact bytes
    EntryIdentity identity;
    CleanCategory rules = CleanCategory::UserCaches;
    std::uint64_t bytes = 0;   ///< lengths, as TreeSize counts them
    std::uint64_t onDisk = 0;  ///< what the disk gets back; files whose other names lie elsewhere
                               ///< give nothing
    std::uint64_t files = 0;   ///< entries that are no folders
    std::int64_t newest = 0;   ///< the later of the newest times of writing and of change in it,
                               ///< nanoseconds since 1970-01-01 UTC
    std::uint64_t keptBytes = 0;
    KeptBecause kept = KeptBecause::Nothing;  ///< why it stays, in whole or in part
    std::string_view keptWords;
    bool goesWhole = true;                    ///< else file by file, and folders stay
    bool isBegun = false;                     ///< a removal took a part of it since
    std::shared_ptr<const SeenEntries> seen;  ///< of a folder: what the scan saw in it and may go

    [[nodiscard]] bool staysWhole() const { return kept < KeptBecause::Rule; }
    /// Whether there is anything to go.
    [[nodiscard]] bool isOffered() const { return !staysWhole() && (goesWhole || files > 0); }
};

}  // namespace orrinvale
