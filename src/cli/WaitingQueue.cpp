#include "cli/WaitingQueue.h"

#include <future>
#include <utility>

namespace orrinvale::cli {

void WaitingQueue::async(std::function<void()> work) {
    {
        const std::lock_guard lock(m_mutex);
        m_work.push_back(std::move(work));
    }
    m_come.notify_one();
}

bool WaitingQueue::sync(std::function<void()> work) {
    if (std::this_thread::get_id() == m_owner) {
        work();
        return true;
    }
    std::promise<void> done;
    async([&] {
        work();
        done.set_value();
    });
    done.get_future().wait();
    return true;
}

void WaitingQueue::runUntil(const std::function<bool()>& isDone) {
    while (!isDone()) {
        std::unique_lock lock(m_mutex);
        m_come.wait(lock, [this] { return !m_work.empty(); });
        const std::function<void()> work = std::move(m_work.front());
        m_work.pop_front();
        lock.unlock();
        work();
    }
}

}  // namespace orrinvale::cli
