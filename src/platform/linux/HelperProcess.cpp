// The other end of the socket is helper/Session.cpp.
#include "platform/linux/HelperProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/SpawnPlan.h"

namespace orrinvale {
namespace {

constexpr std::size_t kMostErrorText = 4096;

/// Several may stand at once: the padlock opens again while the helper before is still ending.
class NonDumpable final {
public:
    NonDumpable() {
        const std::lock_guard guard(s_mutex);
        if (s_count++ > 0) return;
        s_before = ::prctl(PR_GET_DUMPABLE, 0, 0, 0, 0);
        ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    }
    ~NonDumpable() {
        const std::lock_guard guard(s_mutex);
        if (--s_count == 0 && s_before == 1) ::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0);
    }
    NonDumpable(const NonDumpable&) = delete;
    NonDumpable& operator=(const NonDumpable&) = delete;

private:
    static inline std::mutex s_mutex;  // guards the two below
    static inline int s_count = 0;
    static inline int s_before = 1;
};

int waitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return -1;
    return status;
}

/// False when the system can not wait. What poll(2) told before a signal came is forgotten.
bool waitFor(std::span<pollfd> sources) {
    while (::poll(sources.data(), sources.size(), -1) < 0)
        if (errno != EINTR) return false;
    return true;
}

/// A helper that others may write would run anything as root.
bool isTrustworthy(const std::string& helper) {
    struct stat seen {};
    return ::lstat(helper.c_str(), &seen) == 0 && S_ISREG(seen.st_mode) && seen.st_uid == 0 &&
           (seen.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

/// pkexec(1): 126 when the dialog was dismissed, 127 for everything else of its own. Which it was
/// stands on standard error only.
AuthorizationRefusal refusalOf(int status, std::string_view errors) {
    if (!WIFEXITED(status)) return AuthorizationRefusal::HelperFailed;
    if (WEXITSTATUS(status) == 126) return AuthorizationRefusal::Dismissed;
    if (WEXITSTATUS(status) != 127) return AuthorizationRefusal::HelperFailed;
    const auto says = [&](std::string_view words) {
        return errors.find(words) != std::string_view::npos;
    };
    if (says("No authentication agent")) return AuthorizationRefusal::NoAgent;
    if (says("Not authorized")) return AuthorizationRefusal::Refused;
    if (says("Error getting authority") || says("Error checking") || says("Error enumerating"))
        return AuthorizationRefusal::NoPolkit;
    return AuthorizationRefusal::HelperFailed;
}

}  // namespace

HelperPaths HelperPaths::installed() { return {"/usr/bin/pkexec", ORRINVALE_HELPER_PATH}; }

HelperProcess::HelperProcess(HelperPaths paths, std::function<void(AuthorizationRefusal)> lost)
    : m_paths(std::move(paths)), m_lost(std::move(lost)) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) return;
    m_socket = Descriptor(ends[0]);
    m_theirs = Descriptor(ends[1]);
}

HelperProcess::~HelperProcess() {
    end();
    if (m_thread.joinable()) m_thread.join();
}

AuthorizationRefusal HelperProcess::start() {
    if (::access(m_paths.pkexec.c_str(), X_OK) != 0) return AuthorizationRefusal::NoPolkit;
    if (!isTrustworthy(m_paths.helper)) return AuthorizationRefusal::HelperMissing;
    if (!m_socket.isOpen()) return AuthorizationRefusal::HelperFailed;
    std::promise<AuthorizationRefusal> promise;
    auto answer = promise.get_future();
    m_isDone = false;
    try {
        m_thread =
            std::thread([this, given = std::move(promise)]() mutable { run(std::move(given)); });
    } catch (const std::system_error&) {
        m_isDone = true;
        return AuthorizationRefusal::HelperFailed;
    }
    return answer.get();
}

void HelperProcess::run(std::promise<AuthorizationRefusal> answer) {
    {
        const NonDumpable nonDumpable;
        const bool isStarted = spawn() == 0;
        if (isStarted && awaitReady()) {
            m_isReady = true;
            answer.set_value(AuthorizationRefusal::None);
            watch();
            m_isReady = false;
            (void)waitFor(m_child);
            if (!m_isEnding && m_lost)
                m_lost(m_isIdle ? AuthorizationRefusal::Idle : AuthorizationRefusal::HelperEnded);
        } else {
            answer.set_value(isStarted ? reasonOfDeath() : AuthorizationRefusal::HelperFailed);
        }
    }
    m_isDone = true;
}

// The environment is ours alone: pkexec refuses a shell that /etc/shells does not know, and its
// messages are read by us.
int HelperProcess::spawn() {
    int errors[2];
    if (::pipe2(errors, O_CLOEXEC) != 0) return errno;
    m_errors = Descriptor(errors[0]);
    ::fcntl(errors[0], F_SETFL,
            O_NONBLOCK);  // of our end only; the other programs' writes still wait
    const Descriptor theirErrors(errors[1]);
    const SpawnPlan plan(m_theirs.get(), SpawnPlan::nothing, theirErrors.get());
    std::string program = m_paths.pkexec;
    std::string noAgent = "--disable-internal-agent";
    std::string helper = m_paths.helper;
    std::string path = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    std::string locale = "LC_ALL=C";
    std::array<char*, 4> arguments{program.data(), noAgent.data(), helper.data(), nullptr};
    std::array<char*, 3> environment{path.data(), locale.data(), nullptr};
    pid_t child = -1;
    const int error = ::posix_spawn(&child, program.c_str(), &plan.actions, &plan.attributes,
                                    arguments.data(), environment.data());
    m_theirs.reset();
    if (error == 0) m_child = child;
    return error;
}

// Waits for the helper's first packet for as long as pkexec lives: a person may take minutes to
// find the password.
bool HelperProcess::awaitReady() {
    std::array<pollfd, 2> sources{{{m_socket.get(), POLLIN, 0}, {m_errors.get(), POLLIN, 0}}};
    for (;;) {
        if (!waitFor(sources)) return false;
        if (sources[1].revents != 0) {
            readErrors();
            sources[1].fd = m_errors.get();
        }
        if (sources[0].revents == 0) continue;
        const auto first = receive(MSG_DONTWAIT);
        return first && first->outcome == HelperReply::Outcome::Ready && !m_isEnding;
    }
}

void HelperProcess::watch() {
    std::array<pollfd, 2> sources{
        {{m_socket.get(), 0, 0}, {m_errors.get(), POLLIN, 0}}};  // POLLHUP comes unasked
    while (sources[0].revents == 0) {
        if (!waitFor(sources)) break;
        if (sources[1].revents == 0) continue;
        readErrors();
        sources[1].fd = m_errors.get();
    }
    m_isReady = false;
    const std::lock_guard guard(m_asking);  // whoever waits for a reply has it first
    while (const auto last = receive(MSG_DONTWAIT))
        m_isIdle = m_isIdle || last->outcome == HelperReply::Outcome::Idle;
}

void HelperProcess::readErrors() {
    std::array<char, 1024> piece;
    const ssize_t count = ::read(m_errors.get(), piece.data(), piece.size());
    if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN)) m_errors.reset();
    if (count > 0 && m_errorText.size() < kMostErrorText)
        m_errorText.append(piece.data(), static_cast<std::size_t>(count));
}

AuthorizationRefusal HelperProcess::reasonOfDeath() {
    ::kill(m_child,
           SIGTERM);  // no harm to one that is gone; ends a dialog when we were the ones to end it
    ::shutdown(m_socket.get(), SHUT_RDWR);
    for (std::array<pollfd, 1> source{{{m_errors.get(), POLLIN, 0}}};
         m_errors.isOpen() && waitFor(source);)
        readErrors();
    return refusalOf(waitFor(m_child), m_errorText);
}

std::optional<HelperReply> HelperProcess::receive(int flags) {
    std::array<char, HelperReply::headSize + HelperReply::mostText> packet;
    for (;;) {
        const ssize_t count = ::recv(m_socket.get(), packet.data(), packet.size(), flags);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return std::nullopt;
        return HelperReply::read({packet.data(), static_cast<std::size_t>(count)});
    }
}

std::optional<HelperReply> HelperProcess::ask(HelperRequest request) {
    const std::lock_guard guard(m_asking);
    if (!m_isReady) return std::nullopt;
    request.sequence =
        ++m_sequence == 0 ? ++m_sequence : m_sequence;  // 0 is for what answers no request
    const std::string packet = request.packed();
    if (packet.size() > HelperRequest::mostBytes) return std::nullopt;
    ssize_t sent = 0;
    do sent = ::send(m_socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    if (sent != static_cast<ssize_t>(packet.size())) return std::nullopt;
    for (;;) {
        auto reply = receive(0);
        if (!reply || reply->sequence == request.sequence) return reply;
        m_isIdle = m_isIdle || reply->outcome == HelperReply::Outcome::Idle;
    }
}

void HelperProcess::end() {
    m_isEnding = true;
    if (m_socket.isOpen()) ::shutdown(m_socket.get(), SHUT_RDWR);
}

}  // namespace orrinvale
