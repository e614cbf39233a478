// SeenFolder: what the walk of a search tells of a folder besides its files, and the digests that
// stand for entries. FolderFinding.h makes groups of equal folders from it.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "engine/files/FolderNode.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// A folder outside of bundles. Each stands before those that lie in it, which follow it at once.
struct SeenFolder {
    const FolderNode* node = nullptr;
    std::uint64_t emptyNames = 0;  ///< sum of entryDigest() of the empty files in it
    std::uint32_t entries = 0;     ///< all that stand directly in it, left out ones too
    std::uint32_t emptyFiles = 0;
    bool isWhole = false;  ///< it was entered, and listed to its end, and no file is mounted in it
};

/// Spreads a number over all bits: the last step of splitmix64.
[[nodiscard]] constexpr std::uint64_t spread(std::uint64_t value) {
    value = (value ^ (value >> 30U)) * 0xBF58'476D'1CE4'E5B9;
    value = (value ^ (value >> 27U)) * 0x94D0'49BB'1331'11EB;
    return value ^ (value >> 31U);
}

[[nodiscard]] constexpr std::uint64_t joined(std::uint64_t digest, std::uint64_t part) {
    return spread(digest + 0x9E37'79B9'7F4A'7C15) ^ spread(part + (digest << 1U));
}

/// Stands for an entry: its name by the bytes, its type, and two numbers that stand for what it
/// holds. Of entries of one folder the digests are added up, so that no order is needed.
[[nodiscard]] inline std::uint64_t entryDigest(std::string_view name, FileType type,
                                               std::uint64_t size = 0, std::uint64_t contents = 0) {
    const std::uint64_t named = joined(std::hash<std::string_view>()(name), name.size());
    return joined(joined(joined(named, static_cast<std::uint64_t>(type)), size), contents);
}

}  // namespace orrinvale
