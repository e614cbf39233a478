// WindowButton: see WindowButton.h. The signs are lines, sharp at every scale, and always there: a sign that comes only under
// the pointer leaves three unlabelled dots.
#include "ui/kit/chrome/WindowButton.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

#include <utility>

#include "engine/text/Localized.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr qreal discRadius = 11;
constexpr qreal signRadius = 4;

QString nameOf(WindowButton::Kind kind, bool restores) {
    switch (kind) {
        case WindowButton::Kind::Close: return QStringLiteral("Close");
        case WindowButton::Kind::Miniaturize: return QStringLiteral("Minimize");
        case WindowButton::Kind::Zoom: break;
    }
    return restores ? QStringLiteral("Restore") : QStringLiteral("Zoom");
}

}  // namespace

WindowButton::WindowButton(Kind kind, QWidget* parent) : QAbstractButton(parent), m_kind(kind) {
    followTheme(*this);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::ArrowCursor);
    resize(side, side);
    setRestores(false);
    connect(this, &QAbstractButton::clicked, this, &WindowButton::perform);
}

void WindowButton::setAction(std::function<void()> action) { m_action = std::move(action); }

void WindowButton::perform() const {
    // By copy: an action may well set another one.
    if (const auto action = m_action) action();
}

void WindowButton::setRestores(bool restores) {
    m_restores = restores;
    setToolTip(nameOf(m_kind, restores));
    setAccessibleName(nameOf(m_kind, restores));
    update();
}

void WindowButton::drawGlyph(QPainter& painter) const {
    const qreal r = signRadius;
    switch (m_kind) {
        case Kind::Close:
            painter.drawLine(QPointF(-r, -r), QPointF(r, r));
            painter.drawLine(QPointF(-r, r), QPointF(r, -r));
            break;
        case Kind::Miniaturize: painter.drawLine(QPointF(-r - 0.5, 0.5), QPointF(r + 0.5, 0.5)); break;
        case Kind::Zoom:
            if (!m_restores) {
                painter.drawRoundedRect(QRectF(-r, -r, 2 * r, 2 * r), 1.5, 1.5);
                break;
            }
            painter.drawRoundedRect(QRectF(-r, -r + 2, 2 * r - 2, 2 * r - 2), 1.5, 1.5);
            painter.drawPolyline(QPolygonF({{-r + 2, -r}, {r, -r}, {r, r - 2}}));
    }
}

void WindowButton::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::shared();
    const ButtonLook look = buttonLook(*this);
    const bool isMarked = look == ButtonLook::Hover || look == ButtonLook::Pressed;
    const bool endsWindow = m_kind == Kind::Close;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(rect()).center());
    if (isMarked) {
        const auto role = look == ButtonLook::Pressed ? (endsWindow ? Theme::Color::DangerPressed : Theme::Color::Pressed)
                                                      : (endsWindow ? Theme::Color::Danger : Theme::Color::Hover);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.color(role));
        painter.drawEllipse(QPointF(), discRadius, discRadius);
    }
    const auto sign = look == ButtonLook::Disabled || !isActiveWindow() ? Theme::Color::TextDisabled
                      : isMarked && endsWindow                          ? Theme::Color::TextOnAccent
                      : isMarked                                        ? Theme::Color::Text
                                                                        : Theme::Color::TextSecondary;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme.color(sign), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    drawGlyph(painter);
    painter.resetTransform();
    if (m_keyboardFocus.isShown(*this)) drawFocusRing(painter, QRectF(rect()), side / 2.0 - 1);
}

void WindowButton::focusInEvent(QFocusEvent* event) {
    m_keyboardFocus.focusIn(*event);
    QAbstractButton::focusInEvent(event);
}

void WindowButton::keyPressEvent(QKeyEvent* event) {
    if (!clickedByEnter(*this, *event)) QAbstractButton::keyPressEvent(event);
}

}  // namespace orrinvale
