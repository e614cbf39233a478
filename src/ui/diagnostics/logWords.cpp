#include "ui/diagnostics/logWords.h"

#include <QCoreApplication>

#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/failureWords.h"

namespace orrinvale {
namespace {

struct LogWords {
    Q_DECLARE_TR_FUNCTIONS(LogWords)
};

QString onePath(const std::string& path) { return onOneLine(QString::fromStdString(path)); }

Alert logFileAlert(const std::string& path) {
    Alert alert;
    alert.title = LogWords::tr("The log is a file.");
    alert.text = onePath(path) + QStringLiteral("\n\n") +
                 LogWords::tr(
                     "It tells what was removed and what went wrong, with the names of "
                     "your files. Look through it before you give it to anybody.");
    alert.buttons =
        QStringList{LogWords::tr("Open"), LogWords::tr("Show in Folder"), LogWords::tr("Close")};
    alert.cancelButton = CloseLogWords;
    return alert;
}

}  // namespace

Alert logAlert(const LogState& state) {
    if (state.file) return logFileAlert(*state.file);
    Alert alert;
    const QString file = LogWords::tr("A log file can be had in the preferences, under General.");
    if (state.failure) {
        alert.title = LogWords::tr("The log file can not be written.");
        alert.text =
            onePath(state.failure->path) + QStringLiteral(": ") + inWords(state.failure->reason());
        alert.severity = Alert::Severity::Warning;
        return alert;
    }
    switch (state.stream) {
        case ErrorStream::Terminal:
            alert.title = LogWords::tr("The log is in the terminal.");
            alert.text = LogWords::tr("Orrinvale was started there, and its lines appear there.");
            break;
        case ErrorStream::Journal:
            alert.title = LogWords::tr("The log is in your system's journal.");
            alert.text = LogWords::tr("In a terminal this shows it:\n%1")
                             .arg(QStringLiteral("journalctl _PID=%1")
                                      .arg(QCoreApplication::applicationPid())) +
                         QStringLiteral("\n\n") + file;
            break;
        case ErrorStream::Other:
            alert.title = LogWords::tr("There is no log file.");
            alert.text = LogWords::tr(
                             "The lines go wherever this start of Orrinvale was told to "
                             "send them.") +
                         QStringLiteral("\n\n") + file;
            break;
    }
    return alert;
}

}  // namespace orrinvale
