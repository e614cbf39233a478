// The cleaning page from its first look to "is cleaned", driven by clicks.
#include <QAbstractButton>
#include <QLabel>
#include <QTreeView>

#include "engine/cleaning/CleanPageRows.h"
#include "engine/text/UtilityFunction.h"
#include "engine/volumes/volumeNotices.h"
#include "ui/cleaning/CleanDesk.h"
#include "ui/cleaning/CustomTableView.h"

namespace orrinvale::testing {
namespace {

using enum CleanCategory;
using State = MainViewController::State;

TEST(CleanPage, FromTheFirstLookToIsCleaned) {
    CleanDesk desk{{".cache/a/x", 3'000'000},
                   {".cache/b", 500'000},
                   {".local/share/Trash/files/old", 1'000'000},
                   {"Downloads/keep.iso", 2'000'000}};
    desk.tickOnly({UserCaches, UserTrash});
    EXPECT_SOON(desk.sentence("startNote").starts_with("0.00 KB space has been recove"));
    EXPECT_EQ(int(desk.state()), int(State::Fresh));
    ASSERT_TRUE(desk.scan());
    EXPECT_EQ(desk.outline(),
              "User Caches 2/2 3.50 MB xx\nTrash 1/1 1.00 MB x\nDownloads 0/1 2.00 MB .\n");
    EXPECT_EQ(desk.sentence("stateTextField"), "3 of 4 selected, 4.50 MB will free up.");
    EXPECT_EQ(desk.textOf("cleanButton"), "Clean 4.50 MB");
    EXPECT_EQ(desk.textOf("titleLabel"), "6.50 MB in 3 categories can go");
    EXPECT_EQ(desk.textOf("trashFileNumTF"), "3");

    auto& outline = desk.control<QTreeView>("outline");
    desk.tick(outline, desk.rowOf(outline, "/b"));
    EXPECT_EQ(desk.settings(), "020010");
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_SOON(desk.state() == State::CleaningAll);
    EXPECT_TRUE(desk.page->isRemoving());
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_EQ(desk.dialogs.alerts().at(0).text.toStdString(),
              "2 entries, 4.00 MB. They cannot be brought back.");
    EXPECT_EQ(desk.sentence("stateTextField"), "4.00 MB is cleaned");
    EXPECT_FALSE(desk.has(".cache/a") || desk.has(".local/share/Trash/files/old"));
    EXPECT_TRUE(desk.has(".cache/b") && desk.has("Downloads/keep.iso"));
    EXPECT_EQ(desk.outline(), "User Caches 0/1 500.00 KB .\nDownloads 0/1 2.00 MB .\n");
    EXPECT_EQ(desk.settings(), "000000");
    EXPECT_SOON(desk.textOf("gainLabel") == "Free space grew by 2.00 MB");
    EXPECT_SOON(desk.noted() == 4'000'000U &&
                desk.sentence("noteTextField").starts_with("4.00 MB space has been recove"));

    // What comes back is marked, and whole categories are ticked by the settings alone.
    desk.write(".cache/a/y", 10);
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    EXPECT_EQ(desk.outline().substr(0, 15), "User Caches 2/2");
    EXPECT_TRUE(desk.rowOf(outline, "/a")
                    .siblingAtColumn(1)
                    .data(Qt::ToolTipRole)
                    .toString()
                    .contains(QStringLiteral("Came back")));
    EXPECT_FALSE(desk.rowOf(outline, "/b")
                     .siblingAtColumn(1)
                     .data(Qt::ToolTipRole)
                     .toString()
                     .contains(QStringLiteral("Came back")));
}

// What each answer comes to. The first question is that of the downloads, where they are ticked.
TEST(CleanPage, NothingGoesButWhatWasAgreedTo) {
    constexpr int escape = -1;
    const struct {
        const char* what;
        int row;  // of the left table
        bool withDownloads;
        std::vector<int> answers;
        bool cacheGoes, downloadGoes;
    } cases[] = {
        {"yes", 0, false, {0}, true, false},
        {"cancel", 0, false, {1}, false, false},
        {"could not be shown", 0, false, {escape}, false, false},
        {"downloads along", 0, true, {0, 0}, true, true},
        {"the first five", 0, true, {1, 0}, true, false},
        {"the first five, and then not", 0, true, {1, 1}, false, false},
        {"Escape at the downloads", 0, true, {2}, false, false},
        {"the downloads alone", 6, true, {0, 0}, false, true},
        {"the downloads alone, and no", 6, true, {1}, false, false},
        {"the caches alone", 2, true, {0}, true, false},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        CleanDesk desk{{".cache/a", 1'000}, {"Downloads/b", 2'000}};
        desk.tickOnly(each.withDownloads
                          ? std::initializer_list<CleanCategory>{UserCaches, UserDownloads}
                          : std::initializer_list<CleanCategory>{UserCaches});
        ASSERT_TRUE(desk.scan());
        desk.page->shouldSelectRow(each.row);
        for (const int answer : each.answers) desk.dialogs.willAnswer(answer);
        desk.click(each.row == 0 ? "cleanButton" : "oneListCleanButton");
        EXPECT_FALSE(desk.isEnabled("cleanButton") && each.row == 0);
        desk.click("rescanButton");  // not while a question stands
        EXPECT_TRUE(desk.page->isAsking());
        ASSERT_TRUE(desk.waitForRest());
        EXPECT_EQ(desk.has(".cache/a"), !each.cacheGoes);
        EXPECT_EQ(desk.has("Downloads/b"), !each.downloadGoes);
        EXPECT_TRUE(desk.isEnabled("scanButton") && desk.isEnabled("rescanButton"));
        EXPECT_EQ(desk.list(UserDownloads).scanFiles->size() == 1, !each.downloadGoes);
    }
}

TEST(CleanPage, TheScansMayEndInAnyOrder) {
    CleanDesk desk{{".cache/a", 1'000}, {"Downloads/b", 2'000}};
    desk.tickOnly({UserCaches, UserDownloads});
    const std::vector<std::string> folders{desk.home.tree.at(".cache"),
                                           desk.home.tree.at("Downloads")};
    for (const bool isForward : {true, false}) {
        for (const std::string& each : folders) desk.held.hold(each);
        desk.click(desk.isShown("startButton") ? "startButton" : "rescanButton");
        ASSERT_SOON(desk.page->finishScanCount() == 2);
        EXPECT_FALSE(desk.isShown("outline") || desk.isEnabled("rescanButton"));
        EXPECT_TRUE(desk.isShown("v3MainView") && desk.isShown("stopButton"));
        desk.held.letGo(isForward ? folders[0] : folders[1]);
        ASSERT_SOON(desk.page->finishScanCount() == 1);
        EXPECT_EQ(desk.settings(), "010001") << "rows that just came have nothing to say";
        desk.held.letAllGo();
        ASSERT_TRUE(desk.waitForRest());
        EXPECT_EQ(desk.outline(), "User Caches 1/1 1.00 KB x\nDownloads 1/1 2.00 KB x\n");
        EXPECT_EQ(desk.sentence("stateTextField"), "2 of 2 selected, 3.00 KB will free up.");
    }
}

TEST(CleanPage, ACancelledScanShowsWhatItFound) {
    CleanDesk desk{{".cache/a", 1'000}, {"Downloads/b", 2'000}};
    desk.tickOnly({UserCaches, UserDownloads});
    desk.held.hold(desk.home.tree.at("Downloads"));
    desk.click("startButton");
    ASSERT_SOON(desk.page->finishScanCount() == 1);
    desk.click("scanButton");
    EXPECT_EQ(int(desk.state()), int(State::Stopping));
    EXPECT_FALSE(desk.isEnabled("scanButton"));
    desk.held.letAllGo();
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_EQ(desk.outline().substr(0, 15), "User Caches 1/1");
    EXPECT_TRUE(desk.isEnabled("scanButton"));
    // Back is one step at a time.
    desk.click("scanButton");
    EXPECT_TRUE(desk.isShown("v3MainView"));
    desk.click("scanButton");
    EXPECT_TRUE(desk.isShown("startButton"));
    desk.click("forwardButton");
    EXPECT_TRUE(desk.isShown("v3MainView"));
}

TEST(CleanPage, RowsOfTheLeftTable) {
    CleanDesk desk{{".cache/a", 1'000}};
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    UtilityFunction::getMyFunction().setNotificationCenter(&desk.center);
    const struct {
        int row;
        const char* shown;
        bool cleans;
    } cases[] = {{2, "list1", true},    {1, "emptyView", false}, {9, "diskSizeView", false},
                 {0, "outline", true},  {7, "outline", true},    {8, "outline", true},
                 {12, "outline", true}, {-3, "outline", true}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.row);
        UtilityFunction::callSelectNotificationForMainWindowLeft(each.row);
        EXPECT_TRUE(desk.isShown(each.shown));
        EXPECT_EQ(desk.isShown("cleanButton") && desk.isEnabled("cleanButton"),
                  each.cleans && each.row != 2);
        EXPECT_EQ(desk.isShown("oneListCleanButton"), each.row == 1 || each.row == 2);
    }
    EXPECT_THROW(desk.page->displayTableController(6), std::out_of_range);
    EXPECT_FALSE(desk.control<QWidget>("leftCell8").isEnabled()) << "no page uninstalls";
    UtilityFunction::getMyFunction().setNotificationCenter(nullptr);
}

TEST(CleanPage, TheHistoryHasTheCapacityAndWhatIsAvailable) {
    CleanDesk desk;
    desk.page->GetFreeTotleArr({"512.00 GB", "20.00 GB"});
    EXPECT_TRUE(desk.sentence("startNote")
                    .ends_with("The capacity of startup disk is 512.00 GB, and 20.00 GB is "
                               "available."))
        << desk.sentence("startNote");
    EXPECT_SOON(desk.sentence("startNote").starts_with("0.00 KB space has been recovered"));
    // A record that was damaged.
    ASSERT_TRUE(desk.home.tree.write("state/.kelpford.log.bin", "logName=SIZE&&date=x&&iSize=7"));
    desk.control("cleanPage").hide();
    desk.control("cleanPage").show();
    EXPECT_SOON(desk.sentence("startNote").starts_with("The capacity of startup disk is "));
}

}  // namespace
}  // namespace orrinvale::testing
