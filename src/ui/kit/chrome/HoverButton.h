// HoverButton: a quiet button whose frame shows only under the pointer or with the keyboard on it.
#pragma once

#include "ui/kit/chrome/DrawnButton.h"

namespace orrinvale {

/// Shows an icon, a text, or both, beside each other. Space and Enter click it. When it is
/// checkable, its state on keeps a tinted frame.
class HoverButton final : public DrawnButton<QAbstractButton> {
    Q_OBJECT
public:
    explicit HoverButton(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawFrame(QPainter& painter) const;
    [[nodiscard]] QSize contentSize() const;
};

}  // namespace orrinvale
