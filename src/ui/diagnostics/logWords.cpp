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

// Who has the lines where no file takes them.
QString streamWords(ErrorStream stream) {
    switch (stream) {
        case ErrorStream::Terminal:
            return LogWords::tr("Orrinvale was started there, and its lines appear there.");
        case ErrorStream::Journal:
            return LogWords::tr("In a terminal this shows it:\n%1")
                .arg(QStringLiteral("journalctl _PID=%1").arg(QCoreApplication::applicationPid()));
        case ErrorStream::Other: break;
    }
    return LogWords::tr("The lines go wherever this start of Orrinvale was told to send them.");
}

QString streamTitle(ErrorStream stream) {
    switch (stream) {
        case ErrorStream::Terminal: return LogWords::tr("The log is in the terminal.");
        case ErrorStream::Journal: return LogWords::tr("The log is in your system's journal.");
        case ErrorStream::Other: break;
    }
    return LogWords::tr("There is no log file.");
}

void addFileButtons(Alert& alert) {
    alert.buttons =
        QStringList{LogWords::tr("Open"), LogWords::tr("Show in Folder"), LogWords::tr("Close")};
    alert.cancelButton = CloseLogWords;
}

Alert logFileAlert(const std::string& path) {
    Alert alert;
    alert.title = LogWords::tr("The log is a file.");
    alert.text = onePath(path) + QStringLiteral("\n\n") +
                 LogWords::tr(
                     "It tells what was removed and what went wrong, with the names of "
                     "your files. Look through it before you give it to anybody.");
    return alert;
}

Alert logFailureAlert(const Error& failure, ErrorStream stream) {
    Alert alert;
    alert.title = LogWords::tr("The log file can not be written.");
    alert.text = onePath(failure.path) + QStringLiteral(": ") + inWords(failure.reason()) +
                 QStringLiteral("\n\n");
    // A title is a sentence about the stream, which a file would need none of.
    if (stream != ErrorStream::Other) alert.text += streamTitle(stream) + QLatin1Char(' ');
    alert.text += streamWords(stream);
    alert.severity = Alert::Severity::Warning;
    return alert;
}

}  // namespace

Alert logAlert(const LogState& state) {
    Alert alert;
    if (state.failure) {
        alert = logFailureAlert(*state.failure, state.stream);
    } else if (state.file) {
        alert = logFileAlert(*state.file);
    } else {
        alert.title = streamTitle(state.stream);
        alert.text = streamWords(state.stream);
        if (state.stream != ErrorStream::Terminal)
            alert.text += QStringLiteral("\n\n") +
                          LogWords::tr("A log file can be had in the preferences, under General.");
    }
    if (state.file) addFileButtons(alert);
    alert.onlyTells = true;
    return alert;
}

QString logFaultWords(const std::optional<Error>& failure) {
    return failure ? LogWords::tr("The file can not be written: %1").arg(inWords(failure->reason()))
                   : QString();
}

}  // namespace orrinvale
