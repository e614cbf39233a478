// picture: the one way to get a picture. They are SVGs in resources/pictures, or drawn in code for
// numbered families.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>
#include <QStringList>

namespace orrinvale {

/// The picture of that name, "option_a" or "Lock.png" (an extension is left aside), drawn sharp at
/// whatever size and scale is asked of the icon, in the colours of the theme that is in force when
/// it is drawn. An unknown name is logged and gives a null icon. Main thread only.
[[nodiscard]] QIcon picture(const QString& name);

/// The same at a size in points, for a screen of that scale. An empty size means the picture's own.
[[nodiscard]] QPixmap picturePixmap(const QString& name, QSize size = {}, qreal scale = 1.0);

/// The size in points that the picture was drawn for; empty for an unknown name.
[[nodiscard]] QSize pictureSize(const QString& name);

/// Every name that picture() knows, without extensions, sorted; of a numbered family its pattern's
/// first member.
[[nodiscard]] QStringList pictureNames();

}  // namespace orrinvale
