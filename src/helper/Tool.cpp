// The tool works by a name relative to a folder that is held, so that no path is resolved a second
// time.
#include "helper/Tool.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <utility>

#include "platform/error.h"
#include "platform/linux/HelperPacket.h"

namespace orrinvale::helper {
namespace {

/// One stream of the tool: its first bytes are kept, the rest is read and dropped, so that the tool
/// never waits.
struct Stream {
    Descriptor ours;
    Descriptor theirs;
    std::size_t most;
    std::string text;

    explicit Stream(std::size_t mostKept) : most(mostKept) {
        int ends[2] = {-1, -1};
        if (::pipe2(ends, O_CLOEXEC) != 0) return;
        ours = Descriptor(ends[0]);
        theirs = Descriptor(ends[1]);
    }
    void read() {
        std::array<char, 4096> piece;
        const ssize_t count = ::read(ours.get(), piece.data(), piece.size());
        if (count == 0 || (count < 0 && errno != EINTR)) ours.reset();
        if (count > 0)
            text.append(piece.data(),
                        std::min(static_cast<std::size_t>(count), most - text.size()));
    }
};

struct Streams {
    Stream output{HelperReply::mostOutput};
    Stream errors{HelperReply::mostText};
    Stream start{sizeof(int)};  ///< the errno of a start that failed; closed by one that did not

    std::array<Stream*, 3> all() { return {&output, &errors, &start}; }
};

// The number of `start` in the tool. Everything above it is closed.
constexpr int kStartDescriptor = STDERR_FILENO + 1;

bool takePlaces(int folder, const Streams& streams) {
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    return ::fchdir(folder) == 0 && ::dup2(nothing, STDIN_FILENO) >= 0 &&
           ::dup2(streams.output.theirs.get(), STDOUT_FILENO) >= 0 &&
           ::dup2(streams.errors.theirs.get(), STDERR_FILENO) >= 0 &&
           ::dup2(streams.start.theirs.get(), kStartDescriptor) >= 0 &&
           ::fcntl(kStartDescriptor, F_SETFD, FD_CLOEXEC) == 0 &&
           ::syscall(SYS_close_range, kStartDescriptor + 1U, ~0U, 0U) == 0;
}

/// Where the tool works, and on what.
struct Task {
    int folder;
    bool hidesMounts;
    const std::string& name;
};

[[noreturn]] void becomeTool(const Task& task, const Streams& streams, const EndSignal& end,
                             pid_t parent) {
    constexpr int cannotRun = 125;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // whoever kills the helper ends the tool
    if (::getppid() != parent) ::_exit(cannotRun);
    std::string path = "./" + task.name;
    std::string tool = "rm";
    std::string how = "-rf";
    std::string within = "--one-file-system";
    std::array<char*, 5> arguments{tool.data(), how.data(), path.data(), nullptr, nullptr};
    if (!task.hidesMounts)
        arguments = {tool.data(), how.data(), within.data(), path.data(), nullptr};
    char* const noEnvironment[] = {nullptr};
    int report = streams.start.theirs.get();
    if (takePlaces(task.folder, streams)) {
        report = kStartDescriptor;
        end.letThrough();
        ::execve("/bin/rm", arguments.data(), noEnvironment);
    }
    const int error = errno;
    (void)!::write(report, &error, sizeof error);
    ::_exit(cannotRun);
}

/// Ends the tool when its time has come: asked first, a second later by force.
class Patience final {
public:
    Patience(pid_t tool, const EndSignal& end) : m_tool(tool), m_end(end) {}

    /// What to wait for besides the tool; nothing more once it came.
    [[nodiscard]] pollfd source() const { return {m_isAsked ? -1 : m_end.descriptor(), POLLIN, 0}; }
    /// How long to wait: for as long as it takes, or what is left of the second.
    [[nodiscard]] int milliseconds() const {
        using std::chrono::ceil;
        if (!m_isAsked) return -1;
        const auto left = ceil<std::chrono::milliseconds>(m_until - Clock::now());
        return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }
    /// What it still had to say is nobody's concern then.
    [[nodiscard]] bool isOver() const { return m_isOver; }
    void look() {
        if (!m_isAsked && m_end.hasCome()) {
            m_isAsked = true;
            m_until = Clock::now() + std::chrono::seconds(1);
            ::kill(m_tool, SIGTERM);
        } else if (m_isAsked && Clock::now() >= m_until) {
            m_isOver = true;
            ::kill(m_tool, SIGKILL);
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    const pid_t m_tool;
    const EndSignal& m_end;
    Clock::time_point m_until;
    bool m_isAsked = false;
    bool m_isOver = false;
};

void readAll(Streams& streams, Patience patience) {
    const auto isOpen = [](const Stream* stream) { return stream->ours.isOpen(); };
    const auto all = streams.all();
    while (!patience.isOver() && std::any_of(all.begin(), all.end(), isOpen)) {
        std::array<pollfd, all.size() + 1> sources;
        std::transform(all.begin(), all.end(), sources.begin(), [](const Stream* stream) {
            return pollfd{stream->ours.get(), POLLIN, 0};
        });
        sources.back() = patience.source();
        if (::poll(sources.data(), sources.size(), patience.milliseconds()) < 0 && errno != EINTR)
            return;
        for (std::size_t i = 0; i < all.size(); ++i)
            if (sources[i].revents != 0) all[i]->read();
        patience.look();
    }
}

std::string reasonOf(int error) { return systemError("rm", {}, error).reason(); }

// The tool's own statuses are 0 and 1. Others come from whatever should have started it, or ended
// it.
std::string failureOf(const Streams& streams, int status) {
    if (streams.start.text.size() == sizeof(int)) {
        int error = 0;
        std::memcpy(&error, streams.start.text.data(), sizeof error);
        return "the tool could not be started: " + reasonOf(error);
    }
    if (WIFSIGNALED(status))
        return fmt::format("the tool was ended by signal {}", WTERMSIG(status));
    if (WEXITSTATUS(status) > 1)
        return fmt::format("the tool ended with status {}", WEXITSTATUS(status));
    return {};
}

}  // namespace

WorkFolder WorkFolder::of(Descriptor folder) {
    Descriptor copy(static_cast<int>(::syscall(
        SYS_open_tree, folder.get(), "", OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | AT_EMPTY_PATH)));
    if (copy.isOpen()) return {std::move(copy), true};
    return {std::move(folder), false};
}

ToolRun runTool(int folder, bool hidesMounts, const std::string& name, const EndSignal& end) {
    Streams streams;
    for (const Stream* const stream : streams.all())
        if (!stream->ours.isOpen()) return {reasonOf(errno), {}, {}};
    const pid_t self = ::getpid();
    const pid_t tool = ::fork();
    if (tool < 0) return {reasonOf(errno), {}, {}};
    if (tool == 0) becomeTool({folder, hidesMounts, name}, streams, end, self);
    for (Stream* const stream : streams.all()) stream->theirs.reset();
    readAll(streams, Patience(tool, end));
    int status = 0;
    while (::waitpid(tool, &status, 0) < 0 && errno == EINTR) {}
    const std::string& errors = streams.errors.text;
    return {failureOf(streams, status), streams.output.text, errors.substr(0, errors.find('\n'))};
}

}  // namespace orrinvale::helper
