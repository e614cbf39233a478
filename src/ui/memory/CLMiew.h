// CLMiew: the same pie from lists of numbers, colours and titles. PieChartView.h is the one that
// the page shows.
#pragma once

#include <QColor>
#include <QStringList>
#include <QWidget>
#include <vector>

namespace orrinvale {

/// A disc at a fixed place. The colours go round where there are fewer than numbers. Main thread
/// only.
class CLMiew final : public QWidget {
    Q_OBJECT
public:
    explicit CLMiew(QWidget* parent = nullptr);

    // The interface's plain fields; update() shows new ones.
    double spaceHeight = 40.0;
    double scaleY = 0.4;
    QStringList titleArr;
    std::vector<double> valueArr;
    std::vector<QColor> colorArr;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orrinvale
