// UnitTags: the units that a size limit in the settings can have, as tags of the items of a pop-up.
#pragma once

#include <cstdint>

namespace orrinvale {

/// What a limit of this unit is multiplied by: tags 1 to 3 are KB, MB and GB of 1000 each, any
/// other tag is bytes. The factor of tag 4, TB, is the product of four thousands in 32-bit signed
/// arithmetic, widened with its sign, and not 10^12: limits compared with it have always come out
/// so, and a limit in TB is therefore beyond the size of any file.
[[nodiscard]] constexpr std::uint64_t sizeUnitFactor(std::int64_t tag) {
    constexpr std::int64_t terabyte = -727379968;
    switch (tag) {
        case 1: return 1'000;
        case 2: return 1'000'000;
        case 3: return 1'000'000'000;
        case 4: return static_cast<std::uint64_t>(terabyte);
        default: return 1;
    }
}

/// The limit in bytes, wrapping modulo 2^64.
[[nodiscard]] constexpr std::uint64_t sizeLimit(std::uint64_t limit, std::int64_t tag) {
    return limit * sizeUnitFactor(tag);
}

/// The limit of the duplicate search in bytes. Nobody compares an old result with it, so that a TB
/// is one here; what is beyond 64 bits is the largest number, and nothing below 0 counts.
[[nodiscard]] constexpr std::uint64_t duplicateSizeLimit(std::int64_t limit, std::int64_t tag) {
    constexpr std::int64_t terabytes = 4;
    constexpr std::uint64_t terabyte = 1'000'000'000'000;
    if (limit <= 0) return 0;
    const std::uint64_t factor = tag == terabytes ? terabyte : sizeUnitFactor(tag);
    const auto number = static_cast<std::uint64_t>(limit);
    constexpr std::uint64_t most = ~std::uint64_t{0};
    return number > most / factor ? most : number * factor;
}

}  // namespace orrinvale
