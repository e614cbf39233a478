// columnWidths: how wide columns of a list are whose contents are the same on every page.
#pragma once

namespace orrinvale {

/// Of boxes, and of pictures to press.
inline constexpr int boxColumnWidth = 34;

/// As wide as a date in the language of the desktop.
[[nodiscard]] int dateColumnWidth();

}  // namespace orrinvale
