// Only absolute paths count; without HOME the account's entry is asked.
#include "platform/FolderVariables.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace orrinvale {
namespace {

std::string absoluteVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value == '/' ? value : "";
}

std::string homeInDatabase(uid_t user) {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return {};
    return found->pw_dir != nullptr && *found->pw_dir == '/' ? found->pw_dir : "";
}

}  // namespace

FolderVariables FolderVariables::ofThisProcess() {
    FolderVariables out{.home = absoluteVariable("HOME"),
                        .cacheHome = absoluteVariable("XDG_CACHE_HOME"),
                        .configHome = absoluteVariable("XDG_CONFIG_HOME"),
                        .dataHome = absoluteVariable("XDG_DATA_HOME"),
                        .stateHome = absoluteVariable("XDG_STATE_HOME"),
                        .user = ::getuid()};
    if (out.home.empty()) out.home = homeInDatabase(out.user);
    return out;
}

}  // namespace orrinvale
