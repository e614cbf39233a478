// The circle is drawn upright and pressed together by the painter.
#include "ui/memory/PieChartView.h"

#include <QPainter>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace orrinvale {
namespace {

constexpr double chartShare = 0.8;  // the rest is for hints
constexpr double edge = 5;

QColor white(float part, float alpha) { return QColor::fromRgbF(part, part, part, alpha); }

// Calls back with each slice's angles.
void eachSlice(const std::vector<PieChartItem>& items, float total,
               const std::function<void(const PieChartItem&, double from, double to)>& slice) {
    if (!(total > 0)) return;
    double angle = 0;
    for (const PieChartItem& each : items) {
        const double share = static_cast<double>(each.itemValue) / static_cast<double>(total);
        if (!(share > 0) || !std::isfinite(share)) continue;
        slice(each, angle, angle + share * 2 * M_PI);
        angle += share * 2 * M_PI;
    }
}

}  // namespace

PieChartView::PieChartView(QSizeF frame, QWidget* parent) : QWidget(parent) {
    const QRectF chart(0, 0, frame.width() * chartShare, frame.height());
    m_circle = {chart.center(), std::min(chart.center().x(), chart.center().y()) - edge,
                spaceHeight};
    setFixedSize(qCeil(chart.width()),
                 qCeil((m_circle.centre.y() + m_circle.radius + spaceHeight) * scaleY + edge));
    setObjectName(QStringLiteral("pieChartV"));
}

void PieChartView::setPieChartItems(std::vector<PieChartItem> items) {
    if (items == m_pieChartItems) return;
    m_pieChartItems = std::move(items);
    update();
}

float PieChartView::total() const {
    float sum = 0;
    for (const PieChartItem& each : m_pieChartItems) sum += each.itemValue;
    return sum;
}

void PieChartView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.save();
    painter.scale(1, scaleY);
    drawCircle(painter);
    drawSpaceHeight(painter);
    painter.restore();
    drawHint(painter);
}

void PieChartView::drawCircle(QPainter& painter) const {
    eachSlice(m_pieChartItems, total(), [&](const PieChartItem& item, double from, double to) {
        painter.setPen(white(0.8F, 0.9F));
        painter.setBrush(item.itemColor);
        painter.drawPath(pieSlice(m_circle, from, to));
    });
}

void PieChartView::drawSpaceHeight(QPainter& painter) const {
    eachSlice(m_pieChartItems, total(), [&](const PieChartItem& item, double from, double to) {
        const QPainterPath rim = pieRim(m_circle, from, to, M_PI);
        painter.setPen(white(0.9F, 1.0F));
        painter.setBrush(item.itemColor);
        painter.drawPath(rim);
        painter.setBrush(white(0.1F, 0.4F));
        painter.drawPath(rim);
    });
}

void PieChartView::drawHint(QPainter& /*painter*/) const {}

}  // namespace orrinvale
