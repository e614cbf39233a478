// The tests on paths that decide what a duplicate search looks at. Declared in LooseFileWalk.h.
#include <array>
#include <string>

#include "engine/duplicates/LooseFileWalk.h"

namespace orrinvale {
namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (upper(a[i]) != upper(b[i])) return false;
    return true;
}

// Calls visit(component, end of the component in the path) for each component but the root's slash,
// until it answers true.
template <class Visit> bool anyComponent(std::string_view path, Visit visit) {
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        if (end > at && visit(path.substr(at, end - at), end)) return true;
        at = end + 1;
    }
    return false;
}

}  // namespace

bool isBundleName(std::string_view name) { return equalIgnoringCase(pathExtension(name), "app"); }

std::string outermostBundle(std::string_view path) {
    std::string found;
    anyComponent(path, [&](std::string_view component, std::size_t end) {
        if (!isBundleName(component)) return false;
        found = std::string(path.substr(0, end));
        return true;
    });
    return found;
}

bool hasHiddenComponent(std::string_view path) {
    return anyComponent(
        path, [](std::string_view component, std::size_t) { return component.front() == '.'; });
}

bool isSystemFolder(std::string_view path) {
    static constexpr std::array<std::string_view, 6> names{"Library", "Developer", "System",
                                                           "Volumes", "bin",       "sbin"};
    std::string_view first;
    anyComponent(path, [&](std::string_view component, std::size_t) {
        first = component;
        return true;
    });
    for (const std::string_view name : names)
        if (equalIgnoringCase(first, name)) return true;
    return false;
}

}  // namespace orrinvale
