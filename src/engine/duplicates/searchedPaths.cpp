// Hidden paths and the system's folders, by their components alone.
#include "engine/duplicates/searchedPaths.h"

#include <algorithm>
#include <array>

#include "platform/paths.h"

namespace orrinvale {

bool hasHiddenComponent(std::string_view path) {
    while (!path.empty())
        if (nextComponent(path).starts_with('.')) return true;
    return false;
}

bool isSystemFolder(std::string_view path) {
    static constexpr std::array<std::string_view, 6> names{"Library", "Developer", "System",
                                                           "Volumes", "bin",       "sbin"};
    const std::string_view first = nextComponent(path);
    return std::ranges::any_of(
        names, [&](std::string_view name) { return equalIgnoringCase(first, name); });
}

}  // namespace orrinvale
