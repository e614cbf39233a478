// SecondHand: a second thread for pieces of work that two do faster than one. TreeRemoval has it
// lend a hand in wide folders.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace orrinvale {

/// Starts its thread with the first piece and keeps it for the next. Used by one thread.
class SecondHand final {
public:
    SecondHand() = default;
    ~SecondHand();
    SecondHand(const SecondHand&) = delete;
    SecondHand& operator=(const SecondHand&) = delete;

    /// Calls `work` here, and on the other thread too if that one comes to it in time; returns when
    /// nobody is in it any more; throws what it threw on either. `work` takes what there is to do
    /// piece by piece, and returns when nothing is left.
    void run(const std::function<void()>& work);

private:
    void lend();

    std::mutex m_mutex;  // guards what follows
    std::condition_variable m_change;
    const std::function<void()>* m_work = nullptr;  // that the other thread has not begun
    std::exception_ptr m_fault;                     // of the other thread's last piece
    bool m_isBusy = false;
    bool m_isEnding = false;
    std::thread m_thread;
};

}  // namespace orrinvale
