// askYes: a question on the terminal that only a plain yes answers with yes.
#pragma once

#include <string_view>

namespace orrinvale::cli {

/// Written to standard error with "[y/N]" behind it. What was typed before it is no answer.
[[nodiscard]] bool askYes(std::string_view question);

}  // namespace orrinvale::cli
