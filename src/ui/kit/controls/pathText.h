// pathText: names and paths where there is little room for them.
#pragma once

#include <QFontMetrics>
#include <QString>

namespace orrinvale {

/// A line break in a name would hide what follows it, a mark of direction turn it round: signs take
/// the place of these, of tabs and of all other control characters.
[[nodiscard]] QString onOneLine(QString text);

/// A text as a tool tip: one that looks like markup is shown as it is spelled.
[[nodiscard]] QString asToolTip(const QString& text);

/// What of a folder, which begins and ends with a slash, fits into the width in pixels. `shared` is
/// the folder, in the same form, below which everything lies that is shown together, empty where
/// there is none. That part is cut first, since it tells nothing apart, and then the middle of the
/// rest. The last name stays whole as long as it fits by itself.
[[nodiscard]] QString shortenedFolder(const QString& folder, const QString& shared,
                                      const QFontMetrics& metrics, int width);

/// A path in two parts for one line: its folder, which is empty or ends with a slash, and its name.
struct PathParts {
    QString folder;
    QString name;
};

[[nodiscard]] PathParts pathParts(const QString& path);

/// What of a path fits into the width. The name gives way in its middle before the folder's last
/// name does, down to its first two letters and its last four.
[[nodiscard]] PathParts shortenedPath(const QString& path, const QString& shared,
                                      const QFontMetrics& metrics, int width);

}  // namespace orrinvale
