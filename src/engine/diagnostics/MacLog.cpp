// The file is opened by the platform; what stands here is when, and what is written first.
#include "engine/diagnostics/MacLog.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <mutex>
#include <string_view>

#include "engine/base/Date.h"
#include "engine/base/Log.h"
#include "engine/diagnostics/ComputerReport.h"
#include "engine/files/DurableFile.h"
#include "engine/settings/UserFolders.h"
#include "platform/paths.h"
#include "platform/standardStreams.h"

namespace orrinvale {
namespace {

struct OpenLog {
    std::mutex mutex;  // guards all that follows
    MacLog::Parts parts;
    std::string path;  // empty: none is open
    std::optional<Error> failure;
    std::uint64_t missing = 0;  // lines that the file had no room for
};

OpenLog& openLog() {
    static OpenLog* const instance = new OpenLog;  // outlives every thread that may still ask
    return *instance;
}

std::string withTime(std::string_view line) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return fmt::format(
        "{} {}\n", iso8601(Date::fromSeconds(now.tv_sec, static_cast<std::uint32_t>(now.tv_nsec))),
        line);
}

// A file that was removed while it is open takes lines that nobody can read.
bool isErrorStreamRemoved() {
    struct stat seen {};
    return ::fstat(STDERR_FILENO, &seen) == 0 && S_ISREG(seen.st_mode) && seen.st_nlink == 0;
}

void beginAnew(OpenLog& log) {
    putStandardErrorBack();
    if (const auto opened = appendStandardErrorTo(log.path); !opened) {
        log.failure = systemError("open", log.path, opened.error());
        log.path.clear();
        return;
    }
    static_cast<void>(
        writeWhole(STDERR_FILENO,
                   withTime(fmt::format("The log was removed; process {} goes on.", ::getpid()))));
}

// What has no room goes to where the lines went before, and is counted.
void writeToFile(OpenLog& log, const std::string& line) {
    // The line that did not fit may stand half.
    const std::string text =
        log.missing == 0
            ? line
            : "\n" + withTime(fmt::format("{} lines are missing here.", log.missing)) + line;
    if (writeWhole(STDERR_FILENO, text)) {
        log.missing = 0;
        log.failure.reset();
        return;
    }
    const int number = errno;
    log.failure = systemError("write", log.path, number);
    ++log.missing;
    writeToStandardErrorBefore(line);
}

// The log hands lines over one at a time.
void writeWithTime(std::string_view line) {
    const std::string out = withTime(line);
    OpenLog& log = openLog();
    const std::lock_guard guard(log.mutex);
    // A reader of files has descriptors of its own, so that the file is what it was when the reader
    // began: its lines may miss a log that has been changed since.
    const bool isShared = sharesStandardError();
    if (isShared && !log.path.empty() && isErrorStreamRemoved()) beginAnew(log);
    if (isShared && !log.path.empty()) writeToFile(log, out);
    else static_cast<void>(writeWhole(STDERR_FILENO, out));
}

std::uint64_t sizeOfErrorStream() {
    struct stat seen {};
    return ::fstat(STDERR_FILENO, &seen) == 0 ? static_cast<std::uint64_t>(seen.st_size) : 0;
}

}  // namespace

void MacLog::setParts(Parts parts) {
    const std::lock_guard guard(openLog().mutex);
    openLog().parts = parts;
}

Result<void> MacLog::setLogFile(const std::string& name) {
    auto opened = openFile(name);
    const std::lock_guard guard(openLog().mutex);
    openLog().failure = opened ? std::nullopt : std::optional(opened.error());
    return opened;
}

Result<void> MacLog::openFile(const std::string& name) {
    closeLogFile();
    const std::string folder = userStateFolder();
    const std::string path = joinPath(folder, name);
    if (auto made = DurableFile::makeFolder(folder); !made) return made;
    deleteLog(path);
    if (const auto opened = appendStandardErrorTo(path); !opened)
        return tl::unexpected(systemError("open", path, opened.error()));
    {
        const std::lock_guard guard(openLog().mutex);
        openLog().path = path;
        openLog().missing = 0;
    }
    const std::uint64_t size = sizeOfErrorStream();
    Log::setSink(writeWithTime);
    logSysInfo(path);
    Log::line(fmt::format("Process {} begins.", ::getpid()));
    if (sizeOfErrorStream() > size) return {};
    closeLogFile();
    return tl::unexpected(systemError("write", path, ENOSPC));
}

// Asked of the entry itself: a link stays, and is refused when the log is opened.
void MacLog::deleteLog(const std::string& path) {
    struct stat seen {};
    if (::lstat(path.c_str(), &seen) != 0 || !S_ISREG(seen.st_mode)) return;
    if (static_cast<std::uint64_t>(seen.st_size) > sizeLimit)
        static_cast<void>(DurableFile::remove(path));
}

void MacLog::logSysInfo(const std::string& path) {
    struct stat seen {};
    if (::lstat(path.c_str(), &seen) == 0 && seen.st_size > 0) return;
    Log::line(fmt::format("Quennet Log file: {}", path));
    logComInfo();
}

void MacLog::logComInfo() {
    Parts parts;
    {
        const std::lock_guard guard(openLog().mutex);
        parts = openLog().parts;
    }
    if (parts.system == nullptr || parts.volumes == nullptr) return;
    for (const std::string& line : computerReport(*parts.system, *parts.volumes)) Log::line(line);
}

void MacLog::closeLogFile() {
    {
        const std::lock_guard guard(openLog().mutex);
        openLog().failure.reset();
        if (openLog().path.empty()) return;
        openLog().path.clear();
    }
    Log::setSink({});
    putStandardErrorBack();
}

void MacLog::lookAfterFile() {
    const auto path = openLogFile();
    if (!path) return;
    struct stat there {
    }, open{};
    if (::lstat(path->c_str(), &there) == 0 && ::fstat(STDERR_FILENO, &open) == 0 &&
        there.st_dev == open.st_dev && there.st_ino == open.st_ino)
        return;
    static_cast<void>(setLogFile(std::string(splitPath(*path).name)));
}

std::optional<Error> MacLog::failure() {
    const std::lock_guard guard(openLog().mutex);
    return openLog().failure;
}

std::optional<std::string> MacLog::openLogFile() {
    const std::lock_guard guard(openLog().mutex);
    return openLog().path.empty() ? std::nullopt : std::optional(openLog().path);
}

}  // namespace orrinvale
