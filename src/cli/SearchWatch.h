// What happens beside a running command: a progress line on a terminal, a word about a file system
// that does not answer, and the end on SIGINT and SIGTERM or when memory runs out.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "cli/HangLook.h"

namespace orrinvale::cli {

class Arguments;

/// How watched work came to its end.
enum class Ending : std::uint8_t { Whole, Signalled, OutOfMemory };

/// What is told on standard error while the work goes on.
enum class Telling : std::uint8_t {
    Nothing,
    Hangs,  ///< one line for each path that does not answer
    Line    ///< a progress line, which tells of such paths too
};

/// Nothing for --quiet, the line on a terminal, else the hangs.
[[nodiscard]] Telling tellingFor(const Arguments& arguments);

/// Watches from its construction to its destruction, on a thread of its own. One at a time in a
/// process, since signals belong to the process. After the first signal the next one ends the
/// process at once.
class SearchWatch final {
public:
    /// `stop` is called once, at the first signal or shortage of memory; `progress` gives the text
    /// of the progress line, without a line break, and another one after each progress. Both are
    /// called on the watching thread. `progress` may be empty with Telling::Nothing.
    SearchWatch(std::function<void()> stop, std::function<std::string()> progress, Telling telling);
    ~SearchWatch();
    SearchWatch(const SearchWatch&) = delete;
    SearchWatch& operator=(const SearchWatch&) = delete;

    /// How the work would end now. To be asked when it is over.
    [[nodiscard]] Ending ending() const;

private:
    void watch();
    void takeBytes();
    void tell();
    void draw(std::string text);

    std::function<void()> m_stop;
    std::function<std::string()> m_progress;
    const Telling m_telling;
    std::atomic<bool> m_signalled{false};
    bool m_stopped = false;  // m_stop was called; as the next four, of the watching thread
    bool m_ended = false;
    bool m_drawn = false;
    HangLook m_hangs;
    std::string m_told;  // the path that a line was written for
    int m_end[2] = {
        -1, -1};  // pipe: written to at the end, by the signal handler, and when memory runs out
    std::thread m_thread;
};

/// Watches a scan that was started, to its end.
template <class Scan>
[[nodiscard]] Ending watchScan(Scan& scan, std::function<std::string()> progress, Telling telling) {
    const SearchWatch watch([&scan] { scan.stopScan(); }, std::move(progress), telling);
    scan.waitForEnd();
    return watch.ending();
}

}  // namespace orrinvale::cli
