// The words of the kinds of applications.
#include "platform/applications.h"

#include <array>

namespace orrinvale {
namespace {
constexpr std::array<std::string_view, 6> words{"app", "flatpak",  "snap",
                                                "deb", "appimage", "folder"};
}  // namespace

std::string_view wordOf(ApplicationType type) { return words[static_cast<std::size_t>(type)]; }

std::optional<ApplicationType> applicationTypeOf(std::string_view word) {
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i] == word) return static_cast<ApplicationType>(i);
    return std::nullopt;
}

}  // namespace orrinvale
