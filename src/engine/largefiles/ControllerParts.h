// ControllerParts: what Controller and the classes behind it work with.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Nothing of it is owned; all of it outlives the last use.
struct ControllerParts {
    const FileSystem* files = nullptr;
    MainQueue* mainQueue = nullptr;
    std::vector<std::string> ownFiles;  ///< absolute paths of the program's files, never removed
    std::function<void(const std::string& path)>
        reveal;  ///< shows the entry in the desktop's file manager
    std::function<void(const std::string& path)>
        openFolder;  ///< opens the entry with the desktop's file manager
};

}  // namespace orrinvale
