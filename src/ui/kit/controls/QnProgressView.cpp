// Drawn by the exact percent; the value of the progress bar, a whole number, is for screen readers.
#include "ui/kit/controls/QnProgressView.h"

#include <QPainter>
#include <algorithm>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/motion.h"

namespace orrinvale {
namespace {

constexpr int viewHeight = 7;
constexpr qreal barHeight = 3.0;
constexpr qreal trackRadius = 2.0;
constexpr qreal narrowest = 10.0;
// Of a bar of which nobody knows how far it is: its share of the track, and the time from end to
// end in milliseconds.
constexpr float pieceShare = 28;
constexpr int pieceTime = 1100;

}  // namespace

QnProgressView::QnProgressView(QWidget* parent) : QProgressBar(parent) {
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
    setFixedHeight(viewHeight);
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
    m_motion.setStartValue(0.0);
    m_motion.setKeyValueAt(0.5, 1.0);  // and back
    m_motion.setEndValue(0.0);
    m_motion.setDuration(2 * pieceTime);
    m_motion.setLoopCount(-1);
    m_motion.setEasingCurve(QEasingCurve::InOutSine);
    connect(&m_motion, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

void QnProgressView::setIndeterminate(bool isIndeterminate) {
    m_isIndeterminate = isIndeterminate;
    setRange(0, isIndeterminate ? 0 : 100);  // screen readers know this form
    setValue(static_cast<int>(m_percent));
    animate();
}

void QnProgressView::animate() {
    m_motion.stop();
    if (m_isIndeterminate && isVisible() && mayAnimate(*this)) m_motion.start();
    update();
}

void QnProgressView::showEvent(QShowEvent* event) {
    QProgressBar::showEvent(event);
    animate();
}

void QnProgressView::hideEvent(QHideEvent* event) {
    QProgressBar::hideEvent(event);
    m_motion.stop();
}

void QnProgressView::changeProgressValue(float percent) {
    m_percent = percent;
    setValue(static_cast<int>(percent));
    update();  // a part of a per cent moves it too
}

qreal QnProgressView::barWidth(qreal viewWidth, float percent) {
    const qreal width = viewWidth * static_cast<qreal>(percent) / 100;
    return width > viewWidth - 1 ? viewWidth : std::max(width, narrowest);
}

QSize QnProgressView::sizeHint() const {
    constexpr int usualWidth = 120;
    return {usualWidth, viewHeight};
}

void QnProgressView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF track = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.setBrush(Theme::shared().color(Theme::Color::Selection));
    painter.drawRoundedRect(track, trackRadius, trackRadius);
    QRectF bar(track.left(), track.center().y() - barHeight / 2,
               barWidth(track.width(), m_isIndeterminate ? pieceShare : m_percent), barHeight);
    if (m_isIndeterminate)
        bar.translate((track.width() - bar.width()) * m_motion.currentValue().toReal(), 0);
    if (layoutDirection() == Qt::RightToLeft)
        bar.moveRight(track.right() - (bar.left() - track.left()));
    painter.setBrush(Theme::shared().color(Theme::Color::Accent));
    painter.drawRoundedRect(bar, barHeight / 2, barHeight / 2);
}

}  // namespace orrinvale
