// The job as pages see it: news on the main queue, progress, stop, turns.
#include "engine/removal/RemovalJob.h"

#include "engine/removal/PairList.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalTurn.h"
#include "support/ServedQueue.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::PairList;

struct PairPage {
    explicit PairPage(TestTree& tree, const FileSystem& files, int count) {
        for (int i = 0; i < count; ++i)
            for (const char* const folder : {"a", "b"})
                tree.write(fmt::format("{}/{:04}", folder, i), "the same");
        list = std::make_shared<PairList>(files, tree.at("a"), tree.at("b"));
        job = std::make_unique<RemovalJob>(
            RemovalJob::Parts{
                &files, &queue,
                [&files] { return std::make_unique<PlainDoor>(files, ProtectedPlaces()); },
                tree.at("state")},
            list, [this] {
                RemovalJob::News news = job->takeNews();
                for (const auto& each : news.settled) settled.push_back(each);
                if (news.ending) outcome = std::move(news.ending);
            });
    }
    void runToEnd() {
        ASSERT_TRUE(queue.serveUntil([this] { return outcome.has_value(); }));
    }
    testing::ServedQueue queue;
    std::shared_ptr<PairList> list;
    std::vector<RemovalJob::Settled> settled;
    std::optional<RemovalOutcome> outcome;
    std::unique_ptr<RemovalJob> job;
};

TEST(RemovalJob, TellsEachEntryInOrderAndTheEndLast) {
    TestTree tree;
    const LinuxFileSystem files;
    PairPage page(tree, files, 50);
    page.runToEnd();
    EXPECT_EQ(page.outcome->removed, 50U);
    EXPECT_EQ(page.outcome->bytes, 50U * 8);
    ASSERT_EQ(page.settled.size(), 50U);
    for (std::size_t i = 0; i < 50; ++i)
        EXPECT_TRUE(page.settled[i].index == i && page.settled[i].gone);
    EXPECT_EQ(page.job->progress().done, 50U);
    EXPECT_FALSE(isThere(tree.at("a/0049")));
}

TEST(RemovalJob, AStopEndsItBeforeTheNextEntry) {
    TestTree tree;
    testing::WatchedFiles files;
    RemovalJob* running = nullptr;
    std::atomic<int> removals{0};
    std::atomic<bool> isMade{false};
    files.beforeRemoval = [&](const char* operation) {
        if (std::string_view(operation) != "removeEntry" || ++removals != 3) return;
        while (!isMade) std::this_thread::yield();
        running->stop();
    };
    PairPage page(tree, files, 10);
    running = page.job.get();
    isMade = true;
    page.runToEnd();
    EXPECT_TRUE(page.outcome->stopped);
    EXPECT_EQ(page.outcome->removed, 3U);
    EXPECT_TRUE(isThere(tree.at("a/0003")));
}

TEST(RemovalJob, WaitsForAnotherRemovalAndMayBeStoppedMeanwhile) {
    TestTree tree;
    const LinuxFileSystem files;
    const std::atomic<bool> never{false};
    const RemovalTurn other(tree.at("state/removals"), never, [] {});
    PairPage page(tree, files, 2);
    for (int i = 0; i < 500 && !page.job->progress().isWaiting; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(page.job->progress().isWaiting);
    page.job->stop();
    page.runToEnd();
    EXPECT_TRUE(page.outcome->stopped && page.outcome->removed == 0);
    EXPECT_TRUE(isThere(tree.at("a/0000")));
}

// A file with two names gives its bytes back once.
TEST(RemovalJob, CountsTheBytesOfAFileOnce) {
    TestTree tree;
    const LinuxFileSystem files;
    ASSERT_TRUE(tree.write("a/0000", "the same") && tree.hardLink("a/0000", "a/0001"));
    for (const char* const name : {"b/0000", "b/0001"}) ASSERT_TRUE(tree.write(name, "the same"));
    PairPage page(tree, files, 0);
    page.runToEnd();
    EXPECT_EQ(page.outcome->bytes, 8U);
}

}  // namespace
}  // namespace orrinvale
