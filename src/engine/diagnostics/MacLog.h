// MacLog: the log file of the program, which stands in the place of standard error, begins with a
// report about the machine, and is kept small.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/error.h"
#include "platform/systemValues.h"
#include "platform/volumes.h"

namespace orrinvale {

/// One log a process. All operations may be called on any thread, and may wait for the disk;
/// setParts() before the others.
class MacLog final {
public:
    /// A log of more bytes is not gone on with.
    static constexpr std::uint64_t sizeLimit = 20'971'520;

    /// What the report is about. Not owned; outlives the process's last log.
    struct Parts {
        const SystemValues* system = nullptr;
        Volumes* volumes = nullptr;
    };
    static void setParts(Parts parts);

    /// From now on each line of Log, with the time before it, and whatever else the process says on
    /// standard error goes to the file of this name in the person's state folder, which is made.
    /// On any failure everything is as it was: see appendStandardErrorTo(); a disk that has no room
    /// for a line (ENOSPC) is one. A log that is open is closed first.
    static Result<void> setLogFile(const std::string& name);

    /// Removes the file of that path if it is one, and larger than the limit. Nothing of it is
    /// kept, and a failure is not told.
    static void deleteLog(const std::string& path);

    /// Writes the report where the file is empty or missing.
    static void logSysInfo(const std::string& path);
    static void logComInfo();

    /// Opens the log anew where its file has been moved or put in another's place since. One that
    /// was removed is made anew by the next line already.
    static void lookAfterFile();

    /// Standard error is again what it was, and no failure is told any more.
    static void closeLogFile();

    /// The open log's path; none where there is none.
    [[nodiscard]] static std::optional<std::string> openLogFile();
    /// Why the last setLogFile() failed, or why the file takes no lines just now: they go to where
    /// they went before meanwhile. None where all is well.
    [[nodiscard]] static std::optional<Error> failure();

private:
    static Result<void> openFile(const std::string& name);
};

}  // namespace orrinvale
