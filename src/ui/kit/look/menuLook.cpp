// The toolkit hands title and keys over as one text with a tab between them.
#include "ui/kit/look/menuLook.h"

#include <QPainter>
#include <QStyleOptionMenuItem>
#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int separatorHeight = 9;
constexpr int keysGap = Theme::gapHuge;
constexpr int leastMenuWidth = 180;

bool isChecked(const QStyleOptionMenuItem& row) {
    return row.checkType != QStyleOptionMenuItem::NotCheckable && row.checked;
}

void drawMark(QPainter& painter, const QRect& rect, QColor color) {
    const QPointF middle = QRectF(rect).center();
    painter.setPen(QPen(color, 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(
        QPolygonF{middle + QPointF(-4, 0), middle + QPointF(-1, 3), middle + QPointF(4.5, -3.5)});
}

// At the end of a row that opens a further menu, pointing there.
void drawArrow(QPainter& painter, const QRect& row, Qt::LayoutDirection direction, QColor color) {
    const bool isMirrored = direction == Qt::RightToLeft;
    const int side = isMirrored ? -1 : 1;
    const QPointF tip(isMirrored ? row.left() + 2 : row.right() - 1, row.center().y() + 0.5);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{tip + QPointF(-4 * side, -4), tip, tip + QPointF(-4 * side, 4)});
}

}  // namespace

QSize menuRowSize(const QStyleOptionMenuItem& row, QSize texts) {
    if (row.menuItemType == QStyleOptionMenuItem::Separator) return {10, separatorHeight};
    int width = texts.width() + row.reservedShortcutWidth + 2 * (menuPadding + Theme::gapSmall);
    if (row.reservedShortcutWidth > 0) width += keysGap;
    if (row.menuHasCheckableItems) width += Theme::gapHuge;
    return {std::max(width, leastMenuWidth), Theme::rowHeight};
}

void drawMenuRow(QPainter& painter, const QStyleOptionMenuItem& row) {
    const Theme& theme = Theme::shared();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect inside = row.rect.adjusted(menuPadding, 0, -menuPadding, 0);
    if (row.menuItemType == QStyleOptionMenuItem::Separator) {
        painter.fillRect(QRect(inside.left(), row.rect.center().y(), inside.width(), 1),
                         theme.color(Theme::Color::Line));
        painter.restore();
        return;
    }
    const bool isEnabled = row.state.testFlag(QStyle::State_Enabled);
    if (isEnabled && row.state.testFlag(QStyle::State_Selected)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.color(Theme::Color::Selection));
        painter.drawRoundedRect(inside, Theme::radiusSmall + 2, Theme::radiusSmall + 2);
    }
    const QColor color = theme.color(isEnabled ? Theme::Color::Text : Theme::Color::TextDisabled);
    QRect text = inside.adjusted(Theme::gapSmall, 0, -Theme::gapSmall, 0);
    if (row.menuHasCheckableItems) {
        if (isChecked(row))
            drawMark(painter, QRect(text.left(), text.top(), Theme::gapLarge, text.height()),
                     color);
        text.setLeft(text.left() + Theme::gapHuge);
    }
    painter.setFont(row.font);
    painter.setPen(color);
    const QStringList parts = row.text.split(QLatin1Char('\t'));
    constexpr int flags = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextShowMnemonic;
    painter.drawText(text, flags | Qt::AlignLeft, parts.value(0));
    painter.setPen(isEnabled ? theme.color(Theme::Color::TextSecondary) : color);
    painter.drawText(text, flags | Qt::AlignRight, parts.value(1));
    if (row.menuItemType == QStyleOptionMenuItem::SubMenu)
        drawArrow(painter, text, row.direction, painter.pen().color());
    painter.restore();
}

void drawMenuPanel(QPainter& painter, const QRect& rect) {
    painter.fillRect(rect, Theme::shared().color(Theme::Color::Line));
    painter.fillRect(rect.adjusted(1, 1, -1, -1), Theme::shared().color(Theme::Color::Surface));
}

}  // namespace orrinvale
