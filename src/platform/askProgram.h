// askProgram: a program of ours that answers one question about one open file, within bounds.
// linux/AskProgram.cpp implements it; platform/process.h is for programs that run on.
#pragma once

#include <chrono>
#include <cstddef>
#include <stop_token>
#include <string>
#include <vector>

namespace orrinvale {

struct ProgramQuestion {
    std::string program;                   ///< absolute; never looked up in $PATH
    std::vector<std::string> arguments{};  ///< behind its name; no shell reads them
    int input = -1;                        ///< what it gets as its standard input; not owned
    std::chrono::milliseconds most{0};     ///< it is killed then
    std::size_t mostOutput = 0;            ///< it is killed where it prints more
};

struct ProgramAnswer {
    enum class Ending {
        Ended,       ///< `status` is its exit status
        Killed,      ///< by itself or by the system; `status` is the signal
        TimedOut,    ///< by us
        TooMuch,     ///< by us, since it printed too much
        Stopped,     ///< by us, since nobody waits for it any more
        NotStarted,  ///< `status` is an errno value; EAGAIN: too many are left behind
    };
    Ending ending = Ending::NotStarted;
    int status = 0;
    std::string output{};  ///< what it printed, complete only when it has ended
};

/// Runs the program in "/", with no open file but its input, its output to us and a standard error
/// that leads nowhere, and of the environment only what says where libraries lie. Returns when it
/// has ended or was killed; a process that a dead disk holds is left to a thread that waits for it;
/// behind eight of these none is started. Any thread, which waits meanwhile.
[[nodiscard]] ProgramAnswer askProgram(const ProgramQuestion& question,
                                       const std::stop_token& stop);

/// The path of another program of this build: where the package puts what no person starts, or
/// beside the running one. Empty where there is none. Taken only where nobody could have put it
/// there who could not have replaced the running program as well.
[[nodiscard]] std::string companionProgram(const std::string& name);

/// The same for a program that runs from this path.
[[nodiscard]] std::string companionProgram(const std::string& executable, const std::string& name);

}  // namespace orrinvale
