// The scan of disk usage against a plain walk, what it tells meanwhile, and its end before its
// time.
#include <dirent.h>

#include <regex>

#include "engine/diskusage/UsageRun.h"
#include "engine/diskusage/limitSize.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"

namespace orrinvale {
namespace {

using testing::nodeAt;
using testing::ServedQueue;
using testing::textOf;
using testing::UsageRun;

/// One thread, one path after another, every sum anew for each folder.
class PlainWalk {
public:
    explicit PlainWalk(std::uint64_t limit) : m_limit(limit) {}

    struct Entry {
        std::string name;
        bool isFolder = false;
        std::uint64_t size = 0, leftOut = 0, leftOutSize = 0;
        std::map<std::pair<dev_t, ino_t>, std::uint64_t> blocks;  // of all in it, each file once
        std::vector<Entry> kept;
    };

    Entry at(const std::string& path, std::string name) const {
        struct stat seen {};
        EXPECT_EQ(::lstat(path.c_str(), &seen), 0) << path;
        Entry entry;
        entry.name = std::move(name);
        entry.isFolder = S_ISDIR(seen.st_mode);
        entry.blocks[{seen.st_dev, seen.st_ino}] = static_cast<std::uint64_t>(seen.st_blocks) * 512;
        if (S_ISREG(seen.st_mode) || S_ISLNK(seen.st_mode))
            entry.size = static_cast<std::uint64_t>(seen.st_size);
        if (!entry.isFolder) return entry;
        DIR* const folder = ::opendir(path.c_str());
        while (const dirent* each = ::readdir(folder)) {
            const std::string child = each->d_name;
            if (child != "." && child != "..") add(entry, at(path + "/" + child, child));
        }
        ::closedir(folder);
        std::ranges::sort(entry.kept, [](const Entry& a, const Entry& b) {
            return a.size != b.size ? a.size > b.size : a.name < b.name;
        });
        return entry;
    }

    static std::string textOf(const Entry& entry, const std::string& indent = {}) {
        std::uint64_t onDisk = 0;
        for (const auto& [file, blocks] : entry.blocks) onDisk += blocks;
        std::string out = indent + entry.name + (entry.isFolder ? "/ " : " ") +
                          std::to_string(entry.size) + " on " + std::to_string(onDisk);
        if (entry.leftOut > 0)
            out += fmt::format(", {} under: {}", entry.leftOut, entry.leftOutSize);
        out += '\n';
        for (const Entry& child : entry.kept) out += textOf(child, indent + "  ");
        return out;
    }

private:
    void add(Entry& folder, Entry child) const {
        folder.size += child.size;
        folder.blocks.insert(child.blocks.begin(), child.blocks.end());
        if (child.size >= m_limit) {
            folder.kept.push_back(std::move(child));
        } else {
            ++folder.leftOut;
            folder.leftOutSize += child.size;
        }
    }

    const std::uint64_t m_limit;
};

void fillAwkwardly(testing::TestTree& tree) {
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(tree.write(fmt::format("many/{}/{}/file {}", i % 5, i % 17, i),
                               std::string(random() % 3000, 'x')));
    for (int i = 0; i < 2500; ++i) ASSERT_TRUE(tree.write(fmt::format("wide/{}", i), "1"));
    ASSERT_TRUE(
        tree.write("a/one", std::string(9000, 'x')) && tree.write("B\xff\n/<b>x</b>", "1") &&
        tree.hardLink("a/one", "a/two") && tree.hardLink("a/one", "many/three") &&
        tree.write("linked/x", std::string(5000, 'x')) && tree.hardLink("linked/x", "linked/y") &&
        tree.sparse("sparse", 1ULL << 33) && tree.symlink("..", "many/up") &&
        tree.symlink("nowhere", "loose") && tree.fifo("pipe") && tree.socket("socket") &&
        tree.folder("empty") && tree.makeDeep("deep", 60, "leaf", true));
}

// In all ways in which a tree is filled: at once, with the first level before, and by one thread
// where descriptors are short.
TEST(UsageScan, isThePlainWalkAtEveryLimit) {
    testing::TestTree tree;
    fillAwkwardly(tree);
    testing::WatchedFiles few;
    few.descriptors = 64;
    for (const std::uint64_t limit :
         {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{4}, std::uint64_t{1000},
          std::uint64_t{9000}, std::uint64_t{30'000}, std::uint64_t{1} << 33, ~std::uint64_t{0}}) {
        const PlainWalk plain(limit);
        const std::string expected = PlainWalk::textOf(plain.at(tree.path(), "."));
        ServedQueue queue;
        EXPECT_EQ(textOf(UsageRun(files, tree.path(), {.limit = limit}).tree->root()), expected);
        EXPECT_EQ(textOf(UsageRun(few, tree.path(), {.limit = limit}).tree->root()), expected);
        const UsageRun shown(files, tree.path(), {.limit = limit}, &queue);
        EXPECT_EQ(textOf(shown.tree->root()), expected);
        FSNodeTree other(tree.path());
        EXPECT_EQ(FSNode::getFistListTree(files, other.root(), limit), shown.tree->root().size());
        EXPECT_EQ(textOf(other.root()), expected);
    }
}

TEST(UsageScan, nodesKnowTheirEntries) {
    testing::TestTree tree;
    fillAwkwardly(tree);
    const UsageRun run(files, tree.path(), {});
    std::vector<const FSNode*> waiting{&run.tree->root()};
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        const auto children = waiting[i]->children();
        waiting.insert(waiting.end(), children.begin(), children.end());
        if (i == 0) continue;
        const FSNode& node = *waiting[i];
        const auto seen = files.attributes(FileSystem::noParent, node.path().c_str(), Links::Keep);
        ASSERT_TRUE(seen) << node.path();
        EXPECT_TRUE(node.identity().isStill(*seen)) << node.path();
        EXPECT_EQ(node.identity().inode, seen->inode);
    }
    EXPECT_EQ(nodeAt(*run.tree, "a/one")->onDiskWithin(), 0U);
    const FSNode& linked = *nodeAt(*run.tree, "linked");
    EXPECT_EQ(linked.onDiskWithin(), linked.onDisk());
    EXPECT_LT(nodeAt(*run.tree, "a")->onDiskWithin(), nodeAt(*run.tree, "a")->onDisk());
}

TEST(UsageScan, neitherDepthNorDescriptorsLimitIt) {
    testing::TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("deep", 10'000, "leaf", true));
    for (const unsigned limit : {0U, 64U}) {
        testing::WatchedFiles watched;
        watched.descriptors = limit;
        const std::string told = testing::runInChild({.descriptors = limit}, [&] {
            const UsageRun run(watched, tree.path(), {});
            const FSNode* node = &run.tree->root();
            std::size_t depth = 0;
            for (; !node->children().empty(); ++depth) node = node->children().front();
            return fmt::format("{} bytes, {} deep, {}", run.tree->root().size(), depth,
                               node->path().size() - tree.path().size());
        });
        EXPECT_EQ(told, "40004 bytes, 10002 deep, 20010") << limit;
    }
}

// What nobody can know the size of stays directly in the chosen folder, and is told wherever it is.
TEST(UsageScan, marksWhatItCouldNotReadAndWhatIsElsewhere) {
    testing::TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.write("a/x", "123") && tree.write("locked/x", "123") &&
                tree.write("in/locked/x", "123") && tree.write("in/y", "12345") &&
                tree.folder("disk") && tree.folder("b/again") && tree.folder("kernel") &&
                tree.setMode("locked", 0) && tree.setMode("in/locked", 0));
    const auto told = [&](UsageOptions options) {
        const UsageRun run(files, tree.path(), options);
        std::string out = textOf(run.tree->root());
        out = std::regex_replace(out, std::regex(" on \\d+"), "");
        for (const Error& each : run.scan.skipped())
            out += each.path.substr(tree.path().size()) + ": " + each.reason() + "\n";
        return out;
    };
    const std::string seen = testing::runInChild({}, [&]() -> std::string {
        if (!unshareMounts() || !testing::mountRam(tree.at("disk").c_str()) ||
            !testing::bindMount(tree.at("a"), tree.at("b/again")) ||
            !testing::bindMount("/sys/kernel", tree.at("kernel")) ||
            !tree.write("disk/z", "1234567"))
            return "skip";
        return testing::runInChild({.ordinaryUser = true}, [&] {
            return told({.limit = 4}) + told({.limit = ~std::uint64_t{0}}) +
                   told({.limit = 4, .allFileSystems = true});
        });
    });
    ASSERT_TRUE(tree.setMode("locked", 0700) && tree.setMode("in/locked", 0700));
    if (seen == "skip") GTEST_SKIP() << "nothing may be mounted here";
    const std::string skipped = "/in/locked: Permission denied\n/locked: Permission denied\n";
    EXPECT_EQ(seen,
              "./ 8, 1 under: 3 unread-within foreign-within\n"
              "  in/ 5, 1 under: 0 unread-within\n    y 5\n"
              "  b/ 0, 1 under: 0 foreign-within\n"
              "  disk/ 0 foreign foreign-within\n  kernel/ 0 foreign foreign-within\n"
              "  locked/ 0 unread unread-within\n" +
                  skipped + "./ 8, 6 under: 8 unread-within foreign-within\n" + skipped +
                  "./ 18, 2 under: 6 unread-within foreign-within\n"
                  "  disk/ 7\n    z 7\n  in/ 5, 1 under: 0 unread-within\n    y 5\n"
                  "  kernel/ 0 foreign foreign-within\n  locked/ 0 unread unread-within\n" +
                  skipped);
}

// Rows keep their places by name until the end, sizes only grow, and what stands is told.
TEST(UsageScan, theFirstLevelStandsAtOnceAndCountsUp) {
    testing::TestTree tree("/dev/shm");
    for (const char* name : {"b", "A", "c", "small"})
        for (int i = 0; i < 3000; ++i)
            ASSERT_TRUE(
                tree.write(fmt::format("{}/{}/{}", name, i % 50, i), *name == 's' ? "" : "12345"));
    ASSERT_TRUE(tree.write("Big file", std::string(40'000, 'x')));
    testing::WatchedFiles slow;
    std::atomic<std::uint64_t> looks{0};
    slow.onReadIdentities = [&] {
        if (++looks % 500 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(30));
    };
    ServedQueue queue;
    const auto tree1 = std::make_shared<FSNodeTree>(tree.path());
    std::vector<std::string> seen;
    std::uint64_t last = 0;
    bool hadPart = false;
    std::vector<std::string> left;
    DiskUsageScan scan({.files = &slow, .mainQueue = &queue, .news = [&](const UsageNews& news) {
                            for (const FSNode* const node : news.left)
                                left.emplace_back(node->name());
                            std::string names;
                            for (const FSNode* const node : tree1->root().children())
                                names += std::string(node->name()) +
                                         (node->has(FSNode::Undecided) ? "? " : " ");
                            if (news.levelStands) {
                                EXPECT_EQ(names, "A? b? Big file c? small? ");
                            }
                            const std::uint64_t now = tree1->root().size();
                            EXPECT_GE(now, last);
                            hadPart = hadPart || (now > 40'000 && now < 85'000);
                            last = now;
                            if (news.ended) {
                                EXPECT_EQ(names, "Big file A b c ");
                            }
                        }});
    scan.start(tree1, {.limit = 10});
    ASSERT_TRUE(queue.serveUntil([&] { return scan.isEnded(); }));
    EXPECT_TRUE(hadPart);
    EXPECT_EQ(last, 85'000U);
    EXPECT_EQ(left, std::vector<std::string>{"small"});
    EXPECT_EQ(scan.progress().percent(), 100);
    EXPECT_LT(queue.longest, std::chrono::milliseconds(16));
}

// At any moment, and while the disk does not answer.
TEST(UsageScan, aStopLeavesWhatWasFoundAndWaitsForNoDisk) {
    testing::TestTree tree("/dev/shm");
    for (int i = 0; i < 4000; ++i)
        ASSERT_TRUE(tree.write(fmt::format("{}/{}/{}", i % 7, i % 90, i), "12345"));
    std::mt19937 random(11);
    int cut = 0;
    for (int round = 0; round < 40; ++round) {
        ServedQueue queue;
        const auto shown = std::make_shared<FSNodeTree>(tree.path());
        DiskUsageScan scan({.files = &files, .mainQueue = &queue, .news = {}});
        scan.start(shown, {});
        const std::uint64_t wanted = random() % 4000;
        while (scan.foundCount() < wanted && !scan.isEnded()) queue.step();
        scan.stopScan();
        ASSERT_TRUE(queue.serveUntil([&] { return scan.isEnded(); }));
        const FSNode& root = shown->root();
        std::uint64_t sum = 0;
        for (const FSNode* const node : root.children()) {
            sum += node->size();
            EXPECT_FALSE(node->has(FSNode::Undecided));
            EXPECT_TRUE(node->has(FSNode::CutWithin) || node->size() > 2800) << textOf(root);
        }
        EXPECT_EQ(root.size(), sum);
        EXPECT_TRUE(root.size() == 20'000 || root.has(FSNode::CutWithin)) << root.size();
        cut += root.has(FSNode::CutWithin) ? 1 : 0;
    }
    EXPECT_GT(cut, 5);

    testing::WatchedFiles held;
    std::atomic<bool> goOn{false};
    std::atomic<int> looks{0};
    held.onReadIdentities = [&] {
        if (++looks > 100) goOn.wait(false);
    };
    ServedQueue queue;
    const auto shown = std::make_shared<FSNodeTree>(tree.path());
    DiskUsageScan scan({.files = &held, .mainQueue = &queue, .news = {}});
    scan.start(shown, {});
    while (looks < 101) std::this_thread::yield();
    const auto begun = std::chrono::steady_clock::now();
    scan.stopScan();
    EXPECT_TRUE(queue.serveUntil([&] { return scan.isEnded(); }));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(1100));
    const std::string then = textOf(shown->root());
    EXPECT_TRUE(shown->root().has(FSNode::CutWithin));
    goOn = true;
    goOn.notify_all();
    scan.waitForEnd();
    while (queue.step()) {}
    EXPECT_EQ(textOf(shown->root()), then);
}

TEST(UsageScan, aFolderIsScannedAnewInItsPlace) {
    testing::TestTree tree;
    ASSERT_TRUE(tree.write("a/b/x", "12345") && tree.write("a/c/y", "123") && tree.write("z", "1"));
    UsageRun run(files, tree.path(), {});
    FSNode& a = *nodeAt(*run.tree, "a");
    FSNode& c = *nodeAt(*run.tree, "a/c");
    a.setIsButtonState(FSNode::Selected);
    for (const char* name : {"b", "c"})
        nodeAt(*run.tree, std::string("a/") + name)->setIsButtonState(FSNode::Selected);
    ASSERT_TRUE(tree.write("a/b/new", std::string(100, 'x')));
    std::filesystem::remove_all(tree.at("a/c"));
    ServedQueue queue;
    DiskUsageScan again({.files = &files, .mainQueue = &queue, .news = {}});
    again.scanAgain(run.tree, {nodeAt(*run.tree, "a/b"), &c}, {});
    ASSERT_TRUE(queue.serveUntil([&] { return again.isEnded(); }));
    const auto fresh = UsageRun(files, tree.path(), {});
    EXPECT_EQ(textOf(run.tree->root()), textOf(fresh.tree->root()));
    EXPECT_EQ(a.isButtonState(), FSNode::NotSelected);
}

// What was not counted anew is not shown with what it held before, and what is whole again says so
// up to the top.
TEST(UsageScan, aScanAnewSaysWhatItDidNotComeToAndTakesMarksBack) {
    testing::TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.write("a/b/x", "12345") && tree.write("a/c/y", "123") && tree.write("z", "1"));
    testing::WatchedFiles held;
    std::atomic<bool> isHeld{false};
    held.onReadFolder = [&] { isHeld.wait(true); };
    ServedQueue queue;
    const UsageRun run(held, tree.path(), {});
    const std::string whole = textOf(run.tree->root());
    const std::vector<FSNode*> both{nodeAt(*run.tree, "a/b"), nodeAt(*run.tree, "a/c")};
    isHeld = true;
    DiskUsageScan cut({.files = &held, .mainQueue = &queue, .news = {}});
    cut.scanAgain(run.tree, both, {});
    cut.stopScan();
    ASSERT_TRUE(queue.serveUntil([&] { return cut.isEnded(); }));
    for (const FSNode* const each : both) {
        EXPECT_EQ(each->size(), 0U);
        EXPECT_TRUE(each->has(FSNode::Undecided) && each->has(FSNode::CutWithin));
    }
    EXPECT_EQ(run.tree->root().size(), 1U);
    EXPECT_TRUE(run.tree->root().has(FSNode::CutWithin));
    isHeld = false;
    isHeld.notify_all();
    cut.waitForEnd();
    DiskUsageScan again({.files = &held, .mainQueue = &queue, .news = {}});
    again.scanAgain(run.tree, both, {});
    ASSERT_TRUE(queue.serveUntil([&] { return again.isEnded(); }));
    EXPECT_EQ(textOf(run.tree->root()), whole);

    isHeld = true;
    const auto none = std::make_shared<FSNodeTree>(tree.path());
    DiskUsageScan early({.files = &held, .mainQueue = &queue, .news = {}});
    early.start(none, {});
    early.stopScan();
    ASSERT_TRUE(queue.serveUntil([&] { return early.isEnded(); }));
    EXPECT_TRUE(none->root().has(FSNode::CutWithin)) << "nothing was counted, and that is not 0";
    isHeld = false;
    isHeld.notify_all();
    early.waitForEnd();
}

TEST(UsageScan, whatIsNoFolderHoldsNothing) {
    testing::TestTree tree;
    ASSERT_TRUE(tree.write("file", "123") && tree.folder("empty") && tree.symlink("empty", "to"));
    for (const auto& [name, faults] :
         {std::pair{"file", 1U}, {"missing", 1U}, {"empty", 0U}, {"to", 0U}}) {
        ServedQueue queue;
        const UsageRun run(files, tree.at(name), {}, &queue);
        EXPECT_TRUE(run.tree->root().children().empty()) << name;
        EXPECT_EQ(run.scan.skipped().size(), faults) << name;
    }
}

TEST(UsageLimit, isThePersonsOwn) {
    testing::TestTree tree;
    UserDefaults defaults(tree.at("settings.ini"));
    const struct {
        std::int64_t limit, unit;
        std::uint64_t bytes;
    } cases[] = {{1, 2, 1'000'000}, {0, 3, 0}, {9999, 3, 9'999'000'000'000},
                 {7, 0, 7},         {7, 9, 7}, {1, 4, 18'446'744'072'982'171'648U}};
    for (const auto& each : cases) {
        defaults.setInteger(each.limit, ZvDiskUsageLimit);
        defaults.setInteger(each.unit, ZvDiskUsageUnit);
        EXPECT_EQ(getLimitSize(defaults), each.bytes);
    }
}

}  // namespace
}  // namespace orrinvale
