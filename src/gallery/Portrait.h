// Portrait: a control as a picture in a state that it can not be held in, under a pointer or with
// the keyboard on it.
#pragma once

#include <QPixmap>
#include <QWidget>
#include <functional>

namespace orrinvale {

enum class ControlState { Normal, Hover, Pressed, Focused, Disabled, Checked };

/// Makes a control, brings it into the state by the events that a desktop would send, and takes its
/// picture; anew when the theme changes.
class Portrait final : public QWidget {
    Q_OBJECT
public:
    using Make = std::function<QWidget*()>;

    /// `make` is called for each picture; the control is deleted after it.
    Portrait(Make make, ControlState state, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void take();

    const Make m_make;
    const ControlState m_state;
    QPixmap m_picture;
};

}  // namespace orrinvale
