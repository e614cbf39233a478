// saveHashes(): the file of remembered hashes made anew, of what it holds and of what a search
// found out. HashCache.h decides when.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "engine/duplicates/cache/HashRecord.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "platform/error.h"

namespace orrinvale {

/// What a search newly knows of the files of its list, by their places in it.
struct FreshHashes {
    std::vector<std::uint8_t> known;  ///< KnownHashes that were read; as long as the list
    std::vector<std::pair<std::uint32_t, std::uint64_t>> tails;  ///< with their hashes
};

/// A device whose files may be remembered.
struct KnownVolume {
    std::uint64_t device = 0;
    VolumeName name;
};

struct HashLimits {
    std::int64_t now = 0;         ///< by fileClock()
    std::uint64_t mostBytes = 0;  ///< what was not used for longest goes first
    bool stampsRecalled = false;  ///< what was recalled counts as used now
    bool mustStand = false;       ///< nothing is written where no file is any more
};

/// Replaces the file whole, merged with what others wrote into it meanwhile; nothing of what can
/// not be trusted in it stays. Files on other devices than these are left out. Nothing is written
/// into a folder that is another's (EPERM).
[[nodiscard]] Result<void> saveHashes(const std::string& path, const FileList& list,
                                      const FreshHashes& fresh,
                                      const std::vector<KnownVolume>& volumes,
                                      const HashLimits& limits);

}  // namespace orrinvale
