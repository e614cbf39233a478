// AlertPanel: what an alert shows inside its sheet: sign, title, text, buttons.
#pragma once

#include <QWidget>

#include <vector>

#include "ui/kit/dialogs/Dialogs.h"

class QBoxLayout;

namespace orrinvale {

class TextImageButton;

class AlertPanel final : public QWidget {
    Q_OBJECT
public:
    explicit AlertPanel(const Alert& alert);

    /// Where the keyboard is at first.
    [[nodiscard]] QWidget* keyboardButton() const;
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    /// The index in Alert::buttons.
    void pressed(int button);

private:
    void addTexts(QBoxLayout& column, const Alert& alert);
    void addButtons(QBoxLayout& column, const Alert& alert);

    int m_keyboardButton;
    std::vector<TextImageButton*> m_buttons;  // children, in the alert's order
};

}  // namespace orrinvale
