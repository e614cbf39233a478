// Shared extents (ioctl_fideduperange(2), FIEMAP) and hard links by descriptor
// (platform/sharing.h).
#include <fcntl.h>
#include <fmt/format.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/sharing.h"

namespace orrinvale {
namespace {

/// The extents of a file one after another.
class ExtentReader final {
public:
    struct Piece {
        std::uint64_t logical, physical, length;
        bool isTold;    ///< the places mean something
        bool isInline;  ///< kept beside the file's name, in no place of its own
    };

    explicit ExtentReader(int file) : m_file(file) {}

    /// Nothing behind the last one.
    SysResult<std::optional<Piece>> next() {
        if (m_next == m_pieces.size() && !m_isLast)
            if (const int error = fill(); error != 0) return tl::unexpected(error);
        if (m_next == m_pieces.size()) return std::nullopt;
        return m_pieces[m_next++];
    }

private:
    static constexpr std::size_t most = 128;  // extents a call

    int fill() {
        alignas(fiemap) std::array<std::byte, sizeof(fiemap) + most * sizeof(fiemap_extent)> room;
        fiemap head{};
        head.fm_start = m_from;
        head.fm_length = FIEMAP_MAX_OFFSET - m_from;
        head.fm_flags = FIEMAP_FLAG_SYNC;
        head.fm_extent_count = most;
        std::memcpy(room.data(), &head, sizeof head);
        while (::ioctl(m_file, FS_IOC_FIEMAP, room.data()) != 0)
            if (errno != EINTR) return errno;
        std::memcpy(&head, room.data(), sizeof head);
        m_pieces.clear();
        m_next = 0;
        for (std::size_t i = 0; i < head.fm_mapped_extents; ++i) add(room.data(), i);
        m_isLast = m_isLast || m_pieces.empty();
        return 0;
    }

    void add(const std::byte* room, std::size_t index) {
        constexpr unsigned inlined = FIEMAP_EXTENT_DATA_INLINE | FIEMAP_EXTENT_DATA_TAIL;
        constexpr unsigned untold = FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC | inlined;
        fiemap_extent extent;
        std::memcpy(&extent, room + sizeof(fiemap) + index * sizeof extent, sizeof extent);
        m_pieces.push_back({extent.fe_logical, extent.fe_physical, extent.fe_length,
                            (extent.fe_flags & untold) == 0, (extent.fe_flags & inlined) != 0});
        m_from = extent.fe_logical + extent.fe_length;
        m_isLast = (extent.fe_flags & FIEMAP_EXTENT_LAST) != 0;
    }

    const int m_file;
    std::vector<Piece> m_pieces;
    std::size_t m_next = 0;
    std::uint64_t m_from = 0;
    bool m_isLast = false;
};

SysResult<std::string> attributeOf(int file, const char* name) {
    for (;;) {
        const ssize_t size = ::fgetxattr(file, name, nullptr, 0);
        if (size < 0) return tl::unexpected(errno);
        std::string value(static_cast<std::size_t>(size), '\0');
        const ssize_t got = ::fgetxattr(file, name, value.data(), value.size());
        if (got < 0 && errno == ERANGE) continue;  // it grew meanwhile
        if (got < 0) return tl::unexpected(errno);
        value.resize(static_cast<std::size_t>(got));
        return value;
    }
}

SysResult<std::string> attributeNames(int file) {
    for (;;) {
        const ssize_t size = ::flistxattr(file, nullptr, 0);
        if (size < 0 && errno == ENOTSUP) return std::string();
        if (size < 0) return tl::unexpected(errno);
        std::string names(static_cast<std::size_t>(size), '\0');
        const ssize_t got = ::flistxattr(file, names.data(), names.size());
        if (got < 0 && errno == ERANGE) continue;
        if (got < 0) return tl::unexpected(errno);
        names.resize(static_cast<std::size_t>(got));
        return names;
    }
}

// Others take the same order and need not compare: some that are served by another machine copied
// whatever they were told to.
bool comparesWhatItShares(int file) {
    struct statfs system {};
    return ::fstatfs(file, &system) == 0 &&
           (system.f_type == BTRFS_SUPER_MAGIC || system.f_type == XFS_SUPER_MAGIC);
}

bool isOneDevice(int one, int other) {
    struct stat first {};
    struct stat second {};
    return ::fstat(one, &first) == 0 && ::fstat(other, &second) == 0 &&
           first.st_dev == second.st_dev;
}

// What chattr(1) sets, and what a file system does with the bytes. Whatever knows no such flags
// answers an error.
std::uint32_t flagsOf(int file) {
    constexpr unsigned meant =
        FS_NOCOW_FL | FS_COMPR_FL | FS_NOCOMP_FL | FS_NODUMP_FL | FS_VERITY_FL | FS_ENCRYPT_FL;
    int flags = 0;
    return ::ioctl(file, FS_IOC_GETFLAGS, &flags) == 0 ? static_cast<unsigned>(flags) & meant : 0;
}

}  // namespace

SysResult<SharedStretch> shareStretch(int source, int target, std::uint64_t offset,
                                      std::uint64_t length) {
    if (!comparesWhatItShares(target))
        return tl::unexpected(isOneDevice(source, target) ? EOPNOTSUPP : EXDEV);
    file_dedupe_range order{};
    file_dedupe_range_info info{};
    order.src_offset = info.dest_offset = offset;
    order.src_length = length;
    order.dest_count = 1;
    info.dest_fd = target;
    alignas(file_dedupe_range) std::array<std::byte, sizeof order + sizeof info> room;
    for (;;) {
        std::memcpy(room.data(), &order, sizeof order);
        std::memcpy(room.data() + sizeof order, &info, sizeof info);
        if (::ioctl(source, FIDEDUPERANGE, room.data()) == 0) break;
        if (errno != EINTR) return tl::unexpected(errno);
    }
    std::memcpy(&info, room.data() + sizeof order, sizeof info);
    if (info.status < 0) return tl::unexpected(-info.status);
    const bool isSame = info.status == FILE_DEDUPE_RANGE_SAME;
    return SharedStretch{isSame, isSame ? std::uint64_t{info.bytes_deduped} : 0};
}

// With itself, in its own place: file systems that know shared extents answer EINVAL to that, all
// others as to every stretch.
SysResult<void> trySharing(int target, std::uint64_t size) {
    constexpr std::uint64_t most = 64 * 1024;
    const auto tried = shareStretch(target, target, 0, std::min(size, most));
    if (tried || tried.error() == EINVAL) return {};
    return tl::unexpected(tried.error());
}

SysResult<bool> hasSameExtents(int one, int other) {
    ExtentReader readers[] = {ExtentReader(one), ExtentReader(other)};
    ExtentReader::Piece pieces[2]{};
    for (;;) {
        bool isEnd[2]{};
        for (int i = 0; i < 2; ++i) {
            if (pieces[i].length > 0) continue;
            const auto next = readers[i].next();
            if (!next) return tl::unexpected(next.error());
            isEnd[i] = !next->has_value();
            if (!isEnd[i]) pieces[i] = **next;
        }
        if (isEnd[0] || isEnd[1]) return isEnd[0] && isEnd[1];
        const std::uint64_t step = std::min(pieces[0].length, pieces[1].length);
        const bool isOnePlace = pieces[0].isTold && pieces[1].isTold &&
                                pieces[0].logical == pieces[1].logical &&
                                pieces[0].physical == pieces[1].physical;
        if (step == 0 || !(isOnePlace || (pieces[0].isInline && pieces[1].isInline))) return false;
        for (auto& each : pieces) {
            each.logical += step;
            each.physical += step;
            each.length -= step;
        }
    }
}

SysResult<FileBelongings> belongingsOf(int file) {
    struct statx seen {};
    if (::statx(file, "", AT_EMPTY_PATH, STATX_UID | STATX_GID | STATX_MODE, &seen) != 0)
        return tl::unexpected(errno);
    constexpr std::uint64_t fixed = STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND;
    FileBelongings found{seen.stx_uid, seen.stx_gid, seen.stx_mode,
                         (seen.stx_attributes & fixed) != 0, flagsOf(file)};
    const auto names = attributeNames(file);
    if (!names) return tl::unexpected(names.error());
    for (std::size_t at = 0; at < names->size();) {
        const std::string name(names->c_str() + at);
        at += name.size() + 1;
        auto value = attributeOf(file, name.c_str());
        if (!value) return tl::unexpected(value.error());
        found.attributes.emplace(name, std::move(*value));
    }
    return found;
}

bool isWrittenInPlace(int file) { return (flagsOf(file) & FS_NOCOW_FL) != 0; }

// pathconf(3) answers its own guess for most of them.
std::optional<std::uint32_t> mostNamesOf(int file) {
    constexpr std::uint32_t ofExt4 = 65000;
    constexpr std::uint32_t ofBtrfs = 65535;
    struct statfs system {};
    if (::fstatfs(file, &system) != 0) return std::nullopt;
    if (system.f_type == EXT4_SUPER_MAGIC) return ofExt4;
    if (system.f_type == BTRFS_SUPER_MAGIC) return ofBtrfs;
    return std::nullopt;
}

// A link by an empty name takes a right that ordinary users do not have.
SysResult<void> linkOpenFile(int file, int folder, const char* name) {
    const std::string link = fmt::format("/proc/self/fd/{}", file);
    if (::linkat(AT_FDCWD, link.c_str(), folder, name, AT_SYMLINK_FOLLOW) == 0) return {};
    return tl::unexpected(errno);
}

SysResult<void> writeOutFileSystem(int file) {
    if (::syncfs(file) == 0) return {};
    return tl::unexpected(errno);
}

SysResult<void> exchangeNames(int folder, const char* one, const char* other) {
    if (::renameat2(folder, one, folder, other, RENAME_EXCHANGE) == 0) return {};
    return tl::unexpected(errno);
}

bool isOthersCommonFolder(int folder) {
    struct stat seen {};
    return ::fstatat(folder, "", &seen, AT_EMPTY_PATH) != 0 ||
           ((seen.st_mode & S_ISVTX) != 0 && seen.st_uid != ::geteuid());
}

}  // namespace orrinvale
