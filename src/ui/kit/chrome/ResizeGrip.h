// ResizeGrip: the strip along an edge, or the square at a corner, by which the pointer resizes a
// window without a system frame.
#pragma once

#include <QWidget>

namespace orrinvale {

class WindowDrag;

class ResizeGrip final : public QWidget {
    Q_OBJECT
public:
    /// One or two edges that meet. `drag` outlives the grip.
    ResizeGrip(Qt::Edges edges, WindowDrag& drag, QWidget* window);

    [[nodiscard]] Qt::Edges edges() const { return m_edges; }

    /// Takes its place around `frame`: from `outside` points beyond it to `inside` points within.
    void place(const QRect& frame, int outside, int inside);

    /// Whether it draws a hairline along the window's edge, which a window with a shadow does not
    /// need.
    void setLined(bool isLined);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    const Qt::Edges m_edges;
    WindowDrag& m_drag;
    bool m_isLined = false;
};

}  // namespace orrinvale
