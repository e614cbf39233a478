// std::from_chars does the rounding; what it leaves open is decided here.
#include "engine/text/readFloat.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace orrinvale {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// True for a number of 1 or more. Asked only of numbers outside the range of a float, whose digits
/// from_chars has found well-formed; it reports too large and too small alike.
bool isLarge(std::string_view number) {
    const std::size_t mark = number.find_first_of("eE");
    const std::string_view digits = number.substr(0, mark);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t first = digits.find_first_not_of("0.");
    if (first == std::string_view::npos) return false;
    auto power = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    if (mark != std::string_view::npos) {
        std::size_t start = mark + 1;
        if (start < number.size() && number[start] == '+') ++start;
        std::int64_t exponent = 0;
        const auto read =
            std::from_chars(number.data() + start, number.data() + number.size(), exponent);
        if (read.ec == std::errc::result_out_of_range) return number[start] != '-';
        // An exponent beyond any length of digits decides alone, and the sum below cannot overflow.
        power +=
            std::clamp<std::int64_t>(exponent, -(std::int64_t{1} << 60), std::int64_t{1} << 60);
    }
    return power > 0;
}

}  // namespace

float readFloat(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    if (text.empty() || !(isDigit(text.front()) || text.front() == '.')) return 0.0F;

    float value = 0.0F;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec == std::errc::result_out_of_range) {
        const auto length = static_cast<std::size_t>(read.ptr - text.data());
        value = isLarge(text.substr(0, length)) ? std::numeric_limits<float>::infinity() : 0.0F;
    }
    return isNegative ? -value : value;
}

}  // namespace orrinvale
