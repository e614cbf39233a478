// Listing, attributes and opening on Linux. Reading is in LinuxReading.cpp, the table of mounts in
// LinuxMounts.cpp.
#include "platform/linux/LinuxFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/accessTimes.h"
#include "platform/standardStreams.h"

namespace orrinvale {
namespace {

// One listing call gives about a thousand entries of usual names: enough that the calls cost
// nothing, and a piece that is worth handing to another thread while the rest of a large folder is
// still being listed.
constexpr std::size_t listingBytes = 32 * 1024;

constexpr unsigned wantedAttributes = STATX_TYPE | STATX_NLINK | STATX_SIZE | STATX_BLOCKS |
                                      STATX_INO | STATX_MTIME | STATX_CTIME | STATX_BTIME |
                                      0x1000U;  // STATX_MNT_ID, not in every C library's header

struct LinuxDirectoryEntry {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
    char name[1];
};
constexpr std::size_t nameOffset =
    19;  // getdents64(2): 8 + 8 + 2 + 1, with no padding before the name

FileType typeOfListing(std::uint8_t type) {
    switch (type) {
        case DT_REG: return FileType::Regular;
        case DT_DIR: return FileType::Folder;
        case DT_LNK: return FileType::SymbolicLink;
        case DT_FIFO: return FileType::Fifo;
        case DT_SOCK: return FileType::Socket;
        case DT_CHR: return FileType::CharacterDevice;
        case DT_BLK: return FileType::BlockDevice;
        default: return FileType::Unknown;
    }
}

FileType typeOfMode(unsigned mode) {
    switch (mode & S_IFMT) {
        case S_IFREG: return FileType::Regular;
        case S_IFDIR: return FileType::Folder;
        case S_IFLNK: return FileType::SymbolicLink;
        case S_IFIFO: return FileType::Fifo;
        case S_IFSOCK: return FileType::Socket;
        case S_IFCHR: return FileType::CharacterDevice;
        case S_IFBLK: return FileType::BlockDevice;
        default: return FileType::Unknown;
    }
}

std::int64_t nanoseconds(const statx_timestamp& time) {
    // A corrupt inode may hold any 64-bit second; beyond the range of nanoseconds it is held at the
    // edge.
    constexpr std::int64_t most = INT64_MAX / 1'000'000'000;
    if (time.tv_sec >= most) return INT64_MAX;
    if (time.tv_sec <= -most) return INT64_MIN;
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

int askAttributes(int folder, const char* name, int flags, unsigned wanted, FileAttributes& out) {
    struct statx answer;
    if (::statx(folder, name, flags | AT_NO_AUTOMOUNT, wanted, &answer) != 0) return errno;
    out.type = typeOfMode(answer.stx_mode);
    out.links = answer.stx_nlink;
    out.size = answer.stx_size;
    out.onDisk = answer.stx_blocks * 512;
    out.device = ::makedev(answer.stx_dev_major, answer.stx_dev_minor);
    out.inode = answer.stx_ino;
    if (out.mount == accessTimeAsked) {
        const bool isTold = (wanted & answer.stx_mask & STATX_ATIME) != 0;
        if (isTold) out.mount = static_cast<std::uint64_t>(nanoseconds(answer.stx_atime));
    } else {
        std::memcpy(&out.mount, reinterpret_cast<const std::byte*>(&answer) + 144,
                    sizeof out.mount);  // stx_mnt_id
    }
    out.modified = nanoseconds(answer.stx_mtime);
    out.changed = nanoseconds(answer.stx_ctime);
    out.born = (wanted & answer.stx_mask & STATX_BTIME) != 0 ? nanoseconds(answer.stx_btime) : 0;
    return 0;
}

SysResult<Descriptor> openRetrying(int parent, const char* name, int flags) {
    for (;;) {
        const int number = ::openat(parent, name, flags);
        if (number >= 0) return Descriptor(number);
        if (errno != EINTR) return tl::unexpected(errno);
    }
}

bool isDots(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

}  // namespace

SysResult<Descriptor> LinuxFileSystem::openFolder(int parent, const char* name, Links links) const {
    const int follow = links == Links::Keep ? O_NOFOLLOW : 0;
    return openRetrying(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | follow);
}

SysResult<bool> LinuxFileSystem::readFolder(int folder, CatalogBatch& batch) const {
    if (!batch.buffer) batch.buffer = std::make_unique_for_overwrite<std::byte[]>(listingBytes);
    batch.entries.clear();
    while (batch.entries.empty()) {  // a call that gave nothing but "." and ".." is not the end
        const long count = ::syscall(SYS_getdents64, folder, batch.buffer.get(), listingBytes);
        if (count < 0) {
            if (errno == EINTR) continue;
            return tl::unexpected(errno);
        }
        if (count == 0) return false;
        const std::byte* const end = batch.buffer.get() + count;
        for (const std::byte* at = batch.buffer.get(); at < end;) {
            LinuxDirectoryEntry head;
            std::memcpy(&head, at, nameOffset);
            const char* const name = reinterpret_cast<const char*>(at) + nameOffset;
            if (!isDots(name)) {
                auto& entry = batch.entries.emplace_back();
                entry.name = name;
                entry.type = typeOfListing(head.type);
                entry.inode = head.inode;
            }
            at += head.length;
        }
    }
    return true;
}

void LinuxFileSystem::readAttributes(int folder, std::span<CatalogEntry> entries) const {
    for (CatalogEntry& entry : entries)
        entry.error = askAttributes(folder, entry.name, AT_SYMLINK_NOFOLLOW, wantedAttributes,
                                    entry.attributes);
}

void LinuxFileSystem::readSizes(int folder, std::span<CatalogEntry> entries) const {
    struct statx answer;
    for (CatalogEntry& entry : entries) {
        entry.error = 0;
        if (::statx(folder, entry.name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT,
                    STATX_TYPE | STATX_SIZE, &answer) != 0) {
            entry.error = errno;
            continue;
        }
        entry.attributes.type = typeOfMode(answer.stx_mode);
        entry.attributes.size = answer.stx_size;
    }
}

void LinuxFileSystem::readIdentities(int folder, std::span<CatalogEntry> entries) const {
    constexpr unsigned wanted = STATX_TYPE | STATX_NLINK | STATX_SIZE | STATX_BLOCKS | STATX_INO |
                                STATX_MTIME | STATX_CTIME | STATX_BTIME;
    for (CatalogEntry& entry : entries) {
        const unsigned also = entry.attributes.mount == accessTimeAsked ? STATX_ATIME : 0;
        entry.error =
            askAttributes(folder, entry.name, AT_SYMLINK_NOFOLLOW, wanted | also, entry.attributes);
    }
}

SysResult<Descriptor> LinuxFileSystem::holdEntry(int parent, const char* name) const {
    return openRetrying(parent, name, O_PATH | O_NOFOLLOW | O_CLOEXEC);
}

SysResult<std::string> LinuxFileSystem::placeOf(int descriptor) const {
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    std::array<char, PATH_MAX> path;  // the system gives no more, ENAMETOOLONG before that
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    if (length < 0) return tl::unexpected(errno);
    return std::string(path.data(), static_cast<std::size_t>(length));
}

SysResult<FileAttributes> LinuxFileSystem::attributes(int parent, const char* name,
                                                      Links links) const {
    FileAttributes out;
    const int follow = links == Links::Keep ? AT_SYMLINK_NOFOLLOW : 0;
    const int error = askAttributes(parent, name, follow, wantedAttributes, out);
    if (error != 0) return tl::unexpected(error);
    return out;
}

SysResult<FileAttributes> LinuxFileSystem::freshAttributes(int parent, const char* name,
                                                           Links links) const {
    FileAttributes out;
    const int follow = links == Links::Keep ? AT_SYMLINK_NOFOLLOW : 0;
    const int error =
        askAttributes(parent, name, follow | AT_STATX_FORCE_SYNC, wantedAttributes, out);
    if (error != 0) return tl::unexpected(error);
    return out;
}

SysResult<FileAttributes> LinuxFileSystem::attributes(int descriptor) const {
    FileAttributes out;
    const int error = askAttributes(descriptor, "", AT_EMPTY_PATH, wantedAttributes, out);
    if (error != 0) return tl::unexpected(error);
    return out;
}

SysResult<Descriptor> LinuxFileSystem::openFile(int parent, const char* name, Links links,
                                                ReadState& state) const {
    const int flags =
        O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (links == Links::Keep ? O_NOFOLLOW : 0);
    // Only the owner of a file may leave its access time alone; neighbours usually share their
    // owner, so a refusal is remembered until the caller moves on to another folder.
    if (!state.denyNoAccessTime) {
        auto file = openRetrying(parent, name, flags | O_NOATIME);
        if (file || file.error() != EPERM) return file;
        state.denyNoAccessTime = true;
    }
    return openRetrying(parent, name, flags);
}

SysResult<std::string> LinuxFileSystem::resolved(const std::string& path) const {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    if (!real) return tl::unexpected(errno);
    return std::string(real.get());
}

// The copies that the table begins with are closed with the thread; a refusal only costs time.
// ThreadSanitizer takes descriptors of one number for one descriptor, in whatever table, so that
// under it all threads share the table of the process.
void LinuxFileSystem::useOwnDescriptors() const {
#if !defined(__SANITIZE_THREAD__)
    if (::unshare(CLONE_FILES) == 0) keepOwnStandardError();
#endif
}

std::size_t LinuxFileSystem::descriptorLimit() const {
    static const std::size_t limit = [] {
        rlimit current{};
        if (::getrlimit(RLIMIT_NOFILE, &current) != 0) return std::size_t{256};
        rlimit raised = current;
        raised.rlim_cur = std::min<rlim_t>(current.rlim_max, 65536);
        if (raised.rlim_cur > current.rlim_cur && ::setrlimit(RLIMIT_NOFILE, &raised) == 0)
            current = raised;
        return static_cast<std::size_t>(std::min<rlim_t>(current.rlim_cur, 65536));
    }();
    return limit;
}

}  // namespace orrinvale
