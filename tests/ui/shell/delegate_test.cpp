// The life of the program from inside: launch, reopening, what volumes that come and go set off,
// ejecting, and the end.
#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QScreen>

#include "engine/largefiles/Controller.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/text/Localized.h"
#include "services/volumes/WatchMountUnmount.h"
#include "services/volumes/WorkspaceMounts.h"
#include "support/ScopedVariable.h"
#include "support/ServedFiles.h"
#include "support/test.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/page/Page.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/FileManager.h"
#include "ui/support/Launched.h"
#include "ui/tray/Tray.h"

namespace orrinvale::testing {
namespace {

TEST(AppDelegate, TheWindowStandsBeforeAnyVolumeIsLookedAt) {
    Launched on;
    EXPECT_TRUE(on.isVisible());
    const auto isAsked = [&] {
        return on.volumes.with([](const FakeVolumes& fake) { return !fake.askedIndexes.empty(); });
    };
    EXPECT_FALSE(isAsked());
    on.defaults.setInteger(5, ZvLastClickRow);
    on.delegate->applicationDidFinishLaunching();
    EXPECT_TRUE(isAsked());
    EXPECT_EQ(on.defaults.integerForKey(ZvLastClickRow), 0);
    EXPECT_EQ(on.posted, (Strings{"shouldSelectRow", "shouldSelectRow"})) << "not started at login";
    ASSERT_NE(on.delegate->getBootVolume(), nullptr);
    EXPECT_EQ(on.delegate->getBootVolume()->volumeName, "System");
    on.volumes.with([](FakeVolumes& fake) { fake.volumes.erase(fake.volumes.begin()); });
    EXPECT_EQ(on.delegate->getBootVolume(), nullptr);
}

TEST(AppDelegate, AClosedWindowComesBackAsItWasLeft) {
    Started on;
    DuplicateMainWindowController* const controller = on.delegate->duplicateMWC();
    controller->window()->setFrame({controller->window()->frame().topLeft(), QSize(900, 700)});
    controller->selectFileListButtonAction();
    on.closeWindow();
    EXPECT_FALSE(on.isVisible());
    on.delegate->openMainWindow();
    EXPECT_FALSE(on.isVisible()) << "a rebuilt menu brings no window back that a person has closed";
    on.delegate->handleReopenAppEvent();
    EXPECT_TRUE(on.isVisible());
    EXPECT_EQ(on.delegate->duplicateMWC(), controller);
    EXPECT_EQ(controller->window()->frame().size(), QSize(900, 700));
    EXPECT_TRUE(controller->diskView()->isVisible());
}

TEST(AppDelegate, WhatAStartAsksForIsDone) {
    Started on;
    ASSERT_TRUE(on.tree.folder("f"));
    using Kind = StartRequest::Kind;
    const struct {
        StartRequest request;
        bool isLarge;
    } cases[] = {{{Kind::Action, "large-files", "token"}, true},
                 {{Kind::Activate, "", ""}, true},  // as it was left
                 {{Kind::Action, "no such action", ""}, true},
                 {{Kind::Action, "duplicates", ""}, false},
                 {{Kind::Open, on.tree.at("f"), ""}, false}};
    Gate reading;
    reading.shut();
    on.files.onReadFolder = [&reading] { reading.pass(); };
    for (const auto& each : cases) {
        on.closeWindow();
        on.delegate->perform(each.request);
        EXPECT_TRUE(on.isVisible()) << each.request.text;
        EXPECT_SOON(on.delegate->duplicateMWC()->diskView()->isVisible() == each.isLarge)
            << each.request.text;
    }
    EXPECT_SOON(on.delegate->duplicateMWC()->sameFileDeleteVC()->searchPath() == on.tree.at("f"));
    // A search is not given up for another one; the person is told.
    on.dialogs.willAnswer(0);
    on.delegate->perform({Kind::Open, on.tree.at("f"), ""});
    EXPECT_SOON(on.dialogs.alerts().size() == 1U);
    reading.open();
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "token");
    qunsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_SOON(on.delegate->duplicateMWC()->sameFileDeleteVC()->bSearchFinished());
    EXPECT_TRUE(on.ends.empty());
    // What is no folder is told, and leaves what is shown.
    on.dialogs.willAnswer(0);
    on.delegate->perform({Kind::Open, on.tree.at("settings.ini"), ""});
    EXPECT_SOON(on.dialogs.alerts().size() == 2U);
    on.delegate->perform({Kind::Action, "quit", ""});
    EXPECT_TRUE(on.ends.empty()) << "who asked is answered first";
    EXPECT_SOON(on.ends == std::vector<int>{1});
    EXPECT_FALSE(on.isListening);
}

TEST(AppDelegate, AFolderThatNeverAnswersHoldsNobodyUp) {
    ServedFiles served({"hang"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    Started on;
    ASSERT_TRUE(served.source().folder("hang") && on.tree.folder("f"));
    const StartRequest silent{StartRequest::Kind::Open, served.at("hang"), ""};
    on.dialogs.willAnswer(0);
    on.delegate->perform(silent);
    EXPECT_SOON(!on.dialogs.alerts().empty());
    EXPECT_TRUE(on.dialogs.alerts().back().text.endsWith(QStringLiteral("it does not answer")));
    // The newest counts, and an answer that comes too late is nobody's.
    on.delegate->perform(silent);
    on.delegate->perform({StartRequest::Kind::Open, on.tree.at("f"), ""});
    const auto& page = *on.delegate->duplicateMWC()->sameFileDeleteVC();
    EXPECT_SOON(page.searchPath() == on.tree.at("f"));
    EXPECT_SOON(page.bSearchFinished());
    on.delegate->perform(silent);
    on.closeWindow();
    served.end();
    QTest::qWait(300);
    EXPECT_FALSE(on.isVisible()) << "who closed the window wants nothing any more";
    EXPECT_EQ(on.dialogs.alerts().size(), 1U);
}

TEST(AppDelegate, EachVolumeThatComesOrGoesIsASentenceAndTwoNotices) {
    const struct {
        UserInfo info;
        const char* sentence;
    } cases[] = {
        {{{NSWorkspaceVolumeLocalizedNameKey, std::string("Stick")}},
         "Stick is mounted successfully!"},
        {{{NSWorkspaceVolumeLocalizedNameKey, std::string("a\nb")}},
         "a\nb is mounted successfully!"},
        {{{NSWorkspaceVolumeLocalizedNameKey, std::string()}}, "You disk is mounted successfully!"},
        {{{NSWorkspaceVolumeLocalizedNameKey, 5}}, "You disk is mounted successfully!"},
        {{}, "You disk is mounted successfully!"}};
    for (const auto& each : cases)
        EXPECT_EQ(
            AppDelegate::volumeSentence({ZvVolumeMountNotification, {}, each.info}, "mounted"),
            each.sentence);
    Started on;
    on.posted.clear();
    on.notifications.post(ZvVolumeMountNotification);
    on.notifications.post(ZvVolumeUnmountNotification);
    const Strings twice{"refMenuItemWhenDeleteAndAdd", "updateSizeView",
                        "refMenuItemWhenDeleteAndAdd", "updateSizeView"};
    EXPECT_EQ(on.posted, twice);
    EXPECT_TRUE(on.dialogs.alerts().empty()) << "nothing appears on the screen";
}

TEST(AppDelegate, EjectAllTellsWhatStayed) {
    Launched on(systemAndStick(), nullptr);
    on.defaults.setBool(true, keepRunningKey);
    on.delegate->applicationDidFinishLaunching();
    EXPECT_FALSE(on.entry("Reference")->isEnabled());
    EXPECT_FALSE(on.entry("checkUpdate")->isEnabled());
    EXPECT_SOON(on.entry("ejectAll")->isEnabled());
    on.volumes.with([](FakeVolumes& fake) {
        fake.volumes.push_back(FakeVolumes::volume(8, "Disc", "/media/disc", true));
        fake.ejections[7] = {fBsyErr, {"it is busy", {{4242, "vlc", "/media/stick/film.mkv"}}}};
    });
    on.closeWindow();
    on.dialogs.willAnswer(0);
    on.entry("ejectAll")->trigger();
    EXPECT_FALSE(on.entry("ejectAll")->isEnabled()) << "one at a time";
    ASSERT_SOON(on.dialogs.alerts().size() == 1);
    EXPECT_EQ(on.volumes.ejected(), (std::vector<std::int16_t>{7, 8}));
    EXPECT_SOON(on.entry("ejectAll")->isEnabled()) << "to be tried again";
    const QString text = on.dialogs.alerts()[0].text;
    EXPECT_TRUE(text.contains(QLatin1String("Stick")) && text.contains(QLatin1String("vlc")))
        << text.toStdString();
    EXPECT_TRUE(on.isVisible()) << "a question needs a window";
}

TEST(AppDelegate, EjectingFromOutsideAsksFirst) {
    Started on;
    for (const int button : {1, 0}) {
        on.dialogs.willAnswer(button);
        on.delegate->perform({StartRequest::Kind::Action, "eject-all", ""});
        QTest::qWait(20);
        EXPECT_EQ(on.dialogs.alerts().back().title, QStringLiteral("Eject all volumes?"));
        EXPECT_SOON(on.volumes.ejected().size() == (button == 0 ? 1U : 0U));
    }
    EXPECT_SOON(!on.ejections.isEjectingAll());
}

TEST(AppDelegate, NothingToEjectIsNoFailure) {
    Launched on({FakeVolumes::volume(1, "System", "/", false)}, nullptr);
    on.delegate->applicationDidFinishLaunching();
    ASSERT_SOON(on.delegate->tray()->menu().menu() != nullptr);
    on.delegate->rejestAllDisk();
    ASSERT_SOON(!on.ejections.isEjectingAll());
    EXPECT_TRUE(on.volumes.ejected().empty());
    EXPECT_TRUE(on.dialogs.alerts().empty());
    EXPECT_FALSE(on.entry("ejectAll")->isEnabled());
}

TEST(AppDelegate, AVolumeIsOpenedOrThePersonIsTold) {
    Started on;
    on.notifications.post("openFinderWhenClickItems", std::string("/media//stick/"));
    EXPECT_EQ(on.opened, Strings{"/media/stick"});
    on.canOpen = false;
    for (const std::any& object : {std::any(std::string("/media/stick")), std::any()}) {
        on.dialogs.willAnswer(0);
        on.notifications.post("openFinderWhenClickItems", object);
        EXPECT_EQ(on.dialogs.alerts().back().title.toStdString(),
                  getLocalizedString("CANNOT_OPEN_FINDER"));
    }
    EXPECT_EQ(on.opened.size(), 2U) << "no path, nothing asked";
    on.dialogs.willAnswer(0);
    on.delegate->help();
    QTest::qWait(10);
    ASSERT_EQ(on.dialogs.alerts().size(), 3U);
    if (const QString guide = userGuidePath(); !guide.isEmpty()) {
        EXPECT_TRUE(on.dialogs.alerts().back().text.contains(guide)) << "any browser shows it";
    }
}

// A desktop whose opener finds no browser, and one whose does.
TEST(UserGuide, WhoFindsNoBrowserIsToldSo) {
    if (userGuidePath().isEmpty()) GTEST_SKIP() << "the guide is not built here";
    TestTree tree;
    const QByteArray path = qgetenv("PATH");
    for (const int status : {3, 0}) {
        ASSERT_TRUE(
            tree.write("xdg-open", "#!/bin/sh\necho \"$1\" > \"$(dirname \"$0\")/opened\"\nexit " +
                                       std::to_string(status) + "\n") &&
            tree.setMode("xdg-open", 0755));
        qputenv("PATH", QByteArray::fromStdString(tree.path()) + ':' + path);
        int failures = 0;
        openUserGuide([&] { ++failures; });
        EXPECT_SOON(isThere(tree.at("opened")));
        EXPECT_TRUE(QTest::qWaitFor([&] { return failures != 0; }, status == 0 ? 300 : 5000) ==
                    (status != 0));
        QFile::remove(QString::fromStdString(tree.at("opened")));
    }
    qputenv("PATH", path);
}

TEST(FileManager, WhatOthersSayIsNoPartOfOurLog) {
    TestTree tree;
    ASSERT_TRUE(tree.write("xdg-open",
                           "#!/bin/sh\nreadlink /proc/$$/fd/2 > \"$(dirname \"$0\")/$(basename "
                           "\"$1\")\"\n") &&
                tree.setMode("xdg-open", 0755));
    const ScopedVariable path("PATH", tree.path() + ':' + qgetenv("PATH").toStdString());
    EXPECT_TRUE(openInFileManager("/a folder/x y"));
    openWebPage(QStringLiteral("https://www.kelpford.com/page"));
    openWebPage(QStringLiteral("http://www.kelpford.com/other"));
    startCommand({tree.at("xdg-open"), "command"});
    for (const char* const each : {"x%20y", "page", "command"})
        EXPECT_SOON(contentOf(tree.at(each)) == "/dev/null\n") << each;
    EXPECT_FALSE(isThere(tree.at("other"))) << "not by plain HTTP";
    // Nothing here opens anything, which shows only aside.
    const ScopedVariable nowhere("PATH", tree.at("none"));
    std::string told;
    tellOfFailedOpening([&](const std::string& each) { told = each; });
    EXPECT_TRUE(openInFileManager("/a folder"));
    EXPECT_FALSE(openInFileManager("no path"));
    EXPECT_SOON(told == "/a folder");
    tellOfFailedOpening({});
}

TEST(AppDelegate, AFurtherStartLeavesTheKeyboardWithTheDialogThatIsOpen) {
    Started on;
    ASSERT_TRUE(on.tree.folder("f"));
    QWidget* const window = on.delegate->duplicateMWC()->window();
    WindowDialogs real;
    bool isChosen = false;
    real.choosePaths(window, {}, [&](const auto& paths) { isChosen = !paths.empty(); });
    QWidget* const chooser = QApplication::activeModalWidget();
    ASSERT_NE(chooser, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(chooser));
    on.delegate->perform({StartRequest::Kind::Activate, "", ""});
    EXPECT_EQ(QApplication::activeWindow(), chooser);
    // A folder makes the choice needless.
    const auto& page = *on.delegate->duplicateMWC()->sameFileDeleteVC();
    on.delegate->perform({StartRequest::Kind::Open, on.tree.at("f"), ""});
    EXPECT_SOON(page.searchPath() == on.tree.at("f"));
    EXPECT_SOON(QApplication::activeModalWidget() == nullptr);
    EXPECT_FALSE(isChosen);
    ASSERT_SOON(page.bSearchFinished());
    // Nothing is searched behind a question.
    real.alert(window, removalQuestion(), [](int) {});
    on.dialogs.willAnswer(0);
    on.delegate->perform({StartRequest::Kind::Open, on.tree.path(), ""});
    EXPECT_SOON(!on.dialogs.alerts().empty());
    EXPECT_EQ(page.searchPath(), on.tree.at("f"));
    EXPECT_EQ(on.dialogs.alerts().back().title, QStringLiteral("A question is still open."));
}

TEST(AppDelegate, AMinimisedWindowComesBackAsItWas) {
    Launched on;
    TCImageWindow& window = *on.delegate->duplicateMWC()->window();
    window.setFrame({window.frame().topLeft(), QSize(900, 700)});
    window.showMinimized();
    ASSERT_TRUE(window.isMinimized());
    on.delegate->perform({StartRequest::Kind::Activate, "", ""});
    EXPECT_FALSE(window.isMinimized());
    EXPECT_EQ(window.frame().size(), QSize(900, 700));
}

TEST(AppDelegate, TheNextRunFindsTheWindowWhereItWas) {
    QByteArray kept;
    const QRect place(0, 30, 800, 600);
    {
        Launched on;
        TCImageWindow& window = *on.delegate->duplicateMWC()->window();
        const QPoint middle = window.screen()->availableGeometry().center();
        EXPECT_LE((window.frame().center() - middle).manhattanLength(), 2)
            << "at first in the middle";
        window.setFrame(place);
        on.delegate->quit();
        QFile settings(QString::fromStdString(on.tree.at("settings.ini")));
        ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
        kept = settings.readAll();
        EXPECT_TRUE(kept.contains("0 30 800 600 0")) << kept.toStdString();
    }
    const struct {
        const char* stored;
        QRect frame;
    } cases[] = {{"0 30 800 600 0", place}, {"5000 -9000 800 506 0", {}}, {"no frame", {}}};
    for (const auto& each : cases) {
        TestTree tree;
        QByteArray stored = kept;
        ASSERT_TRUE(tree.write("settings.ini",
                               stored.replace("0 30 800 600 0", each.stored).toStdString()));
        Launched on;
        UserDefaults defaults(tree.at("settings.ini"));
        PageServices parts = on.pages();
        parts.defaults = &defaults;
        DuplicateMainWindowController next(parts, on.icons);
        next.showWindow();
        const QRect frame = next.window()->frame();
        if (each.frame.isValid()) {
            EXPECT_EQ(frame, each.frame);
        }
        EXPECT_TRUE(next.window()->screen()->availableGeometry().contains(frame)) << each.stored;
    }
}

TEST(AppDelegate, ThePagesAreOfferedOnceTheyAreMoreThanTheMainWindowHas) {
    Launched on;
    AppPrefsWindowController::sharedPrefsWindowController().registerPage(
        {QStringLiteral("duplicates_file"), {}, {}, {}});
    on.delegate->applicationDidFinishLaunching();
    EXPECT_FALSE(on.entry("pages")->isVisible());
    AppPrefsWindowController::sharedPrefsWindowController().registerPage(
        {QStringLiteral("another"), {}, {}, {}});
    Q_EMIT on.delegate->menu().opened();
    EXPECT_TRUE(on.entry("pages")->isVisible());
    delete &AppPrefsWindowController::sharedPrefsWindowController();  // the next test has one of
                                                                      // its own
}

TEST(AppDelegate, QuittingSavesAndLetsARemovalFinishTheEntryThatItIsAt) {
    Launched on;
    Gate removing;
    on.files.beforeRemoval = [&](const char* operation) {
        if (std::string_view(operation) == "removeEntry") removing.pass();
    };
    ASSERT_TRUE(on.tree.write("f/a", "same") && on.tree.write("f/b", "same") &&
                on.tree.write("f/c", "same"));
    on.delegate->applicationDidFinishLaunching();
    auto& page = *on.delegate->duplicateMWC()->sameFileDeleteVC();
    page.viewDragAction(on.tree.at("f"));
    ASSERT_SOON(page.bSearchFinished() && page.detailView()->isVisible());
    page.detailView()->findChild<QAbstractButton*>(QStringLiteral("button"))->click();
    removing.shut();
    on.dialogs.willAnswer(0);
    page.removeBtnClicked();
    ASSERT_SOON(removing.isWaitedAt());
    on.defaults.setInteger(3, ZvDuplicatesUnit);
    on.entry("quit")->trigger();
    on.entry("quit")->trigger();
    EXPECT_TRUE(on.ends.empty());
    EXPECT_FALSE(on.isVisible());
    removing.open();
    ASSERT_SOON(!on.ends.empty());
    EXPECT_EQ(on.ends[0], 1);
    EXPECT_EQ(isThere(on.tree.at("f/a")) + isThere(on.tree.at("f/b")) + isThere(on.tree.at("f/c")),
              2)
        << "the entry under way is gone, and no other";
    EXPECT_FALSE(on.defaults.isUnsaved());
}

// A page of the toolbar window, whose removal is over when the test says so.
class RemovingPage final : public Page {
public:
    struct Removal {
        bool isUnderWay = true;
        bool isGivenUp = false;
    };
    explicit RemovingPage(Removal& removal) : m_removal(removal) {}
    QWidget* view() const override { return m_view; }
    void setMainWindow(QWidget* /*window*/) override {}
    bool isRemoving() const override { return m_removal.isUnderWay; }
    void giveUp() override { m_removal.isGivenUp = true; }

private:
    Removal& m_removal;
    QLabel* m_view = new QLabel;  // the window's
};

TEST(AppDelegate, TheEndAsksThePagesOfTheToolbarWindowToo) {
    Launched on;
    RemovingPage::Removal removal;
    on.delegate->applicationDidFinishLaunching();
    auto& pages = AppPrefsWindowController::sharedPrefsWindowController();
    pages.registerPage({QStringLiteral("removing"), QStringLiteral("Removing"),
                        QStringLiteral("ic_doc"),
                        [&removal] { return std::make_unique<RemovingPage>(removal); }});
    pages.showWindow();
    on.entry("quit")->trigger();
    EXPECT_TRUE(removal.isGivenUp && on.ends.empty());
    EXPECT_FALSE(pages.window()->isVisible()) << "what is begun now nobody gives up";
    removal.isUnderWay = false;
    EXPECT_SOON(!on.ends.empty());
    delete &pages;  // the next test has one of its own
}

TEST(AppDelegate, ARemovalThatWasOnlyAgreedToDoesNotBeginWhenOneQuits) {
    Launched on;
    Controller::getController().setParts({.files = &on.files,
                                          .mainQueue = &on.mainQueue,
                                          .ownFiles = {},
                                          .reveal = {},
                                          .openFolder = {}});
    ASSERT_TRUE(on.tree.write("f/a", "x") && on.tree.write("f/b", "y"));
    on.delegate->applicationDidFinishLaunching();
    on.delegate->perform({StartRequest::Kind::Action, "large-files", ""});
    ListFileViewController& page = *on.delegate->duplicateMWC()->listFileVC();
    page.viewDragAction(on.tree.at("f"));
    ASSERT_SOON(!page.isScan());
    page.listView()->findChild<QAbstractButton*>(QStringLiteral("selectAllButton"))->click();
    on.dialogs.willAnswer(0);
    page.deleteFiles();
    ASSERT_SOON(page.isRemoving());
    on.delegate->endBySignal(SIGTERM);
    ASSERT_SOON(!on.ends.empty());
    EXPECT_EQ(on.ends, std::vector<int>{-SIGTERM});
    QTest::qWait(600);  // longer than the removal would have waited
    EXPECT_TRUE(isThere(on.tree.at("f/a")) && isThere(on.tree.at("f/b")));
    Controller::getController().setParts({});
}

}  // namespace
}  // namespace orrinvale::testing
