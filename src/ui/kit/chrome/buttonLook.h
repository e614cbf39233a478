// buttonLook: what the drawn buttons share: which of their looks is due, the ring of keyboard
// focus, the Enter key.
#pragma once

#include <QColor>
#include <QRectF>

class QAbstractButton;
class QIcon;
class QFocusEvent;
class QKeyEvent;
class QPainter;
class QWidget;

namespace orrinvale {

enum class ButtonLook { Normal, Hover, Pressed, Disabled };

[[nodiscard]] ButtonLook buttonLook(const QAbstractButton& button);

/// Draws the widget anew when the theme changes, gives it hover events and leaves its background to
/// what lies behind.
void followTheme(QWidget& widget);

/// The ring that shows where the keyboard is, just within `rect`.
void drawFocusRing(QPainter& painter, const QRectF& rect, qreal radius);

/// How a picture is drawn that has no version of its own for the occasion.
struct PictureTint {
    qreal opacity = 1;
    QColor color;  ///< all of it in this colour, as a sign on a coloured ground; invalid for the
                   ///< picture's own colours
};

inline constexpr PictureTint faintPicture{0.4, {}};

/// The icon in the middle of `place`. It is tinted as a whole: parts of it that overlap do not show
/// through each other.
void drawPicture(QPainter& painter, const QIcon& icon, const QRect& place,
                 const PictureTint& tint = {});

/// True when the key is Enter and the button was clicked by it. QAbstractButton itself knows the
/// space bar only.
bool clickedByEnter(QAbstractButton& button, const QKeyEvent& event);

/// Knows whether the keyboard brought the focus: a ring after a click of the mouse would only
/// distract.
class KeyboardFocus final {
public:
    void focusIn(const QFocusEvent& event);
    [[nodiscard]] bool isShown(const QWidget& widget) const;

private:
    bool m_byKeyboard = false;
};

}  // namespace orrinvale
