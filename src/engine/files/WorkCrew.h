// The engine's own parallelism: one call that runs a step on as many threads as pays, and returns
// when all is done.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orrinvale {

/// Runs a step again and again on the calling thread and on others beside it.
///
/// The second thread starts only when the work has lasted longer than a thread costs; then there
/// are as many threads as cores. While they wait for the disk more than they compute, their number
/// doubles, up to a bound: cold small files are read five times faster that way. When a doubling
/// made the work slower, as on a disk that seeks, it is taken back.
class WorkCrew final {
public:
    enum class Step {
        Worked,   ///< something was done; ask again
        Idle,     ///< nothing to do until wake() is called
        Finished  ///< there will be nothing more; all workers go home
    };

    /// At most `most` threads, the calling one included; 1 runs everything on the caller. Each
    /// thread beside the caller's calls `atStart` first and atEnd(worker) last.
    explicit WorkCrew(unsigned most = 64, std::function<void()> atStart = {},
                      std::function<void(unsigned)> atEnd = {});
    WorkCrew(const WorkCrew&) = delete;
    WorkCrew& operator=(const WorkCrew&) = delete;

    /// Calls step(worker) until it answers Finished on any worker; returns when all workers have
    /// come home. `worker` counts from 0 (the caller) and stays below most(); each number is one
    /// thread for the whole call. What a step throws on any thread ends the call as Finished does,
    /// and is thrown to the caller.
    void run(const std::function<Step(unsigned worker)>& step);

    /// Runs task(index, worker) once for each index below `count`, `grain` of them at a time, in
    /// rising order of start. `stop` is looked at before each; tasks under way end in their own
    /// time.
    void forEach(std::size_t count, std::size_t grain, const std::atomic<bool>& stop,
                 const std::function<void(std::size_t index, unsigned worker)>& task);

    /// From within a step: there is new work for workers that found none.
    void wake();

    [[nodiscard]] unsigned most() const { return m_most; }

    /// The processors that this process may use.
    [[nodiscard]] static unsigned cores();

private:
    using Clock = std::chrono::steady_clock;

    void work(unsigned worker);
    Step guardedStep(unsigned worker);
    void consider();
    void adjust(Clock::time_point now);
    void setLimit(unsigned limit);
    void park(unsigned worker, std::uint64_t seen);
    void finish();

    const unsigned m_most;
    const std::function<void()> m_atStart;
    const std::function<void(unsigned)> m_atEnd;
    const std::function<Step(unsigned)>* m_step = nullptr;

    std::atomic<std::uint64_t> m_generation{0};  // counts wake()
    std::atomic<unsigned> m_sleepers{0};
    std::atomic<bool> m_finished{false};
    std::atomic<std::uint64_t> m_steps{0};
    std::atomic<std::int64_t> m_nextCheck{0};  // steady clock, nanoseconds
    std::atomic<unsigned> m_limit{1};

    std::mutex m_mutex;  // guards what follows
    std::condition_variable m_wakeUp;
    std::vector<std::jthread> m_threads;
    std::exception_ptr m_failure;
    Clock::time_point m_lastCheck;
    std::int64_t m_lastProcessor = 0;
    std::int64_t m_lastWaits = 0;
    std::uint64_t m_lastSteps = 0;
    double m_rateBefore =
        0;                // steps a second before the last doubling, 0 when there was none to judge
    unsigned m_hold = 0;  // checks to let pass before the next doubling
};

}  // namespace orrinvale
