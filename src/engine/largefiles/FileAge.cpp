#include "engine/largefiles/FileAge.h"

#include <algorithm>

#include "engine/largefiles/FileNode.h"
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

std::int64_t lastSecondOf(std::uint64_t age, std::int64_t now) {
    return std::max(now - static_cast<std::int64_t>(age), FileNode::before1970);
}

}  // namespace orrinvale
