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
};

OpenLog& openLog() {
    static OpenLog* const instance = new OpenLog;  // outlives every thread that may still ask
    return *instance;
}

// One write a line; the log hands them over one at a time.
void writeWithTime(std::string_view line) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const std::string out = fmt::format(
        "{} {}\n", iso8601(Date::fromSeconds(now.tv_sec, static_cast<std::uint32_t>(now.tv_nsec))),
        line);
    std::string_view rest = out;
    while (!rest.empty()) {
        const ssize_t count = ::write(STDERR_FILENO, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
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

std::optional<Error> MacLog::failure() {
    const std::lock_guard guard(openLog().mutex);
    return openLog().failure;
}

std::optional<std::string> MacLog::openLogFile() {
    const std::lock_guard guard(openLog().mutex);
    return openLog().path.empty() ? std::nullopt : std::optional(openLog().path);
}

}  // namespace orrinvale
