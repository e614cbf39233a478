// shortenedName: a name of a file that fits, for those who put something before or behind the names
// of others.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orrinvale {

inline constexpr std::size_t longestName = 255;  ///< bytes, NAME_MAX of every usual file system

/// The name with `behind` before its extension, of at most `most` bytes: what does not fit goes
/// from the end of the stem, never from the middle of a UTF-8 character. An extension of more than
/// 20 bytes is taken for a part of the stem.
[[nodiscard]] std::string shortenedName(std::string_view name, std::string_view behind,
                                        std::size_t most);

}  // namespace orrinvale
