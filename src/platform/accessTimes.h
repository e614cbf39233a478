// When entries were last read: how a scan asks for it, and where the answer means anything.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/fileTypes.h"

namespace orrinvale {

/// What askAccessTime() puts in the place of a mount id.
inline constexpr std::uint64_t accessTimeAsked = ~std::uint64_t{0};

/// Before FileSystem::readIdentities(): the look tells of this entry when it was last read, in the
/// place of its mount. Only the scan of the large files asks for it, so that no other one carries
/// eight bytes more for each entry.
inline void askAccessTime(CatalogEntry& entry) { entry.attributes.mount = accessTimeAsked; }

/// The answer, nanoseconds since 1970-01-01 UTC; nothing where none is known.
[[nodiscard]] inline std::optional<std::int64_t> toldAccessTime(const CatalogEntry& entry) {
    if (entry.error != 0 || entry.attributes.mount == accessTimeAsked) return std::nullopt;
    return static_cast<std::int64_t>(entry.attributes.mount);
}

/// Whether reading a file at the path leaves a time behind: not on what is mounted "noatime" or for
/// reading only. Most mounts are "relatime", which is true to a day. Nothing where the file system
/// answers with an error; may hang as long as it does.
[[nodiscard]] std::optional<bool> keepsAccessTimes(const std::string& path);

}  // namespace orrinvale
