// TCImageWindow has eight grips above everything else; WindowDrag does the resizing.
#include "ui/kit/chrome/ResizeGrip.h"

#include <QMouseEvent>
#include <QPainter>

#include "ui/kit/chrome/WindowDrag.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

// Corners reach further along both edges than the edges are thick: a point is hard to hit.
constexpr int cornerInside = 10;

bool isCorner(Qt::Edges edges) {
    return (edges & (Qt::LeftEdge | Qt::RightEdge)) && (edges & (Qt::TopEdge | Qt::BottomEdge));
}

Qt::CursorShape cursorFor(Qt::Edges edges) {
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        return Qt::SizeFDiagCursor;
    if (isCorner(edges)) return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

struct GripSpan {
    int start;
    int end;
};

// One axis of the grip: at the low or the high edge, or the stretch between them.
GripSpan spanOf(bool isLow, bool isHigh, GripSpan frame, int outside, int inside) {
    if (isLow) return {frame.start - outside, frame.start + inside};
    if (isHigh) return {frame.end - inside, frame.end + outside};
    return {frame.start + cornerInside, frame.end - cornerInside};
}

}  // namespace

ResizeGrip::ResizeGrip(Qt::Edges edges, WindowDrag& drag, QWidget* window)
    : QWidget(window), m_edges(edges), m_drag(drag) {
    setCursor(cursorFor(edges));
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_NoSystemBackground);
}

void ResizeGrip::place(const QRect& frame, int outside, int inside) {
    const int within = isCorner(m_edges) ? cornerInside : inside;
    const GripSpan across = spanOf(m_edges.testFlag(Qt::LeftEdge), m_edges.testFlag(Qt::RightEdge),
                                   {frame.left(), frame.right() + 1}, outside, within);
    const GripSpan down = spanOf(m_edges.testFlag(Qt::TopEdge), m_edges.testFlag(Qt::BottomEdge),
                                 {frame.top(), frame.bottom() + 1}, outside, within);
    setGeometry(across.start, down.start, across.end - across.start, down.end - down.start);
    if (!isCorner(m_edges) || outside != 0) clearMask();
    else {
        // Without a shadow a corner lies on the contents: an angle takes less of them than a
        // square.
        const bool isLeft = m_edges.testFlag(Qt::LeftEdge), isTop = m_edges.testFlag(Qt::TopEdge);
        const QRegion free(isLeft ? inside : 0, isTop ? inside : 0, width() - inside,
                           height() - inside);
        setMask(QRegion(rect()) - free);
    }
}

void ResizeGrip::setLined(bool isLined) {
    m_isLined = isLined;
    update();
}

void ResizeGrip::paintEvent(QPaintEvent*) {
    if (!m_isLined) return;
    QPainter painter(this);
    const QColor line = Theme::shared().color(Theme::Color::Line);
    if (m_edges & Qt::LeftEdge) painter.fillRect(0, 0, 1, height(), line);
    if (m_edges & Qt::RightEdge) painter.fillRect(width() - 1, 0, 1, height(), line);
    if (m_edges & Qt::TopEdge) painter.fillRect(0, 0, width(), 1, line);
    if (m_edges & Qt::BottomEdge) painter.fillRect(0, height() - 1, width(), 1, line);
}

void ResizeGrip::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_drag.begin(m_edges, event->globalPosition().toPoint());
}

void ResizeGrip::mouseMoveEvent(QMouseEvent* event) {
    m_drag.moveTo(event->globalPosition().toPoint());
}

void ResizeGrip::mouseReleaseEvent(QMouseEvent*) { m_drag.end(); }

}  // namespace orrinvale
