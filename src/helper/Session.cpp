// What a worker does is in Run.cpp; the caller's side is platform/linux/HelperProcess.cpp.
#include "helper/Session.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <utility>

#include "engine/base/Log.h"
#include "helper/Request.h"
#include "helper/Run.h"

namespace orrinvale::helper {
namespace {

using Outcome = HelperReply::Outcome;

constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(1);  // from SIGTERM to SIGKILL
constexpr std::chrono::milliseconds kGrace{500};  // for the rest of its work after that
constexpr std::size_t kMostLine =
    4000;  // a pipe that has room takes PIPE_BUF = 4096 bytes at once (pipe(7))

std::string_view wordFor(Outcome outcome) {
    switch (outcome) {
        case Outcome::Removed: return "removed";
        case Outcome::Printed: return "the tool printed";
        case Outcome::StillThere: return "still there";
        case Outcome::Refused: return "refused";
        case Outcome::Busy: return "busy";
        default: return "failed";
    }
}

bool waitReadable(int descriptor, std::chrono::milliseconds time) {
    pollfd source{descriptor, POLLIN, 0};
    return ::poll(&source, 1, static_cast<int>(time.count())) > 0;
}

}  // namespace

void report(const std::string& line) {
    std::string text = escapeControls(line);
    if (text.size() > kMostLine) text.resize(kMostLine);
    ::syslog(LOG_NOTICE, "%s", text.c_str());
    text = "orrinvale-helper: " + text + '\n';
    pollfd errors{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&errors, 1, 0) > 0) (void)!::write(STDERR_FILENO, text.data(), text.size());
}

Session::Session(int socket, uid_t caller, std::vector<std::string> ownFiles,
                 std::chrono::milliseconds idle)
    : m_socket(socket), m_caller(caller), m_ownFiles(std::move(ownFiles)), m_idle(idle) {}

void Session::run() {
    if (m_journal.hasFolder())
        apart([this] {
            for (const std::string& line : m_journal.bringBack()) report(line);
        });
    answer({0, Outcome::Ready, {}});
    serve();
    stop();
    if (m_journal.isOpen()) apart([this] { m_journal.settle(); });
}

void Session::serve() {
    for (;;) {
        std::array<pollfd, 3> sources{
            {{m_socket, POLLIN, 0}, {m_result.get(), POLLIN, 0}, {m_end.descriptor(), POLLIN, 0}}};
        const int count = ::poll(sources.data(), sources.size(),
                                 m_worker < 0 ? static_cast<int>(m_idle.count()) : -1);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return;
        if (count == 0) {
            answer({0, Outcome::Idle, {}});
            return;
        }
        if (sources[1].revents != 0) finish();
        if (sources[0].revents != 0 && !receive()) return;
        if (sources[2].revents != 0) return;
    }
}

// In a process that a disk which does not answer may keep for as long as it likes; what it does is
// nearly always done within the second that it is waited for.
void Session::apart(const std::function<void()>& task) const {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return;
    const Descriptor ours(ends[0]);
    Descriptor theirs(ends[1]);
    const pid_t other = ::fork();
    if (other == 0) {
        ::close(m_socket);
        m_end.letThrough();
        task();
        ::_exit(0);
    }
    theirs.reset();
    const bool isDone = waitReadable(ours.get(), kPatience);
    while (isDone && other > 0 && ::waitpid(other, nullptr, 0) < 0 && errno == EINTR) {}
}

// False when the caller is gone. An empty packet looks the same and is taken for it.
bool Session::receive() {
    std::string packet(HelperRequest::mostBytes + 1, '\0');
    const ssize_t count = ::recv(m_socket, packet.data(), packet.size(), MSG_DONTWAIT);
    if (count < 0) return errno == EAGAIN || errno == EINTR;
    if (count == 0) return false;
    packet.resize(static_cast<std::size_t>(count));
    const auto request = readRequest(packet);
    if (!request) {
        answer({sequenceOf(packet), Outcome::Refused, std::string(request.error())});
        report(fmt::format("uid {}: refused: {}", m_caller, request.error()));
    } else if (m_worker >= 0) {
        answer({request->sequence, Outcome::Busy, "another request is being worked on"});
    } else {
        begin(*request);
    }
    return true;
}

void Session::begin(const HelperRequest& request) {
    m_request = request;
    m_reply.clear();
    openJournal();
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) == 0) {
        m_result = Descriptor(ends[0]);
        const Descriptor theirs(ends[1]);
        const pid_t self = ::getpid();
        m_worker = ::fork();
        if (m_worker == 0) work(request, self, theirs.get());
    }
    if (m_worker < 0) finish();
    else ::setpgid(m_worker, m_worker);  // the worker does so too; whoever is first
}

// Without one removals go on, and nothing is set aside: a full disk must not keep anybody from
// making room on it.
void Session::openJournal() {
    m_journal.touched(m_request.entry.device, m_request.entry.path);
    const auto reason = m_journal.open();
    if (reason && !std::exchange(m_saidNoJournal, true))
        report(fmt::format("uid {}: nothing is set aside: {}", m_caller, *reason));
}

void Session::work(const HelperRequest& request, pid_t parent, int result) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(1);
    ::setpgid(0, 0);
    ::close(m_socket);  // or it would keep the caller from seeing the helper's death
    const std::string packet =
        removeEntry(request, {m_caller, m_ownFiles, m_journal, m_end}).packed();
    ::_exit(::write(result, packet.data(), packet.size()) == static_cast<ssize_t>(packet.size())
                ? 0
                : 1);
}

// Called when the worker has something to say or is gone.
void Session::finish() {
    std::array<char, HelperReply::headSize + HelperReply::mostText> piece;
    const ssize_t count =
        m_result.isOpen() ? ::read(m_result.get(), piece.data(), piece.size()) : 0;
    if (count < 0 && errno == EINTR) return;
    if (count > 0) {
        m_reply.append(piece.data(), static_cast<std::size_t>(count));
        return;
    }
    m_result.reset();
    while (m_worker > 0 && ::waitpid(m_worker, nullptr, 0) < 0 && errno == EINTR) {}
    m_worker = -1;
    auto reply = HelperReply::read(m_reply).value_or(
        HelperReply{0, Outcome::Failed, "the removal broke off"});
    reply.sequence = m_request.sequence;
    note(reply);
    answer(reply);
}

// The worker gives the tool a second, puts back what is aside and tells what became of the entry.
void Session::stop() {
    if (m_worker < 0) return;
    ::kill(-m_worker, SIGTERM);
    while (m_worker >= 0 && waitReadable(m_result.get(), kPatience + kGrace)) finish();
    if (m_worker < 0) return;
    ::kill(-m_worker, SIGKILL);
    note({0, Outcome::Failed, "killed, as its caller is gone"});
}

void Session::answer(const HelperReply& reply) const {
    const std::string packet = reply.packed();
    (void)!::send(m_socket, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

// The path comes last: it is the one part that may be too long for the line.
void Session::note(const HelperReply& reply) const {
    report(fmt::format("uid {}: {}{}{}: {}:{} {}", m_caller, wordFor(reply.outcome),
                       reply.text.empty() ? "" : ": ", reply.text, m_request.entry.device,
                       m_request.entry.inode, m_request.entry.path));
}

}  // namespace orrinvale::helper
