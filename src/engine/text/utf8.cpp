// By the table of well-formed sequences in the Unicode standard (3.9).
#include "engine/text/utf8.h"

#include <cstdint>
#include <cstring>

namespace orrinvale {

std::size_t validSequence(std::string_view bytes) {
    const auto at = [&](std::size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    };
    const auto follows = [&](std::size_t i) { return (at(i) & 0xC0U) == 0x80U; };
    const unsigned first = at(0);
    if (bytes.empty()) return 0;
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return follows(1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        if (!follows(1) || !follows(2)) return 0;
        if (first == 0xE0 && at(1) < 0xA0) return 0;
        if (first == 0xED && at(1) > 0x9F) return 0;
        return 3;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        if (!follows(1) || !follows(2) || !follows(3)) return 0;
        if (first == 0xF0 && at(1) < 0x90) return 0;
        if (first == 0xF4 && at(1) > 0x8F) return 0;
        return 4;
    }
    return 0;
}

bool isValidUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        // Most texts are ASCII, of which eight bytes are looked at in one go.
        constexpr std::uint64_t highBits = 0x8080'8080'8080'8080;
        std::uint64_t piece = highBits;
        if (bytes.size() >= sizeof piece) std::memcpy(&piece, bytes.data(), sizeof piece);
        const std::size_t length = (piece & highBits) == 0 ? sizeof piece : validSequence(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

}  // namespace orrinvale
