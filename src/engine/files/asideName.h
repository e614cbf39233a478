// The names of entries that a removal has set aside: what stands under such a name is about to go
// or to come back. No search and no cleaning offers it.
#pragma once

#include <string>
#include <string_view>

namespace orrinvale {

inline constexpr std::string_view asideMark = "orrinvale kept aside ";
inline constexpr std::size_t asideTokenLength = 16;  ///< hexadecimal digits

/// "orrinvale kept aside TOKEN NAME.EXT": no dot in front, so that people see it, and the extension
/// kept, so that they know what it is. At most 255 bytes (NAME_MAX), cut between two characters
/// before the extension.
[[nodiscard]] std::string asideName(std::string_view token, std::string_view name);

/// Whether it is such a name, by its form alone.
[[nodiscard]] bool isAsideName(std::string_view name);

}  // namespace orrinvale
