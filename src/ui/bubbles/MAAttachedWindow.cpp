// First the placing, then the drawing. Screens measure from their lower left corner here, as
// attachedGeometry.h does, and the toolkit from the upper left one; only _updateGeometry() and the
// drawing turn the one into the other.
#include "ui/bubbles/MAAttachedWindow.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <utility>

#include "ui/kit/chrome/desktopFrame.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

// A tool tip is what no window manager frames, lists or gives the keyboard.
constexpr Qt::WindowFlags ownWindow =
    Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus;

QRect fromBelow(const AttachedRect& rect, double height) {
    return QRectF(rect.x, height - rect.y - rect.height, rect.width, rect.height).toRect();
}

}  // namespace

std::unique_ptr<MAAttachedWindow> MAAttachedWindow::initWithView(std::unique_ptr<QWidget> view,
                                                                 AttachedPoint attachedToPoint,
                                                                 QWidget* inWindow,
                                                                 AttachedSide onSide,
                                                                 float atDistance) {
    if (!view) return nullptr;
    return std::unique_ptr<MAAttachedWindow>(
        new MAAttachedWindow(std::move(view), attachedToPoint, inWindow, onSide, atDistance));
}

MAAttachedWindow::MAAttachedWindow(std::unique_ptr<QWidget> view, AttachedPoint point,
                                   QWidget* inWindow, AttachedSide side, float distance)
    : QWidget(inWindow, inWindow == nullptr ? ownWindow : Qt::Widget),
      m_view(view.release()),
      m_window(inWindow),
      m_point(point),
      m_side(side),
      m_distance(static_cast<double>(distance)) {
    setObjectName(QStringLiteral("MAAttachedWindow"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground, inWindow == nullptr);
    setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleTraits(*this, {.role = QAccessible::Notification});
    setAccessibleName(m_view->accessibleName());
    m_view->setParent(this);
    m_view->show();
    _updateGeometry();
}

// The toolkit's points are scaled by itself, so that the look's own factor stays 1.
QRect MAAttachedWindow::frameOfPoint() const {
    if (m_window) return m_window->rect();
    const QScreen* const screen = QGuiApplication::primaryScreen();
    return screen == nullptr ? QRect() : screen->geometry();
}

AttachedTo MAAttachedWindow::placing() const {
    return {static_cast<double>(m_view->width()), static_cast<double>(m_view->height()), m_point,
            m_distance};
}

AttachedSide MAAttachedWindow::side() const {
    return m_side == AttachedSide::Automatic ? _bestSideForAutomaticPosition() : m_side;
}

// Within a window only that window shows it, so that it is the window's inside that counts.
AttachedSide MAAttachedWindow::_bestSideForAutomaticPosition() const {
    const QRect frame = frameOfPoint();
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const QRect visible = m_window || screen == nullptr ? frame : screen->availableGeometry();
    const AttachedRect turned{
        static_cast<double>(visible.x() - frame.x()),
        static_cast<double>(frame.y() + frame.height() - visible.y() - visible.height()),
        static_cast<double>(visible.width()), static_cast<double>(visible.height())};
    return bestAttachedSide(placing(), m_look, turned);
}

void MAAttachedWindow::_updateGeometry() {
    const AttachedGeometry made = attachedGeometry(placing(), m_look, side());
    const QRect frame = frameOfPoint();
    setGeometry(fromBelow(made.window, frame.height()).translated(frame.topLeft()));
    m_view->move(fromBelow(made.view, made.window.height).topLeft());
    _updateBackground();
    update();
}

void MAAttachedWindow::_updateBackground() {
    if (m_window) return;
    const DesktopFacts facts = desktopFacts();
    if (facts.server != DesktopFacts::Server::X11 || facts.isComposited) {
        clearMask();
        return;
    }
    QPainterPathStroker edge;
    edge.setWidth(static_cast<double>(m_borderWidth));
    edge.setJoinStyle(Qt::MiterJoin);
    const QPainterPath path = _backgroundPath();
    setMask(QRegion(path.united(edge.createStroke(path)).toFillPolygon().toPolygon()));
}

QPainterPath MAAttachedWindow::_backgroundPath() const {
    const double margin = m_look.viewMargin * m_look.scale;
    const double inset = static_cast<double>(m_borderWidth) / 2;
    QRectF body(m_view->geometry());
    body.adjust(inset - margin, inset - margin, margin - inset, margin - inset);
    QPainterPath path;
    path.addRoundedRect(body, m_look.cornerRadius, m_look.cornerRadius);
    if (m_hasArrow) _appendArrowToPath(path, body);
    return path;
}

void MAAttachedWindow::_appendArrowToPath(QPainterPath& path, const QRectF& body) const {
    const AttachedSide now = side();
    const AttachedSide plain = plainSide(now);
    const AttachedGeometry made = attachedGeometry(placing(), m_look, now);
    // The tip is the point itself, without the distance; its place across is the point's.
    const double across = m_point.x - made.window.x;
    const double along = made.window.height - (m_point.y - made.window.y);
    const double half = m_look.arrowBaseWidth * m_look.scale / 2;
    const double height = m_look.arrowHeight * m_look.scale;
    const bool isBeside = plain == AttachedSide::Left || plain == AttachedSide::Right;
    const QPointF base =
        isBeside ? QPointF(plain == AttachedSide::Left ? body.right() : body.left(), along)
                 : QPointF(across, plain == AttachedSide::Bottom ? body.top() : body.bottom());
    const bool isBefore = plain == AttachedSide::Bottom || plain == AttachedSide::Right;
    const double reach = isBefore ? -height : height;
    const QPointF tip = base + (isBeside ? QPointF(reach, 0) : QPointF(0, reach));
    const QPointF side = isBeside ? QPointF(0, half) : QPointF(half, 0);
    const QPointF into = (base - tip) / height;  // a point, so that both become one shape
    QPainterPath arrow;
    arrow.addPolygon({{base - side, tip, base + side, base + side + into, base - side + into}});
    arrow.closeSubpath();
    path = path.united(arrow);
    if (m_look.drawsRoundCornerBesideArrow || now == plain) return;
    QRectF corner(0, 0, m_look.cornerRadius, m_look.cornerRadius);
    const bool isLow = base.y() > body.center().y();
    const bool isFar = base.x() > body.center().x();
    corner.moveLeft(isFar ? body.right() - corner.width() : body.left());
    corner.moveTop(isLow ? body.bottom() - corner.height() : body.top());
    QPainterPath square;
    square.addRect(corner);
    path = path.united(square);
}

void MAAttachedWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath path = _backgroundPath();
    painter.fillPath(path, m_MABackgroundColor);
    if (m_borderWidth > 0)
        painter.strokePath(path, QPen(m_borderColor, static_cast<double>(m_borderWidth)));
}

void MAAttachedWindow::showEvent(QShowEvent* event) {
    _updateGeometry();  // the screen may be another one than when it was made
    QWidget::showEvent(event);
    // It never gets the keyboard, so that screen readers would pass it over.
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void MAAttachedWindow::enterEvent(QEnterEvent* /*event*/) {
    if (m_delegate != nullptr) m_delegate->mouseEnterAction();
}

void MAAttachedWindow::leaveEvent(QEvent* /*event*/) {
    if (m_delegate != nullptr) m_delegate->mouseExitAction();
}

void MAAttachedWindow::setBorderColor(const QColor& color) {
    m_borderColor = color;
    update();
}

void MAAttachedWindow::setBorderWidth(float width) {
    m_borderWidth = width;
    _updateGeometry();
}

void MAAttachedWindow::setViewMargin(float margin) {
    m_look.viewMargin = static_cast<double>(margin);
    _updateGeometry();
}

void MAAttachedWindow::setArrowBaseWidth(float width) {
    m_look.arrowBaseWidth = static_cast<double>(width);
    _updateGeometry();
}

void MAAttachedWindow::setArrowHeight(float height) {
    m_look.arrowHeight = static_cast<double>(height);
    _updateGeometry();
}

void MAAttachedWindow::setHasArrow(bool has) {
    m_hasArrow = has;
    _updateGeometry();
}

void MAAttachedWindow::setCornerRadius(float radius) {
    m_look.cornerRadius = static_cast<double>(radius);
    _updateGeometry();
}

void MAAttachedWindow::setDrawsRoundCornerBesideArrow(bool draws) {
    m_look.drawsRoundCornerBesideArrow = draws;
    _updateGeometry();
}

void MAAttachedWindow::setMABackgroundColor(const QColor& color) {
    m_MABackgroundColor = color;
    update();
}

}  // namespace orrinvale
