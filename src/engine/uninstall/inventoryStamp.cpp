// The times of what package managers write last, and of the folders that applications lie in.
#include "engine/uninstall/inventoryStamp.h"

#include <fmt/format.h>

#include <iterator>
#include <vector>

#include "platform/files.h"

namespace orrinvale {

std::string inventoryStamp(const FileSystem& files, const FolderVariables& variables) {
    std::vector<std::string> places{"/Applications",
                                    "/Network/Applications",
                                    "/Developer/Applications",
                                    "/var/lib/dpkg/status",
                                    "/var/lib/flatpak/.changed",
                                    "/var/lib/snapd/state.json",
                                    "/snap",
                                    "/opt",
                                    "/usr/share/applications",
                                    "/usr/local/share/applications"};
    for (const char* below :
         {"Applications", "AppImages", ".local/bin", ".local/opt", "Downloads", "Desktop"})
        places.push_back(variables.home + '/' + below);
    for (const char* below : {"flatpak/.changed", "applications"})
        places.push_back(variables.dataHome + '/' + below);
    std::string stamp;
    for (const std::string& place : places) {
        const auto seen = files.attributes(FileSystem::noParent, place.c_str(), Links::Follow);
        if (seen)
            fmt::format_to(std::back_inserter(stamp), "{}:{}:{}", seen->inode, seen->modified,
                           seen->size);
        stamp += ';';
    }
    return stamp;
}

}  // namespace orrinvale
