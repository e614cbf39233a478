// DiagnosticParts: what the program knows of its machine and of its own log.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "engine/diagnostics/ComputerReport.h"
#include "platform/error.h"
#include "platform/standardStreams.h"

namespace orrinvale {

/// Where the lines of the log go.
struct LogState {
    std::optional<std::string> file{};  ///< the open log file's path
    /// Why a file that was wanted is not there, or, beside a file, why it takes no lines just now.
    std::optional<Error> failure{};
    ErrorStream stream = ErrorStream::Other;  ///< who has the lines without a file
};

/// Nothing of it is owned; all of it outlives whoever has it. Empty pieces are not there.
struct DiagnosticParts {
    const SystemValues* system = nullptr;
    Volumes* volumes = nullptr;  ///< asked aside
    ReportNames names{};
    /// Both are called on any thread, and wait for the disk.
    std::function<LogState()> logState{};
    /// Opens the file or closes it.
    std::function<void(bool isWanted)> keepLogFile{};
};

}  // namespace orrinvale
