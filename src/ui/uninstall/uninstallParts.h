// uninstallParts: what the uninstall page asks, over the applications of a machine.
#pragma once

#include "platform/FolderVariables.h"
#include "ui/uninstall/UninstallAppsController.h"

namespace orrinvale {

class Applications;
class FolderUtilities;
class Folders;

/// Nothing of it is owned; all of it outlives the page.
struct ApplicationSources {
    const FileSystem* files = nullptr;
    const Applications* applications = nullptr;
    const Folders* folders = nullptr;
    const FolderUtilities* utilities = nullptr;
    std::vector<std::string> ownFiles;  ///< of this program, which never go
    FolderVariables variables;
};

[[nodiscard]] UninstallPageParts uninstallPartsOf(const ApplicationSources& sources);

}  // namespace orrinvale
