// Runs a real program in a fresh folder, with nothing of this process's environment, and keeps
// exactly what it wrote.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/isSanitized.h"

namespace orrinvale::testing {

/// A signal that is sent when the condition on what stands on standard error so far holds. Signals
/// go out in their order; each condition is asked about every 5 ms, from the moment when the one
/// before was sent.
struct SignalWhen {
    int number;
    std::function<bool(const std::string& error)> condition;
};

/// What a person types once the condition on what stands on standard error so far holds; before the
/// program starts where there is none.
struct TypedWhen {
    std::string text;
    std::function<bool(const std::string& error)> condition;
};

struct ProgramRun {
    std::string program;
    std::vector<std::string> arguments;    ///< without the program's name
    std::vector<std::string> environment;  ///< "NAME=value"; only these and what sanitizers read
    std::string folder;                    ///< to run in; empty for a fresh one
    std::optional<uid_t> user;             ///< to run as; needs root
    std::vector<std::pair<int, rlim_t>> limits;  ///< RLIMIT_AS, 1 << 29
    bool terminal = false;                       ///< standard error is a terminal of 80 columns
    bool inputTerminal = false;                  ///< standard input likewise, else it is empty
    bool outputTerminal = false;                 ///< standard output likewise; both may be one
    bool closeOutput = false;                    ///< standard output is closed
    std::string outputFile;   ///< where standard output goes instead of into the result
    bool holdOutput = false;  ///< standard output is read only when all signals are sent
    std::vector<SignalWhen> signals;
    std::vector<TypedWhen> typed;  ///< in this order; with inputTerminal
    int secondsToLive = 60;        ///< then the program is killed

    // What came out of it.
    struct Result {
        int status = -1;    ///< exit status; -1 when a signal ended the program
        int signal = 0;     ///< that signal
        bool late = false;  ///< it had to be killed
        std::string output;
        std::string error;
    };

    /// Throws std::runtime_error when the program can not be started. A terminal passes bytes on as
    /// they are written.
    [[nodiscard]] Result run() const;
};

/// A run of orrinvale-cli with that command, whose name needs not be among the arguments.
[[nodiscard]] ProgramRun commandRun(std::string command, std::vector<std::string> arguments,
                                    std::string folder = {});

/// What a command line comes to.
struct StatusCase {
    std::vector<std::string> arguments;
    int status;
    std::ptrdiff_t lines;                   ///< on standard error
    std::vector<std::string> skipped = {};  ///< paths in the document, below the folder
    std::string says = {};                  ///< on standard error
};

/// Runs each in that folder as an ordinary user, in these forms. Where the first one works, it
/// fails on a full disk.
void expectStatuses(const std::string& command, const std::string& folder,
                    const std::vector<StatusCase>& cases, const std::vector<std::string>& forms);

}  // namespace orrinvale::testing
