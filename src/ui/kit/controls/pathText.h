// pathText: names and paths where there is little room for them.
#pragma once

#include <QFontMetrics>
#include <QString>

namespace orrinvale {

/// A line break in a name would hide what follows it; a sign takes its place.
[[nodiscard]] QString onOneLine(QString text);

/// A text as a tool tip: one that looks like markup is shown as it is spelled.
[[nodiscard]] QString asToolTip(const QString& text);

/// What of a folder, which ends with a slash, fits into the width in pixels. Its end stays: what is shown together lies below one
/// folder, and it is the end that tells two apart.
[[nodiscard]] QString shortenedFolder(const QString& folder, const QFontMetrics& metrics, int width);

}  // namespace orrinvale
