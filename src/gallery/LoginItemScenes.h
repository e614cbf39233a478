// LoginItemScenes: the page of login items with made-up entries, and with none.
#pragma once

#include <QSet>
#include <QString>

namespace orrinvale {

class PictureFolder;
class UserDefaults;

/// Of the scenes only the `wanted` become pictures, all of them where none is named. False when a
/// picture could not be made; standard error says why.
[[nodiscard]] bool drawLoginItems(UserDefaults& defaults, const PictureFolder& pictures,
                                  const QSet<QString>& wanted);

}  // namespace orrinvale
