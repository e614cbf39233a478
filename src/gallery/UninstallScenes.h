// UninstallScenes: the uninstall page with applications that are made up.
#pragma once

#include <QSet>
#include <QString>

namespace orrinvale {

class PictureFolder;
class UserDefaults;

/// False, with a line on standard error, where something does not come to be seen.
[[nodiscard]] bool drawUninstall(UserDefaults& defaults, const PictureFolder& pictures,
                                 const QSet<QString>& wanted);

}  // namespace orrinvale
