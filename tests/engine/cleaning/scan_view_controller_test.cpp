// The list of one category: what is told and when, ticks and their setting, a clean.
#include "engine/cleaning/ScanViewController.h"

#include "engine/cleaning/CleanHome.h"
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

struct Page {
    explicit Page(CleanHome& itsHome)
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
    Page page(home);
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
}

TEST(ScanViewController, ticksAndTheirSetting) {
    CleanHome home;
    for (const char* name : {".cache/a", ".cache/b", ".cache/c"})
        ASSERT_TRUE(home.tree.write(name, "1"));
    Page page(home);
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
    Page page(home);
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
    EXPECT_EQ(page.list.filesSize, "2.00 MB") << "the rest of f is told still, beside d";
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
