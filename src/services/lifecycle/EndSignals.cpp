// A handler may only write a byte (signal-safety(7)); the event loop reads it.
#include "services/lifecycle/EndSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace orrinvale {
namespace {

constexpr std::array signalsOfEnd{SIGTERM, SIGINT, SIGHUP};
std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free, "a handler may touch nothing else");

extern "C" void noteSignal(int signal) {
    const int before = errno;
    const char number = static_cast<char>(signal);
    static_cast<void>(!::write(writeEnd.load(), &number, 1));
    errno = before;
}

void setAction(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

// As whoever started the program wants it, nohup(1) for instance.
bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

EndSignals::EndSignals(std::function<void(int)> handler) : m_handler(std::move(handler)) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    m_read = Descriptor(ends[0]);
    m_write = Descriptor(ends[1]);
    m_notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { receive(); });
    writeEnd = ends[1];
    for (const int signal : signalsOfEnd)
        if (!isIgnored(signal)) setAction(signal, noteSignal);
}

EndSignals::~EndSignals() {
    if (!m_write.isOpen()) return;
    for (const int signal : signalsOfEnd)
        if (!isIgnored(signal)) setAction(signal, SIG_DFL);
    writeEnd = -1;
}

void EndSignals::receive() {
    char number = 0;
    while (::read(m_read.get(), &number, 1) == 1) m_handler(number);
}

void EndSignals::endBy(int signal) {
    setAction(signal, SIG_DFL);
    ::raise(signal);
    std::_Exit(128 + signal);  // where the signal is blocked
}

}  // namespace orrinvale
