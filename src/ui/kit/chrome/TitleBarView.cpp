// A press becomes a drag only once the pointer has moved: a window manager that has taken over at
// the press would swallow the double click.
#include "ui/kit/chrome/TitleBarView.h"

#include <QApplication>
#include <QChildEvent>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/chrome/WindowDrag.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {

TitleBarView::TitleBarView(WindowDrag& drag, QWidget* window) : QWidget(window), m_drag(drag) {
    using Kind = WindowButton::Kind;
    std::size_t index = 0;
    for (const Kind kind : {Kind::Close, Kind::Miniaturize, Kind::Zoom})
        m_buttons.at(index++) = new WindowButton(kind, this);
    connect(&Theme::shared(), &Theme::changed, this, qOverload<>(&QWidget::update));
    placeChildren();
}

void TitleBarView::setHeaderImage(const QString& name) {
    m_headerImage = name;
    update();
}

void TitleBarView::setLeftMargin(int margin) {
    m_leftMargin = margin;
    placeChildren();
}

void TitleBarView::setTopButtonShift(int shift) {
    m_topButtonShift = shift;
    placeChildren();
}

void TitleBarView::setHasButtons(bool hasButtons) {
    m_hasButtons = hasButtons;
    placeChildren();
}

QRect TitleBarView::contentRect() const {
    if (!m_hasButtons) return rect();
    return rect().adjusted(
        m_leftMargin + static_cast<int>(m_buttons.size()) * WindowButton::side + Theme::gapSmall, 0,
        0, 0);
}

void TitleBarView::setDoubleClickAction(std::function<void()> action) {
    m_doubleClickAction = std::move(action);
}

void TitleBarView::placeChildren() {
    int x = m_leftMargin;
    for (WindowButton* const button : m_buttons) {
        button->move(x, m_topButtonShift);
        button->setVisible(m_hasButtons);
        x += WindowButton::side;
    }
    for (ToplineView* const line : findChildren<ToplineView*>(Qt::FindDirectChildrenOnly))
        line->setGeometry(rect());
}

void TitleBarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::shared().color(Theme::Color::SurfaceRaised));
    if (m_headerImage.isEmpty()) return;
    painter.drawPixmap(rect(), picturePixmap(m_headerImage, size(), devicePixelRatioF()));
}

void TitleBarView::resizeEvent(QResizeEvent*) { placeChildren(); }

void TitleBarView::childEvent(QChildEvent* event) {
    QWidget::childEvent(event);
    // A child that is just being made is no ToplineView yet; this comes once it is one.
    if (event->type() == QEvent::ChildAdded)
        QMetaObject::invokeMethod(
            this, [this] { placeChildren(); }, Qt::QueuedConnection);
}

void TitleBarView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_press = event->globalPosition().toPoint();
}

void TitleBarView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint pointer = event->globalPosition().toPoint();
    if (m_press && (pointer - *m_press).manhattanLength() >= QApplication::startDragDistance())
        m_drag.begin({}, *std::exchange(m_press, std::nullopt));
    m_drag.moveTo(pointer);
}

void TitleBarView::mouseReleaseEvent(QMouseEvent*) {
    m_press.reset();
    m_drag.end();
}

void TitleBarView::mouseDoubleClickEvent(QMouseEvent* event) {
    m_press.reset();
    if (event->button() == Qt::LeftButton && m_doubleClickAction) m_doubleClickAction();
}

}  // namespace orrinvale
