// The question of the uninstall page and the removal behind it, by clicks and keys.
#include "ui/uninstall/UninstallDesk.h"

namespace orrinvale::testing {
namespace {

TEST(UninstallPage, TheQuestionTellsWhatGoesAndNothingIsTicked) {
    UninstallDesk desk;
    UninstallForecast& chat = desk.work->forecasts["Chat"];
    chat.goesAlong = {"vim-common", "<b>vim</b>"};
    for (int i = 0; i < 40; ++i) chat.goesAlong.push_back(std::to_string(i));
    chat.paths = {"/opt/chat", "/x/chat.desktop"};
    chat.stays = {"/etc/chat"};
    chat.running = RunState::Yes;
    chat.leftovers = {leftover("/home/u/.var/app/Chat/cache", LeftoverGrade::Certain),
                      leftover("/home/u/.config/chat", LeftoverGrade::Likely)};
    chat.leftovers.back().precious = {"letters.mbox"};
    desk.work->forecasts["alpha"].refusal = "the system needs it";
    desk.work->warnings = {"A warning for all"};
    desk.openAndList();
    desk.tick("Chat");
    desk.tick("alpha");
    desk.work->asking.shut();
    desk.click("uninstallButton");
    EXPECT_EQ(desk.textOf("textLabel"), "System application(s),Do you want to uninstall it?");
    EXPECT_FALSE(desk.isEnabled("uninstallYes")) << "nobody knows yet what goes along";
    desk.work->asking.open();
    ASSERT_SOON(desk.isEnabled("uninstallYes"));
    for (const char* said :
         {"Goes along: vim-common, <b>vim</b>, 0, 1,", " 38, 39\n", "Stays: /etc/chat\n",
          "Goes to the trash:\n/opt/chat\n/x/chat.desktop\n", ": letters.mbox\n",
          "Stays: the system needs it\n", "42 more go along, 1 stays\nA warning for all\n"})
        EXPECT_THAT(desk.lines(), HasSubstr(said));
    const auto boxes = desk.sheet()->findChildren<TickBox*>(QStringLiteral("leftoverBox"));
    ASSERT_EQ(boxes.size(), 2);
    for (const TickBox* box : boxes) EXPECT_EQ(box->state(), TickState::Nothing);
    ASSERT_SOON(desk.isShown("quitButton"));
    desk.click("quitButton");
    EXPECT_SOON(!desk.isShown("runningLabel")) << "it went by itself";
    boxes.back()->click();
    desk.click("uninstallYes");
    EXPECT_SOON(desk.status() == failure);
    EXPECT_TRUE(desk.isShown("failureLine"));
    EXPECT_EQ(desk.work->attempts, Strings{"Chat +/home/u/.config/chat "})
        << "what is refused is not tried";
    EXPECT_EQ(desk.list(), "alpha* Beta Zeta ");
}

TEST(UninstallPage, WithoutAForecastNobodyCanAgree) {
    UninstallDesk desk;
    desk.openAndList();
    desk.tick("Beta");
    desk.work->asking.shut();
    desk.click("uninstallButton");
    EXPECT_SOON(desk.textOf("waitingLabel").starts_with("What would go along could not"));
    EXPECT_FALSE(desk.isEnabled("uninstallYes"));
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Escape);
    EXPECT_SOON(desk.sheet() == nullptr);
    EXPECT_TRUE(desk.work->attempts.empty());
}

TEST(UninstallPage, WhatWasShownIsWhatGoesWhateverIsListedMeanwhile) {
    UninstallDesk desk;
    desk.openAndList();
    desk.tick("Beta");
    desk.work->asking.shut();
    desk.click("uninstallButton");
    ASSERT_SOON(desk.work->asking.isWaitedAt());
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Escape);
    ASSERT_SOON(desk.sheet() == nullptr);
    desk.tick("Zeta");
    desk.click("uninstallButton");
    desk.work->asking.open();
    ASSERT_SOON(desk.isEnabled("uninstallYes"));
    desk.found = {item("Beta", ApplicationType::Snap), item("Zeta")};
    desk.page->refresh();
    EXPECT_EQ(desk.page->isScaned() ? desk.inventories.load() : 0, 1);
    EXPECT_EQ(desk.list(), "alpha Beta* Chat Zeta* ");
    desk.work->removing.shut();
    desk.click("uninstallYes");
    ASSERT_SOON(desk.work->removing.isWaitedAt());
    desk.page->refresh();
    EXPECT_EQ(desk.inventories, 1);
    desk.work->removing.open();
    EXPECT_SOON(desk.status() == success);
    EXPECT_EQ(desk.work->attempts, Strings{"Beta Zeta "});
    EXPECT_EQ(desk.list(), "alpha Chat ");
    desk.page->refresh();
    EXPECT_SOON(desk.list() == "Beta Zeta ");
}

TEST(UninstallPage, AnswersThatComeAfterTheSheetIsShutAreForNobody) {
    UninstallDesk desk;
    desk.work->forecasts["Chat"].running = RunState::Yes;
    desk.openAndList();
    desk.tick("Chat");
    desk.click("uninstallButton");
    ASSERT_SOON(desk.isEnabled("uninstallYes") && desk.isShown("quitButton"));
    desk.work->looking.shut();
    desk.click("quitButton");
    EXPECT_FALSE(desk.isEnabled("quitButton"));
    ASSERT_SOON(desk.work->looking.isWaitedAt());
    desk.click("cancelButton");
    desk.work->looking.open();
    // The answer is there before the sheet has slid away.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_SOON(desk.sheet() == nullptr);
    EXPECT_TRUE(desk.work->attempts.empty());
}

TEST(UninstallPage, StopIsToldAndSaysWhatItLeft) {
    UninstallDesk desk;
    desk.work->fates["Beta"] = "stopped";
    desk.openAndList();
    desk.tick("Beta");
    desk.work->removing.shut();
    desk.click("uninstallButton");
    ASSERT_SOON(desk.isEnabled("uninstallYes"));
    desk.click("uninstallYes");
    ASSERT_SOON(desk.work->removing.isWaitedAt());
    desk.click("stopButton");
    EXPECT_EQ(desk.status(), "Stopping ...");
    EXPECT_FALSE(desk.isEnabled("stopButton"));
    desk.work->removing.open();
    EXPECT_SOON(desk.status() == failure);
    desk.page->refresh();
    EXPECT_SOON(desk.inventories == 2 && desk.isEnabled("filterField"));
    EXPECT_TRUE(desk.isShown("failureLine")) << "what the removal itself changes hides nothing";
    EXPECT_EQ(desk.list(), "alpha Beta* Chat Zeta ");
}

TEST(UninstallPage, AsksForRightsOnlyForBundlesAndTriesNothingElseTwice) {
    // Zeta is a bundle, Beta a package, alpha a package of the system's, Root a system bundle.
    const struct {
        const char* why;
        int row;
        Strings ticked;
        std::map<std::string, std::string> fates;
        bool isGranted;
        Strings attempts;
        const char *status, *left;
    } cases[] = {
        {"all go", 0, {"Zeta", "Beta"}, {}, false, {"Beta Zeta "}, success, "alpha Chat Root "},
        {"granted after the first attempt",
         0,
         {"Zeta", "Beta"},
         {{"Zeta", "needs right"}},
         true,
         {"Beta Zeta ", "Zeta "},
         success,
         "alpha Chat Root "},
        {"refused after it: tried again, and in vain",
         0,
         {"Zeta", "Beta"},
         {{"Zeta", "needs right"}},
         false,
         {"Beta Zeta ", "Zeta "},
         failure,
         "alpha Chat Root Zeta* "},
        {"a package whose password was dismissed",
         0,
         {"Beta"},
         {{"Beta", "dismissed"}},
         true,
         {"Beta "},
         failure,
         "alpha Beta* Chat Root Zeta "},
        {"the bundle goes the second time, the package is not asked for again",
         0,
         {"Zeta", "Beta"},
         {{"Zeta", "needs right"}, {"Beta", "dismissed"}},
         true,
         {"Beta Zeta ", "Zeta "},
         failure,
         "alpha Beta* Chat Root "},
        {"the system's row, refused", 1, {"Root"}, {}, false, {}, failure, "alpha Root* "},
        {"the system's row, granted", 1, {"Root"}, {}, true, {"Root "}, success, "alpha "},
        {"the system's row without a bundle",
         1,
         {"alpha"},
         {},
         false,
         {"alpha "},
         success,
         "Root "},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.why);
        UninstallDesk desk;
        desk.found.push_back(item("Root", ApplicationType::App, true));
        desk.work->fates = each.fates;
        if (!each.isGranted)
            desk.authorization.failures["copyRights"] = AuthorizationStatus::canceled;
        desk.openAndList();
        desk.clickRow(each.row);
        for (const std::string& name : each.ticked) desk.tick(name);
        desk.uninstall();
        EXPECT_EQ(desk.work->attempts, each.attempts);
        EXPECT_EQ(desk.status(), each.status);
        EXPECT_EQ(desk.list(), each.left);
        EXPECT_EQ(desk.control<QAbstractButton>("lockButton").isChecked(),
                  UtilityObject::getMyObject().isOpenLocked.load());
    }
}

TEST(UninstallPage, TheWindowLivesWhileApplicationsGoAndOneRecordNeverDoes) {
    UninstallDesk desk;
    auto never = item("com.kelpford.TidewrackPro");
    desk.found.push_back(never);
    desk.openAndList();
    desk.tick("com.kelpford.TidewrackPro");
    desk.tick("Zeta");
    desk.work->removing.shut();
    desk.click("uninstallButton");
    ASSERT_SOON(desk.isEnabled("uninstallYes"));
    EXPECT_THAT(desk.lines(), HasSubstr("Nobody can tell whether it runs."));
    desk.click("uninstallYes");
    ASSERT_SOON(desk.work->removing.isWaitedAt());
    EXPECT_TRUE(desk.page->isRemoving());
    EXPECT_SOON(desk.status() == "Removing Zeta ...");
    desk.tick("Beta");
    EXPECT_FALSE(desk.isEnabled("uninstallButton"));
    desk.work->removing.open();
    EXPECT_SOON(desk.status() == failure);
    EXPECT_EQ(desk.list(), "alpha Beta Chat com.kelpford.TidewrackPro* ");
    EXPECT_EQ(desk.work->attempts, Strings{"Zeta "});
    EXPECT_TRUE(desk.authorization.calls.empty()) << "no password for what never goes";
}

}  // namespace
}  // namespace orrinvale::testing
