// How many threads there are is decided in consider() and adjust(), by what was waited for and done
// meanwhile.
#include "engine/files/WorkCrew.h"

#include <sched.h>
#include <sys/resource.h>

#include <algorithm>
#include <ctime>
#include <utility>

namespace orrinvale {
namespace {

using namespace std::chrono_literals;

constexpr auto beforeSecondThread =
    150us;  // a thread costs 20 to 60 us to start and to join, measured
constexpr auto betweenChecks = 3ms;
constexpr auto longestWindow = 100ms;
constexpr unsigned fewestSteps = 4;  // of each thread
constexpr double busy =
    0.6;  // below this share of the cores in use, threads are waiting for the disk

std::int64_t processorTime() {
    timespec used{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return used.tv_sec * 1'000'000'000 + used.tv_nsec;
}

// How often threads of this process gave up the processor to wait for something. Other programs
// that take processors away do not count here, so that a loaded machine is not mistaken for a slow
// disk.
std::int64_t waits() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw;
}

std::int64_t nanoseconds(std::chrono::steady_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
}

}  // namespace

unsigned WorkCrew::cores() {
    static const unsigned number = [] {
        cpu_set_t set;
        if (::sched_getaffinity(0, sizeof set, &set) == 0)
            return static_cast<unsigned>(std::max(1, CPU_COUNT(&set)));
        return std::max(1U, std::thread::hardware_concurrency());
    }();
    return number;
}

WorkCrew::WorkCrew(unsigned most, std::function<void()> atStart,
                   std::function<void(unsigned)> atEnd)
    : m_most(std::max(1U, most)), m_atStart(std::move(atStart)), m_atEnd(std::move(atEnd)) {}

void WorkCrew::run(const std::function<Step(unsigned)>& step) {
    m_step = &step;
    m_finished = false;
    m_steps = 0;
    m_limit = 1;
    {
        const std::lock_guard lock(m_mutex);
        m_lastCheck = Clock::now();
        m_lastProcessor = processorTime();
        m_lastWaits = waits();
        m_lastSteps = 0;
        m_rateBefore = 0;
        m_hold = 0;
        m_nextCheck = nanoseconds(m_lastCheck + beforeSecondThread);
    }
    work(0);
    finish();
    std::vector<std::jthread> threads;
    {
        const std::lock_guard lock(m_mutex);
        threads.swap(m_threads);
    }
    threads.clear();  // joins
    m_step = nullptr;
    if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
}

void WorkCrew::forEach(std::size_t count, std::size_t grain, const std::atomic<bool>& stop,
                       const std::function<void(std::size_t, unsigned)>& task) {
    std::atomic<std::size_t> next{0};
    run([&](unsigned worker) {
        if (stop.load(std::memory_order_relaxed)) return Step::Finished;
        const std::size_t first = next.fetch_add(grain, std::memory_order_relaxed);
        if (first >= count) return Step::Finished;
        const std::size_t last = std::min(count, first + grain);
        for (std::size_t index = first; index < last && !stop.load(std::memory_order_relaxed);
             ++index)
            task(index, worker);
        return Step::Worked;
    });
}

void WorkCrew::wake() {
    m_generation.fetch_add(1);
    if (m_sleepers.load() == 0) return;
    const std::lock_guard lock(m_mutex);
    m_wakeUp.notify_all();
}

void WorkCrew::finish() {
    m_finished = true;
    const std::lock_guard lock(m_mutex);
    m_wakeUp.notify_all();
}

void WorkCrew::work(unsigned worker) {
    while (!m_finished.load(std::memory_order_relaxed)) {
        const std::uint64_t seen = m_generation.load();
        if (worker >= m_limit.load(std::memory_order_relaxed)) {
            park(worker, seen);
            continue;
        }
        switch (guardedStep(worker)) {
            case Step::Worked:
                m_steps.fetch_add(1, std::memory_order_relaxed);
                consider();
                break;
            case Step::Idle: park(worker, seen); break;
            case Step::Finished: finish(); break;
        }
    }
}

// Memory may run out on any thread, and an exception that leaves a thread ends the process.
WorkCrew::Step WorkCrew::guardedStep(unsigned worker) {
    try {
        return (*m_step)(worker);
    } catch (...) {
        const std::lock_guard lock(m_mutex);
        if (!m_failure) m_failure = std::current_exception();
        return Step::Finished;
    }
}

// Sleeps until wake() was called after `seen` was read. A worker beyond the limit is not counted:
// it is no sign of missing work.
void WorkCrew::park(unsigned worker, std::uint64_t seen) {
    std::unique_lock lock(m_mutex);
    const unsigned counted = worker < m_limit.load() ? 1 : 0;
    m_sleepers.fetch_add(counted);
    m_wakeUp.wait(lock, [&] { return m_generation.load() != seen || m_finished.load(); });
    m_sleepers.fetch_sub(counted);
}

void WorkCrew::consider() {
    if (m_most == 1) return;
    const auto now = Clock::now();
    if (nanoseconds(now) < m_nextCheck.load(std::memory_order_relaxed)) return;
    const std::unique_lock lock(m_mutex, std::try_to_lock);
    if (lock.owns_lock()) adjust(now);
}

void WorkCrew::adjust(Clock::time_point now) {
    if (m_finished.load() || nanoseconds(now) < m_nextCheck.load()) return;
    m_nextCheck = nanoseconds(now + betweenChecks);
    const unsigned limit = m_limit.load();
    // A rate out of a few steps is chance: wait for more of them, but not forever where each takes
    // long.
    const bool enough =
        m_steps.load() - m_lastSteps >= fewestSteps * limit || now - m_lastCheck > longestWindow;
    if (limit >= cores() && !enough) return;
    const std::int64_t processor = processorTime();
    const std::int64_t waited = waits();
    const std::uint64_t steps = m_steps.load();
    const double seconds = std::chrono::duration<double>(now - m_lastCheck).count();
    const double rate = static_cast<double>(steps - m_lastSteps) / seconds;
    const double used = static_cast<double>(processor - m_lastProcessor) * 1e-9 / seconds;
    const bool blocked =
        static_cast<double>(waited - m_lastWaits) > 0.5 * static_cast<double>(steps - m_lastSteps);
    m_lastCheck = now;
    m_lastProcessor = processor;
    m_lastWaits = waited;
    m_lastSteps = steps;
    if (m_hold > 0 && m_hold != ~0U) --m_hold;

    if (limit < cores() && m_hold == 0) {
        setLimit(std::min(cores(), m_most));
        return;
    }
    if (m_rateBefore > 0 && rate < 0.75 * m_rateBefore) {
        m_rateBefore = 0;
        m_hold = 200;
        setLimit(std::max(cores(), limit / 2));
        return;
    }
    m_rateBefore = 0;
    const bool waiting = blocked && used < busy * std::min(limit, cores());
    if (!waiting || m_sleepers.load() != 0 || m_hold != 0 || limit >= m_most) return;
    m_rateBefore = rate;
    setLimit(std::min(m_most, limit * 2));
}

void WorkCrew::setLimit(unsigned limit) {
    limit = std::min(limit, m_most);
    try {
        for (auto next = static_cast<unsigned>(m_threads.size()) + 1; next < limit; ++next)
            m_threads.emplace_back([this, next] {
                if (m_atStart) m_atStart();
                work(next);
                if (m_atEnd) m_atEnd(next);
            });
    } catch (const std::exception&) {  // no more threads for this user, or no memory: those that
                                       // are there do the work
        limit = static_cast<unsigned>(m_threads.size()) + 1;
        m_hold = ~0U;
    }
    m_limit = limit;
    m_generation.fetch_add(1);
    m_wakeUp.notify_all();
}

}  // namespace orrinvale
