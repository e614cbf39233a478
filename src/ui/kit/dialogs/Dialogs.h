// Dialogs: how a page asks the user. WindowDialogs.h shows the questions; tests answer them without
// a screen.
#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

class QWidget;

namespace orrinvale {

/// A question or a message over one window.
struct Alert {
    enum class Severity { Information, Warning, Critical };

    QString title;  ///< what is asked; either text may be empty or blank
    QString text;   ///< what follows from it
    QStringList buttons{QCoreApplication::translate("Dialogs", "OK")};
    int defaultButton = 0;  ///< stands out; the keyboard is on it at first, so that Enter takes it
    int keyboardButton = -1;  ///< where the keyboard is at first instead; -1 for the default button
    int cancelButton =
        -1;  ///< taken by Escape; -1 for none, yet a single button is always taken by it
    Severity severity = Severity::Information;
    bool isDestructive = false;  ///< the default button removes something, and looks like it
    /// Nothing is asked, whatever the buttons: what comes next may take it away, as Escape would.
    bool onlyTells = false;
    QString picture;   ///< by name, in place of the sign of the severity
    QString linkText;  ///< with an action: a further button that leaves the question open
    std::function<void()> linkAction;
    /// From its coming on nothing but the button of Escape is taken for so long: a click or a key
    /// that was meant for what lay there before answers nothing.
    std::chrono::milliseconds deafTime{0};
};

/// What may be chosen, and where the choice starts. Links are followed to what they stand for.
struct PathChoice {
    QString title = QCoreApplication::translate("Dialogs", "Choose a path to search");
    QString prompt =
        QCoreApplication::translate("Dialogs", "Choose");  ///< on the button that accepts
    std::string directory;   ///< exact bytes; the home folder when empty
    bool withFiles = false;  ///< files too, not only folders
    bool withSeveral = false;
};

/// Nothing here waits: an operation returns at once, and the callback comes later from the event
/// loop, exactly once, or never when the window has ended. Main thread only.
class Dialogs {
public:
    /// The index of the button; the cancel button's, or -1, when the question could not be shown.
    using Answer = std::function<void(int button)>;
    /// Absolute paths in exact bytes; empty when the user chose none.
    using Paths = std::function<void(std::vector<std::string> paths)>;

    virtual ~Dialogs() = default;

    virtual void alert(QWidget* window, const Alert& alert, Answer answered) = 0;
    virtual void choosePaths(QWidget* window, const PathChoice& choice, Paths chosen) = 0;

protected:
    Dialogs() = default;
    Dialogs(const Dialogs&) = default;
    Dialogs& operator=(const Dialogs&) = default;
};

/// The button that Escape takes, -1 for none.
[[nodiscard]] inline int escapeButton(const Alert& alert) {
    if (alert.cancelButton < 0 && alert.buttons.size() == 1) return 0;
    return alert.cancelButton < alert.buttons.size() ? alert.cancelButton : -1;
}

/// Whether everything that is selected on a page may be removed: 0 for yes, 1 for no, which Escape
/// gives too.
[[nodiscard]] inline Alert removalQuestion() {
    Alert question;
    question.title = QCoreApplication::translate(
        "Dialogs", "Are you sure you want to delete all your selected files?");
    question.text = QStringLiteral(" ");
    question.buttons = QStringList{QCoreApplication::translate("Dialogs", "Sure"),
                                   QCoreApplication::translate("Dialogs", "Cancel")};
    question.cancelButton = 1;
    question.severity = Alert::Severity::Warning;
    question.isDestructive = true;
    return question;
}

}  // namespace orrinvale
