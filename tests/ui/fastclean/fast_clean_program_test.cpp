// Fast Clean in the program: its entry in the menu, and a start from outside.
#include "engine/base/UtilityObject.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "support/test.h"
#include "ui/fastclean/FastClean.h"
#include "ui/support/Launched.h"

namespace orrinvale::testing {
namespace {

using FreeingState = CleanSysController::State;

TEST(FastClean, IsReachedByTheMenuAndFromOutside) {
    Started on;
    PreferenceViewController::initialize();
    on.defaults.setInteger(1, std::string(ZvUserCachesKey));
    for (const char* key : {ZvUserLogsKey, ZvSystemLogsKey}) on.defaults.setInteger(0, key);
    ASSERT_TRUE(on.tree.write(".cache/a", "1"));
    EXPECT_SOON(on.entry("fastClean")->isEnabled());
    on.closeWindow();
    on.delegate->perform({StartRequest::Kind::Action, "fast-clean", ""});
    CleanSysController* const run = on.delegate->fastClean()->clrSysController();
    ASSERT_NE(run, nullptr);
    EXPECT_EQ(run->state(), FreeingState::Idle);
    EXPECT_FALSE(on.isVisible()) << "nobody asked for the main window";
    EXPECT_FALSE(on.entry("fastClean")->isEnabled());
    on.delegate->cleaningFile();
    EXPECT_NE(run->state(), FreeingState::Idle);
    EXPECT_SOON(on.delegate->fastClean()->clrSysController() == nullptr);
    EXPECT_TRUE(on.entry("fastClean")->isEnabled());
    EXPECT_TRUE(isThere(on.tree.at(".cache/a"))) << "it was changed a moment ago";
    EXPECT_SOON(UtilityObject::getMyObject().liveBubbleCount == 0);
}

// What is in hand is finished, what comes behind it stays, and what went is noted.
TEST(FastClean, AQuitInTheMiddleEndsBeforeTheNextEntry) {
    Started on;
    PreferenceViewController::initialize();
    on.defaults.setInteger(1, std::string(ZvUserDownloadsKey));
    ASSERT_TRUE(on.tree.write("Downloads/a", "1") && on.tree.write("Downloads/b", "1"));
    Gate removing;
    on.files.beforeRemoval = [&](std::string_view operation) {
        if (operation == "removeEntry") removing.pass();
    };
    removing.shut();
    on.dialogs.willAnswer(0);
    on.delegate->cleaningFile();
    ASSERT_SOON(removing.isWaitedAt());
    on.delegate->quit();
    EXPECT_TRUE(on.ends.empty()) << "nobody waited for the entry";
    removing.open();
    EXPECT_SOON(on.ends == std::vector<int>{1});
    EXPECT_EQ(namesIn(on.tree.at("Downloads")).size(), 1U);
    EXPECT_EQ(ParseFileLog(on.tree.at("state")).getSize(nullptr), 1U);
    UtilityObject::getMyObject().setIsCanBeAction(true);
}

TEST(ParseFileLog, AMessageIsShownToThePerson) {
    Started on;
    on.dialogs.willAnswer(0);
    ParseFileLog::MessageBox("Something <b>happened</b>");
    ASSERT_EQ(on.dialogs.alerts().size(), 1U);
    EXPECT_EQ(on.dialogs.alerts()[0].title, QStringLiteral("Something <b>happened</b>"));
}

}  // namespace
}  // namespace orrinvale::testing
