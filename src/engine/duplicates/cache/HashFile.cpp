// open() decides whether to trust the file; find() searches from where the last record was.
#include "engine/duplicates/cache/HashFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "engine/duplicates/crc.h"
#include "platform/descriptor.h"

namespace orrinvale {
namespace {

// Far above every limit that is set, and far below what a 64-bit number of records could add up to.
constexpr std::uint64_t mostHashBytes = std::uint64_t{1} << 36U;

// What is read ahead as a whole: about what half a million files take.
constexpr std::uint64_t readAheadBytes = 32ULL << 20U;

Descriptor openOwnHashes(const std::string& path, std::uint64_t& size) {
    Descriptor file(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    const bool isOwn = file.isOpen() && ::fstat(file.get(), &status) == 0 &&
                       S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
                       (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    if (!isOwn) return {};
    size = static_cast<std::uint64_t>(status.st_size);
    return file;
}

}  // namespace

std::uint64_t sumOf(const HashHeader& header) {
    return crc::crc64(&header, offsetof(HashHeader, check));
}

bool isSound(const HashHeader& header, std::uint64_t fileSize, std::int64_t now) {
    return header.magic == HashHeader::ownMagic && header.version == HashHeader::ownVersion &&
           header.order == HashHeader::ownOrder && header.check == sumOf(header) &&
           header.volumeCount <= HashHeader::mostVolumes && fileSize <= mostHashBytes &&
           header.count == (fileSize - sizeof header) / sizeof(HashRecord) &&
           fileSize == sizeof header + header.count * sizeof(HashRecord) && header.written <= now;
}

HashFile HashFile::open(const std::string& path, std::int64_t now) {
    std::uint64_t size = 0;
    const Descriptor file = openOwnHashes(path, size);
    if (!file.isOpen() || size < sizeof(HashHeader)) return {};
    auto view = FileView::of(file.get(), size);
    if (!view) return {};
    HashFile found;
    found.m_view = std::move(*view);
    {
        const FileView::Look look(found.m_view);
        std::memcpy(&found.m_header, found.m_view.bytes().data(), sizeof(HashHeader));
    }
    if (!isSound(found.m_header, size, now)) return {};
    if (size <= readAheadBytes) ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_WILLNEED);
    return found;
}

std::optional<std::uint8_t> HashFile::numberOf(const VolumeName& volume) const {
    for (std::size_t at = 0; at < m_header.volumeCount; ++at)
        if (m_header.volumes[at] == volume) return static_cast<std::uint8_t>(at);
    return std::nullopt;
}

std::span<const HashRecord> HashFile::records() const {
    if (isEmpty()) return {};
    const std::byte* const first = m_view.bytes().data() + sizeof(HashHeader);
    return {reinterpret_cast<const HashRecord*>(first), m_header.count};
}

// In steps that double from the hint on, until the record lies between two of them.
std::optional<HashRecord> HashFile::find(std::uint8_t volume, std::uint64_t inode,
                                         std::size_t& hint) const {
    const auto all = records();
    if (all.empty()) return std::nullopt;
    const std::tuple wanted(volume, inode);
    std::size_t first = 0;
    std::size_t last = all.size();
    const std::size_t from = std::min(hint, last - 1);
    if (all[from].place() <= wanted) {
        first = from;
        for (std::size_t step = 1; step < last - from; step *= 2) {
            if (all[from + step].place() > wanted) {
                last = from + step;
                break;
            }
            first = from + step;
        }
    } else {
        last = from;
        for (std::size_t step = 1; step <= from; step *= 2) {
            if (all[from - step].place() <= wanted) {
                first = from - step;
                break;
            }
            last = from - step;
        }
    }
    while (last - first > 1) {
        const std::size_t middle = first + (last - first) / 2;
        (all[middle].place() <= wanted ? first : last) = middle;
    }
    hint = first;
    const HashRecord found = all[first];  // what lies there may change
    if (found.place() != wanted || !found.isWhole(m_header.salt)) return std::nullopt;
    return found;
}

}  // namespace orrinvale
