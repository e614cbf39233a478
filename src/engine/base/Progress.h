// Progress: how far a piece of work is, in the one form in which all work tells it.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <utility>

namespace orrinvale {

struct Progress {
    std::uint64_t done = 0;  ///< of what the work counts by: entries, bytes, percent
    std::uint64_t of = 0;    ///< 0 until it is known
    std::string current;     ///< the path in hand, in exact bytes; empty where none is told

    /// 0 to 100; 0 while it is not known how much there is.
    [[nodiscard]] double percent() const {
        return of == 0 ? 0 : static_cast<double>(done) * 100.0 / static_cast<double>(of);
    }
};

/// Where working threads leave their progress and others look at it whenever they like. Any thread.
/// Each call takes a lock: tell batches, or what is slow beside that.
class ProgressBox final {
public:
    void setDone(std::uint64_t done) {
        const std::lock_guard guard(m_mutex);
        m_progress.done = done;
    }
    void setCurrent(std::string current) {
        const std::lock_guard guard(m_mutex);
        m_progress.current = std::move(current);
    }
    [[nodiscard]] Progress copy() const {
        const std::lock_guard guard(m_mutex);
        return m_progress;
    }

private:
    mutable std::mutex m_mutex;
    Progress m_progress;  // guarded by m_mutex
};

}  // namespace orrinvale
