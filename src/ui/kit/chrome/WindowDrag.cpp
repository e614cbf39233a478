// The arithmetic of edges stands in frameGeometry.h.
#include "ui/kit/chrome/WindowDrag.h"

#include <QGuiApplication>
#include <QWindow>

#include <utility>

#include "ui/kit/chrome/frameGeometry.h"

namespace orrinvale {

WindowDrag::WindowDrag(QWidget& window, std::function<void()> refused)
    : m_window(window), m_refused(std::move(refused)) {}

void WindowDrag::begin(Qt::Edges edges, QPoint pointer) {
    m_isOurs = false;
    QWindow* const handle = m_window.windowHandle();
    if (handle == nullptr) return;
    if (edges ? handle->startSystemResize(edges) : handle->startSystemMove()) return;
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
        m_refused();
        return;
    }
    // A maximised window stays where it is; only a manager can tear it off the edges.
    if (m_window.isMaximized() || m_window.isFullScreen()) return;
    m_isOurs = true;
    m_edges = edges;
    m_startPointer = pointer;
    m_startGeometry = m_window.geometry();
}

void WindowDrag::moveTo(QPoint pointer) {
    if (!m_isOurs) return;
    const QPoint delta = pointer - m_startPointer;
    if (!m_edges) m_window.move(m_startGeometry.topLeft() + delta);
    else
        m_window.setGeometry(pulledRect(m_startGeometry, m_edges, delta, m_window.minimumSize(),
                                        m_window.maximumSize()));
}

}  // namespace orrinvale
