// SystemFolder: see SystemFolder.h. The property list is built into the program, so that it is read once.
#include "engine/largefiles/SystemFolder.h"

#include <set>
#include <utility>

#include "engine/settings/BundleResources.h"

namespace orrinvale {
namespace {

std::set<std::string> listedPaths() {
    std::set<std::string> paths;
    const auto list = propertyListOfResource("SystemFile");
    if (!list) return paths;
    for (std::size_t index = 0; index < list->count(); ++index)
        if (auto path = list->stringForKey(std::to_string(index))) paths.insert(std::move(*path));
    return paths;
}

}  // namespace

const std::set<std::string>& SystemFolder::paths() {
    static const std::set<std::string> paths = listedPaths();
    return paths;
}

bool SystemFolder::isSystemFileWithFilePath(const std::string& path) { return paths().contains(path); }

}  // namespace orrinvale
