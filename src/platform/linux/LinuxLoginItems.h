// LinuxLoginItems: the folders of autostart entries by the desktop's base directories.
#pragma once

#include "platform/FolderVariables.h"
#include "platform/login_items.h"

namespace orrinvale {

/// "autostart" in $XDG_CONFIG_HOME and in each of $XDG_CONFIG_DIRS (/etc/xdg where it says
/// nothing); desktops by $XDG_CURRENT_DESKTOP, languages by the locale's variables, programs by
/// $PATH. getenv(3) is not safe beside setenv(3).
[[nodiscard]] LoginItemFolders linuxLoginItemFolders(
    const FolderVariables& variables = FolderVariables::ofThisProcess());

}  // namespace orrinvale
