// FolderContents: what lies in a folder at this moment, for a person to look at.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/files.h"

namespace orrinvale {

/// A value. Nothing is decided by it: what goes with a folder is listed anew when its turn comes.
struct FolderContents {
    struct Entry {
        std::string path;           ///< below the folder, exact bytes
        std::uint64_t bytes = 0;    ///< length of a file or of a link's text; 0 of all else
        std::int64_t modified = 0;  ///< nanoseconds since 1970
    };
    std::vector<Entry> entries;  ///< all but folders that hold something; by folder, then by name
    std::string fault;           ///< why it could not be listed to its end; then there are none
};

/// Opens nothing but folders. After a stop there is a fault.
[[nodiscard]] FolderContents contentsOf(const FileSystem& files, const std::string& folder,
                                        const std::atomic<bool>& stop);

}  // namespace orrinvale
