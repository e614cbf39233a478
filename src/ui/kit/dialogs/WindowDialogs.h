// WindowDialogs: questions as sheets over the window that asks. Sheet.h is the panel, AlertPanel.h
// its content.
#pragma once

#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale {

/// Without a window the active one serves, else any that is visible; with none at all an alert is
/// logged and answered as Escape would, and a choice gives nothing.
class WindowDialogs final : public Dialogs {
public:
    void alert(QWidget* window, const Alert& alert, Answer answered) override;
    void choosePaths(QWidget* window, const PathChoice& choice, Paths chosen) override;
};

}  // namespace orrinvale
