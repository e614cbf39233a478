// The page of login items over entries of a test's own: its rows and switches, what is added,
// dropped, moved and removed, and what others change.
#include "ui/loginitems/LoginItemController.h"

#include <QListWidget>
#include <QMimeData>
#include <QUrl>

#include "engine/loginitems/LoginFolders.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/LeftRow.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/loginitems/AppInformation.h"
#include "ui/support/NamedControls.h"
#include "ui/support/RecordedDialogs.h"
#include "ui/support/threadsNow.h"

namespace orrinvale::testing {
namespace {

const std::string head = "[Desktop Entry]\nType=Application\nExec=tool\nName=";

class LoginItemsPage : public ::testing::Test, protected NamedControls {
protected:
    const std::size_t threads = threadsNow();

    LoginItemsPage() {
        UserDefaults::setStandardUserDefaults(&defaults);
        LoginItemRegistry::setParts(
            {.items = &on.items,
             .remove =
                 [this](const LoginItemRecord& item) {
                     if (!refusal.empty()) return refusal;
                     return std::string(::unlink(item.file.c_str()) == 0 ? "" : "still there");
                 },
             .waitOneSecond = {}});
        EXPECT_TRUE(on.program("bin/tool") && on.program("bin/orrinvale"));
    }
    ~LoginItemsPage() override {
        page.reset();
        EXPECT_SOON(threadsNow() <= threads) << "who looks at the entries aside is still there";
        LoginItemRegistry::setParts({});
        UserDefaults::setStandardUserDefaults(nullptr);
    }
    std::vector<QWidget*> places() override { return {page->view()}; }
    void show() {
        PageServices services;
        services.notifications = &notifications;
        services.defaults = &defaults;
        services.dialogs = &dialogs;
        services.reveal = [this](const std::string& path) { revealed = path; };
        page = std::make_unique<LoginItemController>(
            services, LoginItemSources{.packages =
                                           [](const Strings& paths) {
                                               std::map<std::string, std::string> found;
                                               for (const std::string& each : paths)
                                                   if (each.ends_with("/s.desktop"))
                                                       found[each] = "syspack";
                                               return found;
                                           },
                                       .services =
                                           [] {
                                               return std::vector<BackgroundService>{
                                                   {"sound.service", "Sound", "/x", false}};
                                           },
                                       .start = [this](const Strings& words) { started = words; }});
        page->view()->resize(800, 500);
        page->view()->show();
    }
    // The rows as a person reads them: "x name|note|who|buttons".
    std::string rows() {
        const QAbstractItemModel& model = *page->views().tableView->model();
        std::string text;
        for (int row = 0; row < model.rowCount(); ++row) {
            const auto cell = [&](int column, int role = Qt::DisplayRole) {
                return model.index(row, column).data(role).toString().toStdString();
            };
            const bool starts =
                cell(0, TickModel::StateRole) == std::to_string(int(TickState::All));
            text += fmt::format("{} {}|{}|{}|", starts ? "x" : ".", cell(LoginItemModel::Name),
                                cell(LoginItemModel::Name, TickModel::SecondRole),
                                cell(LoginItemModel::Package));
            for (const int button :
                 {LoginItemModel::View, LoginItemModel::Open, LoginItemModel::DeleteItem})
                text += cell(button, Qt::ToolTipRole).substr(0, 1);
            text += "\n";
        }
        return text;
    }
    void choose(int row) {
        TickOutline& table = *page->views().tableView;
        table.setCurrentIndex(table.model()->index(row, LoginItemModel::Name));
    }
    void press(int row, LoginItemModel::Column column) {
        TickOutline& table = *page->views().tableView;
        const QModelIndex cell = table.model()->index(row, column);
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, table.visualRect(cell).center());
    }
    void toggle(int row) {
        choose(row);
        QTest::keyClick(page->views().tableView, Qt::Key_Space);
    }
    std::int64_t loginCheck() { return defaults.integerForKey(ZvLoginCheckKey); }

    LoginFolders on;
    UserDefaults defaults{on.tree.at("settings.ini")};
    NotificationCenter notifications;
    RecordedDialogs dialogs;
    std::vector<std::string> started;
    std::string revealed;
    std::string refusal;  // of removals
    std::unique_ptr<LoginItemController> page;
};

TEST_F(LoginItemsPage, ShowsSwitchesStartsAndRemoves) {
    TestTree& tree = on.tree;
    ASSERT_TRUE(tree.write("config/autostart/a.desktop", head + "<b>A</b>\n") &&
                tree.write("config/autostart/k.desktop", head + "K\nOnlyShowIn=KDE;\n") &&
                tree.write("config/autostart/g.desktop", "[Desktop Entry]\nName=G\nExec=/gone\n") &&
                tree.write("config/autostart/m.desktop", head + "msng\n") &&
                tree.write("etc/autostart/s.desktop",
                           "[Desktop Entry]\nType=Application\nName=S\nExec=tool \"a b\" %U\n"));
    show();
    const std::string first =
        "x <b>A</b>||You|SOR\n. G|its program is gone|You|SR\n. K|only in KDE|You|SOR\n";
    EXPECT_SOON(rows() == first + "x S||syspack|SO\n") << rows();
    EXPECT_EQ(textOf("titleLabel"), "Programs that start when you log in: 2");
    const auto mayTick = [&](int row) {
        const QModelIndex cell = page->views().tableView->model()->index(row, LoginItemModel::Name);
        return cell.flags().testFlag(Qt::ItemIsUserCheckable);
    };
    EXPECT_TRUE(mayTick(0) && mayTick(3));
    EXPECT_FALSE(mayTick(1) || mayTick(2)) << "no switch makes it start here";
    toggle(3);
    EXPECT_SOON(rows() == first + ". S||syspack|SOR\n") << rows();
    EXPECT_TRUE(isThere(tree.at("config/autostart/s.desktop")));
    EXPECT_FALSE(isEnabled("hideBox")) << "other programs know no such thing";
    press(3, LoginItemModel::Open);
    EXPECT_EQ(started, (Strings{"tool", "a b"}));
    press(3, LoginItemModel::View);
    EXPECT_EQ(revealed, tree.at("bin/tool"));
    toggle(3);
    EXPECT_SOON(rows() == first + "x S||syspack|SO\n") << rows();
    EXPECT_FALSE(isThere(tree.at("config/autostart/s.desktop")));

    dialogs.willAnswer(1);
    press(0, LoginItemModel::DeleteItem);
    EXPECT_SOON(dialogs.alerts().size() == 1);
    EXPECT_TRUE(isThere(tree.at("config/autostart/a.desktop")));
    dialogs.willAnswer(0);
    QTest::keyClick(page->views().tableView, Qt::Key_Delete);
    EXPECT_SOON(!isThere(tree.at("config/autostart/a.desktop")) && rows().starts_with(". G"));
    // What others do shows by itself.
    ASSERT_TRUE(tree.write("config/autostart/z.desktop", head + "Z\n"));
    EXPECT_SOON(page->allLoginItemsInfo().size() == 4);
    ASSERT_EQ(::unlink(tree.at("config/autostart/k.desktop").c_str()), 0);
    EXPECT_SOON(page->allLoginItemsInfo().size() == 3);
}

TEST_F(LoginItemsPage, OurOwnEntryAndItsSettingGoTogether) {
    show();
    EXPECT_SOON(textOf("emptyLabel") == "Nothing starts when you log in.");
    const std::string own = on.tree.at("bin/orrinvale");
    const auto add = [&] {
        dialogs.willChoose({own});
        click("addButton");
        EXPECT_SOON(loginCheck() == 1 && rows() == "x Orrinvale||You|SOR\n") << rows();
        choose(0);
    };
    add();
    EXPECT_TRUE(isEnabled("hideBox"));
    click("hideBox");
    EXPECT_SOON(page->allLoginItemsInfo().front()->item.startsHidden);
    EXPECT_TRUE(on.named("com.kelpford.Orrinvale.desktop").startsHidden);
    EXPECT_TRUE(defaults.boolForKey(ZvLoginItemIsHide));
    press(0, LoginItemModel::Open);
    EXPECT_EQ(started, Strings{own}) << "it was no login";
    toggle(0);
    EXPECT_SOON(loginCheck() == 0 && rows() == ". Orrinvale||You|SOR\n") << rows();
    toggle(0);
    EXPECT_SOON(loginCheck() == 1 && rows() == "x Orrinvale||You|SOR\n") << rows();
    refusal = "this place is read-only";
    dialogs.willAnswer(0);
    press(0, LoginItemModel::DeleteItem);
    EXPECT_SOON(textOf("quietLine") == "This could not be changed: this place is read-only");
    EXPECT_EQ(loginCheck(), 1) << "the entry is still there";
    refusal.clear();
    dialogs.willAnswer(0);
    press(0, LoginItemModel::DeleteItem);
    EXPECT_SOON(loginCheck() == 0 && rows().empty());
    // What nothing can start: its row stands until the list is read.
    dialogs.willChoose({on.tree.at("missing")});
    click("addButton");
    EXPECT_SOON(rows() == ". missing|||\n");
    EXPECT_SOON(textOf("quietLine") ==
                "This could not be changed: nothing can start this at login");
    EXPECT_SOON(rows().empty());
    page->views().rail->row(1).chosen();
    EXPECT_EQ(textOf("titleLabel"), "Services that run in the background: 1");
    EXPECT_EQ(control<QListWidget>("backgroundList").item(0)->text(),
              QStringLiteral("Sound  (sound.service)"));
    EXPECT_FALSE(isShown("addButton"));
}

TEST_F(LoginItemsPage, AllOfAPanelAreAddedAndOursAsOurs) {
    const std::string own = on.tree.at("bin/orrinvale");
    ASSERT_TRUE(on.program("1/same") && on.program("2/same") &&
                on.tree.write("own.desktop", "[Desktop Entry]\nName=O\nExec=" + own + "\n") &&
                on.tree.write("config/autostart/n.desktop", head + "N\nNotShowIn=GNOME\n"));
    defaults.setBool(true, ZvLoginItemIsHide);
    show();
    EXPECT_SOON(rows() == ". N|not on this desktop|You|SOR\n") << rows();
    EXPECT_FALSE(page->views()
                     .tableView->model()
                     ->index(0, LoginItemModel::Name)
                     .flags()
                     .testFlag(Qt::ItemIsUserCheckable));
    dialogs.willChoose({on.tree.at("1/same"), on.tree.at("missing"), on.tree.at("2/same"),
                        on.tree.at("own.desktop")});
    click("addButton");
    EXPECT_SOON(on.list().size() == 4 && loginCheck() == 1);
    EXPECT_SOON(textOf("quietLine") ==
                "This could not be changed: nothing can start this at login");
    EXPECT_TRUE(on.named("com.kelpford.Orrinvale.desktop").startsHidden) << "as the settings say";
}

TEST_F(LoginItemsPage, DropsAndMovesHoldUntilTheNextReload) {
    TestTree& tree = on.tree;
    for (const char* const name : {"a", "b", "c", "d"})
        ASSERT_TRUE(
            tree.write(fmt::format("config/autostart/{}.desktop", name), head + name + "\n"));
    show();
    EXPECT_SOON(page->allLoginItemsInfo().size() == 4);
    const auto order = [this] {
        std::string names;
        for (const auto& each : page->allLoginItemsInfo())
            names += each->text.empty() ? each->item.name : "(" + each->text + ")";
        return names;
    };
    LoginItemModel& model = *static_cast<LoginItemModel*>(page->views().tableView->model());
    const std::unique_ptr<QMimeData> rows(model.mimeData({model.index(0, 0), model.index(2, 0)}));
    EXPECT_TRUE(page->acceptDrop(*rows, 4));
    EXPECT_EQ(order(), "bdac");
    QMimeData text;
    text.setText(QStringLiteral("words"));
    EXPECT_TRUE(page->acceptDrop(text, 1));
    EXPECT_EQ(order(), "b(words)dac");
    EXPECT_FALSE(page->acceptDrop(QMimeData(), 0));
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(tree.at("bin/tool"))),
                   QUrl::fromLocalFile(QStringLiteral("/bin/true")),
                   QUrl::fromLocalFile(QStringLiteral("/bin"))});
    EXPECT_TRUE(page->acceptDrop(files, 0));
    EXPECT_SOON(order() == "abcdtool") << "one of three, and the old order";
}

TEST_F(LoginItemsPage, FiveHundredRows) {
    for (int i = 0; i < 500; ++i)
        ASSERT_TRUE(on.tree.write(fmt::format("config/autostart/{:03}.desktop", i), head + "N\n"));
    const auto begin = Clock::now();
    LoginRows rows;
    EXPECT_TRUE(AppInformation::getAppInfo(&rows));
    const auto read = Clock::now() - begin;
    EXPECT_EQ(rows.size(), 500U);
    LoginItemModel model({});
    const auto shown = Clock::now();
    model.setRows(std::move(rows));
    const auto took = read + (Clock::now() - shown);
    RecordProperty("milliseconds",
                   std::to_string(std::chrono::duration_cast<milliseconds>(took).count()));
    EXPECT_LT(took, 500ms) << "50 ms are the aim on a machine of its own";
    EXPECT_EQ(model.rowCount(), 500);
}

}  // namespace
}  // namespace orrinvale::testing
