// The worker: what runs where, and in which order.
#include "services/foundation/ThreadWorker.h"

#include <QEventLoop>
#include <future>

#include "support/EventLoop.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::serveUntil;

ThreadWorker::Target target() { return {std::make_shared<int>(1), "<Page>"}; }

TEST(ThreadWorker, RunsTheTaskOnItsThreadAndTheEndOnTheStartingOne) {
    std::thread::id taskThread;
    std::thread::id endThread;
    int argument = 0;
    bool emptyAtEnd = false;
    bool ended = false;  // plain words: the end method needs no lock against the task
    const auto worker = ThreadWorker::workOn(target(),
                                             {"search:",
                                              [&](const std::any& given) {
                                                  taskThread = std::this_thread::get_id();
                                                  argument = std::any_cast<int>(given);
                                              }},
                                             41, [&](const std::any& given) {
                                                 endThread = std::this_thread::get_id();
                                                 emptyAtEnd = !given.has_value();
                                                 ended = true;
                                             });
    ASSERT_NE(worker, nullptr);
    ASSERT_TRUE(serveUntil([&] { return ended; }));
    EXPECT_NE(taskThread, std::this_thread::get_id());
    EXPECT_EQ(endThread, std::this_thread::get_id());
    EXPECT_EQ(argument, 41);
    EXPECT_TRUE(emptyAtEnd);
}

TEST(ThreadWorker, WaitsInsideTheEndCall) {
    auto kept = std::make_shared<int>(7);
    const std::weak_ptr<int> seen = kept;
    std::atomic<bool> ended = false;
    bool keptDuringEnd = false;
    auto worker = ThreadWorker::workOn(
        {std::move(kept), "<Page>"}, {"work:", [](const std::any&) {}}, {}, [&](const std::any&) {
            // The thread holds the worker, and the worker its target, until this returns.
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            keptDuringEnd = !seen.expired();
            ended = true;
        });
    worker.reset();
    ASSERT_TRUE(serveUntil([&] { return ended.load(); }));
    EXPECT_TRUE(keptDuringEnd);
    EXPECT_TRUE(serveUntil([&] { return seen.expired(); })) << "the thread did not end";
}

TEST(ThreadWorker, TellsTheTaskOfACancel) {
    std::promise<void> begun;
    std::atomic<int> turns = 0;
    bool ended = false;
    const auto worker = ThreadWorker::workOn(target(),
                                             {"search:worker:",
                                              [&](const std::any&, ThreadWorker& self) {
                                                  begun.set_value();
                                                  while (!self.cancelled()) ++turns;
                                              }},
                                             {}, [&](const std::any&) { ended = true; });
    begun.get_future().wait();
    EXPECT_FALSE(worker->cancelled());
    worker->markAsCancelled();
    worker->markAsCancelled();
    ASSERT_TRUE(serveUntil([&] { return ended; }));
    EXPECT_TRUE(worker->cancelled());
}

TEST(ThreadWorker, EndsWithoutAnEndMethod) {
    auto kept = std::make_shared<int>(7);
    const std::weak_ptr<int> seen = kept;
    auto worker = ThreadWorker::workOn({std::move(kept), "<Page>"},
                                       {"work:", [](const std::any&) {}}, {}, nullptr);
    ASSERT_NE(worker, nullptr);
    worker.reset();
    EXPECT_TRUE(serveUntil([&] { return seen.expired(); })) << "the thread did not end";
}

TEST(ThreadWorker, RefusesATargetThatDoesNotRespond) {
    const testing::LogLines log;
    const auto worker = ThreadWorker::workOn(target(), {"missing:", ThreadWorker::Task()}, {},
                                             [](const std::any&) {});
    EXPECT_EQ(worker, nullptr);
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_NE(log.lines[0].find(
                  "ThreadWorker reports: Target <Page> does not respond to selector missing:."),
              std::string::npos)
        << log.lines[0];
}

// A worker may be started by another worker: the end belongs to whoever started it, not to the main
// thread.
TEST(ThreadWorker, ReturnsToAStartingThreadThatIsNotTheMainOne) {
    std::thread::id outer;
    std::thread::id innerEnd;
    bool ended = false;
    const auto worker = ThreadWorker::workOn(target(),
                                             {"outer:",
                                              [&](const std::any&) {
                                                  outer = std::this_thread::get_id();
                                                  QEventLoop loop;
                                                  const auto inner = ThreadWorker::workOn(
                                                      target(), {"inner:", [](const std::any&) {}},
                                                      {}, [&](const std::any&) {
                                                          innerEnd = std::this_thread::get_id();
                                                          loop.quit();
                                                      });
                                                  loop.exec();
                                              }},
                                             {}, [&](const std::any&) { ended = true; });
    ASSERT_TRUE(serveUntil([&] { return ended; }));
    EXPECT_EQ(innerEnd, outer);
}

}  // namespace
}  // namespace orrinvale
