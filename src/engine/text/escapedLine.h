// escapedLine: a path in a file that has a line for each thing. A path may hold line breaks.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// The text with line breaks as "\n" and backslashes doubled; other bytes as they are.
[[nodiscard]] std::string escapedLine(std::string_view text);

/// Back again; nothing for what escapedLine() does not write.
[[nodiscard]] std::optional<std::string> unescapedLine(std::string_view text);

}  // namespace orrinvale
