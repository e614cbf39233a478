// DrawnButton.h brings the looks to the buttons.
#include "ui/kit/chrome/buttonLook.h"

#include <QAbstractButton>
#include <QFocusEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

ButtonLook buttonLook(const QAbstractButton& button) {
    if (!button.isEnabled()) return ButtonLook::Disabled;
    if (button.isDown()) return ButtonLook::Pressed;
    return button.underMouse() ? ButtonLook::Hover : ButtonLook::Normal;
}

void followTheme(QWidget& widget) {
    widget.setAttribute(Qt::WA_Hover);
    QObject::connect(&Theme::shared(), &Theme::changed, &widget, [&widget] {
        widget.updateGeometry();
        widget.update();
    });
}

void drawFocusRing(QPainter& painter, const QRectF& rect, qreal radius) {
    constexpr qreal width = 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Theme::shared().color(Theme::Color::FocusRing), width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(width / 2, width / 2, -width / 2, -width / 2), radius,
                            radius);
    painter.restore();
}

void drawPicture(QPainter& painter, const QIcon& icon, const QRect& place,
                 const PictureTint& tint) {
    const qreal scale = painter.device()->devicePixelRatio();
    QPixmap drawn(place.size() * scale);
    drawn.setDevicePixelRatio(scale);
    drawn.fill(Qt::transparent);
    QPainter onto(&drawn);
    icon.paint(&onto, QRect(QPoint(), place.size()));
    onto.setCompositionMode(QPainter::CompositionMode_SourceIn);
    if (tint.color.isValid()) onto.fillRect(QRect(QPoint(), place.size()), tint.color);
    onto.end();
    painter.save();
    painter.setOpacity(painter.opacity() * tint.opacity);
    painter.drawPixmap(place.topLeft(), drawn);
    painter.restore();
}

bool clickedByEnter(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) return false;
    if (event.isAutoRepeat()) return true;
    button.click();
    return true;
}

void KeyboardFocus::focusIn(const QFocusEvent& event) {
    switch (event.reason()) {
        case Qt::MouseFocusReason: m_byKeyboard = false; break;
        case Qt::ActiveWindowFocusReason:
        case Qt::PopupFocusReason: break;  // the focus comes back as it went
        default: m_byKeyboard = true;
    }
}

bool KeyboardFocus::isShown(const QWidget& widget) const {
    return m_byKeyboard && widget.hasFocus();
}

}  // namespace orrinvale
