// HelperRun: see HelperRun.h.
#include "helper/HelperRun.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include "platform/linux/LinuxFiles.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

template <class Condition> bool within(std::chrono::milliseconds time, Condition condition) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// The letter of proc(5), 0 for a process that is gone.
char stateOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    return file >> number >> name >> state ? state.front() : '\0';
}

}  // namespace

SocketPair::SocketPair(uid_t user, int type) {
    int ends[2] = {-1, -1};
    const uid_t self = ::geteuid();
    const bool isMade =
        ::seteuid(user) == 0 && ::socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends) == 0;
    if (::seteuid(self) != 0 || !isMade) return;
    ours = Descriptor(ends[0]);
    theirs = Descriptor(ends[1]);
}

HelperRun::HelperRun(uid_t caller, const std::function<void()>& before) {
    SocketPair sockets(caller, SOCK_SEQPACKET);
    const std::string user = "PKEXEC_UID=" + std::to_string(caller);
    const char* const environment[] = {user.c_str(), nullptr};
    const char* const arguments[] = {ORRINVALE_HELPER, nullptr};
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(sockets.theirs.get(), STDIN_FILENO);
        before();
        ::execve(arguments[0], const_cast<char* const*>(arguments),
                 const_cast<char* const*>(environment));
        ::_exit(125);
    }
    m_process = child;
    m_socket = std::move(sockets.ours);
    sockets.theirs.reset();
    const auto first = receive();
    m_isReady = first && first->outcome == HelperReply::Outcome::Ready;
}

HelperRun::~HelperRun() {
    letGo();  // its own end takes its journal away
    if (m_process <= 0 || endsWithin(std::chrono::milliseconds(3000))) return;
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

bool HelperRun::send(const std::string& packet) const {
    const int room = 4 << 20;
    ::setsockopt(m_socket.get(), SOL_SOCKET, SO_SNDBUFFORCE, &room, sizeof room);
    return ::send(m_socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(packet.size());
}

std::optional<HelperReply> HelperRun::receive() const {
    pollfd source{m_socket.get(), POLLIN, 0};
    if (::poll(&source, 1, 20'000) <= 0) return std::nullopt;
    std::array<char, 4096> packet;
    const ssize_t count = ::recv(m_socket.get(), packet.data(), packet.size(), 0);
    return count <= 0 ? std::nullopt
                      : HelperReply::read({packet.data(), static_cast<std::size_t>(count)});
}

HelperRequest HelperRun::requestFor(const std::string& path) {
    const FileAttributes entry =
        isThere(path) ? attributesOf(path) : FileAttributes{.type = FileType::Regular};
    return {.sequence = 7,
            .entry = {path, entry.device, entry.inode, entry.type, EntryState::of(entry)},
            .stays = std::nullopt};
}

HelperReply HelperRun::ask(const HelperRequest& request) const {
    const HelperReply none{0, HelperReply::Outcome::Failed, "no answer"};
    return send(request.packed()) ? receive().value_or(none) : none;
}

bool HelperRun::endsWithin(std::chrono::milliseconds time) {
    const bool ended =
        within(time, [&] { return ::waitpid(m_process, nullptr, WNOHANG) == m_process; });
    if (ended) m_process = -1;
    return ended;
}

pid_t childOf(pid_t process) {
    pid_t child = -1;
    const std::string list =
        "/proc/" + std::to_string(process) + "/task/" + std::to_string(process) + "/children";
    (void)within(std::chrono::seconds(1),
                 [&] { return static_cast<bool>(std::ifstream(list) >> child); });
    return child;
}

bool isStopped(pid_t process) {
    char state = 0;
    (void)within(std::chrono::seconds(5), [&] {
        state = stateOf(process);
        return state == 'T' || state == 'Z' || state == 0;
    });
    return state == 'T';
}

bool isGoneWithin(pid_t process, std::chrono::milliseconds time) {
    return within(time, [&] {
        const char state = stateOf(process);
        return state == 0 || state == 'Z' || state == 'X';
    });
}

}  // namespace orrinvale::testing
