// MemoryScenes: the page "Memory" at rest, after a run, and where memory runs low.
#pragma once

#include <QSet>
#include <QString>

namespace orrinvale {

class PictureFolder;
class UserDefaults;

/// Of the scenes only the `wanted` become pictures, all of them where none is named. False when a
/// picture could not be made; standard error says why.
[[nodiscard]] bool drawMemory(UserDefaults& defaults, const PictureFolder& pictures,
                              const QSet<QString>& wanted);

}  // namespace orrinvale
