// buttonLook: what the drawn buttons share: which of their looks is due, the ring of keyboard focus, the Enter key.
#pragma once

#include <QRectF>

class QAbstractButton;
class QFocusEvent;
class QKeyEvent;
class QPainter;
class QWidget;

namespace orrinvale {

enum class ButtonLook { Normal, Hover, Pressed, Disabled };

[[nodiscard]] ButtonLook buttonLook(const QAbstractButton& button);

/// Draws the widget anew when the theme changes, gives it hover events and leaves its background to what lies behind.
void followTheme(QWidget& widget);

/// The ring that shows where the keyboard is, just within `rect`.
void drawFocusRing(QPainter& painter, const QRectF& rect, qreal radius);

/// True when the key is Enter and the button was clicked by it. QAbstractButton itself knows the space bar only.
bool clickedByEnter(QAbstractButton& button, const QKeyEvent& event);

/// Knows whether the keyboard brought the focus: a ring after a click of the mouse would only distract.
class KeyboardFocus final {
public:
    void focusIn(const QFocusEvent& event);
    [[nodiscard]] bool isShown(const QWidget& widget) const;

private:
    bool m_byKeyboard = false;
};

}  // namespace orrinvale
