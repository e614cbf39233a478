// A style sheet would do the same, but it takes the row heights of every view with it.
#include "ui/kit/look/HouseStyle.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>
#include <QStyleOptionMenuItem>
#include <QStyleOptionSlider>
#include <algorithm>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/fieldLook.h"
#include "ui/kit/look/menuLook.h"

namespace orrinvale {
namespace {

constexpr int barExtent = 12;
constexpr int barMargin = 3;  // between the bar and the edges of its groove
constexpr int shortestBar = 28;
constexpr int choicePadding = 4;  // beside its words

// The bar in its groove; all of it where there is nothing to scroll.
QRect sliderRect(const QStyleOptionSlider& bar) {
    const bool isAcross = bar.orientation == Qt::Horizontal;
    const int room = isAcross ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64{bar.maximum} - bar.minimum;
    int length = room;
    if (range > 0)
        length = std::clamp(static_cast<int>(qint64{bar.pageStep} * room / (range + bar.pageStep)),
                            std::min(shortestBar, room), room);
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      room - length, bar.upsideDown);
    return isAcross ? QRect(bar.rect.x() + start, bar.rect.y(), length, bar.rect.height())
                    : QRect(bar.rect.x(), bar.rect.y() + start, bar.rect.width(), length);
}

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& bar) {
    const Theme& theme = Theme::shared();
    painter.fillRect(bar.rect, theme.color(Theme::Color::Surface));
    if (bar.minimum == bar.maximum) return;
    const bool isHeld = bar.state.testFlag(QStyle::State_Sunken) &&
                        bar.activeSubControls.testFlag(QStyle::SC_ScrollBarSlider);
    // Whole colours: what shines through leaves too little contrast for those who see less.
    const bool isUnderPointer = isHeld || bar.state.testFlag(QStyle::State_MouseOver);
    const QColor color =
        theme.color(isUnderPointer ? Theme::Color::TextSecondary : Theme::Color::Outline);
    const QRectF shape =
        QRectF(sliderRect(bar)).adjusted(barMargin, barMargin, -barMargin, -barMargin);
    const qreal radius = std::min(shape.width(), shape.height()) / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(shape, radius, radius);
    painter.restore();
}

}  // namespace

HouseStyle::HouseStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void HouseStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    const auto* const choice = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control == CC_ScrollBar && bar != nullptr) drawScrollBar(*painter, *bar);
    else if (control == CC_Slider && bar != nullptr && bar->orientation == Qt::Horizontal)
        drawSlider(*painter, *bar, *this, widget);
    else if (control == CC_ComboBox && choice != nullptr && !choice->editable)
        drawChoice(*painter, *choice, *this, widget);
    else QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void HouseStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const auto* const row = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuItem && row != nullptr) drawMenuRow(*painter, *row);
    else QProxyStyle::drawControl(element, option, painter, widget);
}

void HouseStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    if (element == PE_PanelMenu) {
        drawMenuPanel(*painter, option->rect);
        return;
    }
    if (element == PE_FrameMenu) return;  // the panel has it
    const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == PE_PanelLineEdit && frame != nullptr && frame->lineWidth > 0) {
        drawField(*painter, *frame);
        return;
    }
    if (element != PE_Frame) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Theme::shared().color(Theme::Color::Line));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5),
                             Theme::radiusSmall, Theme::radiusSmall);
    painter->restore();
}

QRect HouseStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                 SubControl part, const QWidget* widget) const {
    const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return QProxyStyle::subControlRect(control, option, part, widget)
            .adjusted(choicePadding, 0, -choicePadding, 0);
    if (control != CC_ScrollBar || bar == nullptr)
        return QProxyStyle::subControlRect(control, option, part, widget);
    const QRect slider = sliderRect(*bar);
    const bool isAcross = bar->orientation == Qt::Horizontal;
    QRect place;  // without arrows
    if (part == SC_ScrollBarGroove) place = bar->rect;
    if (part == SC_ScrollBarSlider) place = slider;
    if (part == SC_ScrollBarSubPage) {
        place = bar->rect;
        isAcross ? place.setRight(slider.left() - 1) : place.setBottom(slider.top() - 1);
    }
    if (part == SC_ScrollBarAddPage) {
        place = bar->rect;
        isAcross ? place.setLeft(slider.right() + 1) : place.setTop(slider.bottom() + 1);
    }
    return visualRect(bar->direction, bar->rect, place);
}

QSize HouseStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                   const QSize& contents, const QWidget* widget) const {
    const auto* const row = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type == CT_MenuItem && row != nullptr) return menuRowSize(*row, contents);
    if (type == CT_ComboBox)
        return QProxyStyle::sizeFromContents(type, option, contents, widget)
            .grownBy({choicePadding, 0, choicePadding, 0});
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

int HouseStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const {
    if (metric == PM_ScrollBarExtent) return barExtent;
    if (metric == PM_ScrollBarSliderMin) return shortestBar;
    if (metric == PM_MenuVMargin) return menuPadding;
    return QProxyStyle::pixelMetric(metric, option, widget);
}

}  // namespace orrinvale
