#include "engine/largefiles/SystemFolder.h"

#include "engine/files/systemPlaces.h"

namespace orrinvale {

const std::set<std::string>& SystemFolder::paths() {
    static const std::set<std::string> paths(systemPlaces().begin(), systemPlaces().end());
    return paths;
}

bool SystemFolder::isSystemFileWithFilePath(const std::string& path) {
    return paths().contains(path);
}

}  // namespace orrinvale
