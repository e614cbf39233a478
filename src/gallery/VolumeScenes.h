// VolumeScenes: the page "Free Space" with few and with many volumes, bubbles on a light and a dark
// desktop, and the menu of the status item.
#pragma once

#include <QSet>
#include <QString>

namespace orrinvale {

class PictureFolder;
class UserDefaults;

/// Of the scenes only the `wanted` become pictures, all of them where none is named. False when a
/// picture could not be made; standard error says why.
[[nodiscard]] bool drawVolumes(UserDefaults& defaults, const PictureFolder& pictures,
                               const QSet<QString>& wanted);

}  // namespace orrinvale
