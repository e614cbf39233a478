// WaitingQueue: the main queue of a command that has nothing to do but wait.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "engine/base/MainQueue.h"

namespace orrinvale::cli {

/// The main thread of a command that waits for one thing: the one that makes it.
class WaitingQueue final : public MainQueue {
public:
    void async(std::function<void()> work) override;
    bool sync(std::function<void()> work) override;
    /// Runs what is handed over, on the calling thread, until this is true.
    void runUntil(const std::function<bool()>& isDone);

private:
    const std::thread::id m_owner = std::this_thread::get_id();
    std::mutex m_mutex;  // guards m_work
    std::condition_variable m_come;
    std::deque<std::function<void()>> m_work;
};

}  // namespace orrinvale::cli
