// Laid out by hand, since the picture or the label may be missing.
#include "ui/preferences/ToolbarItem.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr QSize itemPictureSide{28, 28};
constexpr int sidePadding = Theme::gap;
constexpr int edgePadding = Theme::gapSmall;
constexpr int leastItemWidth = 72;
constexpr int itemMarkHeight = 3;
constexpr int markWidth = 24;

}  // namespace

ToolbarItem::ToolbarItem(QString identifier, const QString& image, bool isSelectable,
                         QWidget* parent)
    : DrawnButton(parent), m_identifier(std::move(identifier)) {
    setObjectName(m_identifier);
    setCheckable(isSelectable);
    setAutoExclusive(isSelectable);  // to a screen reader one of several, and no box to tick
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setIconSize(itemPictureSide);
    if (pictureNames().contains(image)) setIcon(picture(image));
    setLabel(m_identifier);
}

void ToolbarItem::setLabel(const QString& label) {
    setText(label);
    setAccessibleName(label);
    updateGeometry();
}

void ToolbarItem::setDisplay(ToolbarDisplay display) {
    m_display = display;
    setFont(Theme::shared().font(showsPicture() ? Theme::Text::Caption : Theme::Text::Body));
    updateGeometry();
    update();
}

QSize ToolbarItem::sizeHint() const {
    const QSize words = showsLabel() ? fontMetrics().size(Qt::TextSingleLine, text()) : QSize(0, 0);
    const QSize image = showsPicture() ? iconSize() : QSize(0, 0);
    const int gap = words.isEmpty() || image.isEmpty() ? 0 : Theme::gapTiny;
    const int width = std::max(words.width(), image.width()) + 2 * sidePadding;
    return {showsLabel() && showsPicture() ? std::max(width, leastItemWidth) : width,
            image.height() + gap + words.height() + 2 * edgePadding};
}

// Room goes first where words have more than they need; then the longest are cut.
QSize ToolbarItem::minimumSizeHint() const {
    const int words = showsLabel() ? fontMetrics().horizontalAdvance(text()) + Theme::gapSmall : 0;
    return {std::max(words, iconSize().width() + 2 * edgePadding), sizeHint().height()};
}

bool ToolbarItem::isLabelCut() const {
    return !showsLabel() || fontMetrics().horizontalAdvance(text()) > width() - Theme::gapSmall;
}

void ToolbarItem::drawPlate(QPainter& painter) const {
    const Theme& theme = Theme::shared();
    const ButtonLook look = buttonLook(*this);
    painter.setPen(Qt::NoPen);
    if (isChecked() || look == ButtonLook::Pressed || look == ButtonLook::Hover) {
        painter.setBrush(theme.color(look == ButtonLook::Pressed ? Theme::Color::Pressed
                                     : isChecked()               ? Theme::Color::Selection
                                                                 : Theme::Color::Hover));
        painter.drawRoundedRect(rect(), Theme::radius, Theme::radius);
    }
    if (!isChecked()) return;
    QRectF mark(0, 0, markWidth, itemMarkHeight);
    mark.moveCenter(QPointF(QRectF(rect()).center().x(), height() - itemMarkHeight / 2.0));
    painter.setBrush(theme.color(Theme::Color::Accent));
    painter.drawRoundedRect(mark, itemMarkHeight / 2.0, itemMarkHeight / 2.0);
}

void ToolbarItem::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPlate(painter);
    QRect words = rect();
    if (showsPicture()) {
        const QRect place((width() - iconSize().width()) / 2, edgePadding, iconSize().width(),
                          iconSize().height());
        drawPicture(painter, icon(), place, isEnabled() ? PictureTint() : faintPicture);
        words = QRect(0, place.bottom() + 1 + Theme::gapTiny, width(), fontMetrics().height());
    }
    if (showsLabel()) {
        const bool isPlain = !isChecked() && buttonLook(*this) == ButtonLook::Normal;
        painter.setPen(
            Theme::shared().color(isPlain ? Theme::Color::TextSecondary : Theme::Color::Text));
        painter.drawText(
            words, Qt::AlignCenter,
            fontMetrics().elidedText(text(), Qt::ElideRight, width() - Theme::gapSmall));
    }
    drawFocus(painter, Theme::radius);
}

bool ToolbarItem::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return DrawnButton::event(event);
    if (isLabelCut())
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
    else QToolTip::hideText();
    return true;
}

void ToolbarItem::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Up:
        case Qt::Key_Down:
            event->ignore();
            return;  // the toolbar's: a button would go on to the window's next control
        default: DrawnButton::keyPressEvent(event);
    }
}

}  // namespace orrinvale
