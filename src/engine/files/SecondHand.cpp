// On a busy machine the other thread may come late: then this one has done all by itself, and waits
// for nobody.
#include "engine/files/SecondHand.h"

#include <system_error>
#include <utility>

namespace orrinvale {

SecondHand::~SecondHand() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_change.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void SecondHand::run(const std::function<void()>& work) {
    try {
        if (!m_thread.joinable() && std::thread::hardware_concurrency() > 1)
            m_thread = std::thread([this] { lend(); });
    } catch (const std::system_error&) {  // no thread left for this user
    }
    {
        const std::lock_guard lock(m_mutex);
        m_work = &work;
    }
    m_change.notify_all();
    std::exception_ptr fault;
    try {
        work();
    } catch (...) {  // the other one may still be in it
        fault = std::current_exception();
    }
    std::unique_lock lock(m_mutex);
    m_work = nullptr;
    m_change.wait(lock, [this] { return !m_isBusy; });
    const std::exception_ptr others = std::exchange(m_fault, nullptr);
    if (fault == nullptr) fault = others;
    if (fault != nullptr) std::rethrow_exception(fault);
}

void SecondHand::lend() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_change.wait(lock, [this] { return m_work != nullptr || m_isEnding; });
        if (m_isEnding) return;
        const auto* const work = std::exchange(m_work, nullptr);
        m_isBusy = true;
        lock.unlock();
        std::exception_ptr fault;
        try {
            (*work)();
        } catch (...) {
            fault = std::current_exception();
        }
        lock.lock();
        m_fault = fault;
        m_isBusy = false;
        m_change.notify_all();
    }
}

}  // namespace orrinvale
