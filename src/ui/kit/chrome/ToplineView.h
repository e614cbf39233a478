// ToplineView: the hairline that closes an area at its bottom.
#pragma once

#include <QWidget>

namespace orrinvale {

/// Draws a line one point high along its bottom edge, in a light grey, over whatever it shows
/// otherwise. In a title bar it fills the bar, and the pointer goes through it to the bar.
class ToplineView : public QWidget {
    Q_OBJECT
public:
    explicit ToplineView(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orrinvale
