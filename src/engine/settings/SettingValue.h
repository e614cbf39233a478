// SettingValue: one stored setting, and how it reads as another type than it was stored as.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace orrinvale {

/// What a setting can be. Numbers are stored as the type they were given.
using SettingValue = std::variant<bool, std::int64_t, float, std::string>;

/// A stored value, or nothing where the key holds none. As a condition it asks for presence: a
/// stored 0 counts as true.
using SettingObject = std::optional<SettingValue>;

using SettingValues = std::map<std::string, SettingValue, std::less<>>;

/// As a whole number: a float is truncated and held within the range, not-a-number is 0; a text
/// gives the digits that it begins with, after white space and a sign, or 0.
[[nodiscard]] std::int64_t integerOf(const SettingValue& value);

/// A number is true unless it is 0. A text is true when, after white space, a sign and zeros, it
/// begins with one of YyTt1 to 9.
[[nodiscard]] bool boolOf(const SettingValue& value);

/// A text gives the number that it begins with, in every locale alike, or 0.
[[nodiscard]] float floatOf(const SettingValue& value);

/// Same type and same bits, so that not-a-number equals itself.
[[nodiscard]] bool isSame(const SettingObject& one, const SettingObject& other);

}  // namespace orrinvale
