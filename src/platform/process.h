// Process: another program, run beside this one. linux/LinuxProcess.cpp implements it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Any thread. What the program prints is thrown away, it has nothing to read, and it inherits the
/// environment but no open file. Of the signals that this program was told to ignore it ignores
/// SIGHUP, SIGINT and SIGQUIT as well (nohup, a shell's background). A main program sets SIGCHLD to
/// its default first: while it is ignored the kernel throws away how programs end.
class Process final {
public:
    /// Starts the program at an absolute path, with these arguments behind its name. No shell reads
    /// them. It works in "/", so that an argument that is no absolute path names nothing of the
    /// user's. `ended` is called once, on a thread of its own, when the program has ended, however
    /// it did; it may be empty.
    [[nodiscard]] static SysResult<std::unique_ptr<Process>> start(
        const std::string& program, const std::vector<std::string>& arguments,
        std::function<void()> ended);

    /// The program runs on; its end is not told any more, unless that is just being done.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Asks the program to end. Its end is told as usual.
    void terminate();

    /// With what the program ended: its exit status, or the number of the signal that ended it.
    /// Nothing while it runs, endUnknown when the system did not tell.
    [[nodiscard]] std::optional<int> endStatus() const;
    static constexpr int endUnknown = -1;

private:
    struct Shared;
    explicit Process(std::shared_ptr<Shared> shared) : m_shared(std::move(shared)) {}

    const std::shared_ptr<Shared> m_shared;
};

}  // namespace orrinvale
