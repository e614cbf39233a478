// askProgram (platform/askProgram.h) over posix_spawn(3), a pipe and poll(2).
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <system_error>
#include <thread>

#include "platform/askProgram.h"
#include "platform/deadline.h"
#include "platform/descriptor.h"
#include "platform/linux/ProgramFiles.h"
#include "platform/linux/SpawnPlan.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

using Ending = ProgramAnswer::Ending;

// Processes that only the kernel can keep from their end, each with a thread that waits for it.
constexpr int mostLeftBehind = 8;
std::atomic<int> leftBehind{0};

std::vector<std::string> bareEnvironment() {
    std::vector<std::string> kept{"LC_ALL=C.UTF-8"};
    for (const char* const name : {"LD_LIBRARY_PATH", "QT_PLUGIN_PATH"})
        if (const char* const value = std::getenv(name))
            kept.push_back(std::string(name) + '=' + value);
    return kept;
}

std::vector<char*> asVector(std::vector<std::string>& texts) {
    std::vector<char*> vector;
    vector.reserve(texts.size() + 1);
    for (std::string& text : texts) vector.push_back(text.data());
    vector.push_back(nullptr);
    return vector;
}

int spawnAnswerer(const ProgramQuestion& question, int output, pid_t& child) {
    std::vector<std::string> texts{question.program};
    texts.insert(texts.end(), question.arguments.begin(), question.arguments.end());
    std::vector<std::string> variables = bareEnvironment();
    const SpawnPlan plan(question.input, output, SpawnPlan::nothing);
    return ::posix_spawn(&child, question.program.c_str(), &plan.actions, &plan.attributes,
                         asVector(texts).data(), asVector(variables).data());
}

// Nothing while it runs on.
std::optional<int> reapNow(pid_t child) {
    int ending = 0;
    const pid_t reaped = ::waitpid(child, &ending, WNOHANG);
    if (reaped == 0 || (reaped < 0 && errno == EINTR)) return std::nullopt;
    return reaped < 0 ? 0 : ending;
}

// How it ended; nothing when it does not end, which only the kernel can keep it from.
std::optional<int> reapSoon(pid_t child) {
    for (int looks = 0; looks < 100; ++looks) {
        if (const auto ending = reapNow(child)) return ending;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ::kill(child, SIGKILL);
    for (int looks = 0; looks < 100; ++looks) {
        if (const auto ending = reapNow(child)) return ending;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ++leftBehind;
    try {
        std::thread([child] {
            ::waitpid(child, nullptr, 0);
            --leftBehind;
        }).detach();
    } catch (const std::system_error&) {  // it stays a zombie until we end, and counts as long
    }
    return std::nullopt;
}

// Until the program closes its end, or has ended, since a process that was made meanwhile may hold
// that end as well: Ended. Else why nobody reads on.
Ending readAll(int output, int process, int stopped, const ProgramQuestion& question,
               std::string& text) {
    const auto end = std::chrono::steady_clock::now() + question.most;
    constexpr std::size_t piece = std::size_t{1} << 18U;
    // In this order: what it wrote before its end is seen where its end is.
    std::array<pollfd, 3> sources{
        {{process, POLLIN, 0}, {stopped, POLLIN, 0}, {output, POLLIN, 0}}};
    for (;;) {
        const auto left = timeUntil(end);
        const int ready = ::poll(sources.data(), sources.size(), static_cast<int>(left.count()));
        if (ready < 0 && errno != EINTR) return Ending::Stopped;
        if (ready < 0) continue;
        if (sources[1].revents != 0) return Ending::Stopped;
        if (ready == 0) return Ending::TimedOut;
        if (sources[2].revents == 0) return Ending::Ended;  // and nothing is left in the pipe
        const std::size_t before = text.size();
        text.resize(before + piece);
        const ssize_t got = ::read(output, text.data() + before, piece);
        text.resize(before + static_cast<std::size_t>(got > 0 ? got : 0));
        if (got == 0) return Ending::Ended;
        if (text.size() > question.mostOutput) return Ending::TooMuch;
    }
}

// Who may write this file may write the running program as well.
bool isAsSafeAs(const struct stat& own, const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    if (status.st_uid != 0 && status.st_uid != own.st_uid) return false;
    const mode_t open = status.st_mode & (S_IWGRP | S_IWOTH);
    if ((open & ~own.st_mode) != 0) return false;
    return (open & S_IWGRP) == 0 || status.st_gid == own.st_gid;
}

std::string companionOf(const struct stat& own, const std::string& executable,
                        const std::string& name) {
    const std::string here = folderOf(executable);
    if (here.empty()) return {};
    std::vector<std::string> candidates;
    if (lastPathComponent(here) == "bin")
        candidates.push_back(joinPath(folderOf(here), ORRINVALE_LIBEXEC "/orrinvale/" + name));
    candidates.push_back(joinPath(here, name));
    candidates.push_back(joinPath(ORRINVALE_FULL_LIBEXEC "/orrinvale", name));
    for (const std::string& path : candidates)
        if (isAsSafeAs(own, path) && ::access(path.c_str(), X_OK) == 0) return path;
    return {};
}

}  // namespace

ProgramAnswer askProgram(const ProgramQuestion& question, const std::stop_token& stop) {
    ProgramAnswer answer;
    if (leftBehind >= mostLeftBehind) {
        answer.status = EAGAIN;
        return answer;
    }
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        answer.status = errno;
        return answer;
    }
    const Descriptor ours(ends[0]);
    Descriptor theirs(ends[1]);
    const Descriptor stopped(::eventfd(0, EFD_CLOEXEC));
    const std::stop_callback wake(stop, [&stopped] { (void)::eventfd_write(stopped.get(), 1); });
    ::fcntl(ours.get(), F_SETPIPE_SZ, 1 << 20);
    pid_t child = -1;
    answer.status = spawnAnswerer(question, theirs.get(), child);
    if (answer.status != 0) return answer;
    theirs.reset();
    // A kernel before 5.3 has none, and poll(2) passes by what is not open.
    const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    answer.ending = readAll(ours.get(), process.get(), stopped.get(), question, answer.output);
    if (answer.ending != Ending::Ended) ::kill(child, SIGKILL);
    const auto ending = reapSoon(child);
    if (answer.ending != Ending::Ended || !ending) return answer;
    if (WIFSIGNALED(*ending)) answer.ending = Ending::Killed;
    answer.status = WIFSIGNALED(*ending) ? WTERMSIG(*ending) : WEXITSTATUS(*ending);
    return answer;
}

std::string companionProgram(const std::string& name) {
    struct stat own {};  // of what runs, which an update may have replaced
    return ::stat("/proc/self/exe", &own) == 0 ? companionOf(own, ownExecutable(), name)
                                               : std::string();
}

std::string companionProgram(const std::string& executable, const std::string& name) {
    struct stat own {};
    return ::stat(executable.c_str(), &own) == 0 ? companionOf(own, executable, name)
                                                 : std::string();
}

}  // namespace orrinvale
