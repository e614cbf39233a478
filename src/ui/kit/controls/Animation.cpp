// Three ways to place the strip, each with the arithmetic that its pages count on.
#include "ui/kit/controls/Animation.h"

#include <QAccessible>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/base/notices.h"
#include "ui/kit/controls/AccessibleAnimation.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr std::int32_t step = 5;
constexpr std::int32_t lowest =
    -294;  // a sliver stays to be seen while the strip waits for its end
constexpr std::chrono::milliseconds blinkInterval{400};

Animation::ImageView viewOf(const QString& name) {
    return {name, QRectF(QPointF(), QSizeF(pictureSize(name)))};
}

}  // namespace

Animation::Animation(const NotificationCenter& notifications, QWidget* parent)
    : QWidget(parent), m_notifications(notifications) {
    installAccessibleAnimation();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Progress"));
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { (this->*m_tick)(); });
    connect(&m_unlockTimer, &QTimer::timeout, this, &Animation::changeUnlockImage);
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
    setBottomImage(QStringLiteral("bottom_prograss.png"));
    setPrograssImage(QStringLiteral("animation_prograss.png"));
    initZeroPrograss();
}

void Animation::setBottomImage(const QString& name) {
    m_bottomView = viewOf(name);
    updateGeometry();
    update();
}

void Animation::setPrograssImage(const QString& name) {
    m_prograssView = viewOf(name);
    update();
}

void Animation::showStyle(const QString& name) {
    m_styleView = viewOf(name);
    update();
}

void Animation::start() { startTimer(&Animation::updateprograss); }

void Animation::startUpdatePrograss() { startTimer(&Animation::askTarget); }

void Animation::startTimer(Tick tick) {
    if (m_timer.isActive()) return;
    m_tick = tick;
    m_timer.start(std::max(
        1, static_cast<int>(std::lround(std::clamp(m_timeSize, 0.0F, 3600.0F) * 1000.0F))));
}

void Animation::askTarget() {
    if (m_target != nullptr) m_target->getPrograss();
}

void Animation::updateprograss() {
    if (m_isAdd) {
        m_goPrograss += step;
        if (m_goPrograss >= 0) m_goPrograss = -(stripWidth() / 2);
        placeStrip(m_goPrograss);
        return;
    }
    m_goPrograss = std::max(m_goPrograss - step, lowest);
    placeStrip(m_goPrograss);
    if (!m_isFinished) return;
    stop();
    placeStrip(-stripWidth());
    m_isFinished = false;
    m_isAdd = true;
}

void Animation::stop() {
    if (!m_timer.isActive()) return;
    m_timer.stop();
    m_prograssView.frame = QRectF(QPointF(), m_bottomView.frame.size());
    placeStrip(0);
    m_goPrograss = -stripWidth();
}

void Animation::stopTimer() { m_timer.stop(); }

void Animation::baseNumberSetPrograss(std::int32_t percent) {
    placeStrip(static_cast<double>(percent) * stripWidth() / 100.0 - stripWidth());
}

void Animation::baseNumberSetPrograssMax(std::int32_t max, std::int32_t index) {
    const auto left = static_cast<double>(std::int64_t{max} - index);
    placeStrip(left * stripWidth() / -10.0);
}

void Animation::prograssShowDependChangeSize(std::int32_t steps) {
    using Limits = std::numeric_limits<std::int32_t>;
    m_addNumber = static_cast<std::int32_t>(std::clamp(std::int64_t{m_addNumber} + steps,
                                                       std::int64_t{Limits::min()},
                                                       std::int64_t{Limits::max()}));
    // Work of no steps is done with the first report.
    const std::int64_t shown = m_prograssMax == 0
                                   ? stripWidth()
                                   : std::int64_t{m_addNumber} * stripWidth() / m_prograssMax;
    placeStrip(static_cast<double>(shown - stripWidth()));
    if (m_addNumber < m_prograssMax) return;
    m_addNumber = 0;
    notice::allThreadFinishCallBack.post(m_notifications);
}

void Animation::minishPrograss() {
    start();
    m_isAdd = false;
}

void Animation::initZeroPrograss() { placeStrip(-stripWidth()); }

void Animation::startBlinking(QObject* button, std::function<void(const QString& name)> show) {
    m_unlockButton = button;
    m_showUnlockImage = std::move(show);
    m_isUnlockLit = false;
    m_unlockTimer.start(blinkInterval);
}

void Animation::changeUnlockImage() {
    if (m_unlockButton.isNull()) {
        m_unlockTimer.stop();
        return;
    }
    m_isUnlockLit = !m_isUnlockLit;
    m_showUnlockImage(m_isUnlockLit ? QStringLiteral("Lock_1.png") : QStringLiteral("Lock.png"));
}

int Animation::shownPercent() const {
    const double width = stripWidth();
    if (width <= 0.0) return 0;
    return static_cast<int>(
        std::lround(std::clamp(1.0 + m_prograssView.frame.x() / width, 0.0, 1.0) * 100.0));
}

QSize Animation::sizeHint() const { return m_bottomView.frame.size().toSize(); }

int Animation::stripWidth() const { return m_bottomView.frame.size().toSize().width(); }

void Animation::placeStrip(double offset) {
    const int before = shownPercent();
    m_prograssView.frame.moveLeft(offset);
    update();
    const int now = shownPercent();
    if (now == before || !QAccessible::isActive()) return;
    QAccessibleValueChangeEvent event(this, now);
    QAccessible::updateAccessibility(&event);
}

void Animation::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (layoutDirection() == Qt::RightToLeft) {
        painter.translate(width(), 0);
        painter.scale(-1, 1);
    }
    const auto draw = [&](const ImageView& view, QPointF offset) {
        if (view.image.isEmpty() || view.frame.isEmpty()) return;
        const QSize size = view.frame.size().toSize();
        painter.drawPixmap(offset, picturePixmap(view.image, size, devicePixelRatioF()));
    };
    draw(m_bottomView, m_bottomView.frame.topLeft());
    painter.save();
    QPainterPath inside;
    const qreal radius = m_bottomView.frame.height() / 2;
    inside.addRoundedRect(m_bottomView.frame, radius, radius);
    painter.setClipPath(inside);
    // On a whole pixel of the screen, so that the end of the strip does not turn soft on its way.
    const qreal scale = devicePixelRatioF();
    const qreal left = std::round(m_prograssView.frame.x() * scale) / scale;
    draw(m_prograssView, m_bottomView.frame.topLeft() + QPointF(left, m_prograssView.frame.y()));
    painter.restore();
    draw(m_styleView, QPointF());
}

}  // namespace orrinvale
