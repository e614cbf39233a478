// How two files come to have their bytes in common on the disk, as one extent or as one file.
// linux/LinuxSharing.cpp implements it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "platform/fileTypes.h"

namespace orrinvale {

/// What became of a stretch of two files.
struct SharedStretch {
    bool isSame = false;  ///< false: the contents differ, and nothing was shared
    std::uint64_t bytes =
        0;  ///< that the two have in common now, from the beginning of the stretch
};

/// Lets the target have a stretch of the source's extents in place of its own. The system compares
/// both under its locks, so that nobody who writes meanwhile loses anything; times stay. Both need
/// to be open for reading only; the target has to be this user's own or writable. Offsets are
/// multiples of 64 KiB, lengths too where they do not reach the end of both files. EOPNOTSUPP or
/// ENOTTY where the file system knows no shared extents, or may share without comparing: all but
/// btrfs and XFS. EXDEV for two file systems, EINVAL behind the end.
[[nodiscard]] SysResult<SharedStretch> shareStretch(int source, int target, std::uint64_t offset,
                                                    std::uint64_t length);

/// Whether the file could be a target, by a trial that changes nothing; the error that
/// shareStretch() would have otherwise. `size` is the file's, not 0.
[[nodiscard]] SysResult<void> trySharing(int target, std::uint64_t size);

/// Whether all data of two open files of equal contents lies in the same places of one disk
/// already, or needs no place of its own. Writes out first what waits to be written. An error where
/// the file system does not tell.
[[nodiscard]] SysResult<bool> hasSameExtents(int one, int other);

/// What a file has beside its bytes and times, which all names of it have in common.
struct FileBelongings {
    std::uint32_t owner = 0;
    std::uint32_t group = 0;
    std::uint32_t mode = 0;
    bool isFixed = false;     ///< nobody may change or remove it
    std::uint32_t flags = 0;  ///< FS_IOC_GETFLAGS: of copying on write, verity, encryption ...
    std::map<std::string, std::string> attributes = {};  ///< extended ones; ACLs are among them
    friend auto operator<=>(const FileBelongings&, const FileBelongings&) = default;
};
[[nodiscard]] SysResult<FileBelongings> belongingsOf(int file);

/// Whether what is written to such a file comes into its old place, on file systems that else write
/// to a new one. Two that share extents are alike in that.
[[nodiscard]] bool isWrittenInPlace(int file);

/// How many names the file system allows a file; nothing where no such limit is known.
[[nodiscard]] std::optional<std::uint32_t> mostNamesOf(int file);

/// Gives an open file a further name, never over anything: EEXIST. EMLINK at the limit of the file
/// system, EXDEV through another mount.
[[nodiscard]] SysResult<void> linkOpenFile(int file, int folder, const char* name);

/// All that waits to be written to the file system of an open file is on the disk when it returns.
[[nodiscard]] SysResult<void> writeOutFileSystem(int file);

/// Two entries of an open folder take each other's name, in one step.
[[nodiscard]] SysResult<void> exchangeNames(int folder, const char* one, const char* other);

/// Whether anybody may put entries into an open folder which belongs to another user than this.
[[nodiscard]] bool isOthersCommonFolder(int folder);

}  // namespace orrinvale
