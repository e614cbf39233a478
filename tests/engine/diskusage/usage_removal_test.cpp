// What is ticked, counted afresh and removed: what goes and what stays, the sizes afterwards, and
// what the disk gives back beside what was promised.
#include "engine/diskusage/UsageRemoval.h"
#include "engine/diskusage/UsageRun.h"
#include "engine/diskusage/UsageSelection.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalJob.h"
#include "platform/freeSpace.h"

namespace orrinvale {
namespace {

using testing::nodeAt;
using testing::ServedQueue;
using testing::textOf;
using testing::UsageRun;

/// As the page does it: counts, removes, takes out what went, and scans anew what went in part.
struct Removal {
    explicit Removal(FSNodeTree& tree)
        : ticked(prePareDelData(&tree.root())),
          count(countTicked(files, {ProtectedPlaces::ofThisMachine(files, {}), tree.ownChanges()},
                            tickedEntries(ticked), counts)) {}

    void run(const std::shared_ptr<FSNodeTree>& tree) {
        ServedQueue queue;
        const auto list = std::make_shared<UsageRemoval>(files, count.entries);
        const auto makeDoor = [&] {
            return std::make_unique<PlainDoor>(files, ProtectedPlaces::ofThisMachine(files, {}),
                                               tree->ownChanges());
        };
        RemovalJob job(
            {.files = &files, .mainQueue = &queue, .makeDoor = makeDoor, .stateFolder = {}}, list,
            [] {});
        std::vector<FSNode*> partly;
        bool hasEnded = false;
        while (!hasEnded) {
            const auto news = job.takeNews();
            for (const auto& each : news.settled) {
                order.push_back(list->path(each.index));
                FSNode* const node = list->node(each.index);
                if (each.gone) tree->takeOut({&node, 1});
                else if (each.isPartly) partly.push_back(node);
            }
            hasEnded = news.ending.has_value();
            queue.step();
        }
        settleStates(ticked);
        if (partly.empty()) return;
        DiskUsageScan again({.files = &files, .mainQueue = &queue, .news = {}});
        again.scanAgain(tree, partly, {.limit = limit});
        EXPECT_TRUE(queue.serveUntil([&] { return again.isEnded(); }));
    }

    std::uint64_t limit = 0;
    UsageCounts counts;
    std::vector<FSNode*> ticked;
    TickedCount count;
    std::vector<std::string> order;
};

void tick(FSNodeTree& tree, std::initializer_list<const char*> paths) {
    for (const char* path : paths) {
        ASSERT_NE(nodeAt(tree, path), nullptr) << path;
        clickBox(*nodeAt(tree, path));
    }
}

TEST(UsageRemoval, takesWhatWasCountedLastFirstAndSizesStayTrue) {
    testing::TestTree tree;
    ASSERT_TRUE(tree.write("a/big", std::string(5000, 'x')) &&
                tree.write("a/b/one", "1234567890") && tree.write("a/b/two", "1") &&
                tree.write("c/keep", std::string(20, 'x')) &&
                tree.write("c/x", std::string(30, 'x')) && tree.write("d", std::string(40, 'x')));
    const UsageRun run(files, tree.path(), {.limit = 10});
    ASSERT_TRUE(tree.write("a/b/came", "0123456789"));  // since the scan: counted, and goes
    tick(*run.tree, {"a/big", "a/b", "c/x", "d"});
    Removal removal(*run.tree);
    EXPECT_EQ(removal.count.size, 5000U + 21 + 30 + 40);
    EXPECT_EQ(removal.count.files, 6U);
    EXPECT_EQ(removal.count.folders, 1U);
    ASSERT_TRUE(tree.write("a/b/later", "1"));  // since the question: stays
    ASSERT_TRUE(tree.write("d", std::string(41, 'y')));
    removal.limit = 10;
    removal.run(run.tree);
    EXPECT_EQ(removal.order, (std::vector<std::string>{tree.at("d"), tree.at("c/x"), tree.at("a/b"),
                                                       tree.at("a/big")}));
    EXPECT_TRUE(testing::isThere(tree.at("a/b/later")) && testing::isThere(tree.at("d")));
    EXPECT_FALSE(testing::isThere(tree.at("a/b/one")) || testing::isThere(tree.at("a/b/came")));
    EXPECT_EQ(nodeAt(*run.tree, "a")->size(), 1U);
    EXPECT_EQ(nodeAt(*run.tree, "c")->size(), 20U);
    EXPECT_EQ(run.tree->root().size(), 61U);
    EXPECT_FALSE(hasTicks(run.tree->root()));
}

TEST(UsageRemoval, ofWhatMayNotGoTheRestIsMeasuredAnew) {
    testing::TestTree tree("/dev/shm");
    for (const char* name : {"in/free/x", "in/locked/y", "in/z", "other/q"})
        ASSERT_TRUE(tree.write(name, "12345"));
    ASSERT_TRUE(tree.giveAway({"", "in", "in/free", "in/free/x", "in/z", "other", "other/q"}));
    const std::string told = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
        const UsageRun run(files, tree.path(), {});
        tick(*run.tree, {"in", "other"});
        Removal removal(*run.tree);
        removal.run(run.tree);
        const std::string now = textOf(run.tree->root());
        const std::string fresh = textOf(UsageRun(files, tree.path(), {}).tree->root());
        if (now != fresh) return now + fresh;
        return hasTicks(run.tree->root()) || run.tree->root().size() != 5 ? "ticks" : "";
    });
    EXPECT_EQ(told, "");
}

// Each way in which blocks tell more than a removal gives back.
TEST(UsageRemoval, promisesNoMoreThanTheDiskGivesBack) {
    const auto check = [](const std::string& make, bool isUpTo, double least) -> std::string {
        if (::system(("cd /mnt && rm -rf image disk && truncate -s 400M image && mkdir disk && " +
                      make + " && mount -o loop" +
                      (isUpTo ? ",compress-force=zstd" : std::string()) +
                      " image disk && mkdir disk/in disk/out && head -c 8000000 /dev/urandom > "
                      "disk/in/plain && head -c 6000000 /dev/urandom > disk/out/linked && "
                      "ln disk/out/linked disk/in/linked && ln disk/in/plain disk/in/twice && "
                      "truncate -s 1G disk/in/sparse && head -c 5000000 /dev/urandom > "
                      "disk/out/original && cp --reflink=auto disk/out/original disk/in/copy && "
                      "ln disk/in/copy disk/in/copy2 && "
                      "for i in $(seq 300); do head -c 900 /dev/urandom > disk/in/$i; done && sync")
                         .c_str()) != 0)
            return "skip: no such file system or no loop device here";
        const std::uint64_t before = settledFreeSpace("/mnt/disk").value();
        const UsageRun run(files, "/mnt/disk", {});
        tick(*run.tree, {"in"});
        Removal removal(*run.tree);
        removal.run(run.tree);
        const double gained = static_cast<double>(settledFreeSpace("/mnt/disk").value()) -
                              static_cast<double>(before);
        const auto promised = static_cast<double>(removal.count.onDisk);
        ::umount2("/mnt/disk", MNT_DETACH);
        if (testing::isThere("/mnt/disk/in/plain")) return "not removed";
        if (removal.count.isUpTo != isUpTo) return "up to";
        return promised > 0 && gained >= least * promised && gained <= 1.15 * promised
                   ? ""
                   : fmt::format("{}: promised {}, gained {}", make, promised, gained);
    };
    withOwnMounts([&]() -> std::string {
        const std::string ext4 = check("mkfs.ext4 -q image", false, 0.97);
        return ext4.empty() ? check("mkfs.btrfs -q image > /dev/null 2>&1", true, 0.9) : ext4;
    });
}

// What a removal would refuse is told before it, each with its reason, and is in no sum.
TEST(UsageRemoval, asksForNothingThatWouldStay) {
    withOwnMounts([]() -> std::string {
        if (::system("cd /mnt && truncate -s 200M image && mkfs.btrfs -q image > /dev/null 2>&1 && "
                     "mkdir disk && mount -o loop image disk && cd disk && mkdir -p above/ram in "
                     "&& mount -t tmpfs none above/ram && btrfs -q subvolume create in/sub && "
                     "btrfs -q subvolume create alone && echo 12345678 > in/sub/x && "
                     "echo 1234567 > alone/x && echo 12345 > above/x && echo 123 > in/x && "
                     "echo 12 > late") != 0)
            return "skip: no btrfs or no loop device here";
        const UsageRun run(files, "/mnt/disk", {});
        tick(*run.tree, {"above", "alone", "in", "late"});
        std::ofstream("/mnt/disk/late") << "changed";
        ProtectedPlaces places = ProtectedPlaces::ofThisMachine(files, {});
        UsageCounts counts;
        const TickedCount count = countTicked(
            files, {places, nullptr}, tickedEntries(prePareDelData(&run.tree->root())), counts);
        ::umount2("/mnt/disk/above/ram", MNT_DETACH);
        ::umount2("/mnt/disk", MNT_DETACH);
        std::string told;
        for (const auto& each : count.staying)
            told += each.path.substr(10) + ": " + each.reason + "\n";
        told += fmt::format("{} {} {} {}", count.entries.size(), count.size, count.hasForeign,
                            count.hasVolumes);
        const std::string right =
            "alone: a mount point\nabove: a folder with a mount below\n"
            "late: changed since the scan\n1 4 true true";
        return told == right ? "" : told;
    });
}

// The first name's removal gives the second a new time of change, by our own doing.
TEST(UsageRemoval, oneNameAfterTheOtherGoes) {
    testing::TestTree tree;
    ASSERT_TRUE(tree.write("a/one", "12345") && tree.write("c/left", "1"));
    for (const char* name : {"b/two", "c/three", "d/four"})
        ASSERT_TRUE(tree.hardLink("a/one", name));
    const UsageRun run(files, tree.path(), {.limit = 2});
    for (const char* name : {"a/one", "b/two", "c/three", "d/four"}) {
        tick(*run.tree, {name});
        Removal removal(*run.tree);
        EXPECT_TRUE(removal.count.staying.empty()) << name;
        removal.run(run.tree);
        EXPECT_FALSE(testing::isThere(tree.at(name))) << name;
        ServedQueue queue;
        DiskUsageScan again({.files = &files, .mainQueue = &queue, .news = {}});
        again.scanAgain(run.tree, {nodeAt(*run.tree, "c")}, {.limit = 2});
        ASSERT_TRUE(queue.serveUntil([&] { return again.isEnded(); }));
    }
}

}  // namespace
}  // namespace orrinvale
