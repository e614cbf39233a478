// Whole numbers all the way, so that no size is rounded.
#include "engine/text/SizeText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string>

namespace orrinvale {
namespace {

constexpr std::string_view digits = "0123456789";

// KB to PB and KiB to PiB by their first letter.
std::optional<std::uint64_t> factorOf(std::string_view unit) {
    std::string letters(unit);
    std::ranges::transform(letters, letters.begin(), [](char c) {
        return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    });
    if (letters.empty() || letters == "B") return 1;
    const bool isBinary = letters.size() == 3 && letters.ends_with("IB");
    if (!isBinary && !(letters.size() == 2 && letters.ends_with('B'))) return std::nullopt;
    const std::size_t power = std::string_view("KMGTP").find(letters.front());
    if (power == std::string_view::npos) return std::nullopt;
    std::uint64_t factor = 1;
    for (std::size_t i = 0; i <= power; ++i) factor *= isBinary ? 1024 : 1000;
    return factor;
}

// Takes the digits from the front.
std::string_view takeDigits(std::string_view& text) {
    const std::size_t length = std::min(text.find_first_not_of(digits), text.size());
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

// Digit by digit the share of the factor that the fraction is, cut off at whole bytes.
std::uint64_t shareOf(std::uint64_t factor, std::string_view fraction) {
    __extension__ using Wide = unsigned __int128;
    Wide share = 0;
    Wide tenth = 1;
    for (const char digit : fraction.substr(0, 18)) {
        tenth *= 10;
        share = share * 10 + Wide(factor) * static_cast<unsigned>(digit - '0');
    }
    return static_cast<std::uint64_t>(share / tenth);
}

}  // namespace

std::optional<std::uint64_t> parseNumber(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return value;
}

std::optional<std::uint64_t> parseSize(std::string_view text) {
    const auto whole = parseNumber(takeDigits(text));
    if (!whole) return std::nullopt;
    std::string_view fraction;
    if (text.starts_with('.') || text.starts_with(',')) {
        const bool isComma = text.front() == ',';
        text.remove_prefix(1);
        fraction = takeDigits(text);
        const bool mayBeThousands = isComma && fraction.size() == 3 && *whole != 0;
        if (fraction.empty() || mayBeThousands) return std::nullopt;
    }
    if (text.size() > 1 && text.front() == ' ') text.remove_prefix(1);
    const auto factor = factorOf(text);
    if (!factor || (!fraction.empty() && *factor == 1)) return std::nullopt;
    std::uint64_t bytes = 0;
    if (__builtin_mul_overflow(*whole, *factor, &bytes)) return std::nullopt;
    if (__builtin_add_overflow(bytes, shareOf(*factor, fraction), &bytes)) return std::nullopt;
    return bytes;
}

}  // namespace orrinvale
