// A folder tells nothing where somebody installed by hand below /usr, so that lists come first.
#include "platform/linux/OwnPackage.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/linux/DpkgDatabase.h"

namespace orrinvale {
namespace {

// Stores whose packages no list of dpkg's knows.
constexpr std::array<std::string_view, 4> storeFolders{"/app/", "/snap/", "/nix/store/",
                                                       "/gnu/store/"};

bool isInstalledPlace(std::string_view path) {
    return path.starts_with("/usr/") && !path.starts_with("/usr/local/");
}

}  // namespace

bool isOwnedByPackage(const OwnPackagePlaces& places) {
    const std::string& path = places.executable;
    if (path.empty()) return false;
    if (::access(places.sandboxMark.c_str(), F_OK) == 0) return true;
    if (std::ranges::any_of(storeFolders, [&](std::string_view s) { return path.starts_with(s); }))
        return true;
    const DpkgDatabase packages(places.dpkgFolder);
    if (packages.packages().empty()) return isInstalledPlace(path);
    return packages.ownersOf({path}).front() != nullptr;
}

}  // namespace orrinvale
