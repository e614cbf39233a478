// UserFolders: see UserFolders.h.
#include "engine/settings/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string_view>

namespace orrinvale {
namespace {

std::string absoluteFrom(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value != '/') return {};
    std::string path(value);
    while (path.ends_with('/')) path.pop_back();
    return path;
}

std::string homeFolder() {
    if (std::string home = absoluteFrom("HOME"); !home.empty()) return home;
    std::array<char, 4096> space{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, space.data(), space.size(), &found) != 0 || found == nullptr) return {};
    return found->pw_dir;
}

std::string ownFolder(const char* variable, std::string_view usual) {
    std::string base = absoluteFrom(variable);
    if (base.empty()) base = homeFolder().append(usual);
    return base + "/com.kelpford.Orrinvale";
}

}  // namespace

std::string userConfigFolder() { return ownFolder("XDG_CONFIG_HOME", "/.config"); }

std::string userDataFolder() { return ownFolder("XDG_DATA_HOME", "/.local/share"); }

}  // namespace orrinvale
