// The inner loops behind `crc`: one update function for each instruction set, all with the same
// answer, and the arithmetic from which they compute their constants. Read crcKernelsTable.cpp
// next, then crcKernelsX86.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace orrinvale {

/// Polynomials over GF(2) modulo the CRC's own, in the bit order of a reflected CRC: bit 63 is the
/// coefficient of x^0, bit 0 that of x^63. All of it runs at compile time too.
namespace crcmath {

/// The Jones polynomial 0xAD93D23594C935A9 with its bits reversed; the coefficient of x^64 is
/// implied.
inline constexpr std::uint64_t polynomial = 0x95AC9329AC4BC9B5;
inline constexpr std::uint64_t one = std::uint64_t{1} << 63;

[[nodiscard]] constexpr std::uint64_t timesX(std::uint64_t a) {
    return (a >> 1) ^ ((a & 1) != 0 ? polynomial : 0);
}

[[nodiscard]] constexpr std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product = 0;
    for (; a != 0; a <<= 1, b = timesX(b)) product ^= (a & one) != 0 ? b : 0;
    return product;
}

/// x to the power of the exponent.
[[nodiscard]] constexpr std::uint64_t powerOfX(std::uint64_t exponent) {
    std::uint64_t result = one;
    for (std::uint64_t square = timesX(one); exponent != 0;
         exponent >>= 1, square = multiply(square, square))
        if ((exponent & 1) != 0) result = multiply(result, square);
    return result;
}

}  // namespace crcmath

/// One way to carry a running value over some bytes.
struct CrcKernel {
    std::string_view name;
    /// Whether this processor and its operating system can run it. `update` must not be called
    /// otherwise.
    bool (*supported)();
    /// The value after `size` more bytes: no start value, no inversion. Any alignment and any size,
    /// 0 included; reads no byte outside of the range. Callable from any thread.
    std::uint64_t (*update)(std::uint64_t value, const void* bytes, std::size_t size);
};

/// All that this program was built with, the slowest first. The first one is portable and always
/// supported.
[[nodiscard]] std::vector<CrcKernel> crcKernels();

/// The fastest that this machine supports, chosen at the first call.
[[nodiscard]] const CrcKernel& fastestCrcKernel();

/// Those that use vector instructions of the processor that the program is built for, the slowest
/// first; may be empty.
[[nodiscard]] std::span<const CrcKernel> vectorCrcKernels();

}  // namespace orrinvale
