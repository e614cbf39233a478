// TitleTab: one tab in the title bar of the main window.
#pragma once

#include <QAbstractButton>

#include "ui/kit/chrome/buttonLook.h"

namespace orrinvale {

/// Shows "tab_on" while its page is shown and "tab" otherwise, with the title in the middle. A
/// click chooses it; whoever owns the tabs sets which one is on. Main thread only.
class TitleTab final : public QAbstractButton {
    Q_OBJECT
public:
    explicit TitleTab(const QString& title, QWidget* parent = nullptr);

    void setOn(bool isOn);
    [[nodiscard]] bool isOn() const { return m_isOn; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    bool m_isOn = false;
    KeyboardFocus m_keyboardFocus;
};

}  // namespace orrinvale
