// The drawings that are files: SVG whose colours are named after their meaning, so one file serves
// every scheme.
#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>

#include "ui/kit/look/Theme.h"

class QPainter;
class QRectF;

namespace orrinvale {

/// In a file a colour is written as the name of its role, fill="#text" or
/// stop-color="#accent-hover". Main thread only.
class PictureFile final {
public:
    /// The names of all files, without their extension, sorted.
    [[nodiscard]] static QStringList names();

    /// The size in points that the file was drawn for; empty for an unknown name.
    [[nodiscard]] static QSize size(const QString& name);

    /// Draws the file as large as fits into the rectangle, in its middle; a file that says
    /// preserveAspectRatio="none" is stretched over all of it. An unknown name draws nothing.
    static void draw(QPainter& painter, const QRectF& rectangle, const QString& name,
                     Theme::Scheme scheme);

    /// The text of a file with its names of colours replaced. What names no role stays, and the
    /// drawing lacks its colour.
    [[nodiscard]] static QByteArray colored(QByteArray text, Theme::Scheme scheme);
};

}  // namespace orrinvale
