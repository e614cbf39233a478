// The file system as the engine sees it: folders, attributes, reading. platform/linux/LinuxFiles.h
// implements it. What its operations speak of is in platform/fileTypes.h: headers include that one,
// and only sources that call an operation include this one.
//
// Everything works relative to an open folder, so that no operation depends on the length of a path
// and none can be led astray by a folder that is exchanged for a link meanwhile. Failures are errno
// values; the caller, who knows the path, makes an Error of them where one is wanted
// (platform/error.h).
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Thread-safe: holds no state of its own that changes. Every operation retries EINTR.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Opens a folder for listing and as a base for other operations. `parent` is an open folder,
    /// or noParent for an absolute or working-directory-relative name. ENOTDIR when it is none,
    /// ELOOP when it is a link and links are kept.
    [[nodiscard]] virtual SysResult<Descriptor> openFolder(int parent, const char* name,
                                                           Links links) const = 0;

    /// Replaces the batch by the next entries of the folder, "." and ".." left out. False at the
    /// end.
    [[nodiscard]] virtual SysResult<bool> readFolder(int folder, CatalogBatch& batch) const = 0;

    /// Fills `attributes` or `error` of each entry, links kept, with exactly one statx each.
    virtual void readAttributes(int folder, std::span<CatalogEntry> entries) const = 0;

    [[nodiscard]] virtual SysResult<FileAttributes> attributes(int parent, const char* name,
                                                               Links links) const = 0;
    [[nodiscard]] virtual SysResult<FileAttributes> attributes(int descriptor) const = 0;

    /// Opens a file for reading. Never blocks on a FIFO, never becomes the controlling terminal's
    /// owner; the caller checks with attributes() that it is a regular file before it trusts what
    /// it reads. Leaves the access time alone where it may.
    [[nodiscard]] virtual SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                                         ReadState& state) const = 0;

    /// Call beginReading() before the first read of each stretch of an open file, and endReading()
    /// after the last. Together they leave the page cache as it was: what was resident stays, what
    /// reading brought in goes. `device` is the file's. Where neither uncached reads nor the
    /// residency of somebody else's file can be had, what is read stays.
    virtual void beginReading(int file, std::uint64_t device, std::uint64_t offset,
                              std::uint64_t length, ReadState& state) const = 0;
    virtual void endReading(int file, ReadState& state) const = 0;

    /// Reads at an offset until the buffer is full or the file ends; the count of bytes read.
    [[nodiscard]] virtual SysResult<std::size_t> read(int file, std::span<std::byte> buffer,
                                                      std::uint64_t offset,
                                                      ReadState& state) const = 0;

    /// The same, but only what needs no waiting for the disk: EAGAIN, with nothing begun, when not
    /// all of it is in memory or the system can not tell.
    [[nodiscard]] virtual SysResult<std::size_t> readResident(int file, std::span<std::byte> buffer,
                                                              std::uint64_t offset,
                                                              ReadState& state) const = 0;

    /// Shows a stretch of a file that is in memory without copying it: calls visit(bytes) once and
    /// is true. False, without a call, when not all of it is in memory or the system can not tell;
    /// a page-aligned offset is asked for. When the file shrinks meanwhile the missing bytes read
    /// as zeros, and the answer is the error EIO.
    [[nodiscard]] virtual SysResult<bool> visitResident(
        int file, std::uint64_t offset, std::uint64_t length,
        const std::function<void(std::span<const std::byte>)>& visit) const = 0;

    /// The next stretch of data at or behind the offset; what lies before it, and behind the last
    /// one, is holes that read as zeros. ENXIO when only holes follow. File systems that do not
    /// tell have one stretch to the end.
    struct DataStretch {
        std::uint64_t begin, end;
    };
    [[nodiscard]] virtual SysResult<DataStretch> nextData(int file, std::uint64_t offset) const = 0;

    /// Announces reads of single places, so that nothing is read ahead. Call it before
    /// beginReading().
    virtual void expectRandomReads(int file) const = 0;

    /// Devices (st_dev) on which kernel file systems such as proc and sysfs are mounted at this
    /// moment. Scans do not enter them.
    [[nodiscard]] virtual std::vector<std::uint64_t> kernelDevices() const = 0;

    /// The path with every link resolved.
    [[nodiscard]] virtual SysResult<std::string> resolved(const std::string& path) const = 0;

    /// How many descriptors this process may hold open; raised to the hard limit at the first call.
    [[nodiscard]] virtual std::size_t descriptorLimit() const = 0;

    /// Holds a folder as a base for other operations; to be searched is enough, it need not be
    /// readable and can not be listed. Never by a link of /proc that leads straight to another
    /// process's folder. With `onTheWay` Keep by no link at all. ELOOP for both. Kernels before 5.6
    /// are helped by a walk of our own, which follows no link inside /proc whatsoever.
    [[nodiscard]] virtual SysResult<Descriptor> holdFolder(int parent, const char* path,
                                                           Links onTheWay) const = 0;

    /// Opens a folder by one name for listing, never through a link: ENOTDIR or ELOOP. EXDEV when
    /// something is mounted there, without asking what is; kernels before 5.6 open it, so that the
    /// caller compares device and mount as well.
    [[nodiscard]] virtual SysResult<Descriptor> openInside(int parent, const char* name) const = 0;

    /// Removes an entry by its name: an empty folder for the type Folder (ENOTDIR when it is none),
    /// anything else for every other type (EISDIR when it is a folder). Of a link the link.
    [[nodiscard]] virtual SysResult<void> removeEntry(int folder, const char* name,
                                                      FileType type) const = 0;

    /// Gives an entry another name in another folder of the same volume, never over an entry that
    /// is there: EEXIST. EXDEV on another volume, EINVAL for a folder into itself. Where the file
    /// system knows no such promise a file goes by a second name (EPERM where there are none), and
    /// a folder may take the place of an empty one.
    [[nodiscard]] virtual SysResult<void> moveEntry(int folder, const char* name, int newFolder,
                                                    const char* newName) const = 0;

    /// Gives an entry another name in its folder, never over an entry that is there: EEXIST. EINVAL
    /// or ENOSYS where the file system can not promise that, with no way around; EXDEV where it
    /// would have to copy. Folders of layers, for one.
    [[nodiscard]] virtual SysResult<void> renameInside(int folder, const char* name,
                                                       const char* newName) const = 0;

    /// False on file systems where a rename gives a file another inode number, or where a power cut
    /// in the middle may lose both names: FAT, exFAT and ext2.
    [[nodiscard]] virtual bool renamesSafely(int folder) const = 0;

    /// Whether anybody holds this open file open or mapped for writing; tells also after the writer
    /// closed it but kept a mapping. False where the system does not tell: other users' files, file
    /// systems without leases.
    [[nodiscard]] virtual bool isOpenForWriting(int file) const = 0;

    /// Takes the mark from an open file or folder that keeps even its owner from changing and
    /// removing it. True when it had one; false also on file systems that know none.
    [[nodiscard]] virtual SysResult<bool> clearImmutable(int descriptor) const = 0;

    /// What is mounted where, at this moment. An error when the system does not tell.
    [[nodiscard]] virtual SysResult<std::vector<MountPoint>> mountPoints() const = 0;

    /// From the start of a thread on that hands no descriptor to another and takes none: gives it a
    /// table of descriptors of its own, where the system can. Opening and closing then need no
    /// lock; 15 % of the time of reading small files, measured.
    virtual void useOwnDescriptors() const = 0;

    static constexpr int noParent = -100;  ///< AT_FDCWD

    /// Like attributes(), and asked of whoever keeps the entry, past what this machine remembers of
    /// it. A second view of a folder that changed under it is only told this way.
    [[nodiscard]] virtual SysResult<FileAttributes> freshAttributes(int parent, const char* name,
                                                                    Links links) const = 0;

    /// Devices (st_dev) whose inode numbers need not last from one look to the next: FAT, exFAT,
    /// and what programs serve (FUSE). An entry there is known by its path, its size and its times.
    [[nodiscard]] virtual std::vector<std::uint64_t> devicesOfPassingInodes() const = 0;

    /// Fills type and size of `attributes`, or `error`, of each entry, links kept; the other
    /// attributes mean nothing. Asks the file system for no more than these two, which spares
    /// network file systems a round trip.
    virtual void readSizes(int folder, std::span<CatalogEntry> entries) const = 0;

    /// Fills of `attributes`, or `error`, of each entry what tells it from others and what it
    /// takes, links kept, with exactly one statx each: type, links, size, onDisk, device, inode,
    /// born. The other attributes mean nothing.
    virtual void readIdentities(int folder, std::span<CatalogEntry> entries) const = 0;

    /// Takes hold of an entry of whatever type without opening it: a link itself, a FIFO, a folder
    /// or a file that may not be read. Good for attributes(), as the parent of other operations and
    /// for placeOf(), and for nothing else.
    [[nodiscard]] virtual SysResult<Descriptor> holdEntry(int parent, const char* name) const = 0;

    /// Whether files on the file system of an open entry may have extents in common, as reflinks
    /// and snapshots do, or be kept compressed, so that blocks tell less than what a removal frees.
    [[nodiscard]] virtual bool sharesExtents(int descriptor) const = 0;

    /// Bytes of an open file in extents that other files have too, holes left out. An error where
    /// the file system does not tell.
    [[nodiscard]] virtual SysResult<std::uint64_t> sharedBytes(int file) const = 0;

    /// Where an open or held entry stands now: an absolute path without links, of at most a page (4
    /// KiB). For an entry that is gone the system makes up a name: look up what you get.
    [[nodiscard]] virtual SysResult<std::string> placeOf(int descriptor) const = 0;
};

}  // namespace orrinvale
