// The uninstall page in a window of a test's own, over applications and a removal that the test
// makes up.
#pragma once

#include <QAbstractItemModel>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
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

using Model = UninstallAppsModel;

inline std::shared_ptr<AppItems> item(const std::string& name,
                                      ApplicationType type = ApplicationType::App,
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

inline Leftover leftover(const std::string& path, LeftoverGrade grade) {
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
            // Several are asked for at once.
            const auto known = forecasts.find(each.name);
            out.apps.push_back(known != forecasts.end() ? known->second : UninstallForecast{});
            plan.apps.push_back({std::make_shared<AppItems>(each), {}, {}, {}, {}});
            plan.apps.back().refusal = out.apps.back().refusal;
        }
        out.isListOld = isListOld;
        out.warnings = warnings;
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
        ++looks;
        looking.pass();
        return isQuit ? RunState::No : RunState::Yes;
    }

    Gate asking, removing, looking;
    std::map<std::string, UninstallForecast> forecasts;
    std::map<std::string, std::string> fates;  // why it stays
    Strings attempts;
    std::atomic<bool> isQuit{false}, isListOld{false};
    std::atomic<int> looks{0};
    Strings warnings;
};

struct UninstallDesk : NamedControls {
    UninstallDesk() {
        QnAuthorization::shareQnAuthorization().setParts(
            {&authorization, &files, &permissions, {}});
        found = {item("Zeta"), item("alpha", ApplicationType::Deb, true),
                 item("Chat", ApplicationType::Flatpak), item("Beta", ApplicationType::Deb)};
    }
    ~UninstallDesk() override {
        work->asking.open();
        work->removing.open();
        work->looking.open();
        EXPECT_SOON(page == nullptr || !page->isRemoving());
        page.reset();
        UtilityObject::getMyObject().setIsOpenLocked(false);
        QnAuthorization::shareQnAuthorization().freeAuthorization();
        QnAuthorization::shareQnAuthorization().setParts({});
    }
    UninstallDesk(const UninstallDesk&) = delete;
    UninstallDesk& operator=(const UninstallDesk&) = delete;

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
        parts.inventory = [from = sources](const UninstallPageParts::News& news) {
            from->listing.pass();
            ++from->inventories;
            AppItemsArray copies;
            for (const auto& each : from->found) {
                copies.push_back(std::make_shared<AppItems>(*each));
                if (each != from->found.front()) continue;
                news(copies);
                from->further.pass();
            }
            return FoundApplications{copies, from->unread};
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
        std::map<ApplicationType, std::string> unread;
        std::map<std::string, std::uint64_t> sizes;
        std::atomic<int> inventories{0}, state{1};
        Gate listing, further, measuring;  // further: between the first and the others
    };
    const std::shared_ptr<Sources> sources = std::make_shared<Sources>();
    AppItemsArray& found = sources->found;
    std::map<std::string, std::uint64_t>& sizes = sources->sizes;
    std::atomic<int>&inventories = sources->inventories, &state = sources->state;
    Gate &listing = sources->listing, &further = sources->further, &measuring = sources->measuring;
    std::shared_ptr<MadeUpWork> work = std::make_shared<MadeUpWork>();
    QWidget window;
    std::unique_ptr<UninstallAppsController> page;
};

inline constexpr const char* success = "Selected application(s) were uninstalled successfully.";
inline constexpr const char* failure =
    "Failed to uninstall the selected application(s). Please refer to Help for more info.";

}  // namespace orrinvale::testing
