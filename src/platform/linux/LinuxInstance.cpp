// ProgramInstance (platform/instance.h): flock(2), a datagram socket (unix(7)), and
// LinuxInstanceBus.cpp for the session bus.
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <thread>

#include "platform/FolderVariables.h"
#include "platform/deadline.h"
#include "platform/instance.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr const char* lockName = "orrinvale.lock";
constexpr const char* socketName = "orrinvale.socket";
constexpr milliseconds pause{10};  // between two looks at a lock whose holder is just beginning

bool isOwnFolder(const std::string& path) {
    struct stat entry {};
    return ::lstat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode) &&
           entry.st_uid == ::geteuid();
}

void makeFolders(const std::string& path) {
    for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        ::mkdir(path.substr(0, at).c_str(), S_IRWXU);
    ::mkdir(path.c_str(), S_IRWXU);
}

int numberIn(int file) {
    std::array<char, 24> text{};
    const ssize_t length = ::pread(file, text.data(), text.size(), 0);
    int number = 0;
    if (length > 0) std::from_chars(text.data(), text.data() + length, number);
    return number;
}

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

// With an address of its own, which the kernel chooses, so that it can be answered.
Descriptor answerableSocket() {
    Descriptor made(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_un any{};
    any.sun_family = AF_UNIX;
    if (::bind(made.get(), reinterpret_cast<const sockaddr*>(&any), sizeof any.sun_family) != 0)
        made.reset();
    return made;
}

bool isFromThisUser(msghdr& message) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
         part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_CREDENTIALS) continue;
        ucred sender{};
        std::memcpy(&sender, CMSG_DATA(part), sizeof sender);
        return sender.uid == ::geteuid();
    }
    return false;
}

}  // namespace

std::string ProgramInstance::folderOfUser() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    const std::string usual = fmt::format("/run/user/{}", ::geteuid());
    for (const std::string& each :
         {runtime != nullptr ? std::string(runtime) : std::string(), usual})
        if (each.starts_with('/') && isOwnFolder(each)) return each;
    const auto variables = FolderVariables::ofThisProcess();
    const std::string config =
        variables.configHome.empty() ? joinPath(variables.home, ".config") : variables.configHome;
    return joinPath(config, programBusName);
}

ProgramInstance::ProgramInstance(std::string folder) : m_folder(std::move(folder)) {}

ProgramInstance::~ProgramInstance() { stopListening(); }

void ProgramInstance::stopListening() {
    // While the lock is held no other process listens there.
    if (m_socket.isOpen()) ::unlinkat(m_folderHandle.get(), socketName, 0);
    m_socket.reset();
}

ProgramInstance::Start ProgramInstance::begin(const StartRequest& request, milliseconds patience) {
    const auto end = Clock::now() + patience;
    makeFolders(m_folder);
    m_folderHandle = Descriptor(::open(m_folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    // Who has the lock may not listen yet, or may be about to end: look again until the time is
    // over.
    for (;;) {
        const bool isFirst = takeLock();
        // Who has the lock may still not be the program: another runtime folder, or no lock to be
        // had, and yet the same bus.
        const BusHandOver onBus = handOverBySessionBus(request, timeUntil(end));
        m_hasSessionBus = onBus.isBusThere;
        if (onBus.told) {
            m_lock.reset();
            return *onBus.told;
        }
        if (isFirst) {
            listen();
            return Start::First;
        }
        if (const auto told = handOverThroughSocket(request, timeUntil(end))) return *told;
        if (Clock::now() + pause >= end) return Start::NoWay;
        std::this_thread::sleep_for(pause);
    }
}

bool ProgramInstance::takeLock() {
    // Never removed: another process may wait for the very file that would go.
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    Descriptor file(::openat(m_folderHandle.get(), lockName, flags, S_IRUSR | S_IWUSR));
    if (!file.isOpen()) return true;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        m_holder = numberIn(file.get());
        return errno != EWOULDBLOCK;  // a file system without locks holds nobody up
    }
    m_holder = ::getpid();
    const std::string text = fmt::format("{}\n", m_holder);
    // The number is for people; the lock holds without it.
    if (::ftruncate(file.get(), 0) == 0)
        static_cast<void>(!::pwrite(file.get(), text.data(), text.size(), 0));
    m_lock = std::move(file);
    return true;
}

// The name as an address; through the open folder, since an address has room for 107 bytes only.
std::string ProgramInstance::socketAddress() const {
    return fmt::format("/proc/self/fd/{}/{}", m_folderHandle.get(), socketName);
}

void ProgramInstance::listen() {
    if (!m_lock.isOpen()) return;
    Descriptor made(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int on = 1;
    if (!made.isOpen() || ::setsockopt(made.get(), SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0)
        return;
    ::unlinkat(m_folderHandle.get(), socketName, 0);
    const sockaddr_un address = addressOf(socketAddress());
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    const int bound =
        ::bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::umask(before);
    if (bound == 0) m_socket = std::move(made);
}

std::optional<StartRequest> ProgramInstance::receive() const {
    std::string packet(startRequestLimit + 1, '\0');
    std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
    sockaddr_un from{};
    for (;;) {
        iovec bytes{packet.data(), packet.size()};
        msghdr message{};
        message.msg_name = &from;
        message.msg_namelen = sizeof from;
        message.msg_iov = &bytes;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        const ssize_t length = ::recvmsg(m_socket.get(), &message, MSG_CMSG_CLOEXEC);
        if (length < 0) return std::nullopt;
        auto request =
            parseStartRequest(std::string_view(packet).substr(0, static_cast<std::size_t>(length)));
        if (!request || !isFromThisUser(message)) continue;
        const char taken = '1';
        ::sendto(m_socket.get(), &taken, 1, MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&from),
                 message.msg_namelen);
        return request;
    }
}

std::optional<ProgramInstance::Start> ProgramInstance::handOverThroughSocket(
    const StartRequest& request, milliseconds patience) const {
    const Descriptor socket = answerableSocket();
    const sockaddr_un address = addressOf(socketAddress());
    const std::string packet = printStartRequest(request);
    if (!socket.isOpen() || packet.size() > startRequestLimit) return std::nullopt;
    // Not waited for: a running program whose queue is full does not answer either.
    const ssize_t sent =
        ::sendto(socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                 reinterpret_cast<const sockaddr*>(&address), sizeof address);
    if (sent < 0) return std::nullopt;
    pollfd answer{socket.get(), POLLIN, 0};
    const int ready = ::poll(&answer, 1, static_cast<int>(patience.count()));
    return ready > 0 ? Start::HandedOver : Start::Unanswered;
}

}  // namespace orrinvale
