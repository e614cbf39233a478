// The timer runs only while somebody sees it.
#include "ui/kit/controls/Spinner.h"

#include <QPainter>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/motion.h"

namespace orrinvale {
namespace {

constexpr int tick = 40, degreesATick = 14, arcDegrees = 100;  // milliseconds first
constexpr qreal stroke = 3;

}  // namespace

Spinner::Spinner(QWidget* parent) : QWidget(parent) {
    setFixedSize(side, side);
    setAccessibleTraits(*this, {.role = QAccessible::Animation});
    m_timer.setInterval(tick);
    connect(&m_timer, &QTimer::timeout, this, &Spinner::turn);
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

void Spinner::start() {
    m_isTurning = true;
    if (isVisible() && mayAnimate(*this)) m_timer.start();
}

void Spinner::stop() {
    m_isTurning = false;
    m_timer.stop();
}

void Spinner::turn() {
    constexpr int round = 360;
    m_angle = (m_angle + degreesATick) % round;
    update();
}

void Spinner::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_isTurning) start();
}

void Spinner::hideEvent(QHideEvent* event) {
    m_timer.stop();
    QWidget::hideEvent(event);
}

void Spinner::paintEvent(QPaintEvent* /*event*/) {
    constexpr int sixteenths = 16;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle = QRectF(rect()).adjusted(stroke, stroke, -stroke, -stroke);
    painter.setPen(QPen(Theme::shared().color(Theme::Color::Line), stroke));
    painter.drawEllipse(circle);
    painter.setPen(
        QPen(Theme::shared().color(Theme::Color::Accent), stroke, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(circle, -m_angle * sixteenths, arcDegrees * sixteenths);
}

}  // namespace orrinvale
