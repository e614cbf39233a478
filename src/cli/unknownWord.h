// unknownWord: what on a command line is neither a command nor an option, and what was probably
// meant.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/CommandSet.h"

namespace orrinvale::cli {

/// The complaint about the first word that no command has, with the nearest that there is; nothing
/// where all are known. `words` are the arguments without the program's name. The parser itself
/// would answer --help before it looked at them.
[[nodiscard]] std::optional<std::string> unknownWord(const std::vector<std::string>& words,
                                                     const Commands& commands);

}  // namespace orrinvale::cli
