// open() decides whether to trust the file; of what lies in it nothing is trusted before its sum.
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

// Of a sound file far more than chance gives any stretch.
constexpr std::uint32_t mostInStretch = 64;

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
           header.stretchBits >= 1 && header.stretchBits <= HashHeader::mostStretchBits &&
           header.count <= fileSize / sizeof(HashRecord) &&
           fileSize == hashFileSize(header.count, header.stretchBits) && header.written <= now;
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

std::span<const HashRecord> HashFile::stretchOf(std::uint8_t volume, std::uint64_t inode) const {
    const auto all = records();
    if (all.empty()) return {};
    const auto* const starts = reinterpret_cast<const std::uint32_t*>(all.data() + all.size());
    const std::uint64_t stretch =
        keyOf(m_header.salt, volume, inode) >> (64 - m_header.stretchBits);
    const std::uint32_t first = starts[stretch];
    const std::uint32_t last = starts[stretch + 1];
    if (first >= last || last > all.size()) return {};
    return all.subspan(first, std::min(last - first, mostInStretch));
}

std::optional<HashRecord> HashFile::find(std::uint8_t volume, std::uint64_t inode) const {
    for (const HashRecord& each : stretchOf(volume, inode)) {
        if (!each.isOf(volume, inode)) continue;
        const HashRecord found = each;  // what lies there may change
        if (found.isOf(volume, inode) && found.isWhole(m_header.salt)) return found;
        break;
    }
    return std::nullopt;
}

void HashFile::expect(std::uint8_t volume, std::uint64_t inode) const {
    const auto stretch = stretchOf(volume, inode);
    constexpr std::size_t line = 64;  // bytes that a processor fetches at once
    for (std::size_t at = 0; at < std::min(stretch.size_bytes(), 4 * line); at += line)
        __builtin_prefetch(reinterpret_cast<const std::byte*>(stretch.data()) + at);
}

}  // namespace orrinvale
