// Notices: who gets them, in which order, and what a handler may do while one is under way.
#include <future>

#include "engine/base/NotificationCenter.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Observation = NotificationCenter::Observation;

TEST(NotificationCenter, RunsTheHandlersOfTheNameInOrderOnThePostingThread) {
    NotificationCenter center;
    std::string trace;
    std::thread::id thread;
    const Observation first = center.addObserver("a", [&](const Notification& notice) {
        trace += "1" + notice.name + std::any_cast<std::string>(notice.object);
        trace += std::to_string(std::any_cast<int>(notice.userInfo.at("row")));
        thread = std::this_thread::get_id();
    });
    const Observation other = center.addObserver("b", [&](const Notification&) { trace += "b"; });
    const Observation second = center.addObserver("a", [&](const Notification&) { trace += "2"; });
    center.post("a", std::string("!"), {{"row", 7}});
    center.post("nobody");
    EXPECT_EQ(trace, "1a!72");
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(NotificationCenter, TheEndOfTheGuardRemovesTheHandler) {
    int runs = 0;
    const auto count = [&runs](const Notification&) { ++runs; };
    NotificationCenter center;
    const auto runsOfOnePost = [&] {
        runs = 0;
        center.post("a");
        return runs;
    };
    Observation kept;
    {
        Observation observation = center.addObserver("a", count);
        const Observation dropped = center.addObserver("a", count);
        EXPECT_EQ(runsOfOnePost(), 2);
        kept = std::move(observation);
    }
    EXPECT_EQ(runsOfOnePost(), 1);
    kept = center.addObserver("a", count);  // replaces the one that it held
    EXPECT_EQ(runsOfOnePost(), 1);
    kept.remove();
    kept.remove();
    EXPECT_EQ(runsOfOnePost(), 0);

    std::optional<NotificationCenter> shortLived(std::in_place);
    const Observation outlives = shortLived->addObserver("a", count);
    shortLived.reset();
}

TEST(NotificationCenter, HandlersMayChangeTheListWhileItRuns) {
    NotificationCenter center;
    std::string trace;
    Observation once, removed, added;
    once = center.addObserver("a", [&](const Notification&) {
        trace += "o";
        removed.remove();
        if (trace == "o")
            added = center.addObserver("a", [&trace](const Notification&) { trace += "n"; });
        once.remove();  // what this handler holds stays alive until it returns
        trace += ".";
    });
    removed = center.addObserver("a", [&](const Notification&) { trace += "r"; });
    const Observation last = center.addObserver("a", [&](const Notification&) { trace += "l"; });
    center.post("a");
    EXPECT_EQ(trace, "o.l");
    trace.clear();
    center.post("a");
    EXPECT_EQ(trace, "ln");
}

TEST(NotificationCenter, HandlersMayPostAgain) {
    NotificationCenter center;
    std::string trace;
    int depth = 0;
    const Observation outer = center.addObserver("a", [&](const Notification&) {
        trace += "(";
        if (++depth < 3) center.post("a");
        center.post("b");
        trace += ")";
    });
    const Observation inner = center.addObserver("b", [&](const Notification&) { trace += "b"; });
    center.post("a");
    EXPECT_EQ(trace, "(((b)b)b)");
}

TEST(NotificationCenter, HoldsNoLockWhileAHandlerRunsOrDies) {
    NotificationCenter center;
    const auto isUsableFromAnotherThread = [&center] {
        auto used = std::async(std::launch::async, [&center] {
            const Observation observation = center.addObserver("b", [](const Notification&) {});
            center.post("b");
        });
        const bool isDone = used.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
        if (!isDone) std::quick_exit(1);  // the lock is held: the future's end would wait for ever
        return isDone;
    };
    int checks = 0;
    // A handler's captures die with it, and may use the centre too.
    const auto dying = [&](const void*) { checks += isUsableFromAnotherThread() ? 1 : 0; };
    Observation observation = center.addObserver(
        "a", [&, held = std::shared_ptr<const void>(&center, dying)](const Notification&) {
            checks += isUsableFromAnotherThread() ? 1 : 0;
        });
    center.post("a");
    EXPECT_EQ(checks, 1);
    observation.remove();
    EXPECT_EQ(checks, 2);
}

TEST(NotificationCenter, ThreadsMayComeAndGo) {
    NotificationCenter center;
    std::atomic<int> steady = 0;
    std::atomic<int> passing = 0;
    const Observation observation = center.addObserver("a", [&](const Notification&) { ++steady; });
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                for (int n = 0; n < 500; ++n) {
                    const Observation mine =
                        center.addObserver("a", [&](const Notification&) { ++passing; });
                    center.post("a");
                }
            });
    }
    EXPECT_EQ(steady, 2000);
    EXPECT_GE(passing, 2000);
    const int before = passing;
    center.post("a");
    EXPECT_EQ(passing, before);
}

}  // namespace
}  // namespace orrinvale
