// The picture is placed anew for each drawing: what is kept is the zoom that several share.
#include "ui/preview/PreviewPicture.h"

#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <bit>
#include <cmath>

#include "engine/preview/PreviewAnswer.h"
#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/preview/PreviewZoom.h"

namespace orrinvale {
namespace {

constexpr double zoomStep = 1.25;
constexpr double moveStep = 40;
constexpr std::uint32_t leastSide = 512;

}  // namespace

PreviewPicture::PreviewPicture(PreviewZoom& zoom, QWidget* parent) : QWidget(parent), m_zoom(zoom) {
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleTraits(*this, {.role = QAccessible::Graphic});
    connect(&m_zoom, &PreviewZoom::changed, this, [this] {
        tellZoom();
        update();
        if (isVisible() && wantsMore()) Q_EMIT sharperWanted();
    });
    followTheme(*this);
}

void PreviewPicture::setPicture(QImage image, QSize stored) {
    m_image = std::move(image);
    m_stored = stored;
    tellFit();
    tellZoom();
    update();
}

void PreviewPicture::tellZoom() {
    setAccessibleDescription(
        tr("%1 × %2 pixels, shown at %3 %")
            .arg(QString::number(m_stored.width()), QString::number(m_stored.height()),
                 QString::number(std::lround(scale() * devicePixelRatioF() * 100))));
}

// What is small is not blown up before it is asked to be.
void PreviewPicture::tellFit() {
    constexpr double none = 2;
    const double most = 1 / devicePixelRatioF();
    m_zoom.setFit(*this, m_stored.isEmpty() ? none
                                            : std::min({most, width() / double(m_stored.width()),
                                                        height() / double(m_stored.height())}));
}

double PreviewPicture::scale() const {
    return m_stored.isEmpty() ? 1 : m_zoom.fit() * m_zoom.factor();
}

QRectF PreviewPicture::place() const {
    const QSizeF size = QSizeF(m_stored) * scale();
    const auto begin = [](double room, double length, double centre) {
        if (length <= room) return (room - length) / 2;
        return std::clamp(room / 2 - centre * length, room - length, 0.0);
    };
    return {QPointF(begin(width(), size.width(), m_zoom.centre().x()),
                    begin(height(), size.height(), m_zoom.centre().y())),
            size};
}

std::uint32_t PreviewPicture::wantedSide() const {
    const double seen = std::max(width(), height()) * devicePixelRatioF() * m_zoom.factor();
    const auto side = static_cast<std::uint32_t>(std::clamp(seen, 1.0, double(mostPreviewSide)));
    return std::clamp(std::bit_ceil(side), leastSide, mostPreviewSide);
}

bool PreviewPicture::wantsMore() const {
    const auto has = static_cast<std::uint32_t>(std::max(m_image.width(), m_image.height()));
    const auto stored = static_cast<std::uint32_t>(std::max(m_stored.width(), m_stored.height()));
    return !m_image.isNull() && has < std::min(stored, wantedSide());
}

void PreviewPicture::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRectF at = place();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setClipRect(rect());
    painter.fillRect(at, Theme::shared().color(Theme::Color::Window));
    painter.drawImage(at, m_image);
    painter.setPen(Theme::shared().color(Theme::Color::Line));
    painter.drawRect(at.intersected(QRectF(rect())).adjusted(0.5, 0.5, -0.5, -0.5));
    if (hasFocus()) drawFocusRing(painter, QRectF(rect()), Theme::radiusSmall);
}

void PreviewPicture::zoomBy(double factor, QPointF around) {
    const QRectF at = place();
    if (at.isEmpty()) return;
    const double now = std::clamp(m_zoom.factor() * factor, 1.0, PreviewZoom::most);
    const double grown = now / m_zoom.factor();
    // The point under the pointer stays there.
    const QPointF corner = around - (around - at.topLeft()) * grown;
    const QPointF middle = QPointF(width() / 2.0, height() / 2.0) - corner;
    m_zoom.set(now, {middle.x() / (at.width() * grown), middle.y() / (at.height() * grown)});
}

void PreviewPicture::moveBy(QPointF points) {
    const QRectF at = place();
    if (at.isEmpty()) return;
    const QPointF middle = QPointF(width() / 2.0, height() / 2.0) - at.topLeft() - points;
    m_zoom.set(m_zoom.factor(), {middle.x() / at.width(), middle.y() / at.height()});
}

void PreviewPicture::wheelEvent(QWheelEvent* event) {
    constexpr double oneClick = 120;
    zoomBy(std::pow(zoomStep, event->angleDelta().y() / oneClick), event->position());
    event->accept();
}

void PreviewPicture::mousePressEvent(QMouseEvent* event) { m_grabbed = event->position(); }

void PreviewPicture::mouseMoveEvent(QMouseEvent* event) {
    moveBy(event->position() - m_grabbed);
    m_grabbed = event->position();
}

void PreviewPicture::keyPressEvent(QKeyEvent* event) {
    const QPointF middle(width() / 2.0, height() / 2.0);
    const bool isLarger = m_zoom.factor() > 1;
    switch (event->key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal: zoomBy(zoomStep, middle); return;
        case Qt::Key_Minus: zoomBy(1 / zoomStep, middle); return;
        case Qt::Key_0: m_zoom.reset(); return;
        case Qt::Key_Left:
            if (isLarger) return moveBy({moveStep, 0});
            break;
        case Qt::Key_Right:
            if (isLarger) return moveBy({-moveStep, 0});
            break;
        case Qt::Key_Up:
            if (isLarger) return moveBy({0, moveStep});
            break;
        case Qt::Key_Down:
            if (isLarger) return moveBy({0, -moveStep});
            break;
        default: break;
    }
    QWidget::keyPressEvent(event);
}

void PreviewPicture::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    tellFit();
    tellZoom();
    if (isVisible() && wantsMore()) Q_EMIT sharperWanted();
}

}  // namespace orrinvale
