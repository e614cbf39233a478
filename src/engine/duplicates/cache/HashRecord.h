// HashRecord: how remembered hashes lie on the disk: a page with a header, then records of one
// size, in the order of keys that are spread evenly, then where the records of each stretch of keys
// begin. So one look finds a record where it lies. HashFile.h reads them, saveHashes.h writes.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "platform/lastingVolume.h"

namespace orrinvale {

/// What is known of a file's contents; bits.
struct KnownHashes {
    static constexpr std::uint8_t head = 1;   ///< the first kilobyte
    static constexpr std::uint8_t tail = 2;   ///< the last 4 KiB
    static constexpr std::uint8_t whole = 4;  ///< everything
    static constexpr std::uint8_t all = 7;
    static constexpr std::uint8_t recalled = 8;  ///< of FreshHashes alone: some was known before
};

/// A step of a number that stands for a row of numbers (the finalizer of MurmurHash3, twice).
[[nodiscard]] constexpr std::uint64_t stirred(std::uint64_t state, std::uint64_t value) {
    for (const std::uint64_t factor : {0xff51afd7ed558ccdULL, 0xc4ceb9fe1a85ec53ULL}) {
        state = (state ^ value) * factor;
        state ^= state >> 32U;
        value = std::rotl(value, 32);
    }
    return state;
}

/// One file. It is told by the number of its file system, its inode and its time of change, which
/// nobody can set, and by a print of the rest.
struct HashRecord {
    std::uint64_t inode = 0;
    std::int64_t changed = 0;  ///< nanoseconds since 1970 UTC
    std::uint64_t print = 0;   ///< of size, time of modification and time of making
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    std::uint64_t whole = 0;
    std::uint16_t used = 0;   ///< day of its last use, see dayOf()
    std::uint8_t known = 0;   ///< KnownHashes
    std::uint8_t volume = 0;  ///< its place in HashHeader::volumes
    std::uint32_t check = 0;

    [[nodiscard]] bool isOf(std::uint8_t number, std::uint64_t file) const {
        return inode == file && volume == number;
    }

    [[nodiscard]] std::uint32_t sum(std::uint64_t salt) const {
        std::uint64_t value = salt;
        for (const std::uint64_t each :
             {inode, static_cast<std::uint64_t>(changed), print, head, tail, whole,
              static_cast<std::uint64_t>(used) << 16U | static_cast<std::uint64_t>(known) << 8U |
                  volume})
            value = stirred(value, each);
        return static_cast<std::uint32_t>(value >> 32U);
    }
    [[nodiscard]] bool isWhole(std::uint64_t salt) const {
        return known != 0 && check == sum(salt);
    }
};
static_assert(sizeof(HashRecord) == 56 && std::is_trivially_copyable_v<HashRecord>);

/// By which records are in order; no file comes twice.
[[nodiscard]] constexpr std::uint64_t keyOf(std::uint64_t salt, std::uint8_t volume,
                                            std::uint64_t inode) {
    return stirred(salt ^ volume, inode);
}

/// In front of the records. Behind them stand 2^stretchBits + 1 numbers of four bytes: how many
/// records have keys whose first bits are less than 0, 1, 2 and so on.
struct HashHeader {
    static constexpr std::array<char, 8> ownMagic{'O', 'r', 'r', 'H', 'a', 's', 'h', '\n'};
    static constexpr std::uint32_t ownVersion = 1;
    static constexpr std::uint32_t ownOrder = 0x01020304;  ///< of bytes in a number
    static constexpr std::size_t mostVolumes = 252;
    static constexpr std::uint64_t mostStretchBits = 28;

    std::array<char, 8> magic = ownMagic;
    std::uint32_t version = ownVersion;
    std::uint32_t order = ownOrder;
    std::uint64_t salt = 0;  ///< by chance, so that a page of zeros or of another file fails
    std::uint64_t count = 0;
    std::int64_t written = 0;  ///< nanoseconds since 1970 UTC
    std::uint64_t volumeCount = 0;
    std::array<VolumeName, mostVolumes> volumes{};
    std::uint64_t stretchBits = 1;
    std::uint64_t check = 0;  ///< crc64 of what is before
};
static_assert(sizeof(HashHeader) == 4096 && std::is_trivially_copyable_v<HashHeader>);

/// Of so many records, a header and all that is behind.
[[nodiscard]] constexpr std::uint64_t hashFileSize(std::uint64_t count, std::uint64_t bits) {
    return sizeof(HashHeader) + count * sizeof(HashRecord) +
           ((std::uint64_t{1} << bits) + 1) * sizeof(std::uint32_t);
}

/// About four records a stretch, which lie in four lines of the processor's cache.
[[nodiscard]] constexpr std::uint64_t stretchBitsFor(std::uint64_t count) {
    return std::clamp<std::uint64_t>(std::bit_width(count / 4), 1, HashHeader::mostStretchBits);
}

/// Days since 2020-01-01, held at the ends.
[[nodiscard]] constexpr std::uint16_t dayOf(std::int64_t nanoseconds) {
    constexpr std::int64_t day = 86'400'000'000'000;
    constexpr std::int64_t first = 18'262;  // since 1970
    const std::int64_t days = nanoseconds / day - first;
    return static_cast<std::uint16_t>(days < 0 ? 0 : days > 0xFFFF ? 0xFFFF : days);
}

[[nodiscard]] constexpr std::uint64_t printOf(std::uint64_t salt, std::uint64_t size,
                                              std::int64_t modified, std::int64_t born) {
    return stirred(stirred(stirred(salt, size), static_cast<std::uint64_t>(modified)),
                   static_cast<std::uint64_t>(born));
}

}  // namespace orrinvale
