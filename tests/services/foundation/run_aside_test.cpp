// Work aside and its end: who runs what where, and that nobody is called who has gone.
#include "services/foundation/runAside.h"

#include <QObject>
#include <future>

#include "support/EventLoop.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::serveUntil;

/// Tells on which thread it went.
struct Traced {
    explicit Traced(std::thread::id& place) : gone(&place) {}
    Traced(Traced&& other) noexcept : gone(std::exchange(other.gone, nullptr)) {}
    Traced& operator=(Traced&&) = delete;
    ~Traced() {
        if (gone != nullptr) *gone = std::this_thread::get_id();
    }
    std::thread::id* gone;
};

TEST(RunAside, GivesTheValueOfTheWorkToTheEndAndFreesEachHalfOnItsThread) {
    QObject page;
    std::thread::id workThread;
    std::thread::id workFreed;
    std::thread::id endFreed;
    std::unique_ptr<int> got;  // plain words and a value that can only be moved
    const auto worker = runAside(
        &page, "read:",
        [&workThread, held = Traced(workFreed)] {
            workThread = std::this_thread::get_id();
            return std::make_unique<int>(41);
        },
        [&got, held = Traced(endFreed)](std::unique_ptr<int> value) { got = std::move(value); });
    ASSERT_NE(worker, nullptr);
    ASSERT_TRUE(serveUntil([&] { return got != nullptr; }));
    EXPECT_EQ(*got, 41);
    EXPECT_NE(workThread, std::this_thread::get_id());
    EXPECT_EQ(workFreed, workThread);
    EXPECT_EQ(endFreed, std::this_thread::get_id());
}

TEST(RunAside, CallsNobodyWhoHasGone) {
    const auto checkGone = [](auto asker, auto letGo) {
        std::promise<void> goOn;
        bool called = false;
        std::thread::id endFreed;
        const auto worker = runAside(
            asker, "wait:", [&goOn] { goOn.get_future().wait(); },
            [&called, held = Traced(endFreed)] { called = true; });
        letGo();
        goOn.set_value();
        ASSERT_TRUE(serveUntil([&] { return endFreed != std::thread::id(); }));
        EXPECT_FALSE(called);
        EXPECT_EQ(endFreed, std::this_thread::get_id());
    };
    auto page = std::make_unique<QObject>();
    checkGone(page.get(), [&] { page.reset(); });
    auto scan = std::make_shared<int>(1);
    checkGone(std::weak_ptr<int>(scan), [&] { scan.reset(); });
}

TEST(RunAside, KeepsWhoIsAskedWhileTheEndRunsAndTellsTheWorkOfACancel) {
    auto scan = std::make_shared<int>(7);
    const std::weak_ptr<int> seen = scan;
    bool ended = false;
    const auto worker = runAside(
        seen, "scan:",
        [](const ThreadWorker& self) {
            while (!self.cancelled()) std::this_thread::yield();
            return std::vector<int>{1, 2};
        },
        [&](const std::vector<int>& value) {
            scan.reset();
            ended = value.size() == 2 && !seen.expired();
        });
    worker->markAsCancelled();
    ASSERT_TRUE(serveUntil([&] { return seen.expired(); }));
    EXPECT_TRUE(ended);
}

}  // namespace
}  // namespace orrinvale
