// ColumnGrip: the edge between two columns, by which the one before it is made wider.
#pragma once

#include <QWidget>
#include <functional>

namespace orrinvale {

/// Main thread only.
class ColumnGrip final : public QWidget {
    Q_OBJECT
public:
    static constexpr int gripWidth = 7;

    explicit ColumnGrip(QWidget* parent);

Q_SIGNALS:
    void pressed();
    /// By how many points since the press, in the direction of reading.
    void dragged(int by);
    /// A double click: as wide as at first.
    void resetWanted();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int m_start = 0;  // of the drag, on the screen
};

}  // namespace orrinvale
