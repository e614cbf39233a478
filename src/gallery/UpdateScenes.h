// UpdateScenes: the window that looks for a newer version, in each of its states.
#pragma once

#include <QSet>
#include <QString>

namespace orrinvale {

class PictureFolder;

/// Of the scenes only the `wanted` become pictures, all of them where none is named. False when a
/// picture could not be made; standard error says why.
[[nodiscard]] bool drawUpdates(const PictureFolder& pictures, const QSet<QString>& wanted);

}  // namespace orrinvale
