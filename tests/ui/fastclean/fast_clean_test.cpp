// The window of Fast Clean from its click to its end, over a made-up home.
#include "ui/fastclean/FastClean.h"

#include <QLabel>
#include <atomic>
#include <condition_variable>

#include "engine/base/UtilityObject.h"
#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/removal/AsideJournal.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalTurn.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "services/foundation/QtMainQueue.h"
#include "support/test.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/dialogs/AlertPanel.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/support/NamedControls.h"
#include "ui/support/PageWindow.h"
#include "ui/support/RecordedDialogs.h"
#include "ui/support/threadsNow.h"

namespace orrinvale::testing {
namespace {

using FreeingState = CleanSysController::State;

/// A home, its settings, and the one Fast Clean of a program that does what the delegate does.
struct Desk : NamedControls {
    explicit Desk(CleanCategory ticked) : Desk() {
        for (const CleanCategoryNames& each : cleanCategories)
            defaults.setInteger(each.category == ticked ? 1 : 0, std::string(each.settingKey));
    }
    Desk() {
        home.files.onReadFolder = [this] { reading.pass(); };
        home.files.beforeRemoval = [this](std::string_view operation) {
            if (operation == "removeEntry") removing.pass();
        };
        UserDefaults::setStandardUserDefaults(&defaults);
        PreferenceViewController::initialize();
        clean = std::make_unique<FastClean>(parts(), [this] { ++changes; });
        closing = ZvShouldCloseWindow.observe(center, [this] { clean->handleCloseCleanWindow(); });
        menu = notice::refMenuItemWhenDeleteAndAdd.observe(center, [this] { ++menuCalls; });
    }
    ~Desk() override {
        reading.open();
        removing.open();
        measuring.open();
        EXPECT_SOON(clean->clrSysController() == nullptr ||
                    !clean->clrSysController()->isWorking());
        clean.reset();
        EXPECT_SOON(threadsNow() <= threads) << "a scan that was let go is still in the home";
        UtilityObject::getMyObject().setIsCanBeAction(true);
        UserDefaults::setStandardUserDefaults(nullptr);
    }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    [[nodiscard]] FastCleanParts parts() {
        FastCleanParts out;
        out.pages.files = &home.files;
        out.pages.notifications = &center;
        out.pages.defaults = &defaults;
        out.pages.dialogs = &dialogs;
        out.pages.mainQueue = &queue;
        out.pages.stateFolder = home.tree.at("state");
        out.clean = home.parts();
        out.makeDoor = [this](CleanCategory) {
            return std::make_unique<PlainDoor>(home.files, ProtectedPlaces());
        };
        out.freeSpace = [this](const std::string&) {
            measuring.pass();
            return SysResult<std::uint64_t>(free += 2'000'000);
        };
        out.bubbles.lifetime = std::chrono::milliseconds(60);
        out.closingPause = std::chrono::milliseconds(20);
        return out;
    }
    [[nodiscard]] CleanSysController* run() const { return clean->clrSysController(); }
    [[nodiscard]] bool isIn(FreeingState state) const {
        return run() != nullptr && run()->state() == state;
    }
    [[nodiscard]] static int bubbles() { return UtilityObject::getMyObject().liveBubbleCount; }
    [[nodiscard]] static bool isCanBeAction() { return UtilityObject::getMyObject().isCanBeAction; }
    std::vector<QWidget*> places() override { return {run()->window()}; }
    [[nodiscard]] std::uint64_t noted() const {
        return ParseFileLog(home.tree.at("state")).getSize(nullptr);
    }

    const std::size_t threads = threadsNow();
    CleanHome home;
    UserDefaults defaults{home.tree.at("settings.ini")};
    NotificationCenter center;
    NotificationCenter::Observation closing, menu;
    RecordedDialogs dialogs;
    QtMainQueue queue;
    Gate reading;    ///< before a folder is read
    Gate removing;   ///< before an entry is unlinked
    Gate measuring;  ///< before the free space is told
    std::atomic<std::uint64_t> free{0};
    int changes = 0, menuCalls = 0;
    std::unique_ptr<FastClean> clean;
};

TEST(FastClean, CleansTheLastCategoryThatIsTickedAsAWhole) {
    const struct {
        std::array<int, 6> settings;
        std::optional<CleanCategory> cleaned;
    } cases[] = {{{1, 1, 0, 0, 0, 0}, CleanCategory::UserCaches},
                 {{1, 1, 1, 0, 2, 2}, CleanCategory::SystemLogs},
                 {{1, 0, 0, 0, 1, 0}, CleanCategory::UserTrash},
                 {{1, 1, 1, 1, 1, 1}, CleanCategory::UserDownloads},
                 {{2, 0, 0, 0, 0, 0}, std::nullopt}};
    for (const auto& each : cases) {
        Desk desk;
        CleanHome withTrash({}, {"/"});
        FastCleanParts parts = desk.parts();
        parts.clean = withTrash.parts();
        for (const CleanCategoryNames& name : cleanCategories)
            desk.defaults.setInteger(each.settings.at(static_cast<std::size_t>(name.category)),
                                     std::string(name.settingKey));
        QStringList told;
        const auto made =
            CleanSysController::init(parts, [&](const QStringList& lines) { told = lines; });
        ASSERT_EQ(made != nullptr, each.cleaned.has_value());
        EXPECT_EQ(Desk::isCanBeAction(), made == nullptr);
        EXPECT_EQ(told.isEmpty(), made != nullptr);
        EXPECT_EQ(desk.menuCalls, 1);
        UtilityObject::getMyObject().setIsCanBeAction(true);
        if (made == nullptr) continue;
        EXPECT_EQ(made->category(), *each.cleaned);
        EXPECT_EQ(made->foldersArr,
                  withTrash.utilities.getFolderPath(static_cast<std::uint32_t>(*each.cleaned)));
    }
}

TEST(FastClean, RunsFromTheClickToTheEndOfItsWindow) {
    Desk desk(CleanCategory::UserCaches);
    ASSERT_TRUE(desk.home.tree.write(".cache/a", std::string(3'000'000, 'x')) &&
                desk.home.tree.write(".cache/k/.git/x", "1"));
    desk.reading.shut();
    desk.clean->cleaningFile();
    ASSERT_TRUE(desk.isIn(FreeingState::Measuring));
    EXPECT_TRUE(desk.run()->window()->isVisible());
    EXPECT_FALSE(Desk::isCanBeAction() || desk.clean->canStart());
    EXPECT_EQ(desk.textOf("categoryTitle"), "User Caches");
    EXPECT_EQ(desk.textOf("fixedText"), "Scanning system...");
    EXPECT_TRUE(desk.isShown("cancelBtn"));
    EXPECT_FALSE(desk.isShown("startBtn"));
    desk.removing.shut();
    desk.reading.open();
    ASSERT_SOON(desk.removing.isWaitedAt());
    EXPECT_SOON(desk.textOf("fixedText") == "Deleting items...");
    EXPECT_SOON(desk.textOf("curFileName") == desk.home.tree.at(".cache/a"));
    EXPECT_EQ(desk.run()->totalSize, 3'000'000U);
    desk.removing.open();
    ASSERT_SOON(desk.isIn(FreeingState::Reporting));
    EXPECT_EQ(desk.textOf("fixedText"), "Items checked: 1  ·  Size: 3.00 MB");
    EXPECT_EQ(desk.textOf("furtherLines"), "Free space grew by 2.00 MB");
    EXPECT_FALSE(desk.control("furtherLines").toolTip().isEmpty()) << "less than promised";
    EXPECT_FALSE(desk.isShown("cancelBtn"));
    EXPECT_EQ(desk.control<QnProgressView>("delProgress").value(), 100);
    EXPECT_EQ(desk.noted(), 3'000'000U);
    EXPECT_EQ(Desk::bubbles(), 1);
    EXPECT_FALSE(desk.clean->canStart());
    EXPECT_SOON(desk.run() == nullptr);
    EXPECT_TRUE(Desk::isCanBeAction() && desk.clean->canStart());
    EXPECT_EQ(Desk::bubbles(), 0);
    EXPECT_EQ(namesIn(desk.home.tree.at(".cache")), std::vector<std::string>{"k"});
    // With nothing measured the progress is no number, and nothing is drawn of it.
    desk.clean->cleaningFile();
    ASSERT_SOON(desk.isIn(FreeingState::Reporting));
    EXPECT_EQ(desk.textOf("fixedText"), "Items checked: 0  ·  Size: 0.00 KB");
    EXPECT_NE(desk.textOf("furtherLines").find("User Caches"), std::string::npos);
    EXPECT_EQ(desk.noted(), 3'000'000U) << "a clean that removed nothing is not noted";
}

TEST(FastClean, AsksBeforeWhatCanNotBeMadeAgain) {
    for (const int answer : {1, 0}) {
        Desk desk(CleanCategory::UserDownloads);
        ASSERT_TRUE(desk.home.tree.write("Downloads/a/b", std::string(6000, 'x')));
        desk.dialogs.willAnswer(answer);
        desk.clean->cleaningFile();
        ASSERT_SOON(desk.dialogs.alerts().size() == 1);
        const Alert& question = desk.dialogs.alerts()[0];
        EXPECT_TRUE(question.text.contains(QLatin1String("2 items, 6.00 KB")))
            << question.text.toStdString();
        EXPECT_TRUE(question.text.contains(QString::fromStdString(desk.home.tree.at("Downloads"))))
            << question.text.toStdString();
        EXPECT_TRUE(question.isDestructive && question.cancelButton == 1);
        ASSERT_SOON(answer == 1 || desk.isIn(FreeingState::Reporting));
        EXPECT_SOON(desk.run() == nullptr);
        EXPECT_EQ(isThere(desk.home.tree.at("Downloads/a/b")), answer == 1);
        EXPECT_TRUE(desk.clean->canStart());
        EXPECT_EQ(desk.noted(), answer == 1 ? 0U : 6000U);
        EXPECT_SOON(Desk::bubbles() == 0);
    }
}

// It comes by itself, over the buttons of the window: what was meant for those answers nothing.
TEST(FastClean, TheQuestionIsNotAnsweredByTheClickBefore) {
    enum class Hand { DoubleClick, Space, Return };
    for (const Hand hand : {Hand::DoubleClick, Hand::Space, Hand::Return}) {
        SCOPED_TRACE(static_cast<int>(hand));
        Desk desk(CleanCategory::UserDownloads);
        ASSERT_TRUE(desk.home.tree.write("Downloads/a", "1"));
        WindowDialogs real;
        FastCleanParts parts = desk.parts();
        parts.pages.dialogs = &real;
        desk.clean = std::make_unique<FastClean>(parts, [] {});
        desk.clean->open();
        QPointer<TCImageWindow> window = desk.run()->window();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        desk.click("startBtn");
        ASSERT_SOON(window->findChild<AlertPanel*>() != nullptr);
        const auto buttons = window->findChild<AlertPanel*>()->findChildren<TextImageButton*>();
        const auto remove = std::ranges::find_if(buttons, [](const TextImageButton* each) {
            return each->role() == TextImageButton::Role::Danger;
        });
        ASSERT_NE(remove, buttons.end());
        if (hand == Hand::DoubleClick) (*remove)->click();
        else
            QTest::keyClick(window->focusWidget(),
                            hand == Hand::Space ? Qt::Key_Space : Qt::Key_Return);
        QTest::qWait(300);
        EXPECT_TRUE(isThere(desk.home.tree.at("Downloads/a")));
        if (hand != Hand::DoubleClick) continue;
        ASSERT_TRUE(desk.isIn(FreeingState::Measuring)) << "nobody has answered";
        QTest::qWait(600);
        (*remove)->click();
        EXPECT_SOON(!isThere(desk.home.tree.at("Downloads/a")));
        EXPECT_SOON(desk.run() == nullptr);
    }
}

// The settings change while the window waits: the click agrees to what it read there.
TEST(FastClean, TheWindowThatWaitsCleansWhatItShows) {
    Desk desk(CleanCategory::UserCaches);
    ASSERT_TRUE(desk.home.tree.write(".cache/a", "1") && desk.home.tree.write("Downloads/a", "1"));
    desk.clean->open();
    EXPECT_EQ(desk.textOf("curFileName"), desk.home.tree.at(".cache"));
    desk.defaults.setInteger(1, std::string(ZvUserDownloadsKey));
    desk.click("startBtn");
    ASSERT_TRUE(desk.isIn(FreeingState::Idle));
    EXPECT_EQ(desk.textOf("categoryTitle"), "Downloads");
    EXPECT_EQ(desk.textOf("curFileName"), desk.home.tree.at("Downloads"));
    desk.dialogs.willAnswer(0);
    desk.click("startBtn");
    EXPECT_SOON(desk.run() == nullptr);
    EXPECT_FALSE(isThere(desk.home.tree.at("Downloads/a")));
    EXPECT_TRUE(isThere(desk.home.tree.at(".cache/a")));
}

TEST(FastClean, AStopClosesTheWindowAtOnceAndEndsBeforeTheNextEntry) {
    for (const bool isDeleting : {false, true}) {
        SCOPED_TRACE(isDeleting);
        Desk desk(CleanCategory::UserCaches);
        for (const char* name : {".cache/a", ".cache/b", ".cache/c"})
            ASSERT_TRUE(desk.home.tree.write(name, "1"));
        Gate& gate = isDeleting ? desk.removing : desk.reading;
        gate.shut();
        desk.clean->cleaningFile();
        ASSERT_SOON(gate.isWaitedAt());
        ASSERT_TRUE(!isDeleting || desk.isIn(FreeingState::Deleting));
        desk.click("cancelBtn");
        EXPECT_EQ(desk.run(), nullptr);
        EXPECT_TRUE(Desk::isCanBeAction());
        if (isDeleting) {
            EXPECT_FALSE(desk.clean->canStart()) << "its last entry is still going";
            EXPECT_TRUE(desk.clean->isRemoving());
            desk.clean->cleaningFile();
            EXPECT_EQ(desk.run(), nullptr);
        }
        const int changes = desk.changes;
        if (isDeleting) desk.measuring.shut();
        gate.open();
        if (isDeleting) {
            ASSERT_SOON(desk.measuring.isWaitedAt() && !desk.clean->clrSysController());
            EXPECT_FALSE(desk.clean->canStart()) << "the gain of another run would be its own";
            desk.clean->open();
            EXPECT_TRUE(desk.run() == nullptr && Desk::bubbles() == 1) << "nothing tells why";
            EXPECT_SOON(Desk::bubbles() == 0);
            desk.measuring.open();
        }
        EXPECT_SOON(desk.clean->canStart());
        EXPECT_GT(desk.changes, changes) << "the menu is not told";
        EXPECT_SOON(Desk::bubbles() == 1);
        EXPECT_SOON(Desk::bubbles() == 0);
        EXPECT_EQ(namesIn(desk.home.tree.at(".cache")).size(), isDeleting ? 2U : 3U);
        EXPECT_SOON(!desk.clean->isRemoving());
        EXPECT_EQ(desk.noted(), isDeleting ? 1U : 0U);
    }
}

TEST(FastClean, FromOutsideTheWindowWaitsForAClick) {
    Desk desk(CleanCategory::UserCaches);
    ASSERT_TRUE(desk.home.tree.write(".cache/a", "1"));
    desk.clean->open();
    ASSERT_TRUE(desk.isIn(FreeingState::Idle));
    EXPECT_TRUE(desk.isShown("startBtn"));
    EXPECT_EQ(desk.textOf("curFileName"), desk.home.tree.at(".cache"));
    QTest::qWait(50);
    ASSERT_TRUE(desk.isIn(FreeingState::Idle));
    // Closed without a click nothing has happened, and it can be opened again.
    QTest::keyClick(desk.run()->window(), Qt::Key_Escape);
    EXPECT_EQ(desk.run(), nullptr);
    EXPECT_EQ(Desk::bubbles(), 0);
    EXPECT_TRUE(isThere(desk.home.tree.at(".cache/a")));
    desk.clean->open();
    desk.clean->open();
    desk.click("startBtn");
    EXPECT_SOON(desk.run() == nullptr);
    EXPECT_FALSE(isThere(desk.home.tree.at(".cache/a")));
}

TEST(FastClean, ASecondClickChangesNothingOfTheRun) {
    for (const bool isDeleting : {false, true}) {
        Desk desk(CleanCategory::UserCaches);
        ASSERT_TRUE(desk.home.tree.write(".cache/a", "12") &&
                    desk.home.tree.write(".cache/b", "12"));
        Gate& gate = isDeleting ? desk.removing : desk.reading;
        gate.shut();
        desk.clean->cleaningFile();
        ASSERT_SOON(gate.isWaitedAt());
        CleanSysController* const run = desk.run();
        // What is ticked meanwhile is for the next one.
        desk.defaults.setInteger(1, std::string(ZvUserDownloadsKey));
        desk.clean->cleaningFile();
        EXPECT_EQ(desk.run(), run);
        EXPECT_TRUE(run->foldersArr.empty() && run->totalSize == 0);
        gate.open();
        EXPECT_SOON(desk.run() == nullptr);
        EXPECT_TRUE(namesIn(desk.home.tree.at(".cache")).empty());
        EXPECT_EQ(desk.noted(), 4U);
    }
}

TEST(FastClean, ClosingAndGivingUpInEachState) {
    enum class Moment { Measuring, Asking, Deleting, Reporting };
    for (const Moment moment :
         {Moment::Measuring, Moment::Asking, Moment::Deleting, Moment::Reporting})
        for (const bool isGivingUp : {false, true}) {
            SCOPED_TRACE(static_cast<int>(moment) * 10 + isGivingUp);
            Desk desk(moment == Moment::Asking ? CleanCategory::UserDownloads
                                               : CleanCategory::UserCaches);
            for (const char* name : {".cache/a", ".cache/b", "Downloads/a"})
                ASSERT_TRUE(desk.home.tree.write(name, "1"));
            Gate& gate = moment == Moment::Deleting ? desk.removing : desk.reading;
            if (moment == Moment::Measuring || moment == Moment::Deleting) gate.shut();
            if (moment == Moment::Asking) desk.dialogs.willAnswer(0);
            desk.clean->cleaningFile();
            QPointer<TCImageWindow> window = desk.run()->window();
            ASSERT_SOON(moment == Moment::Reporting ? desk.isIn(FreeingState::Reporting)
                        : moment == Moment::Asking  ? !desk.dialogs.alerts().empty()
                                                    : gate.isWaitedAt());
            if (isGivingUp) desk.clean->giveUp();
            else window->performClose();
            EXPECT_FALSE(window->isVisible());
            gate.open();
            EXPECT_SOON(!desk.clean->isRemoving());
            if (moment != Moment::Reporting) {
                EXPECT_GE(namesIn(desk.home.tree.at(".cache")).size(), 1U)
                    << "only the entry in hand may go";
            }
            EXPECT_SOON(Desk::bubbles() == 0);
            EXPECT_TRUE(isThere(desk.home.tree.at("Downloads/a")));
            if (!isGivingUp) {
                EXPECT_SOON(window == nullptr);
                EXPECT_TRUE(desk.clean->canStart());
            }
        }
}

TEST(FastClean, TheBubbleStaysUnderThePointer) {
    Desk desk(CleanCategory::UserCaches);
    ASSERT_TRUE(desk.home.tree.write(".cache/a", "1"));
    FastCleanParts parts = desk.parts();
    parts.bubbles.server = [] { return DesktopFacts::Server::X11; };
    desk.clean = std::make_unique<FastClean>(parts, [] {});
    desk.clean->cleaningFile();
    ASSERT_SOON(desk.isIn(FreeingState::Reporting));
    FastCleanBubbleView* const bubble = desk.run()->bubbleView();
    ASSERT_NE(bubble, nullptr);
    const QPointer<MAAttachedWindow> window = bubble->maattachedView();
    ASSERT_TRUE(window && window->isVisible());
    const auto lines = window->findChildren<QLabel*>();
    EXPECT_EQ(lines.size(), 3);
    EXPECT_EQ(lines.back()->text(), QStringLiteral("Free space grew by 2.00 MB"));
    bubble->mouseEnterAction();
    QTest::qWait(200);
    ASSERT_TRUE(window && window->isVisible());
    bubble->mouseExitAction();
    EXPECT_SOON(window == nullptr);
    EXPECT_EQ(Desk::bubbles(), 0);
    EXPECT_SOON(desk.run() == nullptr);
}

// The terminal cleans, or another page removes: the person reads it, and may stop meanwhile.
TEST(FastClean, TakesTurnsWithOtherRemovals) {
    for (const bool isStopped : {false, true}) {
        Desk desk(CleanCategory::UserCaches);
        ASSERT_TRUE(desk.home.tree.write(".cache/a", "1"));
        const std::atomic<bool> never{false};
        auto other = std::make_unique<RemovalTurn>(asideJournalFolder(desk.home.tree.at("state")),
                                                   never, [] {});
        desk.clean->cleaningFile();
        ASSERT_SOON(desk.isIn(FreeingState::Deleting) &&
                    desk.textOf("fixedText") == "Waiting for another removal to end");
        EXPECT_TRUE(isThere(desk.home.tree.at(".cache/a")));
        if (isStopped) {
            desk.click("cancelBtn");
            EXPECT_SOON(desk.clean->canStart());
        }
        // What the other one brings is not our gain.
        desk.free += 10'000'000;
        other.reset();
        if (!isStopped) {
            ASSERT_SOON(desk.isIn(FreeingState::Reporting));
            EXPECT_EQ(desk.textOf("furtherLines"), "Free space grew by 2.00 MB");
        }
        EXPECT_SOON(desk.run() == nullptr && !desk.clean->isRemoving());
        EXPECT_EQ(isThere(desk.home.tree.at(".cache/a")), isStopped);
        EXPECT_SOON(Desk::bubbles() == 0);
    }
}

// As on a disk that is full: what went is told all the same.
TEST(FastClean, EndsAlsoWhereNothingCanBeNoted) {
    Desk desk(CleanCategory::UserCaches);
    ASSERT_TRUE(desk.home.tree.write(".cache/a", "1") &&
                desk.home.tree.write("state", "no folder"));
    desk.clean->cleaningFile();
    ASSERT_SOON(desk.isIn(FreeingState::Reporting));
    EXPECT_FALSE(isThere(desk.home.tree.at(".cache/a")));
    EXPECT_EQ(desk.textOf("furtherLines"), "Free space grew by 2.00 MB");
    EXPECT_SOON(desk.run() == nullptr);
}

TEST(FastCleanWords, SayWhatStayedAndWhy) {
    using Closed = CategoryListing::Closed;
    RemovalOutcome kept;
    kept.kept = 2;
    const RemovalOutcome failed{
        .chosen = 2, .removed = 1, .failed = 1, .stayed = {{"/c/a", "Input/output error"}}};
    const std::vector<Closed> closed{{"/c", "it is a link"}};
    const std::vector<Error> unread{systemError("open", "/c", EACCES)};
    const struct {
        FastCleanResult result;
        std::vector<const char*> lines;
    } cases[] = {
        {{.outcome = &kept}, {"Nothing was removed: 2 changed or in use by now"}},
        {{.gained = 5000, .outcome = &failed},
         {"Free space grew by 5.00 KB", "1 could not be removed"}},
        {{.outcome = &failed, .closed = closed}, {"1 could not be removed", "/c was left alone: "}},
        {{.isEmpty = true, .closed = closed}, {"User Logs was left alone: "}},
        {{.isEmpty = true, .skipped = unread}, {"User Logs can not be read: "}},
        {{.isEmpty = true}, {"Nothing to clean in User Logs."}}};
    for (const auto& each : cases) {
        const QStringList lines = furtherLines(each.result);
        ASSERT_EQ(lines.size(), static_cast<int>(each.lines.size())) << each.lines[0];
        for (int index = 0; index < lines.size(); ++index)
            EXPECT_TRUE(
                lines[index].startsWith(QLatin1String(each.lines[static_cast<std::size_t>(index)])))
                << lines[index].toStdString();
    }
    EXPECT_TRUE(furtherReasons({.promised = 9, .gained = 1, .outcome = &failed})
                    .startsWith(QLatin1String("1: ")))
        << "no snapshot holds what stayed";
}

// A disk that sleeps names its folders late, or never.
TEST(FastClean, ASleepingDiskIsWaitedForAndHoldsNobodyUp) {
    enum class Disk { Sleeps, IsSilent, IsStopped };
    for (const Disk disk : {Disk::Sleeps, Disk::IsSilent, Disk::IsStopped}) {
        SCOPED_TRACE(static_cast<int>(disk));
        Desk desk(CleanCategory::UserTrash);
        const std::string record = ".local/share/Trash/info/a.trashinfo";
        const std::string thrown = ".local/share/Trash/files/a";
        ASSERT_TRUE(desk.home.tree.write(thrown, "1") &&
                    desk.home.tree.write(record, "[Trash Info]\nPath=/a\n"));
        Gate asking;
        asking.shut();
        const FolderUtilities sleeping(desk.home.files, desk.home.folders, [&] {
            asking.pass();
            return std::vector<std::string>{"/"};
        });
        FastCleanParts parts = desk.parts();
        parts.clean.utilities = &sleeping;
        parts.namePatience = std::chrono::milliseconds(disk == Disk::Sleeps ? 5000 : 400);
        desk.clean = std::make_unique<FastClean>(parts, [] {});
        if (disk == Disk::Sleeps) desk.dialogs.willAnswer(0);
        const auto begun = std::chrono::steady_clock::now();
        desk.clean->cleaningFile();
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(300));
        ASSERT_TRUE(desk.isIn(FreeingState::Measuring));
        EXPECT_TRUE(desk.run()->window()->isVisible() && desk.isShown("cancelBtn"));
        if (disk == Disk::IsSilent) {
            ASSERT_SOON(desk.isIn(FreeingState::Reporting));
            EXPECT_NE(desk.textOf("furtherLines").find("does not answer"), std::string::npos);
        } else if (disk == Disk::IsStopped) {
            desk.click("cancelBtn");
            EXPECT_TRUE(desk.run() == nullptr && desk.clean->canStart());
        } else {
            QTest::qWait(200);
        }
        asking.open();
        EXPECT_SOON(desk.run() == nullptr);
        EXPECT_EQ(isThere(desk.home.tree.at(thrown)), disk != Disk::Sleeps);
        EXPECT_SOON(!asking.isWaitedAt() && Desk::bubbles() == 0);
        QTest::qWait(50);  // its thread is at its end
    }
}

}  // namespace
}  // namespace orrinvale::testing
