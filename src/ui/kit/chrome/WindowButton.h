// WindowButton: close, minimise or zoom, drawn by us in the title bar.
#pragma once

#include <functional>

#include "ui/kit/chrome/DrawnButton.h"
#include "ui/kit/chrome/TCImageButton.h"

namespace orrinvale {

/// A click runs the action; whoever wants to be asked first sets his own.
class WindowButton final : public DrawnButton<QAbstractButton> {
    Q_OBJECT
public:
    /// The order from the left, and the numbers of TCImageWindow::standardWindowButton().
    enum class Kind { Close, Miniaturize, Zoom };

    /// In points; the whole of it takes clicks, the disc that shows is a little smaller.
    static constexpr int side = 28;

    WindowButton(Kind kind, QWidget* parent);

    [[nodiscard]] Kind kind() const { return m_kind; }
    void setAction(std::function<void()> action);
    /// As a click, but also where the button is hidden or disabled.
    void perform() const;

    /// Zoom only: whether a click makes the window small again.
    void setRestores(bool restores);

    [[nodiscard]] QSize sizeHint() const override { return {side, side}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Kind m_kind;
    ButtonPictures m_pictures;
    std::function<void()> m_action;
};

}  // namespace orrinvale
