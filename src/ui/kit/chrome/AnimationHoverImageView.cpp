// A fade starts from whatever is on the screen, so that a pointer that passes quickly causes no
// jump.
#include "ui/kit/chrome/AnimationHoverImageView.h"

#include <QEvent>
#include <QPainter>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/motion.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

// Between the picture and the ring of focus or of a drop, and the ring's rounding, which goes along
// with the pictures'.
constexpr int ringSpace = Theme::gapSmall - 2;
constexpr qreal ringRadius = 22;

}  // namespace

AnimationHoverImageView::AnimationHoverImageView(QWidget* parent) : DrawnButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
    m_fade.setStartValue(0.0);
    m_fade.setEndValue(1.0);
    m_fade.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_fade, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&m_fade, &QVariantAnimation::finished, this, [this] {
        m_before = {};
        update();
    });
}

void AnimationHoverImageView::setImages(const QString& normal, const QString& hover,
                                        const QString& pressed) {
    if (const QSize size = pictureSize(normal); !size.isEmpty()) setIconSize(size);
    setImages(picture(normal), picture(hover), picture(pressed));
}

void AnimationHoverImageView::setImages(const QIcon& normal, const QIcon& hover,
                                        const QIcon& pressed) {
    m_normal = normal;
    m_hover = hover;
    m_pressed = pressed;
    updateGeometry();
    update();
}

void AnimationHoverImageView::setDropTarget(bool isDropTarget) {
    m_isDropTarget = isDropTarget;
    followLook();
    update();
}

double AnimationHoverImageView::fadeProgress() const {
    return m_fade.state() == QAbstractAnimation::Running ? m_fade.currentValue().toDouble() : 1.0;
}

QSize AnimationHoverImageView::sizeHint() const {
    return iconSize().grownBy({ringSpace, ringSpace, ringSpace, ringSpace});
}

ButtonLook AnimationHoverImageView::dueLook() const {
    const ButtonLook look = buttonLook(*this);
    return look == ButtonLook::Normal && m_isDropTarget ? ButtonLook::Hover : look;
}

QPixmap AnimationHoverImageView::pixmapFor(ButtonLook look) const {
    const qreal scale = devicePixelRatioF();
    const QIcon& icon = look == ButtonLook::Hover     ? m_hover
                        : look == ButtonLook::Pressed ? m_pressed
                                                      : m_normal;
    QPixmap out(iconSize() * scale);
    out.setDevicePixelRatio(scale);
    out.fill(Qt::transparent);
    QPainter painter(&out);
    drawPicture(painter, icon, QRect(QPoint(), iconSize()),
                look == ButtonLook::Disabled ? faintPicture : PictureTint());
    return out;
}

QPixmap AnimationHoverImageView::shownPixmap() const {
    QPixmap after = pixmapFor(m_look);
    if (m_before.isNull()) return after;
    const double progress = fadeProgress();
    QPixmap out(after.size());
    out.setDevicePixelRatio(after.devicePixelRatio());
    out.fill(Qt::transparent);
    QPainter painter(&out);
    // Weighted sums: drawn over each other, two half transparent pictures would let the background
    // shine through.
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.setOpacity(1 - progress);
    painter.drawPixmap(QRect(QPoint(), iconSize()), m_before);
    painter.setOpacity(progress);
    painter.drawPixmap(QRect(QPoint(), iconSize()), after);
    return out;
}

void AnimationHoverImageView::followLook() {
    const ButtonLook look = dueLook();
    if (look == m_look) return;
    const bool animates = mayAnimate(*this);
    const QPixmap before = animates && isVisible() ? shownPixmap() : QPixmap();
    m_fade.stop();
    m_look = look;
    m_before = before;
    m_fade.setDuration(fadeMilliseconds);
    if (!before.isNull()) m_fade.start();
    update();
}

void AnimationHoverImageView::paintEvent(QPaintEvent*) {
    // Pressing and releasing have no event of their own that comes after the state has changed, but
    // they repaint.
    followLook();
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    // Where words need the room of a low window, the picture becomes smaller rather than lose its
    // edges.
    const bool fits = iconSize().boundedTo(size()) == iconSize();
    QRect place(QPoint(), fits ? iconSize() : iconSize().scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(rect().center());
    painter.drawPixmap(place, shownPixmap());
    if (m_isDropTarget) {
        painter.setPen(QPen(Theme::shared().color(Theme::Color::Accent), 3));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), ringRadius,
                                ringRadius);
    } else {
        drawFocus(painter, ringRadius);
    }
}

bool AnimationHoverImageView::event(QEvent* event) {
    const bool out = DrawnButton::event(event);
    switch (event->type()) {
        case QEvent::Enter:
        case QEvent::Leave:
        case QEvent::EnabledChange:
        case QEvent::Hide: followLook(); break;
        default: break;
    }
    return out;
}

}  // namespace orrinvale
