#include "engine/largefiles/FileAge.h"

#include <algorithm>
#include <limits>

#include "engine/text/SizeText.h"

namespace orrinvale {

std::optional<std::uint64_t> parseAge(std::string_view text) {
    if (text.empty()) return std::nullopt;
    std::uint64_t days = 0;
    switch (text.back()) {
        case 'd':
        case 'D': days = 1; break;
        case 'w':
        case 'W': days = 7; break;
        case 'm':
        case 'M': days = daysOfMonth; break;
        case 'y':
        case 'Y': days = daysOfYear; break;
        default: return std::nullopt;
    }
    text.remove_suffix(1);
    if (text.ends_with(' ')) text.remove_suffix(1);
    constexpr std::uint64_t most = 1'000'000;
    const auto number = parseNumber(text);
    if (!number || *number > most) return std::nullopt;
    return *number * days * secondsOfDay;
}

std::uint32_t lastSecondOf(std::uint64_t age, std::int64_t now) {
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(
        now - static_cast<std::int64_t>(age), 1, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace orrinvale
