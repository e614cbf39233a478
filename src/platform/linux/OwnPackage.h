// OwnPackage: whether the program came with a package, which then brings its newer versions too.
#pragma once

#include <string>

#include "platform/linux/ProgramFiles.h"

namespace orrinvale {

struct OwnPackagePlaces {
    std::string executable = ownExecutable();
    std::string dpkgFolder = "/var/lib/dpkg";
    std::string sandboxMark = "/.flatpak-info";  ///< there in each sandbox of that kind
};

/// dpkg is asked where it knows any package. Elsewhere the place tells: what lies below /usr, but
/// not below /usr/local, belongs to the system. Reads dpkg's lists, some ten milliseconds; any
/// thread.
[[nodiscard]] bool isOwnedByPackage(const OwnPackagePlaces& places = {});

}  // namespace orrinvale
