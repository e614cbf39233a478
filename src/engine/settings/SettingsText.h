// SettingsText: the settings as the text of an INI file, and back. Read UserDefaults.h next.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "engine/settings/SettingValue.h"

namespace orrinvale {

/// A file is some 1 KiB; what is larger than this was not written by us.
inline constexpr std::size_t kSettingsTextLimit = std::size_t{1} << 20U;

/// The one section "[Orrinvale]" with a line "key = value" for each setting, in the order of the keys. The value shows its type:
/// true or false; a whole number; a number with a point or an exponent; "text" in quotation marks, with \" \\ \n \r \t and \xHH.
/// A key of other characters than letters, digits, _ . and - is quoted like a text.
[[nodiscard]] std::string printSettings(const SettingValues& values);

/// Reads it back; spaces, blank lines and lines that begin with # or ; do not matter, and of a key given twice the last one holds.
/// Nothing when the text is too large, the section is missing, or any line has another form: half a file is not guessed at.
[[nodiscard]] std::optional<SettingValues> parseSettings(std::string_view text);

}  // namespace orrinvale
