// SettingTable: what each setting may hold, for whoever takes a value from a person. SettingsKeys.h
// names them, PreferenceViewController.h stores them.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

#include "engine/settings/SettingValue.h"

namespace orrinvale {

/// How a setting is stored, and so how a value is read that a person writes.
enum class SettingForm : std::uint8_t {
    Switch,  ///< true or false
    Number,  ///< a whole number
    Share,   ///< a part of 1
    Word,    ///< one of several
    Kept     ///< whatever the program itself puts there; nobody else sets it
};

struct SettingRule {
    const char* key;
    SettingForm form;
    std::int64_t least = 0, most = 0;  ///< of a Number that has no words
    /// Of a Word those that there are; of a Number the only ones that count, if any; of a Switch
    /// those that it takes beside true and false.
    std::array<std::string_view, 3> words{};
};

/// Every key of SettingsKeys.h once.
[[nodiscard]] std::span<const SettingRule> settingTable();
/// Null for a key that there is not.
[[nodiscard]] const SettingRule* settingRule(std::string_view key);

/// The value that the text stands for, as it is to be stored; or what it has to be instead, as
/// words behind "takes". Locales change nothing.
[[nodiscard]] tl::expected<SettingValue, std::string> settingFrom(std::string_view text,
                                                                  const SettingRule& rule);

}  // namespace orrinvale
