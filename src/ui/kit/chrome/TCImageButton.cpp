// The looks come from buttonLook.h, the pictures from picture.h.
#include "ui/kit/chrome/TCImageButton.h"

#include <QEvent>
#include <QPainter>

#include <utility>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

// Room around the picture for the tint and the focus ring.
constexpr int padding = Theme::gapTiny;

QIcon pictureIfKnown(const QString& name) {
    return pictureNames().contains(name) ? picture(name) : QIcon();
}

}  // namespace

ButtonPictures ButtonPictures::named(const QString& name) {
    return {picture(name), pictureIfKnown(name + QLatin1String("_hover")),
            pictureIfKnown(name + QLatin1String("_press")),
            pictureIfKnown(name + QLatin1String("_disable"))};
}

const QIcon& ButtonPictures::forLook(ButtonLook look) const {
    const QIcon& due = look == ButtonLook::Hover      ? hover
                       : look == ButtonLook::Pressed  ? pressed
                       : look == ButtonLook::Disabled ? disabled
                                                      : normal;
    return due.isNull() ? normal : due;
}

TCImageButton::TCImageButton(QWidget* parent) : DrawnButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TCImageButton::setImage(const QString& name) {
    if (const QSize size = pictureSize(name); !size.isEmpty()) setIconSize(size);
    setPictures(ButtonPictures::named(name));
}

void TCImageButton::setAlternateImage(const QString& name) {
    setAlternatePictures(ButtonPictures::named(name));
}

void TCImageButton::setPictures(ButtonPictures pictures) {
    m_pictures = std::move(pictures);
    updateGeometry();
    update();
}

void TCImageButton::setAlternatePictures(ButtonPictures pictures) {
    m_alternatePictures = std::move(pictures);
    update();
}

QSize TCImageButton::sizeHint() const {
    return iconSize().grownBy({padding, padding, padding, padding});
}

const ButtonPictures& TCImageButton::pictures() const {
    return isChecked() && !m_alternatePictures.normal.isNull() ? m_alternatePictures : m_pictures;
}

void TCImageButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const ButtonLook look = buttonLook(*this);
    const ButtonPictures& shown = pictures();
    const QIcon& icon = shown.forLook(look);
    const bool isOwnPicture =
        look == ButtonLook::Normal || icon.cacheKey() != shown.normal.cacheKey();
    const bool isOnByTint = isChecked() && m_alternatePictures.normal.isNull();
    const auto tint = [&](Theme::Color role) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::shared().color(role));
        painter.drawRoundedRect(QRectF(rect()), Theme::radiusSmall + 2, Theme::radiusSmall + 2);
    };
    if (look == ButtonLook::Pressed && !isOwnPicture) tint(Theme::Color::Pressed);
    else if (isOnByTint) tint(Theme::Color::Selection);
    else if (look == ButtonLook::Hover && !isOwnPicture) tint(Theme::Color::Hover);
    QRect place(QPoint(), iconSize());
    place.moveCenter(rect().center());
    const bool isFaint = look == ButtonLook::Disabled && !isOwnPicture;
    drawPicture(painter, icon, place, isFaint ? faintPicture : PictureTint());
    drawFocus(painter, Theme::radiusSmall + 2);
}

bool TCImageButton::event(QEvent* event) {
    if (event->type() == QEvent::ToolTipChange && accessibleName() == m_nameFromToolTip) {
        m_nameFromToolTip = toolTip();
        setAccessibleName(m_nameFromToolTip);
    }
    return DrawnButton::event(event);
}

}  // namespace orrinvale
