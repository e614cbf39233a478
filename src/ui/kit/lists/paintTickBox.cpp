// From the ground up: halo, plate, picture, ring. The plate is for rows of the accent's own colour.
#include "ui/kit/lists/paintTickBox.h"

#include <QPainter>
#include <QVariant>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr qreal disabledOpacity = 0.4;
constexpr qreal ringWidth = 2.0;

QString pictureOf(TickState state) {
    switch (state) {
        case TickState::All: return QStringLiteral("option_yes");
        case TickState::Some: return QStringLiteral("option_a");
        case TickState::Nothing: break;
    }
    return QStringLiteral("option_no");
}

// Of the accent, since the row under the box may itself have the colour of hovering.
void paintHalo(QPainter& painter, const QRectF& around, bool isPressed, bool isOnAccent) {
    QColor halo =
        Theme::shared().color(isOnAccent ? Theme::Color::TextOnAccent : Theme::Color::Accent);
    halo.setAlphaF(isPressed ? 0.28F : 0.16F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(halo);
    painter.drawRoundedRect(around, Theme::radiusSmall + tickBoxHalo,
                            Theme::radiusSmall + tickBoxHalo);
}

// Between the box and a row of its own colour.
void paintPlate(QPainter& painter, const QRect& box) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::shared().color(Theme::Color::Surface));
    painter.drawRoundedRect(box, Theme::radiusSmall + 1, Theme::radiusSmall + 1);
}

void paintRing(QPainter& painter, const QRectF& around, bool isOnAccent) {
    const QRectF line =
        around.adjusted(ringWidth / 2, ringWidth / 2, -ringWidth / 2, -ringWidth / 2);
    const auto color = isOnAccent ? Theme::Color::TextOnAccent : Theme::Color::FocusRing;
    painter.setPen(QPen(Theme::shared().color(color), ringWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(line, Theme::radiusSmall + 2, Theme::radiusSmall + 2);
}

}  // namespace

TickState tickState(const QVariant& value) {
    switch (value.toInt()) {
        case 1: return TickState::All;
        case 2: return TickState::Some;
        default: return TickState::Nothing;
    }
}

TickState stateAfterClick(TickState state) {
    return state == TickState::All ? TickState::Nothing : TickState::All;
}

Qt::CheckState checkState(TickState state) {
    if (state == TickState::Some) return Qt::PartiallyChecked;
    return state == TickState::All ? Qt::Checked : Qt::Unchecked;
}

void paintTickBox(QPainter& painter, const QRect& box, TickState state, const TickLook& look) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF around =
        QRectF(box).adjusted(-tickBoxHalo, -tickBoxHalo, tickBoxHalo, tickBoxHalo);
    if (look.isEnabled && (look.isHovered || look.isPressed))
        paintHalo(painter, around, look.isPressed, look.isOnAccent);
    if (!look.isEnabled) painter.setOpacity(painter.opacity() * disabledOpacity);
    if (look.isOnAccent) paintPlate(painter, box);
    const int inset = look.isOnAccent ? 1 : 0;
    picture(pictureOf(state)).paint(&painter, box.adjusted(inset, inset, -inset, -inset));
    if (look.isEnabled && look.isFocused) paintRing(painter, around, look.isOnAccent);
    painter.restore();
}

}  // namespace orrinvale
