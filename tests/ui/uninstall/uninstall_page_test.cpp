// The uninstall page in a window, by clicks and keys, over applications that the test makes up.
#include <QAbstractItemModel>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "engine/base/UtilityObject.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/linux/LinuxPermissions.h"
#include "services/foundation/QtMainQueue.h"
#include "support/test.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/support/NamedControls.h"
#include "ui/support/PageWindow.h"
#include "ui/support/RecordedDialogs.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/uninstall/UninstallAppsModel.h"
#include "ui/uninstall/UninstallDetails.h"

namespace orrinvale::testing {
namespace {

using Model = UninstallAppsModel;

std::shared_ptr<AppItems> item(const std::string& name, ApplicationType type = ApplicationType::App,
                               bool isSystem = false) {
    auto made = std::make_shared<AppItems>();
    ApplicationRecord record;
    record.type = type;
    record.id = record.name = name;
    record.path = "/made/up/" + name;
    record.isSystem = isSystem;
    made->name = name;
    made->path = record.path;
    made->bundleID = name;
    made->bundleVersion = "3.0";
    made->isSystemApp = isSystem;
    made->record = std::make_shared<const ApplicationRecord>(std::move(record));
    return made;
}

Leftover leftover(const std::string& path, LeftoverGrade grade) {
    Leftover made;
    made.path = path;
    made.grade = grade;
    return made;
}

/// Answers as a test says: what was asked is written down.
struct MadeUpWork final : UninstallWork {
    UninstallOutlook forecast(const std::vector<AppItems>& items,
                              const std::atomic<bool>& /*stop*/) override {
        asking.pass();
        UninstallOutlook out;
        UninstallPlan plan;
        for (const AppItems& each : items) {
            out.apps.push_back(forecasts[each.name]);
            plan.apps.push_back({std::make_shared<AppItems>(each), {}, {}, {}});
            plan.apps.back().refusal = forecasts[each.name].refusal;
        }
        out.isListOld = isListOld;
        out.plan = std::make_shared<const UninstallPlan>(std::move(plan));
        return out;
    }
    std::vector<UninstallResult> remove(const UninstallPlan& plan,
                                        const std::vector<UninstallRequest>& requests,
                                        ProgressBox& progress,
                                        const std::atomic<bool>& /*stop*/) override {
        std::string attempt;
        std::vector<UninstallResult> out;
        for (const UninstallRequest& each : requests) {
            progress.setCurrent(each.item.name);
            attempt += each.item.name + ' ';
            EXPECT_TRUE(std::ranges::any_of(plan.apps, [&](const UninstallPlan::App& app) {
                return app.item->record == each.item.record;
            })) << "another plan than the one that was shown";
            for (const Leftover& left : each.leftovers) attempt += "+" + left.path + ' ';
            const std::string& fate = fates[each.item.name];
            // A bundle of the system's goes once somebody holds the right.
            const bool isGone = fate.empty() || (fate == "needs right" &&
                                                 UtilityObject::getMyObject().isOpenLocked);
            out.push_back({isGone, isGone ? "" : fate, {}, 1'000'000, {}});
        }
        removing.pass();
        attempts.push_back(attempt);
        return out;
    }
    bool askToQuit(const ApplicationRecord& record) override {
        return record.name == "Chat" && (isQuit = true);
    }
    RunState running(const ApplicationRecord& /*record*/) override {
        looking.pass();
        return isQuit ? RunState::No : RunState::Yes;
    }

    Gate asking, removing, looking;
    std::map<std::string, UninstallForecast> forecasts;
    std::map<std::string, std::string> fates;  // why it stays
    Strings attempts;
    std::atomic<bool> isQuit{false}, isListOld{false};
};

struct Desk : NamedControls {
    Desk() {
        QnAuthorization::shareQnAuthorization().setParts(
            {&authorization, &files, &permissions, {}});
        found = {item("Zeta"), item("alpha", ApplicationType::Deb, true),
                 item("Chat", ApplicationType::Flatpak), item("Beta", ApplicationType::Deb)};
    }
    ~Desk() override {
        work->asking.open();
        work->removing.open();
        work->looking.open();
        EXPECT_SOON(page == nullptr || !page->isRemoving());
        page.reset();
        UtilityObject::getMyObject().setIsOpenLocked(false);
        QnAuthorization::shareQnAuthorization().freeAuthorization();
        QnAuthorization::shareQnAuthorization().setParts({});
    }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    void open() {
        const PageServices services{.files = &files,
                                    .notifications = &center,
                                    .defaults = nullptr,
                                    .dialogs = &dialogs,
                                    .mainQueue = &queue,
                                    .stateFolder = {},
                                    .icons = {},
                                    .reveal = {},
                                    .openAddress = {}};
        UninstallPageParts parts;
        parts.inventory = [from = sources] {
            from->listing.pass();
            ++from->inventories;
            AppItemsArray copies;
            for (const auto& each : from->found)
                copies.push_back(std::make_shared<AppItems>(*each));
            return copies;
        };
        parts.measure = [from = sources](const ApplicationRecord& record,
                                         const std::atomic<bool>&) {
            from->measuring.pass();
            ApplicationDetails details;
            if (from->sizes.contains(record.name)) details.bytes = from->sizes.at(record.name);
            return details;
        };
        parts.stamp = [from = sources] { return "state " + std::to_string(from->state.load()); };
        parts.work = work;
        parts.forecastPatience = std::chrono::milliseconds(400);
        page = std::make_unique<UninstallAppsController>(services, parts);
        page->setMainWindow(&window);
        auto* const around = new QVBoxLayout(&window);
        around->setContentsMargins({});
        around->addWidget(page->view());
        window.resize(800, 506);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void openAndList() {
        open();
        ASSERT_SOON(page->isScaned());
    }

    QTreeView& table() { return control<QTreeView>("tableView"); }
    QModelIndex row(const std::string& name, int column = Model::Name) {
        const QAbstractItemModel& model = *table().model();
        for (int i = 0; i < model.rowCount(); ++i)
            if (model.index(i, Model::Name).data().toString().toStdString() == name)
                return model.index(i, column);
        ADD_FAILURE() << "no row " << name;
        return {};
    }
    void clickCell(const std::string& name, int column) {
        QStyleOptionViewItem option;
        option.rect = table().visualRect(row(name, column));
        const QPoint place = column == Model::CheckBox ? RowDelegate::boxRect(option).center()
                                                       : option.rect.center();
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, place);
    }
    void tick(const std::string& name) { clickCell(name, Model::CheckBox); }
    void clickRow(int number) {
        QTest::mouseClick(&control(("leftCell" + std::to_string(number)).c_str()), Qt::LeftButton);
    }
    /// As a person reads it: names, a star behind those that are ticked.
    std::string list() {
        std::string out;
        const QAbstractItemModel& model = *table().model();
        for (int i = 0; i < model.rowCount(); ++i)
            out += model.index(i, Model::Name).data().toString().toStdString() +
                   (model.index(i, Model::CheckBox).data(TickModel::StateRole).toInt() == 1 ? "* "
                                                                                            : " ");
        return out;
    }
    std::string column(int number) {
        std::string out;
        const QAbstractItemModel& model = *table().model();
        for (int i = 0; i < model.rowCount(); ++i)
            out += model.index(i, number).data().toString().toStdString() + '|';
        return out;
    }
    std::string status() { return textOf("uninstallTextField"); }
    Sheet* sheet() { return window.findChild<Sheet*>(); }
    /// What the sheet says below the applications' names.
    std::string lines() {
        std::string out;
        for (const auto* label : sheet()->findChildren<QLabel*>(QStringLiteral("lineLabel"))) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
            out += label->text().remove(QChar(0x200B)).toStdString() + '\n';
        }
        return out;
    }
    /// Asks, waits for what goes along, and agrees.
    void uninstall() {
        click("uninstallButton");
        ASSERT_SOON(isEnabled("uninstallYes"));
        click("uninstallYes");
        ASSERT_SOON(!page->isRemoving());
    }
    std::vector<QWidget*> places() override { return {&window}; }

    LinuxFileSystem files;
    LinuxPermissions permissions;
    FakeAuthorization authorization;
    NotificationCenter center;
    RecordedDialogs dialogs;
    QtMainQueue queue;
    // A thread may still ask these when the page is gone.
    struct Sources {
        AppItemsArray found;
        std::map<std::string, std::uint64_t> sizes;
        std::atomic<int> inventories{0}, state{1};
        Gate listing, measuring;
    };
    const std::shared_ptr<Sources> sources = std::make_shared<Sources>();
    AppItemsArray& found = sources->found;
    std::map<std::string, std::uint64_t>& sizes = sources->sizes;
    std::atomic<int>&inventories = sources->inventories, &state = sources->state;
    Gate &listing = sources->listing, &measuring = sources->measuring;
    std::shared_ptr<MadeUpWork> work = std::make_shared<MadeUpWork>();
    QWidget window;
    std::unique_ptr<UninstallAppsController> page;
};

constexpr const char* success = "Selected application(s) were uninstalled successfully.";
constexpr const char* failure =
    "Failed to uninstall the selected application(s). Please refer to Help for more info.";

TEST(UninstallPage, ListsOnceTicksAndFilters) {
    Desk desk;
    desk.listing.shut();
    desk.open();
    EXPECT_TRUE(desk.isShown("searchAppsIndicator"));
    desk.clickRow(1);
    EXPECT_EQ(desk.page->nowSelectRow(), 0) << "clicks count once there is a list";
    desk.listing.open();
    ASSERT_SOON(desk.page->isScaned());
    EXPECT_TRUE(desk.page->searchFinished());
    EXPECT_EQ(desk.list(), "alpha Beta Chat Zeta ");
    EXPECT_FALSE(desk.isEnabled("uninstallButton"));
    desk.window.hide();
    desk.window.show();
    desk.page->beginSearchApps();

    auto& all = desk.control<TickBox>("selectButton");
    desk.tick("alpha");
    desk.tick("Zeta");
    EXPECT_EQ(desk.status(), "2 of 4 selected.");
    EXPECT_TRUE(desk.isEnabled("uninstallButton"));
    EXPECT_EQ(all.state(), TickState::Nothing);
    desk.clickRow(1);
    EXPECT_EQ(desk.list(), "alpha* ");
    EXPECT_EQ(desk.status(), "1 of 1 selected.");
    EXPECT_EQ(all.state(), TickState::All);
    desk.clickRow(2);
    EXPECT_EQ(desk.list(), "Beta Chat Zeta* ");
    EXPECT_EQ(desk.status(), "1 of 3 selected.") << "what nobody sees does not count";
    QTest::keyClicks(&desk.control("filterField"), QString::fromUtf8("CHÁ"));
    EXPECT_EQ(desk.list(), "Chat ");
    EXPECT_EQ(desk.status(), "0 of 1 selected.");
    EXPECT_FALSE(desk.isEnabled("uninstallButton"));
    QTest::keyClick(&desk.control("filterField"), Qt::Key_Escape);
    EXPECT_EQ(desk.list(), "Beta Chat Zeta* ");
    QTest::mouseClick(&all, Qt::LeftButton);
    EXPECT_EQ(desk.status(), "3 of 3 selected.");
    QTest::keyClick(&desk.table(), Qt::Key_Home);
    QTest::keyClick(&desk.table(), Qt::Key_Space);
    EXPECT_EQ(desk.list(), "Beta Chat* Zeta* ");
    EXPECT_EQ(all.state(), TickState::Nothing);
    EXPECT_EQ(desk.inventories, 1);
}

TEST(UninstallPage, SizesComeLaterAndMoveNoRowUntilAskedTo) {
    Desk desk;
    desk.measuring.shut();
    desk.sizes = {{"Beta", 2'000'000}, {"Zeta", 3'000'000'000}, {"alpha", 0}};
    desk.openAndList();
    EXPECT_EQ(desk.column(Model::Size), "--|--|--|--|");
    desk.measuring.open();
    EXPECT_SOON(desk.column(Model::Size) == "0.00 KB|2.00 MB|--|3.00 GB|");
    EXPECT_EQ(desk.list(), "alpha Beta Chat Zeta ");
    QHeaderView& header = *desk.table().header();
    const auto clickSize = [&] {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          QPoint(header.sectionViewportPosition(Model::Size) + 20, 10));
    };
    clickSize();
    EXPECT_EQ(desk.list(), "Zeta Beta alpha Chat ");
    clickSize();
    EXPECT_EQ(desk.list(), "alpha Beta Zeta Chat ") << "what is not known stays last";
}

TEST(UninstallPage, FollowsWhatIsInstalledElsewhereAndKeepsTicks) {
    Desk desk;
    desk.openAndList();
    desk.tick("Beta");
    desk.table().setCurrentIndex(desk.row("Zeta"));
    auto& field = desk.control<QLineEdit>("filterField");
    field.setFocus();
    desk.found.erase(desk.found.begin());
    desk.found.push_back(item("Added", ApplicationType::Snap));
    desk.listing.shut();
    desk.state = 2;
    ASSERT_SOON(desk.listing.isWaitedAt());
    EXPECT_EQ(desk.window.focusWidget(), &field) << "somebody may be writing";
    desk.listing.open();
    EXPECT_SOON(desk.list() == "Added alpha Beta* Chat ");
    EXPECT_TRUE(desk.isEnabled("uninstallButton"));
    desk.work->isListOld = true;
    desk.click("uninstallButton");
    ASSERT_SOON(desk.isEnabled("uninstallYes"));
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Escape);
    EXPECT_SOON(desk.inventories == 3);
}

TEST(UninstallPage, TheSheetMeasuresAndCutsWhatIsLong) {
    for (const auto& [letters, isCut] : {std::pair(28, false), {29, true}})
        EXPECT_EQ(UninstallDetails::shownName(QString(letters, u'n')),
                  QString(28, u'n') + QLatin1String(isCut ? "..." : ""));
    for (const auto& [letters, isCut] : {std::pair(70, false), {71, true}})
        EXPECT_EQ(UninstallDetails::shownPath(QString(letters, u'p')),
                  QString(70, u'p') + QLatin1String(isCut ? "..." : ""));
    Desk desk;
    desk.sizes = {{"Beta", 4'000'000}};
    desk.openAndList();
    desk.clickCell("Beta", Model::View);
    ASSERT_NE(desk.page->listWindow(), nullptr);
    EXPECT_SOON(desk.textOf("sizeLabel") == "4.00 MB");
    EXPECT_EQ(desk.textOf("pathLabel"), "/made/up/Beta");
    desk.click("okButton");
    EXPECT_SOON(desk.page->listWindow() == nullptr);
    desk.table().setCurrentIndex(desk.row("Chat"));
    QTest::keyClick(&desk.table(), Qt::Key_Return);
    EXPECT_SOON(desk.textOf("sizeLabel") == "--");
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Escape);
    EXPECT_SOON(desk.page->listWindow() == nullptr);
}

TEST(UninstallPage, TheQuestionTellsWhatGoesAndNothingIsTicked) {
    Desk desk;
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
          "Stays: the system needs it\n"})
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
    Desk desk;
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
    Desk desk;
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
    Desk desk;
    desk.work->forecasts["Chat"].running = RunState::Yes;
    desk.openAndList();
    desk.tick("Chat");
    desk.click("uninstallButton");
    ASSERT_SOON(desk.isEnabled("uninstallYes") && desk.isShown("quitButton"));
    desk.work->looking.shut();
    desk.click("quitButton");
    ASSERT_SOON(desk.work->looking.isWaitedAt());
    desk.click("cancelButton");
    desk.work->looking.open();
    // The answer is there before the sheet has slid away.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_SOON(desk.sheet() == nullptr);
    EXPECT_TRUE(desk.work->attempts.empty());
}

TEST(UninstallPage, StopIsToldAndSaysWhatItLeft) {
    Desk desk;
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
        Desk desk;
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
    Desk desk;
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

TEST(UninstallPage, TwoThousandRowsHoldNoTurnUp) {
    Desk desk;
    for (int i = 0; i < 2000; ++i)
        desk.found.push_back(item("Application " + std::to_string(i), ApplicationType::Deb));
    desk.open();
    EXPECT_TRUE(desk.page->view()->isVisible());
    qint64 longest = 0;
    const auto turnUntil = [&](const auto& isSo) {
        while (!isSo()) {
            QElapsedTimer turn;
            turn.start();
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            longest = std::max(longest, turn.elapsed());
        }
    };
    turnUntil([&] { return desk.page->isScaned() && desk.table().model()->rowCount() >= 2000; });
    RecordProperty("longest_turn_ms", int(longest));
    EXPECT_LT(longest, 1000) << "many times of what one turn may take, for a busy machine";
    longest = 0;
    QElapsedTimer asking;
    asking.start();
    QTest::mouseClick(&desk.control("selectButton"), Qt::LeftButton);
    QTest::mouseClick(&desk.control("uninstallButton"), Qt::LeftButton);
    RecordProperty("ticking_all_and_asking_ms", int(asking.elapsed()));
    turnUntil([&] { return desk.isEnabled("uninstallYes"); });
    RecordProperty("longest_turn_of_the_question_ms", int(longest));
    EXPECT_LT(longest, 1000) << "many times of what one turn may take, for a busy machine";
}

}  // namespace
}  // namespace orrinvale::testing
