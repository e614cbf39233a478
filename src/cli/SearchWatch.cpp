// SearchWatch: see SearchWatch.h. The signal handler only writes a byte into a pipe; the watching thread does the rest.
#include "cli/SearchWatch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "cli/Output.h"

namespace orrinvale::cli {
namespace {

constexpr int redrawMilliseconds = 100;
volatile std::sig_atomic_t s_pipe = -1;

void onSignal(int) {
    const int kept = errno;
    const char byte = 's';
    if (s_pipe >= 0) (void)!::write(s_pipe, &byte, 1);
    errno = kept;
}

void listen(bool on) {
    struct sigaction action {};
    action.sa_handler = on ? &onSignal : SIG_DFL;
    action.sa_flags = on ? static_cast<int>(SA_RESETHAND) | SA_RESTART : 0;
    for (const int number : {SIGINT, SIGTERM}) ::sigaction(number, &action, nullptr);
}

std::size_t columns() {
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

}  // namespace

SearchWatch::SearchWatch(std::function<void()> stop, std::function<std::string()> progress)
    : m_stop(std::move(stop)), m_progress(std::move(progress)) {
    if (::pipe2(m_end, O_CLOEXEC | O_NONBLOCK) != 0) return;  // no descriptor left: the command runs unwatched
    s_pipe = m_end[1];
    m_thread = std::thread([this] { watch(); });
    listen(true);
}

SearchWatch::~SearchWatch() {
    if (!m_thread.joinable()) return;
    if (!m_signalled) listen(false);
    s_pipe = -1;
    const char byte = 'e';
    (void)!::write(m_end[1], &byte, 1);
    m_thread.join();
    for (const int end : m_end) ::close(end);
    if (!m_drawn) return;
    Output(STDERR_FILENO).write("\r\x1b[K");
}

void SearchWatch::watch() {
    for (;;) {
        pollfd wait{m_end[0], POLLIN, 0};
        const int ready = ::poll(&wait, 1, m_progress ? redrawMilliseconds : -1);
        if (ready == 0) draw();
        if (ready <= 0) continue;
        std::array<char, 16> bytes;
        const ssize_t count = ::read(m_end[0], bytes.data(), bytes.size());
        for (ssize_t i = 0; i < count; ++i) {
            if (bytes[static_cast<std::size_t>(i)] == 'e') return;
            if (!m_signalled.exchange(true)) m_stop();
        }
    }
}

void SearchWatch::draw() {
    std::string text = m_progress();
    const std::size_t width = columns();
    if (text.size() >= width) {
        std::size_t end = width - 1;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // not inside of a character
        text.resize(end);
    }
    m_drawn = true;
    Output(STDERR_FILENO).write("\r" + text + "\x1b[K");
}

}  // namespace orrinvale::cli
