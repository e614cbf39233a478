// The work units of cleaning, and the notices that they post, in order.
#include "engine/cleaning/CleanTasks.h"

#include <sys/resource.h>

#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/PathCleaner.h"
#include "engine/removal/PlainDoor.h"
#include "support/ServedQueue.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::CleanHome;
using testing::ServedQueue;

// Plays the main thread: how many pieces waited.
std::size_t serveAll(ServedQueue& queue) {
    std::size_t count = 0;
    while (queue.step()) ++count;
    return count;
}

CleanTaskParts partsOf(const CleanHome& home) {
    return {.clean = home.parts(), .stateFolder = {}, .makeDoor = [&home] {
                return std::make_unique<PlainDoor>(home.files, ProtectedPlaces());
            }};
}

TEST(ScanFolderOpt, tellsOfEachShownEntryAndOfTheEnd) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write("f/a", "123") && home.tree.write("f/b/c/d", "12345") &&
                home.tree.write("f/.hidden", "1"));
    ServedQueue queue;
    NotificationCenter center;
    std::vector<ScannedFolder> singles;
    std::vector<ScannedFolder> ends;
    const auto onSingle = ZvScanSingleFile.observe(
        center, [&](const ScannedFolder& each) { singles.push_back(each); });
    const auto onEnd =
        ZvScanOptFinish.observe(center, [&](const ScannedFolder& each) { ends.push_back(each); });
    ScanFolderOpt operation(home.tree.at("f"), 7, home.parts(), {&center, &queue});
    operation.main();
    EXPECT_TRUE(singles.empty()) << "told on another thread than the main one";
    EXPECT_EQ(serveAll(queue), 3U);
    ASSERT_EQ(singles.size(), 2U);
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(singles[0].FileCount, 1U);
    EXPECT_EQ(ends[0].FolderID, 7U);
    EXPECT_EQ(ends[0].FolderSize, 8U);
    EXPECT_EQ(ends[0].FileCount, 2U);
    EXPECT_EQ(operation.folderSize, 9U);

    ScanFolderOpt cancelled(home.tree.at("f"), 8, home.parts(), {&center, &queue});
    cancelled.cancel();
    cancelled.main();
    EXPECT_EQ(serveAll(queue), 0U);
}

double usedSeconds() {
    rusage used{};
    ::getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
           static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1e6;
}

TEST(ScanFolderOpt, aPauseWaitsAndBurnsNothing) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write("f/a", "1") && home.tree.write("f/b", "1"));
    ServedQueue queue;
    NotificationCenter center;
    for (const bool isCancelled : {false, true}) {
        ScanFolderOpt operation(home.tree.at("f"), 1, home.parts(), {&center, &queue});
        operation.setIsPaused(true);
        std::thread worker([&] { operation.main(); });
        const double before = usedSeconds();
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        EXPECT_LT(usedSeconds() - before, 0.2);
        EXPECT_EQ(serveAll(queue), 0U);
        if (isCancelled) operation.cancel();
        else operation.setIsPaused(false);
        worker.join();
        EXPECT_EQ(serveAll(queue), isCancelled ? 0U : 3U);
    }
}

/// Takes the file "a" of a folder a moment ago, by the clock of the home, and may take nothing
/// else.
class HalfDoor final : public RemovalDoor {
public:
    explicit HalfDoor(std::int64_t clock) : m_clock(clock) {}
    RemovalResult remove(const LeavingEntry& entry, const std::atomic<bool>& /*stop*/) override {
        const timespec times[2] = {{m_clock - 1, 0}, {m_clock - 1, 0}};
        RemovalResult part;
        part.removed = ::unlink((entry.path + "/a").c_str()) == 0 ? 1 : 0;
        ::utimensat(AT_FDCWD, entry.path.c_str(), times, 0);
        part.failed = 1;
        part.failures.push_back({entry.path + "/b", "Permission denied", StayReason::Rights});
        return part;
    }

private:
    const std::int64_t m_clock;  // seconds
};

// Our own removal is no change a moment ago.
TEST(PathCleaner, aSecondTryWithTheRightTakesTheRest) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/r/a", "1") && home.tree.write(".cache/r/b", "1"));
    CleanTaskParts parts = partsOf(home);
    parts.makeDoor = [&home, &parts, isOpen = false]() mutable -> std::unique_ptr<RemovalDoor> {
        if (std::exchange(isOpen, true))
            return std::make_unique<PlainDoor>(home.files, ProtectedPlaces());
        return std::make_unique<HalfDoor>(parts.clean.clock() / 1'000'000'000);
    };
    PathCleaner cleaner(parts);
    const auto first = cleaner.remove(home.tree.at(".cache/r"));
    EXPECT_TRUE(first.lacksRights);
    EXPECT_FALSE(first.isDone || isThere(home.tree.at(".cache/r/a")));
    EXPECT_TRUE(cleaner.remove(home.tree.at(".cache/r")).isDone);
    EXPECT_FALSE(isThere(home.tree.at(".cache/r")));
}

TEST(FastCleanOpt, goesOnAfterAFailureAndTellsOfIt) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/a/x", "1") && home.tree.write(".cache/b/.git/x", "1") &&
                home.tree.write(".cache/c", "1"));
    ServedQueue queue;
    NotificationCenter center;
    std::vector<CleanedFile> failed;
    FastCleanOpt* ended = nullptr;
    const auto onFailed =
        ZvCleanOptFailed.observe(center, [&](const CleanedFile& each) { failed.push_back(each); });
    const auto onEnd =
        ZvCleanOptFinish.observe(center, [&](FastCleanOpt* operation) { ended = operation; });
    FastCleanOpt operation({home.tree.at(".cache/b"), home.tree.at(".cache/missing"),
                            home.tree.at(".cache/a"), home.tree.at(".cache/c")},
                           partsOf(home), {&center, &queue});
    const LogLines lines;
    operation.main();
    serveAll(queue);
    EXPECT_EQ(ended, &operation);
    EXPECT_THAT(lines.lines,
                Contains("Clean deletable folder failed: " + home.tree.at(".cache/missing")));
    EXPECT_THAT(lines.lines, ::testing::Not(Contains("Clean deletable folder failed: " +
                                                     home.tree.at(".cache/b"))))
        << "what a rule keeps is no failure";
    EXPECT_TRUE(failed.empty());
    operation.notifyDeleteFailed("/x");
    ASSERT_EQ(failed.size(), 1U);
    EXPECT_EQ(failed[0].FileSize, std::nullopt);
    EXPECT_TRUE(isThere(home.tree.at(".cache/b/.git/x")));
    EXPECT_FALSE(isThere(home.tree.at(".cache/a")) || isThere(home.tree.at(".cache/c")));
}

TEST(FastCleanOptV2, theLastPathDecidesAndTheEndIsTold) {
    CleanHome home;
    const auto at = [&](const char* name) { return home.tree.at(std::string(".cache/") + name); };
    for (const char* name : {".cache/a", ".cache/b", ".cache/k/.git/x"})
        ASSERT_TRUE(home.tree.write(name, "1"));
    ServedQueue queue;
    FastCleanOptV2 task(partsOf(home), queue);
    EXPECT_TRUE(task.synFastClean({}));
    EXPECT_TRUE(task.synFastClean({at("k"), at("a")}));
    EXPECT_FALSE(task.synFastClean({at("b"), at("k")}));
    EXPECT_FALSE(isThere(at("a")) || isThere(at("b")));
    // No entry of a category: its folder, and what holds that.
    ASSERT_TRUE(home.tree.write("Downloads/x", "1"));
    for (const std::string& folder : {home.tree.at("Downloads"), home.tree.path()})
        EXPECT_FALSE(task.synFastClean({folder})) << folder;
    EXPECT_TRUE(isThere(home.tree.at("Downloads/x")));
    int told = 0;
    task.onCleanFinished = [&](bool) { ++told; };
    for (int run = 1; run <= 2; ++run) {
        ASSERT_TRUE(home.tree.write(".cache/a", "1"));
        task.beginCleanTask(run == 1 ? std::vector<std::string>{at("a")}
                                     : std::vector<std::string>());
        EXPECT_TRUE(task.isRunning());
        task.cancelFastClean();
        while (serveAll(queue) == 0) std::this_thread::yield();
        EXPECT_EQ(told, run);
        EXPECT_EQ(task.cleanFinished(), true);
        EXPECT_EQ(isThere(at("a")), run == 2) << "a cancel changes nothing";
    }
}

}  // namespace
}  // namespace orrinvale
