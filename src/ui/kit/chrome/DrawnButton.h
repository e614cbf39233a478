// DrawnButton: what all buttons that draw themselves do alike with the keyboard. Their looks come
// from buttonLook.h.
#pragma once

#include <QAbstractButton>
#include <QFocusEvent>
#include <QKeyEvent>

#include "ui/kit/chrome/buttonLook.h"

namespace orrinvale {

/// A button of the toolkit that follows the theme, is clicked by Enter too, and has a ring once the
/// keyboard brings it the focus.
template <class Button> class DrawnButton : public Button {
protected:
    explicit DrawnButton(QWidget* parent) : Button(parent) { followTheme(*this); }

    /// The ring along the edge, where it is due. Called at the end of a paintEvent().
    void drawFocus(QPainter& painter, qreal radius) const {
        if (m_keyboardFocus.isShown(*this)) drawFocusRing(painter, QRectF(this->rect()), radius);
    }
    void focusInEvent(QFocusEvent* event) override {
        m_keyboardFocus.focusIn(*event);
        Button::focusInEvent(event);
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (!clickedByEnter(*this, *event)) Button::keyPressEvent(event);
    }

private:
    KeyboardFocus m_keyboardFocus;
};

}  // namespace orrinvale
