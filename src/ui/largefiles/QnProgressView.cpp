// Drawn by the exact percent; the value of the progress bar, a whole number, is for screen readers.
#include "ui/largefiles/QnProgressView.h"

#include <QPainter>
#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int viewHeight = 7;
constexpr qreal barHeight = 3.0;
constexpr qreal trackRadius = 2.0;
constexpr qreal narrowest = 10.0;

}  // namespace

QnProgressView::QnProgressView(QWidget* parent) : QProgressBar(parent) {
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
    setFixedHeight(viewHeight);
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
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
    QRectF bar(track.left(), track.center().y() - barHeight / 2, barWidth(track.width(), m_percent),
               barHeight);
    if (layoutDirection() == Qt::RightToLeft) bar.moveRight(track.right());
    painter.setBrush(Theme::shared().color(Theme::Color::Accent));
    painter.drawRoundedRect(bar, barHeight / 2, barHeight / 2);
}

}  // namespace orrinvale
