// The looks come from buttonLook.h.
#include "ui/kit/chrome/HoverButton.h"

#include <QPainter>

#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int gapBesidePicture = Theme::gapSmall - 2;

}  // namespace

HoverButton::HoverButton(QWidget* parent) : DrawnButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    const auto takeFont = [this] { setFont(Theme::shared().font(Theme::Text::Body)); };
    takeFont();
    connect(&Theme::shared(), &Theme::changed, this, takeFont);
}

QSize HoverButton::contentSize() const {
    const QSize picture = icon().isNull() ? QSize(0, 0) : iconSize();
    const QSize words =
        text().isEmpty() ? QSize(0, 0) : fontMetrics().size(Qt::TextShowMnemonic, text());
    const int gap = picture.isEmpty() || words.isEmpty() ? 0 : gapBesidePicture;
    return {picture.width() + gap + words.width(), std::max(picture.height(), words.height())};
}

QSize HoverButton::sizeHint() const {
    const int side = text().isEmpty() ? Theme::gapSmall - 2 : Theme::gapSmall + 2;
    return contentSize().grownBy({side, Theme::gapSmall - 2, side, Theme::gapSmall - 2});
}

void HoverButton::drawFrame(QPainter& painter) const {
    const ButtonLook look = buttonLook(*this);
    if (look == ButtonLook::Disabled || (look == ButtonLook::Normal && !isChecked())) return;
    const Theme& theme = Theme::shared();
    painter.setBrush(theme.color(look == ButtonLook::Pressed ? Theme::Color::Pressed
                                 : isChecked()               ? Theme::Color::Selection
                                                             : Theme::Color::Hover));
    painter.setPen(theme.color(Theme::Color::Line));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radiusSmall + 2,
                            Theme::radiusSmall + 2);
}

void HoverButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawFrame(painter);
    QRect place(QPoint(), contentSize());
    place.moveCenter(rect().center());
    if (!icon().isNull()) {
        drawPicture(painter, icon(),
                    QRect(place.x(), (height() - iconSize().height()) / 2, iconSize().width(),
                          iconSize().height()),
                    isEnabled() ? PictureTint() : faintPicture);
        place.setLeft(place.left() + iconSize().width() + gapBesidePicture);
    }
    painter.setPen(
        Theme::shared().color(isEnabled() ? Theme::Color::Text : Theme::Color::TextDisabled));
    painter.drawText(QRect(place.x(), 0, place.width() + 1, height()),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine | Qt::TextShowMnemonic,
                     text());
    drawFocus(painter, Theme::radiusSmall + 2);
}

}  // namespace orrinvale
