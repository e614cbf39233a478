#include "engine/settings/UserFolders.h"

#include "platform/FolderVariables.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::string ownFolderIn(const std::string& chosen, const std::string& home, const char* usual) {
    return joinPath(chosen.empty() ? joinPath(home, usual) : chosen, "com.kelpford.Orrinvale");
}

}  // namespace

std::string userConfigFolder() {
    const auto variables = FolderVariables::ofThisProcess();
    return ownFolderIn(variables.configHome, variables.home, ".config");
}

std::string userDataFolder() {
    const auto variables = FolderVariables::ofThisProcess();
    return ownFolderIn(variables.dataHome, variables.home, ".local/share");
}

std::string userStateFolder() {
    const auto variables = FolderVariables::ofThisProcess();
    return ownFolderIn(variables.stateHome, variables.home, ".local/state");
}

std::string userCacheFolder() {
    const auto variables = FolderVariables::ofThisProcess();
    return ownFolderIn(variables.cacheHome, variables.home, ".cache");
}

}  // namespace orrinvale
