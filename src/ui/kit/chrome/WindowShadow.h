// WindowShadow: the soft shadow of a window that draws its own frame, and the round corners cut out
// of its contents.
#pragma once

#include <QRectF>
#include <QWidget>

class QPainter;

namespace orrinvale {

/// How far the shadow reaches beyond the window, in points. It is also where the pointer takes hold
/// of an edge, so no part of it swallows clicks for nothing.
inline constexpr int shadowMargin = 16;

/// Draws the shadow of a window with round corners at `frame`, and a hairline around it. The window
/// in front has the darker one. Main thread only.
void drawWindowShadow(QPainter& painter, const QRectF& frame, bool isActive);

/// Lies over one corner of the window's contents, and takes away what sticks out of the rounding.
/// Child widgets are painted as rectangles, and a mask on them would have jagged edges.
class WindowCorner final : public QWidget {
    Q_OBJECT
public:
    explicit WindowCorner(QWidget* window);

    /// Puts the widget over this corner of the frame, both in coordinates of the window.
    void place(const QRect& frame, Qt::Corner corner);
    void setActive(bool isActive);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect m_frame;
    bool m_isActive = true;
};

}  // namespace orrinvale
