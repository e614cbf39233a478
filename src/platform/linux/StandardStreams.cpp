// StandardStreams (platform/standardStreams.h): open(2) gives the lowest free number, so that a gap
// is filled by opening until none is left.
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <mutex>

#include "platform/standardStreams.h"

namespace orrinvale {
namespace {

std::mutex s_streamMutex;   // guards the next
Descriptor s_streamBefore;  // standard error as it was, while a file stands in its place

thread_local bool s_hasOwnDescriptors = false;

int checkLogFile(int file) {
    struct stat seen {};
    if (::fstat(file, &seen) != 0) return errno;
    if (!S_ISREG(seen.st_mode)) return EINVAL;
    if (seen.st_uid != ::geteuid()) return EPERM;
    if (seen.st_nlink != 1) return EMLINK;
    // One that was made with a wider mode is closed to others: its lines have names of files. Where
    // the disk knows no modes it is taken as it is.
    if ((seen.st_mode & 077U) != 0) static_cast<void>(::fchmod(file, 0600));
    return 0;
}

}  // namespace

void fillStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
        // Opened the wrong way round: reading from standard input and writing to the others fail
        // with EBADF, as they did. Children get it too, since they would miss the streams in the
        // same way.
        static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

// The variable stays behind where a shell puts a file in the place of the stream.
ErrorStream standardErrorGoesTo() {
    const std::lock_guard guard(s_streamMutex);
    const int stream = s_streamBefore.isOpen() ? s_streamBefore.get() : STDERR_FILENO;
    if (::isatty(stream) == 1) return ErrorStream::Terminal;
    const char* const journal = std::getenv("JOURNAL_STREAM");
    struct stat seen {};
    if (journal == nullptr || ::fstat(stream, &seen) != 0) return ErrorStream::Other;
    return fmt::format("{}:{}", seen.st_dev, seen.st_ino) == journal ? ErrorStream::Journal
                                                                     : ErrorStream::Other;
}

// Outside of the lock, which is taken where the window asks who has the stream.
SysResult<void> appendStandardErrorTo(const std::string& path) {
    struct stat seen {};
    if (::lstat(path.c_str(), &seen) == 0 && S_ISFIFO(seen.st_mode)) return tl::unexpected(EINVAL);
    // Neither a pipe without a reader nor a terminal holds us up.
    const Descriptor file(
        ::open(path.c_str(),
               O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600));
    if (!file.isOpen()) return tl::unexpected(errno);
    if (const int fault = checkLogFile(file.get()); fault != 0) return tl::unexpected(fault);
    const std::lock_guard guard(s_streamMutex);
    if (s_streamBefore.isOpen()) return tl::unexpected(EBUSY);
    Descriptor before(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!before.isOpen()) return tl::unexpected(errno);
    if (::dup2(file.get(), STDERR_FILENO) < 0) return tl::unexpected(errno);
    s_streamBefore = std::move(before);
    return {};
}

void putStandardErrorBack() {
    const std::lock_guard guard(s_streamMutex);
    if (!s_streamBefore.isOpen()) return;
    ::dup2(s_streamBefore.get(), STDERR_FILENO);
    s_streamBefore.reset();
}

void writeToStandardErrorBefore(std::string_view text) {
    const std::lock_guard guard(s_streamMutex);
    pollfd before{s_streamBefore.get(), POLLOUT, 0};
    // A pipe that nobody reads any more would end the process.
    if (::poll(&before, 1, 0) == 1 && before.revents == POLLOUT)
        static_cast<void>(writeWhole(before.fd, text));
}

void keepOwnStandardError() { s_hasOwnDescriptors = true; }

bool sharesStandardError() { return !s_hasOwnDescriptors; }

bool writeWhole(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace orrinvale
