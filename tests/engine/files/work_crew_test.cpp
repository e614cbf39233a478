// WorkCrew: every piece of work is done once, whatever the number of threads, and waiting workers
// wake and go home.
#include "engine/files/WorkCrew.h"

#include <new>
#include <numeric>

#include "support/test.h"

namespace orrinvale {
namespace {

void compute(std::chrono::microseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {}
}

TEST(WorkCrew, eachIndexIsDoneOnceAndWorkersAreThreads) {
    struct Case {
        std::size_t count, grain;
        unsigned most;
    };
    for (const Case& one : {Case{0, 1, 8}, Case{1, 1, 8}, Case{7, 100, 8}, Case{3000, 7, 8},
                            Case{3000, 1, 1}, Case{3000, 64, 64}}) {
        WorkCrew crew(one.most);
        std::vector<std::atomic<int>> done(one.count);
        std::mutex mutex;
        std::set<std::pair<unsigned, std::thread::id>> workers;
        const std::atomic<bool> stop{false};
        for (int round = 1; round <= 2; ++round) {  // a crew may be used again
            crew.forEach(one.count, one.grain, stop, [&](std::size_t index, unsigned worker) {
                compute(3us);
                done[index].fetch_add(1);
                const std::lock_guard lock(mutex);
                workers.insert({worker, std::this_thread::get_id()});
            });
            for (std::size_t index = 0; index < one.count; ++index)
                ASSERT_EQ(done[index], round) << index;
            std::set<unsigned> numbers;
            for (const auto& worker : workers) {
                EXPECT_LT(worker.first, one.most);
                EXPECT_TRUE(numbers.insert(worker.first).second)
                    << "two threads with the number " << worker.first;
            }
            workers.clear();
        }
    }
}

TEST(WorkCrew, oneMeansTheCallingThreadAlone) {
    WorkCrew crew(1);
    const std::atomic<bool> stop{false};
    std::size_t next = 0;
    crew.forEach(200, 3, stop, [&](std::size_t index, unsigned worker) {
        EXPECT_EQ(index, next++);
        EXPECT_EQ(worker, 0U);
        compute(20us);
    });
    EXPECT_EQ(next, 200U);
}

TEST(WorkCrew, aStopIsSeenBeforeEachTask) {
    WorkCrew crew(4);
    std::atomic<bool> stop{false};
    std::atomic<std::size_t> done{0};
    std::atomic<std::size_t> late{0};
    crew.forEach(100'000, 10, stop, [&](std::size_t, unsigned) {
        if (stop) ++late;
        if (done.fetch_add(1) == 500) stop = true;
        compute(1us);
    });
    EXPECT_GT(done, 500U);
    EXPECT_LE(late, 3U) << "more than what each other thread had in hand";
}

// An exception that leaves a thread ends the process, so that it must come to the caller, and the
// crew must be good for more.
TEST(WorkCrew, whatATaskThrowsOnAnyThreadComesToTheCaller) {
    WorkCrew crew(4);
    const std::atomic<bool> stop{false};
    std::set<bool> onCaller;
    const auto caller = std::this_thread::get_id();
    for (int round = 0; round < 200 && onCaller.size() < 2; ++round) {
        std::atomic<bool> thrown{false};
        std::atomic<std::size_t> done{0};
        const auto work = [&](std::size_t index, unsigned) {
            compute(20us);
            ++done;
            if (index < 100 || thrown.exchange(true)) return;
            onCaller.insert(std::this_thread::get_id() == caller);  // once a round
            throw std::bad_alloc();
        };
        EXPECT_THROW(crew.forEach(100'000, 1, stop, work), std::bad_alloc);
        EXPECT_LT(done, 10'000U) << "the others went on";
        done = 0;
        crew.forEach(50, 1, stop, work);
        EXPECT_EQ(done, 50U);
    }
    EXPECT_EQ(onCaller.size(), 2U) << "no other thread ever threw";
}

// One producer feeds a queue slowly; the others sleep meanwhile and must be there for each piece,
// and at the end.
TEST(WorkCrew, idleWorkersWakeForNewWorkAndAtTheEnd) {
    for (int round = 0; round < 20; ++round) {
        WorkCrew crew(8);
        std::atomic<int> produced{0};
        std::atomic<int> queued{0};
        std::atomic<int> consumed{0};
        constexpr int total = 400;
        crew.run([&](unsigned worker) {
            if (worker == 0 && produced < total) {
                compute(10us);
                ++produced;
                ++queued;
                crew.wake();
                return WorkCrew::Step::Worked;
            }
            for (int now = queued; now > 0;)
                if (queued.compare_exchange_weak(now, now - 1)) {
                    if (++consumed == total) return WorkCrew::Step::Finished;
                    return WorkCrew::Step::Worked;
                }
            return WorkCrew::Step::Idle;
        });
        ASSERT_EQ(consumed, total);
    }
}

TEST(WorkCrew, moreThreadsComeWhileTheyWait) {
    WorkCrew crew(16);
    std::atomic<unsigned> highest{0};
    const std::atomic<bool> stop{false};
    crew.forEach(400, 1, stop, [&](std::size_t, unsigned worker) {
        for (unsigned seen = highest;
             seen < worker && !highest.compare_exchange_weak(seen, worker);) {}
        std::this_thread::sleep_for(1ms);
    });
    EXPECT_GE(highest + 1, WorkCrew::cores());
    EXPECT_GT(highest, 1U) << "waiting work was left to as many threads as cores";
}

}  // namespace
}  // namespace orrinvale
