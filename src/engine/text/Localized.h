// Localized: the texts that the user reads, by fixed keys. They are written in resources/texts/en.strings and built in.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orrinvale {

/// A table of texts as read from its source.
struct StringTable {
    std::map<std::string, std::string, std::less<>> texts;
    std::vector<std::size_t> malformedLines;  ///< counted from 1; a key given twice makes its second line malformed
};

/// Reads lines of the form "KEY" = "text"; with blank lines and with comments (from // to the line's end, or from /* to
/// */ over any number of lines) between them. \" \\ and \n stand for a quotation mark, a backslash and a line break. A
/// line of another form is noted and left out.
[[nodiscard]] StringTable parseStringTable(std::string_view source);

/// The built-in table, read at the first call. Any thread.
[[nodiscard]] const StringTable& builtInTexts();

/// The text of a key; the key itself when the table lacks it, empty for a null key. Any thread.
[[nodiscard]] std::string getLocalizedString(const char* key);

}  // namespace orrinvale
