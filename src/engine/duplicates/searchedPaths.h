// Tests on paths that decide what a duplicate search leaves out.
#pragma once

#include <string_view>

namespace orrinvale {

/// True when a component of the path begins with a dot.
[[nodiscard]] bool hasHiddenComponent(std::string_view path);

/// True when the first component behind the root is one of the folders that belong to the system,
/// in any case.
[[nodiscard]] bool isSystemFolder(std::string_view path);

}  // namespace orrinvale
