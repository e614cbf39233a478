// columnWidths: how wide columns of a list are whose contents are the same on every page.
#pragma once

#include <QStringList>

namespace orrinvale {

/// Of boxes, and of pictures to press.
inline constexpr int boxColumnWidth = 34;

/// As wide as a date in the language of the desktop.
[[nodiscard]] int dateColumnWidth();

/// As wide as the widest of these in a row.
[[nodiscard]] int wordsColumnWidth(const QStringList& words);

}  // namespace orrinvale
