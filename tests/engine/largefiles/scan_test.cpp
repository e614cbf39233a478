// The scan of the large file page over what disks hold: kinds of entries, chosen paths, depth,
// width, failures, mounts.
#include "engine/largefiles/ScanRun.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::linesOf;
using testing::ScanRun;
using testing::ServedQueue;

testing::WatchedFiles withFewDescriptors(std::size_t limit) {
    testing::WatchedFiles watched;
    watched.descriptors = limit;
    return watched;
}

// Folders that stay open while those below them are walked, since each has a second one waiting:
// enough to run out of descriptors where, as in /dev/shm, the listing gives the second one last.
const std::string deep = [] {
    std::string path = "deep";
    for (int i = 0; i < 200; ++i) path += "/d";
    return path;
}();

// The nodes and what was skipped, below the tree, one to a line, in the order of their names; but
// for the way down the deep folders.
std::string told(const ScanRun& run, const TestTree& tree) {
    std::vector<std::string> lines = linesOf(*run.tree);
    for (const Error& each : run.scan.skipped()) lines.push_back(each.path + ": " + each.reason());
    std::sort(lines.begin(), lines.end());
    std::string out;
    for (std::string& line : lines) {
        line.erase(0, tree.path().size());
        if (line.starts_with("/" + deep + "/")) line.replace(0, deep.size() + 1, "DEEP");
        else if (line.starts_with("/deep")) continue;
        out += line + "\n";
    }
    return out;
}

TEST(LargeFileScan, everyEntryIsANodeWithWhatTheFileSystemKnowsOfIt) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a/file", "12345") && tree.write("a/.\xff\n", "1") &&
                tree.sparse("a/b.app/sparse", 1ULL << 40) &&
                tree.hardLink("a/file", "a/b.app/again") &&
                tree.symlink("../../nowhere", "a/b.app/link") && tree.fifo("pipe") &&
                tree.socket("socket") && tree.folder("empty") && tree.symlink("a", "to"));
    const ScanRun run(files, tree.path());
    EXPECT_EQ(told(run, tree),
              "/a/ 1099511627800\n/a/.\xff\n 1\n/a/b.app/ 1099511627794\n/a/b.app/again "
              "5\n/a/b.app/link 13\n"
              "/a/b.app/sparse 1099511627776\n/a/file 5\n/empty/ 0\n/pipe 0\n/socket 0\n/to 1\n");
    EXPECT_EQ(run.tree->root().size(), 1099511627801U);
    EXPECT_EQ(run.scan.foundCount(), 11U);
    EXPECT_EQ(run.scan.getProgress(), 100);
    std::vector<FileNode*> waiting{&run.tree->root()};
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        const auto children = waiting[i]->children();
        waiting.insert(waiting.end(), children.begin(), children.end());
        if (i == 0) continue;
        const FileNode& node = *waiting[i];
        const auto seen = files.attributes(FileSystem::noParent, node.path().c_str(), Links::Keep);
        ASSERT_TRUE(seen);
        EXPECT_EQ(node.links(), seen->links) << node.path();
        EXPECT_TRUE(node.identity().isStill(*seen)) << node.path();
        EXPECT_EQ(node.identity().device, seen->device) << node.path();
        EXPECT_EQ(node.identity().inode, seen->inode) << node.path();
        EXPECT_EQ(node.identity().type, seen->type) << node.path();
        if (!node.isDirectory()) {
            EXPECT_EQ(node.sizeOnDisk(), seen->onDisk) << node.path();
        }
        EXPECT_EQ(node.father() == nullptr, node.path() == tree.at(node.name()));
    }
    EXPECT_EQ(testing::wrongSums(*run.tree), std::vector<std::string>());
}

TEST(LargeFileScan, ofWhateverPathWasChosen) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a/file", "12345") && tree.folder("empty") && tree.symlink("a", "to") &&
                tree.symlink("nowhere", "loose") && tree.fifo("pipe") &&
                tree.symlink("a/file", "tofile"));
    const struct {
        const char* name;
        const char* nodes;
        float progress;
    } cases[] = {
        {"a", "/a/file 5\n", 100}, {"a/file", "/a/file 5\n", 0}, {"to", "/to/file 5\n", 100},
        {"empty", "", 0},          {"missing", "", 0},           {"loose", "", 0},
        {"a/file/below", "", 0},   {"pipe", "/pipe 0\n", 0},     {"tofile", "/tofile 6\n", 0}};
    for (const auto& each : cases) {
        ServedQueue queue;
        const ScanRun run(files, tree.at(each.name), &queue);
        ASSERT_TRUE(testing::turnToEnd(run.scan, queue)) << each.name;
        EXPECT_EQ(told(run, tree), each.nodes) << each.name;
        EXPECT_EQ(run.scan.getProgress(), each.progress) << each.name;
    }
    const ScanRun run(files, tree.at("a/file"));
    EXPECT_EQ(run.tree->root().children().front()->name(), "file");
    EXPECT_EQ(run.tree->root().children().front()->father(), nullptr);
}

// Handed over in pieces while it is listed, with subfolders among the files; the tree and the
// progress hold together at each turn.
TEST(LargeFileScan, aWideTreeHoldsTogetherWhileItGrows) {
    TestTree tree("/dev/shm");
    for (int i = 0; i < 3000; ++i)
        ASSERT_TRUE(tree.write("file number " + std::to_string(i), "abc"));
    for (int i = 0; i < 1200; ++i)
        ASSERT_TRUE(tree.write("w/folder " + std::to_string(i) + "/x", "12345"));
    for (int round = 0; round < 10; ++round) {
        ServedQueue queue;
        const ScanRun run(files, tree.path(), &queue);
        float progress = 0;
        ASSERT_TRUE(testing::turnToEnd(run.scan, queue, [&] {
            ASSERT_EQ(testing::wrongSums(*run.tree), std::vector<std::string>());
            ASSERT_GE(run.scan.getProgress(), progress);
            progress = run.scan.getProgress();
            if (progress == 100) {
                ASSERT_EQ(run.tree->nodeCount(), 5401U);
            }
        }));
        ASSERT_EQ(progress, 100);
        ASSERT_EQ(run.tree->root().size(), 15000U);
        ASSERT_EQ(run.tree->nodeCount(), 5401U);
    }
}

TEST(LargeFileScan, neitherDepthNorDescriptorsLimitIt) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("deep", 10'000, "leaf", true));
    for (const unsigned limit : {0U, 64U}) {
        const auto watched = withFewDescriptors(limit);
        const std::string told = testing::runInChild({.descriptors = limit}, [&] {
            const ScanRun run(watched, tree.path());
            FileNode* node = run.tree->root().children().front();
            std::size_t depth = 0;
            for (; node->isDirectory() && node->childCount() > 0; ++depth)
                node = node->children().front();
            return fmt::format("{} bytes, {} nodes, {} deep, {} wrong, {} %, {}",
                               run.tree->root().size(), run.tree->nodeCount(), depth,
                               testing::wrongSums(*run.tree).size(), run.scan.getProgress(),
                               node->path().size() - tree.path().size());
        });
        EXPECT_EQ(told, "40004 bytes, 30002 nodes, 10001 deep, 0 wrong, 100 %, 20010") << limit;
    }
}

TEST(LargeFileScan, whatCanNotBeReadIsEmptyAndSkipped) {
    TestTree tree("/dev/shm");
    for (const char* name : {"a/1", "locked/2", "blind/3", "z/4"})
        ASSERT_TRUE(tree.write(name, "12"));
    ASSERT_TRUE(tree.makeDeep("deep", 200, "leaf", true));
    for (const char* name : {"/locked/5", "/6"}) ASSERT_TRUE(tree.write(deep + name, "12"));
    ASSERT_TRUE(tree.setMode("locked", 0) && tree.setMode("blind", 0744) &&
                tree.setMode(deep + "/locked", 0));
    const auto watched = withFewDescriptors(32);
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true, .descriptors = 32},
                                  [&] { return told(ScanRun(watched, tree.path()), tree); }),
              "/a/ 2\n/a/1 2\n/blind/ 0\n/blind/3 0\n/blind/3: Permission denied\nDEEP/ 6\nDEEP/6 "
              "2\nDEEP/leaf 4\n"
              "DEEP/locked/ 0\nDEEP/locked: Permission denied\n/locked/ 0\n/locked: Permission "
              "denied\n/z/ 2\n/z/4 2\n");
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true},
                                  [&] { return told(ScanRun(files, tree.at("locked")), tree); }),
              "/locked: Permission denied\n");
    ASSERT_TRUE(tree.setMode("locked", 0700) && tree.setMode("blind", 0700) &&
                tree.setMode(deep + "/locked", 0700));
}

// In a mount namespace of its own, so that nothing of it is seen outside.
TEST(LargeFileScan, mountsCountButTheKernelsOwnStayEmpty) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.write("file", "12345") && tree.folder("disk") && tree.folder("kernel") &&
                tree.makeDeep("deep", 200, "leaf", true) && tree.folder(deep + "/kernel"));
    const auto watched = withFewDescriptors(32);
    const std::string seen = testing::runInChild({.descriptors = 32}, [&]() -> std::string {
        if (!unshareMounts() || !testing::mountRam(tree.at("disk").c_str()) ||
            !bindMount("/sys/kernel", tree.at("kernel")) ||
            !bindMount("/sys/kernel", tree.at(deep + "/kernel")) || !tree.write("disk/x", "123"))
            return "skip";
        return told(ScanRun(watched, tree.path()), tree);
    });
    if (seen == "skip") GTEST_SKIP() << "nothing may be mounted here";
    EXPECT_EQ(seen,
              "DEEP/ 4\nDEEP/kernel/ 0\nDEEP/leaf 4\n/disk/ 3\n/disk/x 3\n/file 5\n/kernel/ 0\n");
}

}  // namespace
}  // namespace orrinvale
