// The end of a scan before its time: at any moment, while the disk does not answer, and when its
// owner goes.
#include "engine/largefiles/ScanRun.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::linesOf;
using testing::ScanRun;
using testing::ServedQueue;

TEST(LargeFileStop, leavesATreeThatHoldsTogetherAndStaysAsItIs) {
    TestTree tree("/dev/shm");
    for (int i = 0; i < 400; ++i)
        for (int j = 0; j < 12; ++j)
            ASSERT_TRUE(tree.write(fmt::format("{}/{}/{}", i % 7, i, j), "12345"));
    std::mt19937 random(11);
    int cutShort = 0;
    for (int round = 0; round < 60; ++round) {
        ServedQueue queue;
        ScanRun run(files, tree.path(), &queue);
        const std::uint64_t wanted = random() % 5000;
        for (int steps = static_cast<int>(random() % 4); steps > 0;) {
            if (queue.step()) --steps;
            if (run.scan.isEnded() || run.scan.foundCount() >= wanted) break;
        }
        const bool ended = run.scan.isEnded();
        run.scan.stopScan();
        ASSERT_TRUE(run.scan.isEnded());
        const auto lines = linesOf(*run.tree);
        const float progress = run.scan.getProgress();
        ASSERT_EQ(testing::wrongSums(*run.tree), std::vector<std::string>());
        run.scan.waitForEnd();
        while (queue.step()) {}
        ASSERT_EQ(linesOf(*run.tree), lines);
        if (progress == 100) {
            ASSERT_EQ(lines.size(), 5207U);
        }
        cutShort += ended ? 0 : 1;
    }
    EXPECT_GT(cutShort, 5);
}

// A disk that does not answer holds up neither the stop nor the end of the owner; what it answers
// later touches nothing.
TEST(LargeFileStop, waitsForNoDisk) {
    TestTree tree;
    for (const char* name : {"a/1", "b/2", "3"}) ASSERT_TRUE(tree.write(name, "12"));
    testing::WatchedFiles watched;
    std::atomic<bool> isHeld{false};
    std::atomic<bool> goOn{false};
    watched.onReadIdentities = [&] {
        isHeld = true;
        goOn.wait(false);
    };
    ServedQueue queue;
    ScanRun run(watched, tree.path(), &queue);
    const std::weak_ptr<FileNodeTree> weak = run.tree;
    while (!isHeld) std::this_thread::yield();
    run.scan.stopScan();
    EXPECT_TRUE(run.scan.isEnded());
    run.tree.reset();
    EXPECT_TRUE(weak.expired()) << "the tree is its owner's alone";
    goOn = true;
    goOn.notify_all();
    run.scan.waitForEnd();
    EXPECT_FALSE(queue.step());
}

// Without a queue the stop comes from another thread, and the tree is there when the walkers are
// home.
TEST(LargeFileStop, fromAnotherThreadWithoutAQueue) {
    TestTree tree;
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(tree.write(std::to_string(i) + "/x", "1"));
    testing::WatchedFiles watched;
    const auto nodes = std::make_shared<FileNodeTree>(tree.path());
    EumeRoot scan({.files = &watched, .mainQueue = nullptr, .grown = {}});
    std::atomic<int> listings{0};
    watched.onReadFolder = [&] {
        if (++listings == 50) scan.stopScan();
    };
    scan.eumeAllRootFileNodeWithRootArr(nodes, tree.path());
    scan.waitForEnd();
    EXPECT_TRUE(scan.isEnded());
    EXPECT_GT(nodes->root().size(), 0U);
    EXPECT_LT(nodes->root().size(), 100U);
    EXPECT_EQ(nodes->root().childCount(), 200U);
    EXPECT_LT(scan.getProgress(), 50);
    EXPECT_EQ(testing::wrongSums(*nodes), std::vector<std::string>());
}

}  // namespace
}  // namespace orrinvale
