// A main queue that the test itself serves.
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include "engine/base/MainQueue.h"

namespace orrinvale::testing {

/// The thread that serves it is the main thread.
class ServedQueue final : public MainQueue {
public:
    void async(std::function<void()> work) override {
        const std::lock_guard guard(m_mutex);
        m_work.push_back(std::move(work));
        m_changed.notify_all();
    }
    bool sync(std::function<void()> /*work*/) override { return false; }

    /// Runs one piece; false when none waits.
    bool step() {
        std::function<void()> work;
        {
            const std::lock_guard guard(m_mutex);
            if (m_work.empty()) return false;
            work = std::move(m_work.front());
            m_work.pop_front();
        }
        const auto begun = std::chrono::steady_clock::now();
        work();
        longest = std::max(longest, std::chrono::steady_clock::now() - begun);
        ++turns;
        return true;
    }

    /// False when the condition does not hold within 20 seconds.
    bool serveUntil(const std::function<bool()>& condition) {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            {
                std::unique_lock lock(m_mutex);
                if (!m_changed.wait_until(lock, until, [this] { return !m_work.empty(); }))
                    return false;
            }
            step();
        }
        return true;
    }

    std::chrono::steady_clock::duration longest{};  ///< of one piece of work
    std::size_t turns = 0;

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_work;  // guarded by m_mutex
};

}  // namespace orrinvale::testing
