// TextImageButton: a push button with a text on a drawn background: Stop, Delete, and the buttons
// of dialogs.
#pragma once

#include <QPushButton>

#include "ui/kit/chrome/DrawnButton.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

/// A QPushButton, so a dialog may make it its default one, which the Enter key presses. The icon,
/// where there is one, stands before the text. A text that has no room is cut at its end and shown
/// whole as a tool tip.
class TextImageButton final : public DrawnButton<QPushButton> {
    Q_OBJECT
public:
    enum class Role {
        Plain,    ///< goes back, cancels, opens
        Primary,  ///< what the page is for
        Danger,   ///< removes
        Link      ///< leads elsewhere, and has its text alone
    };

    explicit TextImageButton(QWidget* parent = nullptr)
        : TextImageButton({}, Role::Plain, parent) {}
    explicit TextImageButton(const QString& text, Role role = Role::Plain,
                             QWidget* parent = nullptr);

    [[nodiscard]] Role role() const { return m_role; }
    void setRole(Role role);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] int widthAround(int textWidth) const;
    [[nodiscard]] Theme::Color textColor() const;
    void drawBackground(QPainter& painter) const;
    void drawContents(QPainter& painter) const;
    void showCutText(const QPoint& globalPlace);

    Role m_role;
};

}  // namespace orrinvale
