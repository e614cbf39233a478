// Process (platform/process.h) over posix_spawn(3). A thread for each program waits for its end, so
// that the signal SIGCHLD stays with whoever uses it.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/SpawnPlan.h"
#include "platform/process.h"

namespace orrinvale {
namespace {

bool isIgnored(int signal) {
    struct sigaction now {};
    return ::sigaction(signal, nullptr, &now) == 0 && now.sa_handler == SIG_IGN;
}

int spawn(const std::string& program, const std::vector<std::string>& arguments, pid_t& child) {
    std::vector<std::string> texts{program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> vector(texts.size() + 1);  // ends with a null pointer
    std::transform(texts.begin(), texts.end(), vector.begin(),
                   [](std::string& text) { return text.data(); });

    SpawnPlan plan(SpawnPlan::nothing, SpawnPlan::nothing, SpawnPlan::nothing);
    sigset_t signals;
    ::sigfillset(&signals);
    for (const int each : {SIGHUP, SIGINT, SIGQUIT})
        if (isIgnored(each)) ::sigdelset(&signals, each);
    plan.setDefaultSignals(signals);
    return ::posix_spawn(&child, program.c_str(), &plan.actions, &plan.attributes, vector.data(),
                         environ);
}

int reap(pid_t child) {
    int ending = 0;
    pid_t reaped = -1;
    do reaped = ::waitpid(child, &ending, 0);
    while (reaped < 0 && errno == EINTR);
    if (reaped < 0) return Process::endUnknown;
    return WIFSIGNALED(ending) ? WTERMSIG(ending) : WEXITSTATUS(ending);
}

}  // namespace

struct Process::Shared {
    explicit Shared(std::function<void()> whenEnded) : ended(std::move(whenEnded)) {}

    /// On the waiting thread. The number of the program is its own until it is reaped, which is
    /// done under the lock.
    void wait() {
        siginfo_t info{};
        while (::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) != 0 &&
               errno == EINTR) {}
        std::function<void()> tell;
        {
            const std::lock_guard guard(mutex);
            status = reap(child);
            child = -1;
            tell = std::move(ended);
        }
        if (tell) tell();
    }

    std::mutex mutex;             // guards what follows
    pid_t child = -1;             // -1 once it has ended
    std::optional<int> status;    // once it has ended
    std::function<void()> ended;  // empty when nobody wants to know
};

SysResult<std::unique_ptr<Process>> Process::start(const std::string& program,
                                                   const std::vector<std::string>& arguments,
                                                   std::function<void()> ended) {
    auto shared = std::make_shared<Shared>(std::move(ended));
    if (const int error = spawn(program, arguments, shared->child); error != 0)
        return tl::unexpected(error);
    try {
        std::thread([shared] { shared->wait(); }).detach();
    } catch (const std::system_error&) {
        ::kill(shared->child, SIGKILL);  // it must not run unwatched
        ::waitpid(shared->child, nullptr, 0);
        return tl::unexpected(EAGAIN);
    }
    return std::unique_ptr<Process>(new Process(std::move(shared)));
}

Process::~Process() {
    const std::lock_guard guard(m_shared->mutex);
    m_shared->ended = nullptr;
}

void Process::terminate() {
    const std::lock_guard guard(m_shared->mutex);
    if (m_shared->child > 0) ::kill(m_shared->child, SIGTERM);
}

std::optional<int> Process::endStatus() const {
    const std::lock_guard guard(m_shared->mutex);
    return m_shared->status;
}

}  // namespace orrinvale
