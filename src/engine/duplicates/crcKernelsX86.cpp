// The CRC loops for x86-64 processors with carry-less multiplication, at three register widths.
// Read crcKernels.h first.
//
// A register holds the 16 bytes of a lane as a polynomial A. Moving A forward over D bits
// multiplies it by x^D, and since only the remainder counts, its two halves may instead be
// multiplied by the remainders of x^(D+64) and x^D, which gives 128 bits again ("fold"). So a loop
// keeps several lanes in flight, each folded over the distance of one step and added to the next
// bytes; at the end the lanes are folded onto the last one, and its 128 bits are reduced to the 64
// of the value.
//
// Zero bytes in front of a message do not change it, so a piece shorter than a register stands at
// the register's end.
#include "engine/duplicates/crcKernels.h"

#if defined(__x86_64__)

// GCC 12 takes the placeholder operands that its own 512-bit intrinsics leave undefined on purpose
// for a mistake of the caller.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <immintrin.h>

#include <array>
#include <cstring>

#define ORRINVALE_SSE [[gnu::target("sse4.1,pclmul"), gnu::always_inline]] inline
#define ORRINVALE_AVX2 [[gnu::target("avx2,vpclmulqdq,sse4.1,pclmul")]]
#define ORRINVALE_AVX512 \
    [[gnu::target("avx512f,avx512bw,avx512vl,avx512vbmi,vpclmulqdq,sse4.1,pclmul,bmi2")]]

namespace orrinvale {
namespace {

/// The multipliers that carry one lane forward. The product of two reflected halves comes out one
/// bit too low, hence the exponents smaller by one.
struct alignas(16) Fold {
    std::uint64_t low;   // for the first eight bytes, which hold the higher powers
    std::uint64_t high;  // for the last eight
};

constexpr Fold foldOver(std::uint64_t bytes) {
    return {crcmath::powerOfX(8 * bytes + 63), crcmath::powerOfX(8 * bytes - 1)};
}

/// The low 64 bits of the polynomial with its top coefficient, which is bit 0 of 65.
constexpr std::uint64_t wholePolynomial = (crcmath::polynomial << 1) | 1;

/// The number whose carry-less product with `factor` (odd) has 1 in its low 64 bits.
constexpr std::uint64_t inverse(std::uint64_t factor) {
    std::uint64_t result = 0;
    std::uint64_t remaining = 1;
    for (unsigned bit = 0; bit < 64; ++bit)
        if (((remaining >> bit) & 1) != 0) {
            result |= std::uint64_t{1} << bit;
            remaining ^= factor << bit;
        }
    return result;
}

constexpr Fold fold16 = foldOver(16);
constexpr Fold reduction{inverse(wholePolynomial), wholePolynomial};

// ---- 128 bit: also the ends of the wider loops
// --------------------------------------------------------------------

ORRINVALE_SSE __m128i load(const unsigned char* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

ORRINVALE_SSE __m128i constant(const Fold& fold) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(&fold));
}

ORRINVALE_SSE __m128i fromWord(std::uint64_t word) {
    return _mm_cvtsi64_si128(static_cast<long long>(word));
}

ORRINVALE_SSE std::uint64_t highWord(__m128i lane) {
    return static_cast<std::uint64_t>(_mm_extract_epi64(lane, 1));
}

ORRINVALE_SSE __m128i folded(__m128i lane, __m128i by) {
    return _mm_xor_si128(_mm_clmulepi64_si128(lane, by, 0x00),
                         _mm_clmulepi64_si128(lane, by, 0x11));
}

/// `word` times x^64, reduced, in the upper half: the multiple of the polynomial that clears the
/// word leaves it there.
ORRINVALE_SSE __m128i reduced64(__m128i word) {
    const __m128i quotient = _mm_clmulepi64_si128(word, constant(reduction), 0x00);
    const __m128i multiple = _mm_clmulepi64_si128(quotient, constant(reduction), 0x10);
    return _mm_xor_si128(multiple, _mm_slli_si128(quotient, 8));  // the polynomial's 65th bit
}

/// The value of a lane, which already holds the value before it.
ORRINVALE_SSE std::uint64_t reduced128(__m128i lane) {
    const __m128i carried =
        _mm_clmulepi64_si128(lane, constant(fold16), 0x10);  // the first half over 16 bytes
    const __m128i word = _mm_xor_si128(carried, _mm_srli_si128(lane, 8));
    return highWord(_mm_xor_si128(reduced64(word), carried));
}

template <class Word> ORRINVALE_SSE std::uint64_t loadWord(const unsigned char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Up to 7 bytes: by overlapping loads, since a loop over the bytes costs a mispredicted branch.
ORRINVALE_SSE std::uint64_t updateBelow8(std::uint64_t value, const unsigned char* bytes,
                                         std::size_t size) {
    if (size == 0) return value;
    std::uint64_t word = 0;
    if (size >= 4)
        word = loadWord<std::uint32_t>(bytes) |
               (loadWord<std::uint32_t>(bytes + size - 4) << (8 * (size - 4)));
    else
        word = std::uint64_t{bytes[0]} | (std::uint64_t{bytes[size / 2]} << (8 * (size / 2))) |
               (std::uint64_t{bytes[size - 1]} << (8 * (size - 1)));
    const std::uint64_t shifted = (value ^ word) << (64 - 8 * size);
    return (value >> (8 * size)) ^ highWord(reduced64(fromWord(shifted)));
}

/// 8 to 15 bytes, moved to the end of one lane.
ORRINVALE_SSE std::uint64_t updateBelow16(std::uint64_t value, const unsigned char* bytes,
                                          std::size_t size) {
    const std::size_t excess = 8 * (size - 8);  // bits of the first half, below 64
    const std::uint64_t first = loadWord<std::uint64_t>(bytes) ^ value;
    const std::uint64_t last = loadWord<std::uint64_t>(bytes + size - 8) ^ (value >> excess);
    const std::uint64_t front = excess == 0 ? 0 : first << (64 - excess);
    return reduced128(_mm_insert_epi64(fromWord(front), static_cast<long long>(last), 1));
}

/// Shuffle indexes: from entry `n` on, 16 of them rotate a lane by n bytes to the front.
constexpr std::array<std::uint8_t, 32> rotations = [] {
    std::array<std::uint8_t, 32> indexes{};
    for (std::size_t i = 0; i < indexes.size(); ++i) indexes[i] = static_cast<std::uint8_t>(i % 16);
    return indexes;
}();

/// Goes on from a lane over the last bytes, `size` below 16, of a message that is at least a lane
/// long.
ORRINVALE_SSE __m128i foldedOverRest(__m128i lane, const unsigned char* bytes, std::size_t size) {
    const __m128i indexes = load(rotations.data() + size);
    const __m128i rotated = _mm_shuffle_epi8(lane, indexes);
    // Where an index has wrapped round, the lane's first bytes stand, which move on; before them,
    // what stays.
    const __m128i wrapped = _mm_cmplt_epi8(indexes, _mm_set1_epi8(static_cast<char>(size)));
    const __m128i stay = _mm_blendv_epi8(rotated, load(bytes + size - 16), wrapped);
    return _mm_xor_si128(folded(_mm_and_si128(rotated, wrapped), constant(fold16)), stay);
}

/// The value at the end of a message, from a lane and all the bytes that follow it.
ORRINVALE_SSE std::uint64_t finished(__m128i lane, const unsigned char* bytes, std::size_t size) {
    for (; size >= 16; size -= 16, bytes += 16)
        lane = _mm_xor_si128(folded(lane, constant(fold16)), load(bytes));
    if (size > 0) lane = foldedOverRest(lane, bytes, size);
    return reduced128(lane);
}

ORRINVALE_SSE std::uint64_t updateSmall(std::uint64_t value, const unsigned char* bytes,
                                        std::size_t size) {
    if (size < 8) return updateBelow8(value, bytes, size);
    if (size < 16) return updateBelow16(value, bytes, size);
    return finished(_mm_xor_si128(load(bytes), fromWord(value)), bytes + 16, size - 16);
}

constexpr Fold fold32 = foldOver(32);
constexpr Fold fold48 = foldOver(48);
constexpr Fold fold64 = foldOver(64);

[[gnu::target("sse4.1,pclmul")]] std::uint64_t updateBy128(std::uint64_t value, const void* data,
                                                           std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (size < 64) return updateSmall(value, bytes, size);
    __m128i a = _mm_xor_si128(load(bytes), fromWord(value));
    __m128i b = load(bytes + 16);
    __m128i c = load(bytes + 32);
    __m128i d = load(bytes + 48);
    const __m128i step = constant(fold64);
    for (bytes += 64, size -= 64; size >= 64; bytes += 64, size -= 64) {
        a = _mm_xor_si128(folded(a, step), load(bytes));
        b = _mm_xor_si128(folded(b, step), load(bytes + 16));
        c = _mm_xor_si128(folded(c, step), load(bytes + 32));
        d = _mm_xor_si128(folded(d, step), load(bytes + 48));
    }
    a = _mm_xor_si128(folded(a, constant(fold48)), folded(b, constant(fold32)));
    c = _mm_xor_si128(folded(c, constant(fold16)), d);
    return finished(_mm_xor_si128(a, c), bytes, size);
}

bool supports128() {
    return __builtin_cpu_supports("sse4.1") != 0 && __builtin_cpu_supports("pclmul") != 0;
}

// ---- 256 bit
// ------------------------------------------------------------------------------------------------------

ORRINVALE_AVX2 inline __m256i load256(const unsigned char* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

ORRINVALE_AVX2 inline __m256i folded256(__m256i lanes, const Fold& by) {
    const __m256i factors = _mm256_broadcastsi128_si256(constant(by));
    return _mm256_xor_si256(_mm256_clmulepi64_epi128(lanes, factors, 0x00),
                            _mm256_clmulepi64_epi128(lanes, factors, 0x11));
}

constexpr Fold fold96 = foldOver(96);
constexpr Fold fold128 = foldOver(128);

ORRINVALE_AVX2 std::uint64_t updateBy256(std::uint64_t value, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (size < 32) return updateSmall(value, bytes, size);
    __m256i a = _mm256_xor_si256(load256(bytes), _mm256_zextsi128_si256(fromWord(value)));
    if (size < 128) {
        bytes += 32, size -= 32;
    } else {
        __m256i b = load256(bytes + 32);
        __m256i c = load256(bytes + 64);
        __m256i d = load256(bytes + 96);
        for (bytes += 128, size -= 128; size >= 128; bytes += 128, size -= 128) {
            a = _mm256_xor_si256(folded256(a, fold128), load256(bytes));
            b = _mm256_xor_si256(folded256(b, fold128), load256(bytes + 32));
            c = _mm256_xor_si256(folded256(c, fold128), load256(bytes + 64));
            d = _mm256_xor_si256(folded256(d, fold128), load256(bytes + 96));
        }
        a = _mm256_xor_si256(folded256(a, fold96), folded256(b, fold64));
        c = _mm256_xor_si256(folded256(c, fold32), d);
        a = _mm256_xor_si256(a, c);
    }
    for (; size >= 32; bytes += 32, size -= 32)
        a = _mm256_xor_si256(folded256(a, fold32), load256(bytes));
    const __m128i first = folded(_mm256_castsi256_si128(a), constant(fold16));
    return finished(_mm_xor_si128(first, _mm256_extracti128_si256(a, 1)), bytes, size);
}

bool supports256() {
    return supports128() && __builtin_cpu_supports("avx2") != 0 &&
           __builtin_cpu_supports("vpclmulqdq") != 0;
}

// ---- 512 bit
// ------------------------------------------------------------------------------------------------------

ORRINVALE_AVX512 inline __m512i load512(const unsigned char* bytes) {
    return _mm512_loadu_si512(bytes);
}

ORRINVALE_AVX512 inline __m512i sum(__m512i a, __m512i b, __m512i c) {
    return _mm512_ternarylogic_epi64(a, b, c, 0x96);
}

/// The lanes carried forward, plus the bytes that stand there.
ORRINVALE_AVX512 inline __m512i foldedOnto(__m512i bytes, __m512i lanes, __m512i by) {
    return sum(_mm512_clmulepi64_epi128(lanes, by, 0x00), _mm512_clmulepi64_epi128(lanes, by, 0x11),
               bytes);
}

ORRINVALE_AVX512 inline __m512i constant512(const Fold& by) {
    return _mm512_broadcast_i32x4(constant(by));
}

ORRINVALE_AVX512 inline __m512i byteNumbers() {
    alignas(64) static constexpr auto numbers = [] {
        std::array<std::uint8_t, 64> result{};
        for (std::size_t i = 0; i < result.size(); ++i) result[i] = static_cast<std::uint8_t>(i);
        return result;
    }();
    return _mm512_load_si512(numbers.data());
}

/// The bytes rotated by n to the front; n below 64.
ORRINVALE_AVX512 inline __m512i rotated(__m512i bytes, std::size_t n) {
    const __m512i indexes = _mm512_add_epi8(byteNumbers(), _mm512_set1_epi8(static_cast<char>(n)));
    return _mm512_permutexvar_epi8(indexes, bytes);  // looks at the low six bits of an index only
}

/// The value of four lanes: the first three are folded onto the last.
ORRINVALE_AVX512 inline std::uint64_t reduced512(__m512i lanes) {
    alignas(64) static constexpr std::array<Fold, 4> distances{foldOver(48), foldOver(32),
                                                               foldOver(16), Fold{0, 0}};
    const __m512i last = _mm512_maskz_mov_epi64(0xC0, lanes);
    const __m512i moved = foldedOnto(last, lanes, _mm512_load_si512(distances.data()));
    const __m256i two =
        _mm256_xor_si256(_mm512_castsi512_si256(moved), _mm512_extracti64x4_epi64(moved, 1));
    return reduced128(_mm_xor_si128(_mm256_castsi256_si128(two), _mm256_extracti128_si256(two, 1)));
}

constexpr Fold fold192 = foldOver(192);
constexpr Fold fold256 = foldOver(256);

/// How far ahead lines are asked for: took a buffer that fits the second-level cache from 87 to 103
/// GB/s (Sapphire Rapids, 64 KiB), and 4 KiB ahead gave no more. The hint may point behind the
/// buffer, it never faults.
constexpr std::size_t prefetchDistance = 2048;

/// Four registers at once over all whole blocks of 256 bytes, of which there is at least one; gives
/// one register and moves on.
ORRINVALE_AVX512 inline __m512i foldedBlocks(__m512i value, const unsigned char*& bytes,
                                             std::size_t& size) {
    __m512i a = _mm512_xor_si512(load512(bytes), value);
    __m512i b = load512(bytes + 64);
    __m512i c = load512(bytes + 128);
    __m512i d = load512(bytes + 192);
    const __m512i step = constant512(fold256);
    for (bytes += 256, size -= 256; size >= 256; bytes += 256, size -= 256) {
        for (std::size_t line = 0; line < 256; line += 64)
            _mm_prefetch(reinterpret_cast<const char*>(bytes + prefetchDistance + line),
                         _MM_HINT_T0);
        a = foldedOnto(load512(bytes), a, step);
        b = foldedOnto(load512(bytes + 64), b, step);
        c = foldedOnto(load512(bytes + 128), c, step);
        d = foldedOnto(load512(bytes + 192), d, step);
    }
    a = foldedOnto(d, a, constant512(fold192));
    b = foldedOnto(a, b, constant512(fold128));
    return foldedOnto(b, c, constant512(fold64));
}

/// Goes on over the last bytes, `size` below 64, of a message that is at least a register long: the
/// first `size` bytes of the lanes move on, the others move up to make room for the rest of the
/// message.
ORRINVALE_AVX512 inline __m512i foldedOverRest512(__m512i lanes, const unsigned char* bytes,
                                                  std::size_t size) {
    const __m512i turned = rotated(lanes, size);
    const __mmask64 rest = ~_bzhi_u64(~0ULL, static_cast<unsigned>(64 - size));
    const __m512i stay = _mm512_mask_mov_epi8(turned, rest, load512(bytes + size - 64));
    return foldedOnto(stay, _mm512_maskz_mov_epi8(rest, turned), constant512(fold64));
}

ORRINVALE_AVX512 std::uint64_t updateBy512(std::uint64_t value, const void* data,
                                           std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (size < 8) return updateBelow8(value, bytes, size);
    const __m512i start = _mm512_zextsi128_si512(fromWord(value));
    if (size < 64) {  // the mask keeps the load from touching what lies behind the last byte
        const __m512i piece =
            _mm512_maskz_loadu_epi8(_bzhi_u64(~0ULL, static_cast<unsigned>(size)), bytes);
        return reduced512(rotated(_mm512_xor_si512(piece, start), size));
    }
    __m512i lanes;
    if (size >= 256) {
        lanes = foldedBlocks(start, bytes, size);
    } else {
        lanes = _mm512_xor_si512(load512(bytes), start);
        bytes += 64, size -= 64;
    }
    for (; size >= 64; bytes += 64, size -= 64)
        lanes = foldedOnto(load512(bytes), lanes, constant512(fold64));
    if (size > 0) lanes = foldedOverRest512(lanes, bytes, size);
    return reduced512(lanes);
}

bool supports512() {
    return supports256() && __builtin_cpu_supports("avx512f") != 0 &&
           __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("avx512vbmi") != 0 && __builtin_cpu_supports("bmi2") != 0;
}

constexpr std::array<CrcKernel, 3> kernels{{
    {"pclmul-128", &supports128, &updateBy128},
    {"vpclmul-256", &supports256, &updateBy256},
    {"vpclmul-512", &supports512, &updateBy512},
}};

}  // namespace

std::span<const CrcKernel> vectorCrcKernels() { return kernels; }

}  // namespace orrinvale

#else

namespace orrinvale {

std::span<const CrcKernel> vectorCrcKernels() { return {}; }

}  // namespace orrinvale

#endif
