// The plain types of the file system: what it tells of files, and how it answers. platform/files.h
// has the operations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <tl/expected.hpp>
#include <vector>

#include "platform/descriptor.h"

namespace orrinvale {

class FileSystem;

/// A value, or the errno of the system call that failed.
template <class T> using SysResult = tl::expected<T, int>;

enum class FileType : std::uint8_t {
    Unknown,
    Regular,
    Folder,
    SymbolicLink,
    Fifo,
    Socket,
    CharacterDevice,
    BlockDevice
};

/// Whether the last component of a name is followed when it is a symbolic link.
enum class Links : std::uint8_t { Follow, Keep };

/// What one statx(2) tells. Times are nanoseconds since 1970-01-01 UTC, sizes are bytes.
struct FileAttributes {
    FileType type = FileType::Unknown;
    std::uint32_t links = 0;   ///< hard links
    std::uint64_t size = 0;    ///< for a symbolic link the length of its text
    std::uint64_t onDisk = 0;  ///< space taken on the disk
    std::uint64_t device = 0;  ///< st_dev
    std::uint64_t inode = 0;
    std::uint64_t mount = 0;  ///< mount id, 0 where the kernel gives none (before 5.8)
    std::int64_t modified = 0;
    std::int64_t changed = 0;  ///< change of the inode
    std::int64_t born = 0;     ///< making of the inode; 0 where the file system keeps no such
                               ///< time
};

/// One entry of a folder. `name` points into the batch that holds the entry.
struct CatalogEntry {
    const char* name = nullptr;  ///< NUL-terminated, exact bytes
    FileType type =
        FileType::Unknown;  ///< as the listing tells; Unknown on file systems that do not tell
    int error = 0;          ///< errno of readAttributes, 0 when `attributes` holds
    std::uint64_t inode = 0;
    FileAttributes attributes;  ///< only after readAttributes
};

/// About a thousand entries of one folder, in the order in which the system gives them. Reusable;
/// owns its buffer.
struct CatalogBatch {
    std::unique_ptr<std::byte[]> buffer;
    std::vector<CatalogEntry> entries;
};

/// The state of reading files one after another through one thread; see FileSystem::beginReading.
struct ReadState {
    struct Range {
        std::uint64_t offset, length;
    };
    std::uint64_t device = ~std::uint64_t{0};  ///< the device that `uncached` speaks of
    bool uncached = false;                     ///< this device reads without leaving pages behind
    bool denyNoAccessTime =
        false;  ///< an open was refused O_NOATIME; clear it when the folder changes
    std::vector<Range>
        notResident;  ///< what has to be dropped at the end, for devices that can not
};

/// A place at which a file system is mounted, as an absolute path without links.
struct MountPoint {
    std::string path;
    bool mayHang =
        false;  ///< served by another machine or by a program, whose answer may never come
};

}  // namespace orrinvale
