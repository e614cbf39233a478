// How menus look: rows as high as those of lists, the one under the pointer tinted with round
// corners. HouseStyle.cpp asks.
#pragma once

#include <QSize>

class QPainter;
class QRect;
class QStyleOptionMenuItem;

namespace orrinvale {

inline constexpr int menuPadding = 6;  ///< between the edge of a menu and its rows

/// What a row needs: the title, the keys beside it, a mark before it where the menu has marks.
[[nodiscard]] QSize menuRowSize(const QStyleOptionMenuItem& row, QSize texts);

void drawMenuRow(QPainter& painter, const QStyleOptionMenuItem& row);
void drawMenuPanel(QPainter& painter, const QRect& rect);

}  // namespace orrinvale
