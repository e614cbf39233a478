// The times of what package managers write last, and of the folders that applications lie in.
#include "engine/uninstall/inventoryStamp.h"

#include <fmt/format.h>

#include <iterator>
#include <utility>
#include <vector>

#include "platform/applications.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

std::string inventoryStamp(const FileSystem& files, const std::string& home,
                           const Applications* applications) {
    std::vector<std::string> places{"/Applications", "/Network/Applications",
                                    "/Developer/Applications", joinPath(home, "Applications")};
    if (applications != nullptr)
        for (std::string& each : applications->watched()) places.push_back(std::move(each));
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
