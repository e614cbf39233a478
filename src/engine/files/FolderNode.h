// A folder that a scan has met: its name, its parent, its identity. Paths are put together from
// these when they are asked for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/fileTypes.h"
#include "platform/paths.h"

namespace orrinvale {

/// Lives in an Arena; written by the scan that found it, read-only afterwards.
struct FolderNode {
    const FolderNode* parent = nullptr;
    const char* name = nullptr;  ///< exact bytes; of a root, which has no parent, the whole path
    std::uint64_t device = 0;  ///< st_dev, inode and mount id as seen when the folder was opened; 0
                               ///< before, and the inode also where its number need not last
    std::uint64_t inode = 0;
    std::uint64_t mount = 0;
    bool throughLink = false;  ///< the name is a symbolic link that was followed
};

/// The path of the folder, or of the entry with that name in it. Exact bytes, no limit of length.
[[nodiscard]] std::string pathOf(const FolderNode& folder);
[[nodiscard]] std::string pathOf(const FolderNode& folder, std::string_view name);

/// Opens a folder by its path, also one longer than the system's limit for a path: it is then
/// opened piece by piece. Links on the way are followed; the caller compares identities where that
/// matters.
[[nodiscard]] SysResult<Descriptor> openFolderByPath(const FileSystem& files,
                                                     const std::string& path, Links last);

/// The same for a path relative to an open folder.
[[nodiscard]] SysResult<Descriptor> openFolderBelow(const FileSystem& files, int start,
                                                    std::string_view relative, Links last);

/// Opens a folder that a scan has met earlier; ESTALE when another folder stands at its path now.
[[nodiscard]] SysResult<Descriptor> reopenFolder(const FileSystem& files, const FolderNode& folder);

}  // namespace orrinvale
