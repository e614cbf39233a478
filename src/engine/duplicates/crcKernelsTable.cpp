// The portable CRC loop, by tables, and the choice among all loops. Read crcKernelsX86.cpp next for
// the fast ones.
#include "engine/duplicates/crcKernels.h"

#include <array>
#include <bit>
#include <cstring>

namespace orrinvale {
namespace {

using Table = std::array<std::uint64_t, 256>;

/// Bytes that one step takes in. Sixteen tables fill 32 KiB, which still fits the first-level
/// cache, and their look-ups do not wait for each other.
constexpr std::size_t slices = 16;

/// tables[k][b] is what byte b adds to the value once k further bytes have followed it.
constexpr std::array<Table, slices> makeTables() {
    std::array<Table, slices> tables{};
    for (std::uint64_t byte = 0; byte < 256; ++byte) {
        std::uint64_t value = byte;
        for (int bit = 0; bit < 8; ++bit) value = crcmath::timesX(value);
        tables[0][byte] = value;
    }
    for (std::size_t k = 1; k < slices; ++k)
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint64_t previous = tables[k - 1][byte];
            tables[k][byte] = (previous >> 8) ^ tables[0][previous & 0xFF];
        }
    return tables;
}

constexpr std::array<Table, slices> tables = makeTables();
static_assert(tables[0][1] == 0x7AD870C830358979);

std::uint64_t loadLittleEndian(const unsigned char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    return word;
}

/// The sum over the eight bytes of a word, the first of which is followed by `last` + 7 more bytes
/// of this step.
std::uint64_t lookUp(std::uint64_t word, std::size_t last) {
    return tables[last + 7][word & 0xFF] ^ tables[last + 6][(word >> 8) & 0xFF] ^
           tables[last + 5][(word >> 16) & 0xFF] ^ tables[last + 4][(word >> 24) & 0xFF] ^
           tables[last + 3][(word >> 32) & 0xFF] ^ tables[last + 2][(word >> 40) & 0xFF] ^
           tables[last + 1][(word >> 48) & 0xFF] ^ tables[last][word >> 56];
}

std::uint64_t updateByTable(std::uint64_t value, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (; size >= slices; size -= slices, bytes += slices)
        value = lookUp(value ^ loadLittleEndian(bytes), 8) ^ lookUp(loadLittleEndian(bytes + 8), 0);
    for (; size > 0; --size, ++bytes) value = (value >> 8) ^ tables[0][(value & 0xFF) ^ *bytes];
    return value;
}

bool alwaysSupported() { return true; }

constexpr CrcKernel tableKernel{"table", &alwaysSupported, &updateByTable};

CrcKernel chooseFastest() {
    CrcKernel best = tableKernel;
    for (const CrcKernel& kernel : vectorCrcKernels())
        if (kernel.supported()) best = kernel;
    return best;
}

}  // namespace

std::vector<CrcKernel> crcKernels() {
    std::vector<CrcKernel> kernels{tableKernel};
    const std::span<const CrcKernel> vectors = vectorCrcKernels();
    kernels.insert(kernels.end(), vectors.begin(), vectors.end());
    return kernels;
}

const CrcKernel& fastestCrcKernel() {
    static const CrcKernel fastest = chooseFastest();
    return fastest;
}

}  // namespace orrinvale
