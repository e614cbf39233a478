// LinuxFileSystem: reading, leaving the page cache as it was.
//
// Where kernel and file system have it, every read carries RWF_DONTCACHE: pages that the read
// itself brought in go when it is done, pages that somebody else had stay. Elsewhere the residency
// of the file is noted before the first read, and what was not resident is dropped after the last.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/linux/LinuxFiles.h"
#include "platform/linux/Residency.h"

namespace orrinvale {
namespace {

constexpr int readUncached = 0x80;  // RWF_DONTCACHE, newer than this C library's headers

std::uint64_t pageBytes() {
    static const std::uint64_t size = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    return size;
}

ssize_t readOnce(int file, std::span<std::byte> buffer, std::uint64_t offset, int flags) {
    iovec piece{buffer.data(), buffer.size()};
    if (flags == 0) return ::pread(file, buffer.data(), buffer.size(), static_cast<off_t>(offset));
    return ::preadv2(file, &piece, 1, static_cast<off_t>(offset), flags);
}

SysResult<std::size_t> readFully(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                 int flags) {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t count = readOnce(file, buffer.subspan(done), offset + done, flags);
        if (count > 0) {
            done += static_cast<std::size_t>(count);
            // An error behind what was read shortens the count too, at the edge of a page, and only
            // the next call tells it. A count that ends inside of a page is the end of the file;
            // asking again would cost a system call for every small file.
            if ((offset + done) % pageBytes() != 0) break;
        } else if (count == 0) {
            break;
        } else if (errno != EINTR) {
            return tl::unexpected(errno);
        }
    }
    return done;
}

void addRange(std::vector<ReadState::Range>& ranges, std::uint64_t offset, std::uint64_t length) {
    if (!ranges.empty() && ranges.back().offset + ranges.back().length == offset)
        ranges.back().length += length;
    else ranges.push_back({offset, length});
}

// Notes which pages of the stretch are not in memory, and of what the kernel may read ahead behind
// it. The mapping is only asked about, never touched.
void noteResidency(int file, std::uint64_t offset, std::uint64_t length,
                   std::vector<ReadState::Range>& notResident) {
    constexpr std::uint64_t readAhead = 16ULL << 20;
    // A single page is asked for without a mapping, whose making and undoing take the longest of
    // all that is done with a small file.
    if (length <= pageBytes() && isResident(file, offset, length)) return;
    const std::uint64_t from = offset / pageBytes() * pageBytes();
    const std::uint64_t size = offset - from + length + (length <= pageBytes() ? 0 : readAhead);
    void* const map = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file, static_cast<off_t>(from));
    if (map == MAP_FAILED) return;
    std::vector<unsigned char> pages((size + pageBytes() - 1) / pageBytes(), 0);
    if (::mincore(map, size, pages.data()) == 0) {
        for (std::size_t page = 0; page < pages.size(); ++page)
            if ((pages[page] & 1U) == 0)
                addRange(notResident, from + page * pageBytes(), pageBytes());
    }
    ::munmap(map, size);
}

// cachestat(2), Linux 6.5. One question about a stretch costs a look at the pieces that it is kept
// in, not at each page.
struct CacheRange {
    std::uint64_t offset, length;
};
struct CacheStatistics {
    std::uint64_t cached, dirty, writeback, evicted, recentlyEvicted;
};
constexpr long cachestatNumber = 451;

}  // namespace

bool isResident(int file, std::uint64_t offset, std::uint64_t length) {
    if (length == 0) return true;
    CacheRange range{offset, length};
    CacheStatistics statistics{};
    if (::syscall(cachestatNumber, file, &range, &statistics, 0U) != 0) return false;
    const std::uint64_t pages = (offset + length - 1) / pageBytes() - offset / pageBytes() + 1;
    return statistics.cached >= pages;
}

void LinuxFileSystem::beginReading(int file, std::uint64_t device, std::uint64_t offset,
                                   std::uint64_t length, ReadState& state) const {
    if (device != state.device) {
        std::array<std::byte, 1> probe;
        const ssize_t count = readOnce(file, probe, offset, readUncached);
        state.uncached = count >= 0;
        state.device = device;
    }
    if (!state.uncached && length > 0) noteResidency(file, offset, length, state.notResident);
}

void LinuxFileSystem::endReading(int file, ReadState& state) const {
    for (const auto& range : state.notResident)
        ::posix_fadvise(file, static_cast<off_t>(range.offset), static_cast<off_t>(range.length),
                        POSIX_FADV_DONTNEED);
    state.notResident.clear();
}

SysResult<std::size_t> LinuxFileSystem::read(int file, std::span<std::byte> buffer,
                                             std::uint64_t offset, ReadState& state) const {
    return readFully(file, buffer, offset, state.uncached ? readUncached : 0);
}

SysResult<std::size_t> LinuxFileSystem::readResident(int file, std::span<std::byte> buffer,
                                                     std::uint64_t offset, ReadState& state) const {
    if (!isResident(file, offset, buffer.size())) return tl::unexpected(EAGAIN);
    return read(file, buffer, offset, state);
}

SysResult<FileSystem::DataStretch> LinuxFileSystem::nextData(int file, std::uint64_t offset) const {
    constexpr DataStretch toTheEnd{0, ~std::uint64_t{0}};
    const off_t begin = ::lseek(file, static_cast<off_t>(offset), SEEK_DATA);
    if (begin < 0 && errno == ENXIO) return tl::unexpected(ENXIO);
    if (begin < 0) return toTheEnd;
    const off_t end = ::lseek(file, begin, SEEK_HOLE);
    if (end < 0) return toTheEnd;
    return DataStretch{static_cast<std::uint64_t>(begin), static_cast<std::uint64_t>(end)};
}

void LinuxFileSystem::expectRandomReads(int file) const {
    ::posix_fadvise(file, 0, 0, POSIX_FADV_RANDOM);
}

}  // namespace orrinvale
