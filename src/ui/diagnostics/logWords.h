// logWords: where the lines of the log go, in words.
#pragma once

#include "ui/diagnostics/DiagnosticParts.h"
#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale {

/// The buttons of an alert about a log file.
enum LogButton { OpenLogFile, ShowLogInFolder, CloseLogWords };

/// With a file it has these buttons, else one alone.
[[nodiscard]] Alert logAlert(const LogState& state);

/// What the preferences say of a log file that can not be written; empty where it can.
[[nodiscard]] QString logFaultWords(const std::optional<Error>& failure);

}  // namespace orrinvale
