// Localized: the texts that the user reads, by fixed keys. They are written in resources/texts, a
// table a language, and built in.
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
    std::vector<std::size_t>
        malformedLines;  ///< counted from 1; a key given twice makes its second line malformed
};

/// Reads lines of the form "KEY" = "text"; with blank lines and with comments (from // to the
/// line's end, or from /* to
/// */ over any number of lines) between them. \" \\ and \n stand for a quotation mark, a backslash
/// and a line break. A line of another form is noted and left out.
[[nodiscard]] StringTable parseStringTable(std::string_view source);

/// The built-in table of a language, "en" or "de", read at the first call; the English one for any
/// other. Any thread.
[[nodiscard]] const StringTable& builtInTexts(std::string_view language = "en");

/// From now on texts come in this language; English until the first call. Any thread, best before
/// others run.
void setTextLanguage(std::string_view language);

/// The text of a key with its placeholders %1 to %9 filled in order; what is filled in is not
/// looked through again.
[[nodiscard]] std::string getLocalizedString(const char* key,
                                             const std::vector<std::string>& values);

/// The text of a key; the key itself when the table lacks it, empty for a null key. Any thread.
[[nodiscard]] std::string getLocalizedString(const char* key);

}  // namespace orrinvale
