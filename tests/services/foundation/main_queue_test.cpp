// The main queue: order, waiting, and that a flood of work leaves the event loop its turns.
#include <QTimer>

#include "services/foundation/QtMainQueue.h"
#include "support/EventLoop.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::serveUntil;

TEST(MainQueue, RunsEachThreadsWorkInOrderOnTheMainThread) {
    QtMainQueue queue;
    constexpr int count = 2000;
    std::vector<std::vector<int>> seen(3);  // no lock: all of it runs here
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < seen.size(); ++thread)
        threads.emplace_back([&, thread] {
            for (int i = 0; i < count; ++i)
                queue.async([&, thread, i] { seen[thread].push_back(i); });
        });
    ASSERT_TRUE(
        serveUntil([&] { return seen[0].size() + seen[1].size() + seen[2].size() == 3 * count; }));
    for (const std::vector<int>& numbers : seen)
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
}

TEST(MainQueue, SyncReturnsWhenTheWorkHasRun) {
    QtMainQueue queue;
    int value = 0;
    std::atomic<int> seen = 0;
    std::atomic<bool> finished = false;
    std::jthread thread([&] {
        const bool ran = queue.sync([&] { value = 5; });
        seen = ran ? value : -1;
        finished = true;
    });
    ASSERT_TRUE(serveUntil([&] { return finished.load(); }));
    EXPECT_EQ(seen, 5);
    EXPECT_TRUE(queue.sync([&] { value = 6; }))
        << "on the main thread itself it must not wait for itself";
    EXPECT_EQ(value, 6);
}

// Whether a thread of this process waits for something.
bool isAsleep(pid_t thread) {
    std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    stat >> number >> name >> state;
    return state == "S";
}

TEST(MainQueue, ItsEndReleasesWhoWaits) {
    auto queue = std::make_unique<QtMainQueue>();
    std::atomic<pid_t> waiting = 0;
    int ran = 0;
    bool answer = true;
    std::thread thread([&, raw = queue.get()] {
        waiting = gettid();
        answer = raw->sync([&] { ++ran; });
    });
    while (waiting == 0 || !isAsleep(waiting)) std::this_thread::yield();
    queue.reset();
    thread.join();
    EXPECT_FALSE(answer);
    EXPECT_EQ(ran, 0);
}

// A question asked with a loop of its own must not hold up what other threads hand over meanwhile.
TEST(MainQueue, WorkThatTurnsALoopDoesNotHoldUpWhatWaitsBehindIt) {
    QtMainQueue queue;
    bool second = false;
    bool served = false;
    queue.async([&] { served = serveUntil([&] { return second; }, 5); });
    queue.async([&] { second = true; });
    ASSERT_TRUE(serveUntil([&] { return second; }));
    EXPECT_TRUE(served);
}

TEST(MainQueue, AFloodLeavesTimersTheirTurn) {
    QtMainQueue queue;
    int done = 0;
    int doneAtFirstTick = -1;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        if (doneAtFirstTick < 0) doneAtFirstTick = done;
    });
    timer.start(1);
    constexpr int pieces = 200;
    for (int i = 0; i < pieces; ++i)
        queue.async([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            ++done;
        });
    ASSERT_TRUE(serveUntil([&] { return done == pieces; }));
    EXPECT_GE(doneAtFirstTick, 0);
    EXPECT_LT(doneAtFirstTick, pieces / 2);
}

}  // namespace
}  // namespace orrinvale
