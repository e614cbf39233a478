// utf8: which bytes are valid UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

namespace orrinvale {

/// Length of the valid UTF-8 sequence at the start of the bytes; 0 when there is none.
[[nodiscard]] std::size_t validSequence(std::string_view bytes);

/// Whether all of them are.
[[nodiscard]] bool isValidUtf8(std::string_view bytes);

}  // namespace orrinvale
