#include "services/foundation/QtMainQueue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds turn{16};

}  // namespace

struct QtMainQueue::Shared {
    enum class State { Waiting, Done, Dropped };
    struct Item {
        std::function<void()> work;
        State* state;  // of the waiting sync(), or null; guarded by mutex
    };
    std::mutex mutex;
    std::condition_variable settled;
    std::deque<Item> items;  // guarded by mutex
    bool ended = false;      // guarded by mutex
    bool isAwake = false;    // guarded by mutex; a wake-up is under way
    std::thread::id home;    // never changes
};

QtMainQueue::QtMainQueue() : m_shared(std::make_shared<Shared>()) {
    m_shared->home = std::this_thread::get_id();
    connect(this, &QtMainQueue::woken, this, &QtMainQueue::drain, Qt::QueuedConnection);
}

QtMainQueue::~QtMainQueue() {
    std::deque<Shared::Item> dropped;
    {
        const std::lock_guard guard(m_shared->mutex);
        m_shared->ended = true;
        dropped.swap(m_shared->items);
        for (const Shared::Item& item : dropped)
            if (item.state != nullptr) *item.state = Shared::State::Dropped;
    }
    m_shared->settled.notify_all();
}

void QtMainQueue::async(std::function<void()> work) {
    const std::shared_ptr<Shared> shared = m_shared;
    const std::lock_guard guard(shared->mutex);
    if (shared->ended) return;
    shared->items.push_back({std::move(work), nullptr});
    wake();
}

bool QtMainQueue::sync(std::function<void()> work) {
    if (std::this_thread::get_id() == m_shared->home) {
        work();
        return true;
    }
    const std::shared_ptr<Shared> shared =
        m_shared;  // outlives this queue, should it end meanwhile
    Shared::State state = Shared::State::Waiting;
    {
        const std::lock_guard guard(shared->mutex);
        if (shared->ended) return false;
        shared->items.push_back({std::move(work), &state});
        wake();
    }
    std::unique_lock lock(shared->mutex);
    shared->settled.wait(lock, [&] { return state != Shared::State::Waiting; });
    return state == Shared::State::Done;
}

// With the lock held: once it is let go, the queue may end at any moment.
void QtMainQueue::wake() {
    if (std::exchange(m_shared->isAwake, true)) return;
    Q_EMIT woken();
}

void QtMainQueue::drain() {
    const std::shared_ptr<Shared> shared = m_shared;
    const auto until = std::chrono::steady_clock::now() + turn;
    std::ptrdiff_t waiting =
        0;  // what comes meanwhile is for another turn, so that work which asks for one gets it
    {
        const std::lock_guard guard(shared->mutex);
        shared->isAwake = false;
        waiting = std::ssize(shared->items);
    }
    for (;;) {
        Shared::Item item;
        {
            const std::lock_guard guard(shared->mutex);
            if (shared->items.empty()) return;
            item = std::move(shared->items.front());
            shared->items.pop_front();
            // Work may turn an event loop of its own: what waits behind it is then served there.
            if (!shared->items.empty()) wake();
        }
        item.work();
        item.work = nullptr;  // what it holds goes on this thread, before sync() returns
        if (item.state != nullptr) {
            const std::lock_guard guard(shared->mutex);
            *item.state = Shared::State::Done;
            shared->settled.notify_all();
        }
        const std::lock_guard guard(shared->mutex);
        if (shared->ended || shared->items.empty()) return;
        if (--waiting > 0 && std::chrono::steady_clock::now() < until) continue;
        wake();
        return;
    }
}

}  // namespace orrinvale
