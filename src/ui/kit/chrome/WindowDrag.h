// WindowDrag: moves and resizes a window along with the pointer, by the window manager where he
// does that.
#pragma once

#include <QPoint>
#include <QRect>
#include <QWidget>

#include <functional>

namespace orrinvale {

/// One for each window. Between begin() and end() the widget that got the press hands on each
/// position of the pointer. Where the window manager has taken over those calls do nothing.
class WindowDrag final {
public:
    /// `refused` is called where neither the manager nor the program can move windows: on Wayland a
    /// program does not know where its windows are.
    WindowDrag(QWidget& window, std::function<void()> refused);
    WindowDrag(const WindowDrag&) = delete;
    WindowDrag& operator=(const WindowDrag&) = delete;

    /// Resizes by these edges, or moves for no edges. `pointer` in global coordinates.
    void begin(Qt::Edges edges, QPoint pointer);
    void moveTo(QPoint pointer);
    void end() { m_isOurs = false; }

private:
    QWidget& m_window;
    const std::function<void()> m_refused;
    bool m_isOurs = false;
    Qt::Edges m_edges;
    QPoint m_startPointer;
    QRect m_startGeometry;
};

}  // namespace orrinvale
