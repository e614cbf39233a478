// The readings of text as a number or a truth value, in no locale.
#include "engine/settings/SettingValue.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

#include "engine/text/readFloat.h"

namespace orrinvale {
namespace {

using Whole = std::numeric_limits<std::int64_t>;

std::string_view afterBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    return text;
}

std::int64_t wholeOf(float number) {
    if (std::isnan(number)) return 0;
    constexpr float end = 9223372036854775808.0F;  // 2^63, the first that does not fit
    if (number >= end) return Whole::max();
    if (number < -end) return Whole::min();
    return static_cast<std::int64_t>(number);
}

std::int64_t wholeOf(std::string_view text) {
    text = afterBlanks(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range)
        return text.starts_with('-') ? Whole::min() : Whole::max();
    return number;
}

bool isTrue(std::string_view text) {
    text = afterBlanks(text);
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    return !text.empty() &&
           std::string_view("YyTt123456789").find(text.front()) != std::string_view::npos;
}

}  // namespace

std::int64_t integerOf(const SettingValue& value) {
    if (const bool* const flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    if (const std::int64_t* const number = std::get_if<std::int64_t>(&value)) return *number;
    if (const float* const number = std::get_if<float>(&value)) return wholeOf(*number);
    return wholeOf(std::string_view(std::get<std::string>(value)));
}

bool boolOf(const SettingValue& value) {
    if (const std::string* const text = std::get_if<std::string>(&value)) return isTrue(*text);
    if (const float* const number = std::get_if<float>(&value)) return *number != 0.0F;
    return integerOf(value) != 0;
}

float floatOf(const SettingValue& value) {
    if (const float* const number = std::get_if<float>(&value)) return *number;
    if (const std::string* const text = std::get_if<std::string>(&value)) return readFloat(*text);
    return static_cast<float>(integerOf(value));
}

bool isSame(const SettingObject& one, const SettingObject& other) {
    const float* const left = one ? std::get_if<float>(&*one) : nullptr;
    const float* const right = other ? std::get_if<float>(&*other) : nullptr;
    if (left == nullptr || right == nullptr) return one == other;
    return std::bit_cast<std::uint32_t>(*left) == std::bit_cast<std::uint32_t>(*right);
}

}  // namespace orrinvale
