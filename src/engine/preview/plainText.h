// plainText: any bytes as text that can be shown, or the answer that they are none.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

struct PlainText {
    std::string text;      ///< UTF-8, lines end with "\n"
    std::string encoding;  ///< "UTF-8", "UTF-16" or "Windows-1252"
    bool isCut = false;    ///< something was left out: at the end, or of a line
};

/// The beginning of a file, or the whole of it. Its encoding is told by its first bytes, else
/// guessed. What a screen would obey is written out as "\x1B" and "\u202E": control characters, and
/// what turns the direction of letters. No line is longer than longestLine characters.
[[nodiscard]] std::optional<PlainText> plainText(std::string_view bytes, bool isWhole = true);

inline constexpr std::size_t longestLine = 1000;
inline constexpr std::size_t mostPlainText = std::size_t{128} * 1024;  ///< bytes of `text`

}  // namespace orrinvale
