// TreeSize: what counts and how much, failures, stops, mounts, depth and width.
#include "engine/files/TreeSize.h"

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string text(const Result<SizeTotals>& totals) {
    if (!totals) return totals.error().reason();
    return fmt::format("{} bytes, {} files, {} folders", totals->bytes, totals->files,
                       totals->folders);
}

std::string measured(const std::string& path) { return text(TreeSize(files).ofPath(path)); }

// What descriptorLimit() answers is fixed at the first call, so a child with few descriptors must
// be told.
testing::WatchedFiles withDescriptors(std::size_t limit) {
    testing::WatchedFiles watched;
    watched.descriptors = limit;
    return watched;
}

TEST(TreeSize, whatCountsAndHowMuch) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a/file", "12345") && tree.write("a/\xff\n", "1") &&
                tree.sparse("a/b/sparse", 1ULL << 40) && tree.hardLink("a/file", "a/b/again") &&
                tree.symlink("../../nowhere", "a/b/link") && tree.fifo("a/pipe") &&
                tree.socket("a/socket") && tree.folder("a/empty") && tree.symlink("a", "to"));
    const std::map<std::string, std::string> expected{
        {"a", "1099511627800 bytes, 7 files, 2 folders"},
        {"a/file", "5 bytes, 1 files, 0 folders"},
        {"a/empty", "0 bytes, 0 files, 0 folders"},
        {"a/pipe", "0 bytes, 1 files, 0 folders"},
        {"a/socket", "0 bytes, 1 files, 0 folders"},
        {"a/b/link", "13 bytes, 1 files, 0 folders"},
        {"to", "1 bytes, 1 files, 0 folders"},
        {"to/", "1099511627800 bytes, 7 files, 2 folders"},
        {"missing", "No such file or directory"},
        {"a/file/", "Not a directory"},
        {"a/file/below", "Not a directory"},
    };
    for (const auto& [name, answer] : expected) EXPECT_EQ(measured(tree.at(name)), answer) << name;
    EXPECT_EQ(measured(""), "No such file or directory");
    EXPECT_EQ(measured("/dev/null"), "0 bytes, 1 files, 0 folders");
}

TEST(TreeSize, aSumTooLargeStaysAtTheLargestNumber) {
    TestTree tree("/dev/shm");
    for (const char* name : {"1", "2", "in/3"})
        if (!tree.sparse(name, INT64_MAX)) GTEST_SKIP() << "no files of 8 EiB in /dev/shm";
    EXPECT_EQ(measured(tree.path()), "18446744073709551615 bytes, 3 files, 1 folders");
}

// Wide enough to be handed over in pieces while it is listed, with subfolders among the files, and
// counted as it grows.
TEST(TreeSize, aWideFolderIsCountedOnce) {
    TestTree tree("/dev/shm");
    for (int i = 0; i < 2000; ++i)
        ASSERT_TRUE(tree.write("w/file number " + std::to_string(i), "abc"));
    for (int i = 0; i < 1200; ++i) ASSERT_TRUE(tree.folder("w/folder " + std::to_string(i)));
    for (int i = 0; i < 1200; i += 10)
        ASSERT_TRUE(tree.write("w/folder " + std::to_string(i) + "/x", "12345"));
    for (int round = 0; round < 20; ++round) {
        SizeCounts counts;
        const auto totals = TreeSize(files, {.counts = &counts}).ofPath(tree.path());
        ASSERT_EQ(text(totals), "6600 bytes, 2120 files, 1201 folders");
        ASSERT_EQ(counts.bytes, totals->bytes);
        ASSERT_EQ(counts.files + counts.folders, 3321U);
    }
}

TEST(TreeSize, neitherDepthNorDescriptorsLimitIt) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("deep", 10'000, "leaf", true));
    for (const unsigned limit : {0U, 64U}) {
        const auto watched = withDescriptors(limit);
        const std::string told = testing::runInChild(
            {.descriptors = limit}, [&] { return text(TreeSize(watched).ofPath(tree.path())); });
        EXPECT_EQ(told, "40004 bytes, 10001 files, 20001 folders") << limit;
    }
    std::string below = tree.at("deep");
    for (int i = 0; i < 3000; ++i) below += "/d";
    EXPECT_EQ(measured(below), "28004 bytes, 7001 files, 14000 folders");
    EXPECT_EQ(measured(below + "/s/leaf"), "4 bytes, 1 files, 0 folders");
}

TEST(TreeSize, whatCanNotBeReadIsSkippedAndNamed) {
    TestTree tree;
    for (const char* name : {"a/1", "locked/2", "blind/3", "z/4"})
        ASSERT_TRUE(tree.write(name, "12"));
    // The same below more folders than may be open at once with few descriptors.
    std::string deep = "d/d/d/d/d/d/d/d/d/d/d/d/";
    for (const char* name : {"locked/5", "6"}) ASSERT_TRUE(tree.write(deep + name, "12"));
    ASSERT_TRUE(tree.setMode("locked", 0) && tree.setMode("blind", 0744) &&
                tree.setMode(deep + "locked", 0));
    const auto watched = withDescriptors(32);
    const std::string told = testing::runInChild({.ordinaryUser = true, .descriptors = 32}, [&] {
        SkipList skipped;
        std::string out = text(TreeSize(watched, {.skipped = &skipped}).ofPath(tree.path()));
        for (const Error& each : skipped.entries())
            out += fmt::format("\n{}: {}", each.path.substr(tree.path().size()), each.reason());
        return out + "\n" + measured(tree.at("locked"));
    });
    EXPECT_EQ(told, "6 bytes, 4 files, 17 folders\n/blind/3: Permission denied\n/" + deep +
                        "locked: Permission denied\n/locked: Permission denied\nPermission denied");
    ASSERT_TRUE(tree.setMode("locked", 0700) && tree.setMode("blind", 0700) &&
                tree.setMode(deep + "locked", 0700));
}

TEST(TreeSize, aStopEndsItWithWhatWasFound) {
    TestTree tree;
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(tree.write("f" + std::to_string(i) + "/x", "1"));
    testing::WatchedFiles watched;
    std::atomic<bool> stop{false};
    std::atomic<int> listings{0};
    watched.onReadFolder = [&] {
        if (++listings == 50) stop = true;
    };
    const auto some = TreeSize(watched, {.stop = &stop}).ofPath(tree.path());
    ASSERT_TRUE(some);
    EXPECT_GT(some->bytes, 0U);
    EXPECT_LT(some->bytes, 100U);
    EXPECT_EQ(text(TreeSize(watched, {.stop = &stop}).ofPath(tree.path())),
              "0 bytes, 0 files, 0 folders");
}

// In a mount namespace of its own, so that nothing of it is seen outside.
TEST(TreeSize, mountsCountButTheKernelsOwnDoNot) {
    TestTree tree;
    const std::string deep = "d/d/d/d/d/d/d/d/d/d/d/d/";
    ASSERT_TRUE(tree.write("file", "12345") && tree.folder("disk") && tree.folder("kernel") &&
                tree.folder(deep + "kernel") && tree.write(deep + "z", "1"));
    const auto watched = withDescriptors(32);
    const std::string told = testing::runInChild({.descriptors = 32}, [&]() -> std::string {
        if (!unshareMounts() || !testing::mountRam(tree.at("disk").c_str()) ||
            !bindMount("/sys/kernel", tree.at("kernel")) ||
            !bindMount("/sys/kernel", tree.at(deep + "kernel")) || !tree.write("disk/x", "123"))
            return "skip";
        const auto chosen = TreeSize(files).ofPath(tree.at("kernel"));
        return text(TreeSize(watched).ofPath(tree.path())) +
               (chosen && chosen->bytes > 0 ? "" : ", and nothing in the chosen one");
    });
    if (told == "skip") GTEST_SKIP() << "nothing may be mounted here";
    EXPECT_EQ(told.substr(0, told.find(" files")), "9 bytes, 3") << told;
    EXPECT_EQ(told.find("nothing"), std::string::npos);
}

}  // namespace
}  // namespace orrinvale
