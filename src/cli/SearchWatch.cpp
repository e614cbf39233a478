// The signal handler only writes a byte into a pipe; the watching thread does the rest.
#include "cli/SearchWatch.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "cli/Command.h"
#include "cli/MemoryReserve.h"
#include "cli/Output.h"

namespace orrinvale::cli {
namespace {

constexpr int redrawMilliseconds = 100;
constexpr int hangMilliseconds = 500;
constexpr std::array signals{SIGINT, SIGTERM};
volatile std::sig_atomic_t s_pipe = -1;

void stopListening() {
    struct sigaction plain {};
    plain.sa_handler = SIG_DFL;
    for (const int number : signals) {
        struct sigaction now {};
        if (::sigaction(number, nullptr, &now) == 0 && now.sa_handler != SIG_IGN)
            ::sigaction(number, &plain, nullptr);
    }
}

void onSignal(int) {
    const int kept = errno;
    stopListening();  // the next one of either kind ends the process at once
    const char byte = 's';
    if (s_pipe >= 0) (void)!::write(s_pipe, &byte, 1);
    errno = kept;
}

void endSearch() {
    const char byte = 'm';
    if (s_pipe >= 0) (void)!::write(s_pipe, &byte, 1);
}

// A signal that whoever started the program lets it ignore stays ignored.
void listen() {
    struct sigaction action {};
    action.sa_handler = &onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : signals) {
        struct sigaction now {};
        if (::sigaction(number, nullptr, &now) == 0 && now.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}

std::size_t columns() {
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

int pauseFor(Telling telling) {
    switch (telling) {
        case Telling::Nothing: return -1;
        case Telling::Hangs: return hangMilliseconds;
        case Telling::Line: return redrawMilliseconds;
    }
    return -1;
}

}  // namespace

Telling tellingFor(const Arguments& arguments) {
    if (arguments.has("quiet")) return Telling::Nothing;
    return isTerminal(STDERR_FILENO) ? Telling::Line : Telling::Hangs;
}

SearchWatch::SearchWatch(std::function<void()> stop, std::function<std::string()> progress,
                         Telling telling)
    : m_stop(std::move(stop)), m_progress(std::move(progress)), m_telling(telling) {
    if (::pipe2(m_end, O_CLOEXEC | O_NONBLOCK) != 0)
        return;  // no descriptor left: the command runs unwatched
    s_pipe = m_end[1];
    try {
        m_thread = std::thread([this] { watch(); });
    } catch (const std::system_error&) {  // no thread left for this user: likewise
        s_pipe = -1;
        for (const int end : m_end) ::close(end);
        return;
    }
    setShortageHandler(&endSearch);
    if (hasMemoryRunShort()) endSearch();
    listen();
}

SearchWatch::~SearchWatch() {
    if (!m_thread.joinable()) return;
    stopListening();
    setShortageHandler(nullptr);
    s_pipe = -1;
    const char byte = 'e';
    (void)!::write(m_end[1], &byte, 1);
    m_thread.join();
    for (const int end : m_end) ::close(end);
    if (!m_drawn) return;
    Output(STDERR_FILENO).write("\r\x1b[K");
}

Ending SearchWatch::ending() const {
    if (m_signalled) return Ending::Signalled;
    return hasMemoryRunShort() ? Ending::OutOfMemory : Ending::Whole;
}

void SearchWatch::watch() {
    while (!m_ended) {
        pollfd wait{m_end[0], POLLIN, 0};
        const int ready = ::poll(&wait, 1, pauseFor(m_telling));
        if (ready == 0) tell();
        if (ready > 0) takeBytes();
    }
}

void SearchWatch::takeBytes() {
    std::array<char, 16> bytes;
    const ssize_t count = ::read(m_end[0], bytes.data(), bytes.size());
    for (ssize_t i = 0; i < count; ++i) {
        const char byte = bytes[static_cast<std::size_t>(i)];
        if (byte == 'e') {
            m_ended = true;
            return;
        }
        if (byte == 's') m_signalled = true;
        if (!std::exchange(m_stopped, true)) m_stop();
    }
}

void SearchWatch::tell() {
    std::string line = m_progress();
    const auto hang = m_hangs.look(line, HangLook::Clock::now());
    const std::string path = hang ? printable(hang->path) : std::string();
    if (m_telling == Telling::Line) {
        draw(hang ? fmt::format("no answer for {} s: {}", hang->since.count(), path)
                  : std::move(line));
    } else if (hang && std::exchange(m_told, hang->path) != hang->path) {
        Output(STDERR_FILENO)
            .write(
                fmt::format("orrinvale-cli: no answer for {} s: {}\n", hang->since.count(), path));
    }
}

void SearchWatch::draw(std::string text) {
    const std::size_t width = columns();
    if (text.size() >= width) {
        std::size_t end = width - 1;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            --end;  // not inside of a character
        text.resize(end);
    }
    m_drawn = true;
    Output(STDERR_FILENO).write("\r" + text + "\x1b[K");
}

}  // namespace orrinvale::cli
