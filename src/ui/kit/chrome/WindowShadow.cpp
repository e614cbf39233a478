// The shadow is one small picture, stretched along the edges, and kept between paintings.
#include "ui/kit/chrome/WindowShadow.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

#include <algorithm>
#include <array>
#include <cmath>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int radius = Theme::radiusWindow;
// Light falls from above: the shadow lies lower than the window, and reaches the margin exactly at
// the bottom.
constexpr double drop = 4;
constexpr double reach = shadowMargin - drop;
// Of the picture: from the outer edge to where nothing changes any more along the window's edge.
constexpr int corner = shadowMargin + radius + shadowMargin;

// Distance from the rounded square [low, high]^2, negative within.
double distance(double x, double y, double low, double high) {
    const double dx = std::max(low + radius - x, x - (high - radius));
    const double dy = std::max(low + radius - y, y - (high - radius));
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) -
           radius;
}

// Of full strength beneath the window, and fading out smoothly over `reach`.
double strengthAt(double distance) {
    const double near = std::clamp(1 - (distance + reach) / (2 * reach), 0.0, 1.0);
    return near * near * (3 - 2 * near);
}

QPixmap shadowPicture(qreal scale, QColor color, double strength) {
    const QString key =
        QStringLiteral("WindowShadow %1 %2 %3").arg(scale).arg(color.rgba()).arg(strength);
    QPixmap out;
    if (QPixmapCache::find(key, &out)) return out;
    const int side = static_cast<int>(std::ceil((2 * corner + 1) * scale));
    const double low = shadowMargin;
    const double high = side / scale - shadowMargin;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column) {
            const double away =
                distance((column + 0.5) / scale, (row + 0.5) / scale - drop, low, high);
            color.setAlphaF(static_cast<float>(strength * strengthAt(away)));
            image.setPixel(column, row, qPremultiply(color.rgba()));
        }
    out = QPixmap::fromImage(image);
    QPixmapCache::insert(key, out);
    return out;
}

// The nine pieces of the picture: corners as they are, the rest stretched.
void drawStretched(QPainter& painter, const QRectF& target, const QPixmap& picture, qreal scale) {
    const double side = picture.width();
    const std::array from{0.0, corner * scale, side - corner * scale, side};
    const std::array across{target.left(), target.left() + corner, target.right() - corner,
                            target.right()};
    const std::array down{target.top(), target.top() + corner, target.bottom() - corner,
                          target.bottom()};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            painter.drawPixmap(QRectF(QPointF(across.at(column), down.at(row)),
                                      QPointF(across.at(column + 1), down.at(row + 1))),
                               picture,
                               QRectF(QPointF(from.at(column), from.at(row)),
                                      QPointF(from.at(column + 1), from.at(row + 1))));
}

}  // namespace

void drawWindowShadow(QPainter& painter, const QRectF& frame, bool isActive) {
    const Theme& theme = Theme::shared();
    const bool isDark = theme.scheme() == Theme::Scheme::Dark;
    const qreal scale = painter.device()->devicePixelRatio();
    QColor color = theme.color(Theme::Color::Shadow);
    const double strength = static_cast<double>(color.alphaF()) * (isActive ? 1.0 : 0.6);
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, true);
    const double margin = shadowMargin;
    drawStretched(painter, frame.adjusted(-margin, -margin, margin, margin),
                  shadowPicture(scale, color, strength), scale);
    // Without a line a light window would melt into a light one behind it, and a dark one into the
    // dark.
    QColor line = isDark ? QColor(255, 255, 255, 40) : QColor(0, 0, 0, 40);
    painter.setPen(QPen(line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(frame.adjusted(-0.5, -0.5, 0.5, 0.5), radius + 0.5, radius + 0.5);
    painter.restore();
}

WindowCorner::WindowCorner(QWidget* window) : QWidget(window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    resize(radius, radius);
}

void WindowCorner::place(const QRect& frame, Qt::Corner corner) {
    m_frame = frame;
    const bool isLeft = corner == Qt::TopLeftCorner || corner == Qt::BottomLeftCorner;
    const bool isTop = corner == Qt::TopLeftCorner || corner == Qt::TopRightCorner;
    move(isLeft ? frame.left() : frame.right() + 1 - radius,
         isTop ? frame.top() : frame.bottom() + 1 - radius);
    update();
}

void WindowCorner::setActive(bool isActive) {
    m_isActive = isActive;
    update();
}

void WindowCorner::paintEvent(QPaintEvent*) {
    const QRectF frame = QRectF(m_frame).translated(-pos());
    const qreal scale = devicePixelRatioF();
    QImage mask(size() * scale, QImage::Format_ARGB32_Premultiplied);
    mask.setDevicePixelRatio(scale);
    mask.fill(Qt::transparent);
    QPainter shape(&mask);
    shape.setRenderHint(QPainter::Antialiasing);
    shape.setPen(Qt::NoPen);
    shape.setBrush(Qt::black);
    shape.drawRoundedRect(frame, radius, radius);
    shape.end();
    QPainter painter(this);
    painter.setClipRect(rect());
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(QPointF(), mask);
    // What has become see-through shows the shadow again.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    drawWindowShadow(painter, frame, m_isActive);
}

}  // namespace orrinvale
