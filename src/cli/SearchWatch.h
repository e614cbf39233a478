// What happens beside a running command: a progress line on a terminal, and the end on SIGINT and SIGTERM.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace orrinvale::cli {

/// Watches from its construction to its destruction, on a thread of its own. One at a time in a process, since signals belong to
/// the process. After the first signal the next one ends the process at once.
class SearchWatch final {
public:
    /// `stop` is called once, at the first signal; `progress` gives the text of the progress line ten times a second, without a
    /// line break; an empty function means that no line is wanted. Both are called on the watching thread.
    SearchWatch(std::function<void()> stop, std::function<std::string()> progress);
    ~SearchWatch();
    SearchWatch(const SearchWatch&) = delete;
    SearchWatch& operator=(const SearchWatch&) = delete;

    [[nodiscard]] bool wasSignalled() const { return m_signalled; }

private:
    void watch();
    void draw();

    std::function<void()> m_stop;
    std::function<std::string()> m_progress;
    std::atomic<bool> m_signalled{false};
    bool m_drawn = false;
    int m_end[2] = {-1, -1};  // pipe: written to at the end, and by the signal handler
    std::thread m_thread;
};

}  // namespace orrinvale::cli
