// The hash by which files are compared. Read crcKernels.h next for how it gets its speed.
#pragma once

#include <cstdint>

namespace orrinvale {

/// CRC-64 with the reflected Jones polynomial, started from all ones and not inverted at the end.
/// No state; all operations may be called from any thread.
class crc final {
public:
    crc() = delete;

    /// The value of one whole buffer: 0 for a null pointer, all ones for an empty buffer.
    [[nodiscard]] static std::uint64_t crc64(const void* buffer, std::uint32_t bufferSize);

    /// Carries a running value on over the next piece: from all ones when it is the head (the given
    /// value is then ignored), else from the given value. A size of 0 returns that start value, a
    /// null pointer returns 0 whatever the size.
    [[nodiscard]] static std::uint64_t crc64Buffer(const void* buffer, std::uint32_t buffSize,
                                                   bool isHead, std::uint64_t crc);

    /// The value of a piece followed by a second one, out of the values of the two pieces, each of
    /// them started from all ones, and the size of the second in bytes. So the segments of one file
    /// can be hashed by several threads. Takes a time that grows with the number of bits set in the
    /// size: about a microsecond.
    [[nodiscard]] static std::uint64_t combine(std::uint64_t first, std::uint64_t second,
                                               std::uint64_t secondSize);
};

}  // namespace orrinvale
