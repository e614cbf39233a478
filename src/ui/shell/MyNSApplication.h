// MyNSApplication: the application object. It gives windows without an Edit menu the editing keys.
#pragma once

#include <QApplication>
#include <QKeyEvent>

namespace orrinvale {

/// What an editing key asks for.
enum class EditAction { None, Cut, Copy, Paste, Undo, SelectAll, Redo };

/// Of a key press: the command key (Ctrl here) alone, or with caps lock, and x, c, v, z or a;
/// otherwise a capital Z, whatever else is held, for redo.
[[nodiscard]] EditAction editAction(const QKeyEvent& event);

/// Main thread only.
class MyNSApplication final : public QApplication {
    Q_OBJECT
public:
    using QApplication::QApplication;

    /// Sends the action to whoever has the focus. When he takes it, the key goes no further.
    bool notify(QObject* receiver, QEvent* event) override;

private:
    [[nodiscard]] static bool sendAction(EditAction action, QWidget* to);
};

}  // namespace orrinvale
