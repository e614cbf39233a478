// TickBox: a tick box with three states beside a text, for headers and forms. Rows of lists have
// RowDelegate.
#pragma once

#include <QCheckBox>

#include "ui/kit/lists/paintTickBox.h"

namespace orrinvale {

/// A click on box or text, and the space bar, make All of Nothing and of Some, and Nothing of All;
/// then clicked() follows, and whoever knows better sets another state. To screen readers it is a
/// check box. Main thread only.
class TickBox final : public QCheckBox {
    Q_OBJECT
public:
    explicit TickBox(const QString& text = {}, QWidget* parent = nullptr);

    [[nodiscard]] TickState state() const;
    void setState(TickState state);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void nextCheckState() override { setState(stateAfterClick(state())); }
    bool hitButton(const QPoint& position) const override {
        return contentRect().contains(position);
    }
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRect boxRect() const;
    [[nodiscard]] QRect contentRect() const;
};

}  // namespace orrinvale
