// readFloat: the number at the start of a text, read alike in every locale.
#pragma once

#include <string_view>

namespace orrinvale {

/// Skips white space, then reads an optional sign, digits with an optional point, and an optional
/// decimal exponent, up to the first byte that can not go on so. No number gives 0; one too large
/// gives infinity of its sign, one too small 0. Hexadecimal digits and the words for infinity and
/// not-a-number are no numbers here.
[[nodiscard]] float readFloat(std::string_view text);

}  // namespace orrinvale
