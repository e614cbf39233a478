// The line is one point; what takes hold of it is wider.
#include "ui/kit/columns/ColumnGrip.h"

#include <QMouseEvent>
#include <QPainter>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

ColumnGrip::ColumnGrip(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("columnGrip"));
    setCursor(Qt::SplitHCursor);
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

void ColumnGrip::mousePressEvent(QMouseEvent* event) {
    m_start = event->globalPosition().toPoint().x();
    Q_EMIT pressed();
}

void ColumnGrip::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton)) return;
    const int by = event->globalPosition().toPoint().x() - m_start;
    Q_EMIT dragged(layoutDirection() == Qt::RightToLeft ? -by : by);
}

void ColumnGrip::mouseDoubleClickEvent(QMouseEvent* /*event*/) { Q_EMIT resetWanted(); }

void ColumnGrip::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(width() / 2, 0, 1, height(), Theme::shared().color(Theme::Color::Line));
}

}  // namespace orrinvale
