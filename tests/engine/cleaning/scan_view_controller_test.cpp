// The list of one category: what is told and when, ticks and their setting, a clean.
#include "engine/cleaning/ScanViewController.h"

#include <future>

#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/CleanRun.h"
#include "engine/cleaning/CleanTree.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "engine/removal/PlainDoor.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "support/ServedQueue.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::CleanHome;
using testing::ServedQueue;
using Names = std::vector<std::string>;

struct ScanPage {
    explicit ScanPage(CleanHome& itsHome)
        : home(itsHome),
          list({.clean = home.parts(),
                .notifications = &center,
                .mainQueue = &queue,
                .stateFolder = {},
                .makeDoor =
                    [this] { return std::make_unique<PlainDoor>(home.files, ProtectedPlaces()); },
                .openFolder = [this](const std::string& folder) { opened = folder; }}) {
        const auto noteText = [this](const std::string& context, const std::string& value) {
            if (told.empty() || told.back() != context + ' ' + value)
                told.push_back(context + ' ' + value);
        };
        const auto noteEnd = [this](const std::string& context, const bool& value) {
            told.push_back(context + (value ? " yes" : " no"));
        };
        size = list.addObserver<std::string>(ScanViewController::filesSizeChange,
                                             "KVO_CONTEXT_USER_CACHES", noteText);
        rows = list.addObserver<bool>(ScanViewController::scanFilesChange, "rows", noteEnd);
        scanEnd = list.addObserver<bool>(ScanViewController::scanFinishedChange,
                                         KVO_CONTEXT_SCAN_FINISH, noteEnd);
        cleanEnd = list.addObserver<bool>(ScanViewController::cleanFinishedChange,
                                          KVO_CONTEXT_CLEAN_FINISH, noteEnd);
        ticks = cleanShowSelectNumInBottomNotice.observe(center, [this](const CleanSelection& s) {
            told.push_back(std::string("ticks ") +
                           (!s.state   ? "nil"
                            : *s.state ? "1"
                                       : "0") +
                           (s.isAnimated ? " animated" : ""));
        });
    }

    bool scan() {
        list.beginScanTask(home.utilities.getFolderPath(1));
        return queue.serveUntil([this] { return !list.isScanning(); });
    }
    bool clean() {
        list.beginCleanTask();
        EXPECT_TRUE(ScanViewController::isAnyCleaning());
        return queue.serveUntil([this] { return !list.isCleaning(); }) &&
               !ScanViewController::isAnyCleaning();
    }
    void tick(const Names& names) {
        for (std::size_t i = 0; i < list.scanFiles->size(); ++i)
            if (std::count(names.begin(), names.end(), (*list.scanFiles)[i]->name) != 0)
                list.toggleRow(i);
    }
    [[nodiscard]] Names names() const {
        Names out;
        for (const auto& row : *list.scanFiles) out.push_back(row->name);
        std::sort(out.begin(), out.end());
        return out;
    }

    CleanHome& home;
    std::string opened;
    ServedQueue queue;
    NotificationCenter center;
    ScanViewController list;
    Names told;
    NotificationCenter::Observation size, rows, scanEnd, cleanEnd, ticks;
};

std::int64_t storedState() {
    return UserDefaults::standardUserDefaults().integerForKey(ZvSystemCachesKey);
}

TEST(ScanViewController, aScanTellsItsTotalItsRowsAndItsEnd) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/a/x", std::string(1'500'000, 'x')) &&
                home.tree.write(".cache/b", std::string(20'000, 'x')) &&
                home.tree.write(".cache/k/.git/x", "1"));
    ScanPage page(home);
    page.list.refreshTableView();
    EXPECT_TRUE(page.told.empty()) << "there is no list yet";
    ASSERT_TRUE(page.scan());
    EXPECT_EQ(page.names(), (Names{"a", "b"}));
    EXPECT_EQ(page.list.filesSize, "1.52 MB");
    ASSERT_GE(page.told.size(), 4U);
    EXPECT_EQ((Names{page.told.end() - 4, page.told.end()}),
              (Names{"KVO_CONTEXT_USER_CACHES 1.52 MB", "rows yes", "ticks nil",
                     "KVO_CONTEXT_SCAN_FINISH yes"}));
    EXPECT_EQ(page.list.listing().kept.size(), 1U);

    // A second scan that is let go of in favour of a third, and one that is stopped.
    page.list.beginScanTask(home.utilities.getFolderPath(1));
    EXPECT_FALSE(page.list.scanFiles);
    page.told.clear();
    ASSERT_TRUE(page.scan());
    EXPECT_EQ(std::count(page.told.begin(), page.told.end(), "KVO_CONTEXT_SCAN_FINISH yes"), 1);
    page.list.beginScanTask(home.utilities.getFolderPath(1));
    page.list.cancelScanTask();
    ASSERT_TRUE(page.queue.serveUntil([&] { return !page.list.isScanning(); }));
    EXPECT_TRUE(page.list.scanFiles.has_value());
    EXPECT_TRUE(page.list.wasStopped());
    ASSERT_TRUE(page.scan());
    EXPECT_FALSE(page.list.wasStopped());
}

// Rows that are small beside the total, whose text has three digits.
TEST(ScanViewController, theTotalIsThatOfTheRowsThatAreLeft) {
    CleanHome home;
    constexpr std::uint64_t large = 2'000'000'000, small = 20'000;
    constexpr std::size_t count = 600;
    ASSERT_TRUE(home.tree.write(".cache/large", ""));
    std::filesystem::resize_file(home.tree.at(".cache/large"), large);
    for (std::size_t i = 0; i < count; ++i)
        ASSERT_TRUE(home.tree.write(fmt::format(".cache/{}", i), std::string(small, 'x')));
    ScanPage page(home);
    ASSERT_TRUE(page.scan());
    EXPECT_EQ(page.list.filesSize, "2.01 GB");
    page.list.setAllCheckBoxSelect();
    EXPECT_EQ(sumsOf(page.list).bytes, large + count * small);
    page.tick({"large", "7", "8"});
    // Of what is ticked only what was chosen goes.
    ScanViewController::Rows chosen;
    for (const auto& row : *page.list.scanFiles)
        if (row->name != "9") chosen.push_back(row);
    page.list.beginCleanTask(chosen, nullptr);
    ASSERT_TRUE(page.queue.serveUntil([&] { return !page.list.isCleaning(); }));
    EXPECT_EQ(page.names(), (Names{"7", "8", "9", "large"}));
    EXPECT_EQ(page.list.totalBytes(), large + 3 * small);
    EXPECT_EQ(page.list.filesSize, "2.00 GB");
    EXPECT_EQ(page.list.iCleanSize, (count - 3) * small);
}

TEST(ScanViewController, whatAPersonKeepsIsToldOnce) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/a/x", std::string(3000, 'x')) &&
                home.tree.write(".cache/a/mine", std::string(500, 'x')) &&
                home.tree.write(".cache/b", "12") &&
                home.tree.write("settings/always-keep", home.tree.at(".cache/a/mine") + "\n"));
    ScanPage page(home);
    ASSERT_TRUE(page.scan());
    EXPECT_EQ(page.list.totalBytes(), 3002U);
    for (int round = 0; round < 2; ++round) page.list.leaveOut(home.tree.at(".cache/a"));
    EXPECT_EQ(page.names(), Names{"b"});
    EXPECT_EQ(page.list.totalBytes(), 2U);
    ASSERT_EQ(page.list.listing().kept.size(), 1U);
    EXPECT_EQ(page.list.listing().kept[0].kept, KeptBecause::Asked);
    EXPECT_EQ(page.list.listing().kept[0].keptBytes, 3500U);
}

// A clean knows its rows by their places, and the list by then is another.
TEST(ScanViewController, aListThatCameDuringACleanIsLeftToItsScan) {
    CleanHome home;
    for (const char* name : {".cache/a", ".cache/b", ".cache/c"})
        ASSERT_TRUE(home.tree.write(name, std::string(1'000'000, 'x')));
    std::promise<void> mayRemove;
    home.files.beforeRemoval = [held = mayRemove.get_future().share()](std::string_view step) {
        if (step == "removeEntry") held.wait();
    };
    ScanPage page(home);
    ASSERT_TRUE(page.scan());
    page.tick({"b", "c"});
    page.list.beginCleanTask();
    ASSERT_TRUE(home.tree.write(".cache/0", "12"));
    ASSERT_TRUE(page.scan());
    page.told.clear();
    mayRemove.set_value();
    ASSERT_TRUE(page.queue.serveUntil([&] { return !page.list.isCleaning(); }));
    EXPECT_FALSE(isThere(home.tree.at(".cache/b")));
    EXPECT_EQ(page.list.iCleanSize, 2'000'000U);
    EXPECT_EQ(page.names(), (Names{"0", "a", "b", "c"}));
    EXPECT_EQ(std::count(page.told.begin(), page.told.end(), "rows yes"), 0);
    EXPECT_EQ(page.list.totalBytes(), 3'000'002U) << "of its rows";

    // The tree that the scan made along is that of its rows, and of no others.
    const auto group = page.list.takeGroup();
    ASSERT_TRUE(group != nullptr && group->numberOfChildren() == 4U);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(simpleData(*group->childAtIndex(i))->name(), (*page.list.scanFiles)[i]->path);
    EXPECT_EQ(page.list.takeGroup(), nullptr) << "a second time";
    ASSERT_TRUE(page.scan());
    page.list.leaveOut(home.tree.at(".cache/0"));
    EXPECT_EQ(page.list.takeGroup(), nullptr) << "it has a row too many";
}

// A clean leaves the leaves of the rows that are as they were, and makes those anew that are not.
TEST(CleanTree, TakesOverTheLeavesOfRowsThatStay) {
    CleanHome home;
    for (const char* name : {".cache/a/x", ".cache/b/x", ".cache/c/x", ".cache/d/x", ".cache/d/y"})
        ASSERT_TRUE(home.tree.write(name, std::string(1'000'000, 'x')));
    ScanPage page(home), other(home);
    page.list.dicKeyStr = "1";
    other.list.dicKeyStr = "4";
    ASSERT_TRUE(page.scan() && other.scan());
    other.list.toggleRow(0);
    CleanTree tree;
    tree.constructTree({&page.list, &other.list});
    std::map<std::string, TreeNode::Pointer> before[2];
    const auto leaves = [&tree](std::size_t category) {
        std::map<std::string, TreeNode::Pointer> all;
        for (const auto& leaf : tree.group(category)->children())
            all.emplace(lastPathComponent(simpleData(*leaf)->name()), leaf);
        return all;
    };
    before[0] = leaves(1);
    before[1] = leaves(4);
    tree.treeData()->decendingSortName();
    page.tick({"b", "d"});
    home.files.beforeRemoval = [&](std::string_view operation) {
        if (operation == "removeEntry" && isThere(home.tree.at(".cache/d")) &&
            !isThere(home.tree.at(".cache/d/x")))
            home.tree.write(".cache/d/new", "1");
    };
    ASSERT_TRUE(page.clean());
    ASSERT_EQ(page.names(), (Names{"a", "c", "d"}));
    tree.constructTree({&page.list, &other.list});
    EXPECT_EQ(leaves(4), before[1]);
    for (const auto& [name, leaf] : leaves(1)) {
        EXPECT_EQ(leaf == before[0].at(name), name != "d") << name;
        EXPECT_EQ(leaf->nodeParent(), tree.group(1));
    }
    for (const std::size_t category : {1U, 4U})
        for (std::size_t i = 0; i < tree.group(category)->numberOfChildren(); ++i)
            EXPECT_EQ(simpleData(*tree.group(category)->childAtIndex(i))->name(),
                      (*(category == 1 ? page : other).list.scanFiles)[i]->path);
    EXPECT_EQ(simpleData(*tree.group(1))->showSelectNumStr(), "1/3");
    EXPECT_EQ(simpleData(*tree.group(4))->showSelectNumStr(), "1/4");
    EXPECT_EQ(simpleData(*tree.group(1))->fileSize(), 2'000'000U);
}

// Six lists end in any order, and a list that takes no part, or has ended, ends nothing.
TEST(CleanRun, endsWithTheLastOfItsListsInEveryOrder) {
    CleanHome home;
    std::vector<std::unique_ptr<ScanPage>> pages;
    std::vector<ScanViewController*> lists;
    for (int i = 0; i < 6; ++i) {
        lists.push_back(&pages.emplace_back(std::make_unique<ScanPage>(home))->list);
        lists.back()->iCleanSize = 1U << i;
    }
    std::array<std::size_t, 6> order{0, 1, 2, 3, 4, 5};
    int orders = 0;
    do {
        for (const unsigned categories : {0b111111U, 0b011111U, 0b000100U}) {
            CleanRun run(lists, categories);
            std::string ends;
            std::size_t left = run.left();
            for (const std::size_t category : order) {
                ends += run.end(category) ? '!' : '.';
                if (run.takesPart(category)) --left;
                ASSERT_EQ(run.left(), left);
                EXPECT_FALSE(run.end(category)) << "twice";
            }
            const auto last = std::find_if(order.rbegin(), order.rend(), [&](std::size_t category) {
                return run.takesPart(category);
            });
            std::string wanted(6, '.');
            wanted[std::size_t(order.rend() - last) - 1] = '!';
            ASSERT_EQ(ends, wanted) << categories;
            EXPECT_EQ(run.cleanedBytes(), categories);
        }
        ++orders;
    } while (std::next_permutation(order.begin(), order.end()));
    EXPECT_EQ(orders, 720);
}

TEST(ScanViewController, ticksAndTheirSetting) {
    CleanHome home;
    for (const char* name : {".cache/a", ".cache/b", ".cache/c"})
        ASSERT_TRUE(home.tree.write(name, "1"));
    ScanPage page(home);
    ASSERT_TRUE(page.scan());
    page.told.clear();
    const struct {
        const char* what;
        std::function<void()> act;
        std::int64_t stored;
        bool button;
        const char* told;
    } steps[] = {
        {"one", [&] { page.list.toggleRow(0); }, 2, false, "ticks 1"},
        {"two", [&] { page.list.toggleRow(1); }, 2, false, "ticks 1"},
        {"all", [&] { page.list.toggleRow(2); }, 1, true, "ticks 1"},
        {"two again", [&] { page.list.toggleRow(1); }, 2, false, "ticks 0"},
        {"the list's box", [&] { page.list.cleanShowSelectNumInBottom(true); }, 1, true,
         "ticks 1 animated"},
        {"and off", [&] { page.list.cleanShowSelectNumInBottom(false); }, 0, false,
         "ticks 0 animated"},
        {"no such row", [&] { page.list.toggleRow(3); }, 0, false, nullptr},
    };
    for (const auto& step : steps) {
        page.told.clear();
        step.act();
        EXPECT_EQ(storedState(), step.stored) << step.what;
        EXPECT_EQ(page.list.selectButton, step.button) << step.what;
        EXPECT_EQ(page.told, step.told != nullptr ? Names{step.told} : Names{}) << step.what;
    }
    page.list.setAllCheckBoxSelect();
    page.list.getSelectPath({});
    EXPECT_EQ(page.list.selDelFiles.size(), 3U);
    EXPECT_TRUE(page.list.selectButton);
    page.list.getSelectPath("clean");
    EXPECT_FALSE(page.list.selectButton);

    std::vector<std::pair<std::int32_t, bool>> unticked;
    const auto observation = selectedRowInFastClean.observe(
        page.center,
        [&](const UntickedRow& each) { unticked.emplace_back(each.row, each.isSelect); });
    EXPECT_TRUE(page.list.CellClick(false, 1));
    EXPECT_FALSE(page.list.CellClick(true, 2));
    EXPECT_EQ(unticked, (std::vector<std::pair<std::int32_t, bool>>{{2, false}}));
    EXPECT_FALSE((*page.list.scanFiles)[0]->copyWithZone().bIsSelected);
}

TEST(ScanViewController, aCleanTakesTheTickedRowsAndTellsOfTheRest) {
    CleanHome home;
    for (const char* name : {".cache/a/x", ".cache/b/x", ".cache/c/x", ".cache/d/x", ".cache/e/x",
                             ".cache/f/x", ".cache/f/y"})
        ASSERT_TRUE(home.tree.write(name, std::string(1'000'000, 'x')));
    // It goes file by file, and its file goes by somebody else's hand.
    ASSERT_TRUE(home.tree.write("settings/always-keep", home.tree.at(".cache/e/none") + "\n"));
    ScanPage page(home);
    ASSERT_TRUE(page.scan());
    EXPECT_EQ(page.list.filesSize, "7.00 MB");
    page.list.openFinder(0);
    EXPECT_EQ(page.opened, (*page.list.scanFiles)[0]->path) << "a folder shows itself";
    page.list.openFinder(99);
    page.tick({"a", "b", "c", "e", "f"});
    ASSERT_TRUE(::unlink(home.tree.at(".cache/e/x").c_str()) == 0 &&
                ::unlink(home.tree.at(".cache/f/y").c_str()) == 0);
    ASSERT_TRUE(home.tree.write(".cache/c/.git/x", "1"));
    home.files.beforeRemoval = [&](std::string_view operation) {
        const bool isNow = operation == "removeEntry" && isThere(home.tree.at(".cache/b")) &&
                           !isThere(home.tree.at(".cache/b/x"));
        if (isNow) home.tree.write(".cache/b/new", "1");
    };
    page.told.clear();
    ASSERT_TRUE(page.clean());
    EXPECT_FALSE(isThere(home.tree.at(".cache/a")));
    EXPECT_TRUE(isThere(home.tree.at(".cache/b/new")) && isThere(home.tree.at(".cache/c/x")));
    EXPECT_EQ(page.names(), (Names{"b", "d"})) << "what a rule keeps is none of what may go";
    ASSERT_EQ(page.list.selDelFiles.size(), 1U);
    EXPECT_TRUE(page.list.selDelFiles[0]->bIsSelected);
    EXPECT_EQ(page.list.selDelFiles[0]->size, "0.00 KB") << "of b all but what came";
    EXPECT_EQ(page.list.iCleanSize, 3'000'000U) << "a, b and what others left of f";
    EXPECT_EQ(page.list.filesSize, "1.00 MB") << "d alone, whatever others left of f";
    for (const CleanRow& row : page.list.listing().rows)
        EXPECT_EQ(row.onDisk > 0, row.path.ends_with("/d")) << "of b the disk gets nothing more";
    EXPECT_EQ(std::count(page.told.begin(), page.told.end(), "rows yes"), 1);
    EXPECT_EQ(page.told.back(), "KVO_CONTEXT_CLEAN_FINISH yes");
    ASSERT_TRUE(page.list.lastOutcome().has_value());
    EXPECT_FALSE(page.list.lastOutcome()->lacksRights);

    // What is left goes, and with it the total, whatever others took before.
    home.files.beforeRemoval = {};
    ASSERT_TRUE(page.scan() && ::unlink(home.tree.at(".cache/d/x").c_str()) == 0);
    page.list.setAllCheckBoxSelect();
    ASSERT_TRUE(page.clean());
    EXPECT_EQ(page.list.filesSize, "0.00 KB");

    // Nothing ticked: the end is told all the same.
    page.list.setNoCheckBoxSelect();
    page.told.clear();
    ASSERT_TRUE(page.clean());
    EXPECT_EQ(page.told, Names{"KVO_CONTEXT_CLEAN_FINISH yes"});
}

}  // namespace
}  // namespace orrinvale
