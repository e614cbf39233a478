#include "ui/kit/look/fieldLook.h"

#include <QIcon>
#include <QPainter>
#include <QStyleOptionComboBox>
#include <QStyleOptionSlider>
#include <algorithm>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr qreal fieldRadius = Theme::radiusSmall + 2;  // that of the segmented controls
constexpr int fieldChevron = 12;
constexpr int grooveHeight = 4;
constexpr int handleSide = 16;
constexpr int markHeight = 4;

void drawEdge(QPainter& painter, const QRectF& rect, const QStyleOption& option, qreal radius) {
    const Theme& theme = Theme::shared();
    const bool hasFocus = option.state.testFlags(QStyle::State_HasFocus | QStyle::State_Active);
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    painter.setPen(QPen(theme.color(hasFocus    ? Theme::Color::FocusRing
                                    : isEnabled ? Theme::Color::Outline
                                                : Theme::Color::Line),
                        hasFocus ? 2 : 1));
    const qreal edge = hasFocus ? 1 : 0.5;
    painter.drawRoundedRect(rect.adjusted(edge, edge, -edge, -edge), radius, radius);
}

}  // namespace

void drawField(QPainter& painter, const QStyleOption& field) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Theme::shared().color(Theme::Color::Surface));
    drawEdge(painter, QRectF(field.rect), field, fieldRadius);
    painter.restore();
}

void drawChoice(QPainter& painter, const QStyleOptionComboBox& choice, const QStyle& style,
                const QWidget* widget) {
    const bool isHovered = choice.state.testFlag(QStyle::State_MouseOver);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(
        Theme::shared().color(isHovered ? Theme::Color::Hover : Theme::Color::Surface));
    drawEdge(painter, QRectF(choice.rect), choice, fieldRadius);
    QRect chevron(0, 0, fieldChevron, fieldChevron);
    chevron.moveCenter(
        style.subControlRect(QStyle::CC_ComboBox, &choice, QStyle::SC_ComboBoxArrow, widget)
            .center());
    picture(QStringLiteral("chevron_down"))
        .paint(&painter, chevron, Qt::AlignCenter,
               choice.state.testFlag(QStyle::State_Enabled) ? QIcon::Normal : QIcon::Disabled);
    painter.restore();
}

void drawSlider(QPainter& painter, const QStyleOptionSlider& slider, const QStyle& style,
                const QWidget* widget) {
    const Theme& theme = Theme::shared();
    const bool isEnabled = slider.state.testFlag(QStyle::State_Enabled);
    const auto part = [&](QStyle::SubControl control) {
        return style.subControlRect(QStyle::CC_Slider, &slider, control, widget);
    };
    const QRect knob = part(QStyle::SC_SliderHandle);
    QRectF handle(0, 0, handleSide, handleSide);
    handle.moveCenter(QRectF(knob).center());
    // The base style has flatter knobs, which may stand at the upper edge.
    handle.moveTop(std::max(handle.top(), slider.rect.top() + 0.5));
    QRectF groove = part(QStyle::SC_SliderGroove);
    groove = {groove.x(), handle.center().y() - grooveHeight / 2.0, groove.width(), grooveHeight};
    QRectF filled = groove;
    if (slider.upsideDown) filled.setLeft(handle.center().x());
    else filled.setRight(handle.center().x());

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(Theme::Color::Outline));
    const qreal marksTop = handle.bottom() + 1;
    for (int mark = slider.minimum; slider.tickInterval > 0 && mark <= slider.maximum;) {
        const int across =
            QStyle::sliderPositionFromValue(slider.minimum, slider.maximum, mark,
                                            int(groove.width()) - knob.width(), slider.upsideDown);
        const int middle = across + knob.width() / 2;
        painter.drawRect(QRectF(groove.x() + middle, marksTop, 1, markHeight));
        mark = (mark / slider.tickInterval + 1) * slider.tickInterval;
    }
    painter.setBrush(theme.color(Theme::Color::Line));
    painter.drawRoundedRect(groove, grooveHeight / 2.0, grooveHeight / 2.0);
    painter.setBrush(theme.color(isEnabled ? Theme::Color::Accent : Theme::Color::TextDisabled));
    painter.drawRoundedRect(filled, grooveHeight / 2.0, grooveHeight / 2.0);
    painter.setBrush(theme.color(Theme::Color::Surface));
    drawEdge(painter, handle, slider, handleSide / 2.0);
    painter.restore();
}

}  // namespace orrinvale
