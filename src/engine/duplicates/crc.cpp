// The face of the hash, and the joining of values. The loops over the bytes are in
// crcKernelsTable.cpp and crcKernelsX86.cpp.
#include "engine/duplicates/crc.h"

#include "engine/duplicates/crcKernels.h"

#include <array>

namespace orrinvale {
namespace {

constexpr std::uint64_t crcStart = ~std::uint64_t{0};

/// Entry k is the factor that 2^k further bytes put on a value: x to the power of 8 * 2^k.
constexpr std::array<std::uint64_t, 64> makeByteShifts() {
    std::array<std::uint64_t, 64> shifts{};
    shifts[0] = crcmath::powerOfX(8);
    for (std::size_t k = 1; k < shifts.size(); ++k)
        shifts[k] = crcmath::multiply(shifts[k - 1], shifts[k - 1]);
    return shifts;
}

constexpr std::array<std::uint64_t, 64> byteShifts = makeByteShifts();

}  // namespace

std::uint64_t crc::crc64(const void* buffer, std::uint32_t bufferSize) {
    return crc64Buffer(buffer, bufferSize, true, 0);
}

std::uint64_t crc::crc64Buffer(const void* buffer, std::uint32_t buffSize, bool isHead,
                               std::uint64_t crc) {
    if (buffer == nullptr) return 0;
    return fastestCrcKernel().update(isHead ? crcStart : crc, buffer, buffSize);
}

std::uint64_t crc::combine(std::uint64_t first, std::uint64_t second, std::uint64_t secondSize) {
    // The value is linear: the second one already holds the start value carried over its bytes, so
    // only what the first differs from the start value by is still to be carried over them.
    std::uint64_t carried = first ^ crcStart;
    for (std::size_t k = 0; secondSize != 0; ++k, secondSize >>= 1)
        if ((secondSize & 1) != 0) carried = crcmath::multiply(carried, byteShifts[k]);
    return second ^ carried;
}

}  // namespace orrinvale
