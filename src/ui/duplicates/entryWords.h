// entryWords: what goes, stays or came back in words: folders and files, each counted by itself.
#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>

namespace orrinvale {

/// Folders go as wholes, and what is in them is not counted.
struct EntryCounts {
    std::size_t files = 0;
    std::size_t folders = 0;
    [[nodiscard]] std::size_t all() const { return files + folders; }
};

/// "1 folder and 2 files"; of one kind alone where there is none of the other.
[[nodiscard]] QString countedEntries(const EntryCounts& counts);

/// "1 folder and 2 files, 4.00 KB, go for good."
[[nodiscard]] QString goForGoodText(const EntryCounts& counts, std::uint64_t bytes);

}  // namespace orrinvale
