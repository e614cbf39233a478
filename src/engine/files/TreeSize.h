// TreeSize: the bytes below a folder, measured fast. FolderUtilities asks it for every row of a
// cleaning list, the command `size` for every path.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "engine/files/SkipList.h"
#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// What a tree holds.
struct SizeTotals {
    std::uint64_t bytes =
        0;  ///< logical lengths of regular files and of the texts of links; held at 2^64 - 1
    std::uint64_t files = 0;    ///< entries that are no folders, of whatever type
    std::uint64_t folders = 0;  ///< folders below the start
};

/// The same while it grows; any thread may read. One object may count several trees one after
/// another.
struct SizeCounts {
    std::atomic<std::uint64_t> bytes{0};
    std::atomic<std::uint64_t> files{0};
    std::atomic<std::uint64_t> folders{0};
};

/// How a caller looks on, all optional and not owned. `stop` ends the measuring early with what was
/// found so far. `skipped` gets what could not be read; an entry that went away meanwhile is none
/// of it.
struct SizeWatch {
    const std::atomic<bool>* stop = nullptr;
    SizeCounts* counts = nullptr;
    SkipList* skipped = nullptr;
};

/// Measures one start after another; each call uses as many threads as pay and returns when they
/// are done. The file system and what the watch points to must outlive the object.
///
/// Each name of a file counts, so a file with two links in the tree counts twice. Folders
/// themselves count nothing. Links are not followed, the start included. Mounted file systems below
/// the start count, but the kernel's own (proc, sysfs, ...) only when the start lies in them.
/// Memory does not grow with the width of a folder; a descriptor is held for folders on the way to
/// those being listed, up to an eighth of what the process may have, and deeper trees are measured
/// by one thread.
class TreeSize final {
public:
    explicit TreeSize(const FileSystem& files, const SizeWatch& watch = {})
        : m_files(files), m_watch(watch) {}

    /// The entry at a path of any length. The error when it is not there, or is a folder that can
    /// not be listed.
    [[nodiscard]] Result<SizeTotals> ofPath(const std::string& path) const;

    /// The entry with that name in an open folder, or what the descriptor itself holds when the
    /// name is empty. `shown` is the path that errors give for the start.
    [[nodiscard]] Result<SizeTotals> ofEntry(int parent, const std::string& name,
                                             const std::string& shown) const;

private:
    const FileSystem& m_files;
    const SizeWatch m_watch;
};

/// The bytes that an entry counts: files and links have a length, all others none.
[[nodiscard]] inline std::uint64_t countedSize(const FileAttributes& entry) {
    return entry.type == FileType::Regular || entry.type == FileType::SymbolicLink ? entry.size : 0;
}

}  // namespace orrinvale
