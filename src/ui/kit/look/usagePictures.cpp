// The disc stands on a pale rim within a dark edge, so that one of them parts it from any panel,
// down to a size of 16.
#include "ui/kit/look/usagePictures.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace orrinvale {
namespace {

using Color = Theme::Color;
using Scheme = Theme::Scheme;

constexpr double discGrid = 22;  // the side that the numbers below are drawn for

struct DiscColors {
    QColor rim, edge, empty, fill, mark;
};

DiscColors discColors(bool warns) {
    const auto light = [](Color role) { return Theme::color(role, Scheme::Light); };
    const QColor amber = Theme::color(Color::Warning, Scheme::Dark);
    return {light(Color::Surface), light(warns ? Color::Warning : Color::TextSecondary),
            light(Color::Surface), warns ? amber : light(Color::Accent), light(Color::Text)};
}

void drawDisc(QPainter& painter, const QRectF& rectangle, int percent, bool warns) {
    const double unit = std::min(rectangle.width(), rectangle.height()) / discGrid;
    const QPointF middle = rectangle.center();
    const auto around = [&](double radius) {
        return QRectF(middle - QPointF(radius, radius) * unit, QSizeF(2, 2) * radius * unit);
    };
    const DiscColors colors = discColors(warns);
    painter.setPen(Qt::NoPen);
    const std::pair<double, QColor> plates[] = {
        {10.75, colors.rim}, {9.75, colors.edge}, {8.25, colors.empty}};
    for (const auto& [radius, color] : plates) {
        painter.setBrush(color);
        painter.drawEllipse(around(radius));
    }
    painter.setBrush(colors.fill);
    constexpr int sixteenths = 360 * 16;  // of the whole circle, as the toolkit counts
    painter.drawPie(around(8.25), 90 * 16, -percent * sixteenths / 100);
    if (!warns) return;
    painter.setPen(QPen(colors.mark, 2.5 * unit, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(middle - QPointF(0, 4.2 * unit), middle + QPointF(0, 0.6 * unit));
    painter.drawPoint(middle + QPointF(0, 4.6 * unit));
}

// A full bar is as round at its end as an empty one; a little of something is never shown as
// nothing.
void drawBar(QPainter& painter, const QRectF& rectangle, int percent, QColor track, QColor fill) {
    const double round = rectangle.height() / 2;
    QPainterPath pill;
    pill.addRoundedRect(rectangle, round, round);
    painter.fillPath(pill, track);
    if (percent <= 0) return;
    QRectF filled = rectangle;
    filled.setWidth(std::max(rectangle.height(), rectangle.width() * percent / 100));
    QPainterPath inner;
    inner.addRoundedRect(filled, round, round);
    painter.fillPath(inner, fill);
}

}  // namespace

void drawUsage(QPainter& painter, const QRectF& rectangle, UsageForm form, int percent, bool warns,
               Scheme scheme) {
    if (form == UsageForm::Disc) {
        drawDisc(painter, rectangle, percent, warns);
        return;
    }
    drawBar(painter, rectangle, percent, Theme::color(Color::Line, scheme),
            Theme::color(warns ? Color::Danger : Color::Accent, scheme));
}

}  // namespace orrinvale
