// SettingsText: the settings as the text of an INI file, and back. Read UserDefaults.h next.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/settings/SettingValue.h"

namespace orrinvale {

/// A file is some 1 KiB; what is larger than this was not written by us.
inline constexpr std::size_t kSettingsTextLimit = std::size_t{1} << 20U;

/// The one section "[Orrinvale]" with a line "key = value" for each setting, in the order of the
/// keys. The value shows its type: true or false; a whole number; a number with a point or an
/// exponent; "text" in quotation marks, with \" \\ \n \r \t and \xHH. A key of other characters
/// than letters, digits, _ . and - is quoted like a text.
[[nodiscard]] std::string printSettings(const SettingValues& values);

/// One value as it stands there behind the "=".
[[nodiscard]] std::string printSetting(const SettingValue& value);

/// What a text holds.
struct ParsedSettings {
    SettingValues values;
    std::vector<std::size_t>
        badLines;  ///< the numbers, from 1 on, of the lines that could not be read
};

/// Reads it back; of a key given twice the last one holds. Read as well is what people and their
/// editors write: a byte order mark, any line ends, blank lines, notes behind # or ;, a missing
/// section line, YES, No, on and off in any case, 0,5 for 0.5, and texts in 'single', “curved” or
/// „low“ quotation marks, as they stand in them. "1,000" may be one or a thousand and is a bad
/// line, as is every line below another section. Nothing when the text is too large, or holds
/// neither the section nor a setting.
[[nodiscard]] std::optional<ParsedSettings> parseSettings(std::string_view text);

}  // namespace orrinvale
