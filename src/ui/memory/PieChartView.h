// PieChartView: shares as a pie that lies down, with a rim. CleanMemoryController.h shows the
// memory by it.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>
#include <vector>

#include "ui/memory/pieShapes.h"

namespace orrinvale {

/// One slice.
struct PieChartItem {
    QString itemName;
    QColor itemColor;
    float itemValue = 0;
    friend bool operator==(const PieChartItem&, const PieChartItem&) = default;
};

/// The slices go clockwise from the right, each as wide as its share of the sum. Where the sum is
/// 0, or a value is none, nothing is drawn. Main thread only.
class PieChartView final : public QWidget {
    Q_OBJECT
public:
    /// Laid out for the frame, four fifths of which are the pie's; the widget is as large as what
    /// is drawn there.
    explicit PieChartView(QSizeF frame, QWidget* parent = nullptr);

    void setPieChartItems(std::vector<PieChartItem> items);
    [[nodiscard]] const std::vector<PieChartItem>& pieChartItems() const { return m_pieChartItems; }
    [[nodiscard]] float total() const;

    // The interface's plain fields, in points before the y axis is scaled.
    [[nodiscard]] QPointF chartCenter() const { return m_circle.centre; }
    [[nodiscard]] double chartRadius() const { return m_circle.radius; }
    static constexpr double scaleY = 0.4;
    static constexpr double spaceHeight = 40.0;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawCircle(QPainter& painter) const;
    void drawSpaceHeight(QPainter& painter) const;
    void drawHint(QPainter& painter) const;

    PieCircle m_circle;
    std::vector<PieChartItem> m_pieChartItems;
};

}  // namespace orrinvale
