#include "engine/largefiles/SystemFolder.h"

#include "engine/files/systemPlaces.h"
#include "platform/paths.h"

namespace orrinvale {

const std::set<std::string>& SystemFolder::paths() {
    static const std::set<std::string> paths(systemPlaces().begin(), systemPlaces().end());
    return paths;
}

bool SystemFolder::mayBeNamed(std::string_view name) {
    static const std::set<std::string_view> names = [] {
        std::set<std::string_view> last;
        for (const std::string& path : paths()) last.insert(lastPathComponent(path));
        return last;
    }();
    return names.contains(name);
}

bool SystemFolder::isSystemFileWithFilePath(const std::string& path) {
    return paths().contains(path);
}

}  // namespace orrinvale
