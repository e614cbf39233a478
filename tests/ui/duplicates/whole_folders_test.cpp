// Whole folders in the list: their rows, what goes with them, the order by gain, and the sheet of
// folders that are equal in parts.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QTreeView>

#include "engine/duplicates/plan/PlanFile.h"
#include "engine/settings/SettingsKeys.h"
#include "support/ScopedVariable.h"
#include "support/test.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

using testing::someBytes;

class WholeFoldersShown : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* folder : {"f/a", "f/b"}) {
            write(folder, "/x", 1000, 1);
            write(folder, "/sub/y", 2000, 2);
            write(folder, "/.h", 10, 3);
        }
        write("f/c", "/x", 1000, 1);
        for (const char* name : {"/p1", "/p2", "/p3"}) {
            const std::size_t bytes = 1000 * std::size_t(4 + name[2] - '0');
            write("f/d", name, bytes, name[2]);
            write("f/e", name, bytes, name[2]);
        }
        write("f/e", "/more", 100, 9);
        on.settings().setBool(true, wholeFoldersKey);
    }
    void write(const std::string& folder, const char* name, std::size_t bytes, int seed) {
        ASSERT_TRUE(on.tree.write(folder + name, someBytes(bytes, unsigned(seed))));
    }
    /// Also where a result stands already.
    bool find() {
        on.drop(on.tree.at("f"));
        return on.waitFor([this] { return !on.page().bSearchFinished(); }) &&
               on.waitFor([this] { return on.page().bSearchFinished(); }) &&
               on.waitFor([this] { return on.isShown("detailView"); });
    }
    bool there(const char* name) const { return isThere(on.tree.at(name)); }
    /// The row of the two, or of one of them.
    QModelIndex folder(const char* path = "") {
        return on.row(on.model().index(0, 1).data().toString().toStdString(), path);
    }
    std::string names() {
        std::string text;
        for (int g = 0; g < on.model().rowCount(); ++g)
            text += on.model().index(g, 1).data().toString().toStdString() + ' ';
        return text;
    }
    /// Opens the menu by its entry in that of the ways, or by its key, which works where no menu
    /// was open before: that takes the activation of the window here. Null where there is none.
    QMenu* viewMenu(bool byKey) {
        if (byKey) {
            QTest::keyClick(&on.control("outline"), Qt::Key_L, Qt::ControlModifier);
        } else {
            on.click("otherWayBtn");
            auto* const ways = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (ways == nullptr) return nullptr;
            ways->actions().back()->trigger();
            ways->close();
        }
        return on.control("detailView").findChild<QMenu*>(QStringLiteral("viewMenu"));
    }
    /// False where the entry is not there, or off.
    bool choose(const char* text, bool byKey = false) {
        QMenu* const menu = viewMenu(byKey);
        bool isChosen = false;
        for (QAction* const each : menu != nullptr ? menu->actions() : QList<QAction*>())
            if (each->text() == QString::fromUtf8(text) && each->isEnabled()) {
                each->trigger();
                isChosen = true;
            }
        if (menu != nullptr) menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return isChosen;
    }

    /// What stands below the row, a name and a size each.
    std::string shownIn(const QModelIndex& row) {
        std::string text;
        for (int i = 0; i < on.model().rowCount(row); ++i)
            text += on.nameOf(on.model().index(i, 1, row)) + ' ' +
                    on.model().index(i, 3, row).data().toString().toStdString() + '|';
        return text;
    }
    void sortBy(int column) {
        QHeaderView& header = *on.control<QTreeView>("outline").header();
        const int x = header.sectionViewportPosition(column) + header.sectionSize(column) / 2;
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(x, header.height() / 2));
    }

    testing::Gate listing;  // before a folder is read
    TestTree home;
    testing::ScopedVariable data{"XDG_DATA_HOME", home.path()};
    testing::PageWindow on;
};

TEST_F(WholeFoldersShown, AreTickedAskedAboutAndRemovedAsOne) {
    ASSERT_TRUE(find());
    EXPECT_EQ(on.model().rowCount(), 5);
    const std::string name = names().substr(0, 19);
    EXPECT_TRUE(name == "a = b, 3 files each" || name == "b = a, 3 files each") << name;
    EXPECT_EQ(folder("f/b").siblingAtColumn(1).data(Qt::AccessibleDescriptionRole),
              QStringLiteral("A folder with 3 files, which goes or stays as a whole"));
    EXPECT_EQ(on.textOf("titleLabel"), "11 entries in f, selected 0 entries in All.");
    on.tick(folder("f/b"));
    EXPECT_EQ(on.textOf("gainLabel"), "3.01 KB can be gained");
    const QModelIndex within = on.row("x", "f/b/x");
    EXPECT_FALSE(within.siblingAtColumn(0).data(TickModel::StateRole).isValid()) << "no box";
    EXPECT_TRUE(within.data(TickModel::GreyRole).toBool());
    const QModelIndex itsName = within.siblingAtColumn(1);
    EXPECT_EQ(itsName.data(Qt::AccessibleDescriptionRole).toString().toStdString(),
              "Goes with the folder " + on.tree.at("f/b"));
    on.tick("x", "f/c/x");

    ASSERT_TRUE(on.remove());
    EXPECT_EQ(
        on.dialogs.alerts().back().text.toStdString(),
        "1 folder and 1 file, 4.01 KB, go for good.\n1 of them is a folder: all that is in it "
        "goes, 3 files.");
    EXPECT_FALSE(there("f/b") || there("f/c/x"));
    EXPECT_TRUE(there("f/a/x") && there("f/a/sub/y") && there("f/a/.h"));
    EXPECT_EQ(on.model().rowCount(), 3) << "one copy of x is left, and no duplicate";
}

TEST_F(WholeFoldersShown, StayWhereTheyAreOthersByNow) {
    for (const bool changesTheOneThatGoes : {true, false}) {
        ASSERT_TRUE(find());
        on.click("button");  // ticks all but the last of each group, of the folders too
        ASSERT_EQ(folder().siblingAtColumn(2).data(), QStringLiteral("1/2"));
        const bool goesA = folder("f/a").siblingAtColumn(0).data(TickModel::StateRole) == 1;
        write(goesA == changesTheOneThatGoes ? "f/a" : "f/b", "/.new", 1, 1);
        on.dialogs.willAnswer(0);
        ASSERT_TRUE(on.remove());
        for (const char* name : {"f/a/sub/y", "f/b/sub/y", "f/a/x", "f/b/x", "f/a/.h", "f/b/.h"})
            EXPECT_TRUE(there(name)) << name;
        const char* const reason =
            changesTheOneThatGoes ? "changed since the scan" : "no other verified copy is left";
        EXPECT_NE(on.linesBehind("failureLine").find(reason), std::string::npos) << reason;
        for (const char* each : {"f/a/.new", "f/b/.new"}) std::filesystem::remove(on.tree.at(each));
        SetUp();  // what went is there again
    }
}

TEST_F(WholeFoldersShown, AStopComesBetweenTwoOfThem) {
    for (const char* each : {"f/g/v", "f/h/v"}) write(each, "/w", 7000, 5);
    ASSERT_TRUE(find());
    on.click("button");
    ASSERT_TRUE(on.remove([&] { on.click("stopRemoveBtn"); }));
    EXPECT_TRUE(there("f/g/v/w") && there("f/h/v/w")) << "smaller, so that it comes second";
    const auto isWhole = [this](const std::string& one) {
        return there((one + "/sub/y").c_str()) && there((one + "/.h").c_str()) &&
               there((one + "/x").c_str());
    };
    EXPECT_TRUE(isWhole("f/a") || isWhole("f/b"));
}

TEST_F(WholeFoldersShown, MoveToTheTrashAndBackAndIntoAPlan) {
    ASSERT_TRUE(find());
    on.tick(folder("f/a"));
    QTest::keyClick(&on.control("outline"), Qt::Key_S, Qt::ControlModifier);
    const auto sheet = [this] {
        return on.window->window()->findChild<QWidget*>(QStringLiteral("savePlanPanel"));
    };
    ASSERT_SOON(sheet() != nullptr);
    on.control<QLineEdit>("planPath").setText(QString::fromStdString(on.tree.at("plan.json")));
    on.click("savePlan");
    ASSERT_SOON(sheet() == nullptr);
    const auto plan = loadPlan(on.tree.at("plan.json"));
    ASSERT_TRUE(plan) << plan.error();
    ASSERT_EQ(plan->groups.size(), 1U);
    for (const PlanMember& member : plan->groups[0].members) {
        EXPECT_EQ(member.goes, member.path == on.tree.at("f/a"));
        EXPECT_TRUE(member.listing.has_value());
    }

    on.settings().setBool(true, trashFirstKey);
    QEvent activated(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&on.control("detailView"), &activated);
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(on.dialogs.alerts().back().title, QStringLiteral("Move 1 folder to the trash?"));
    EXPECT_EQ(on.textOf("removedLine"), "1 folder, 3.01 KB moved");
    EXPECT_FALSE(there("f/a"));
    on.click("undoBtn");
    ASSERT_SOON(on.page().bSearchFinished() && there("f/a/sub/y"));
    EXPECT_TRUE(there("f/a/.h") && there("f/a/x"));
    EXPECT_EQ(on.textOf("removedLine"), "1 folder is back");
}

// Nobody loses the last copy of a file by a tick over a folder without having been asked.
TEST_F(WholeFoldersShown, AskBeforeTheyTakeTheLastCopyOfAFile) {
    ASSERT_TRUE(find());
    on.tick("x", "f/a/x");
    on.tick("x", "f/c/x");
    on.dialogs.willAnswer(1);
    on.tick(folder("f/b"));
    EXPECT_EQ(on.dialogs.alerts().back().text.toStdString(),
              "It is a folder: all that is in it goes, 3 files.\n1 group loses all its copies.");
    EXPECT_EQ(on.textOf("titleLabel"), "11 entries in f, selected 2 entries in All.");
    on.dialogs.willAnswer(0);
    on.tick(folder("f/b"));
    ASSERT_SOON(on.textOf("titleLabel") == "11 entries in f, selected 3 entries in All.");
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(
        on.dialogs.alerts().back().text.toStdString(),
        "1 folder and 2 files, 5.01 KB, go for good.\n1 of them is a folder: all that is in it "
        "goes, 3 files.\n1 group loses all its copies.");
    EXPECT_FALSE(there("f/a/x") || there("f/b") || there("f/c/x"));
}

// By the arrows, by its menu; what is in it is shown as it is now, and has no boxes.
TEST_F(WholeFoldersShown, AreOpenedAndShowWhatIsInThem) {
    ASSERT_TRUE(find());
    auto& outline = on.control<QTreeView>("outline");
    const QPersistentModelIndex a = folder("f/a");
    const auto press = [&](Qt::Key key) { QTest::keyClick(&outline, key); };
    outline.setCurrentIndex(a);
    press(Qt::Key_Right);
    ASSERT_SOON(shownIn(a) == ".h 0.01 KB|sub/y 2.00 KB|x 1.00 KB|") << shownIn(a);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    const QModelIndex y = on.model().index(1, 1, a);
    ASSERT_EQ(outline.currentIndex().siblingAtColumn(1), y);
    EXPECT_EQ(y.data(Qt::AccessibleDescriptionRole).toString().toStdString(),
              "Goes or stays with the folder " + on.tree.at("f/a"));
    EXPECT_TRUE(y.data(Qt::ToolTipRole)
                    .toString()
                    .startsWith(QString::fromStdString(on.tree.at("f/a/sub/y"))));
    EXPECT_FALSE(y.siblingAtColumn(0).data(TickModel::StateRole).isValid()) << "no box";
    press(Qt::Key_Space);
    EXPECT_EQ(on.textOf("titleLabel"), "11 entries in f, selected 0 entries in All.");
    on.click("RevealFinder");
    EXPECT_EQ(on.revealed, Strings{on.tree.at("f/a/sub/y")});
    EXPECT_EQ(on.page().previewBeside(1), on.tree.at("f/a/x"));

    const QImage before = on.onScreen(*outline.viewport(), outline.visualRect(y));
    on.tick(folder("f/a"));
    EXPECT_TRUE(y.data(TickModel::GreyRole).toBool());
    EXPECT_NE(on.onScreen(*outline.viewport(), outline.visualRect(y)), before) << "on the screen";
    for (const int column : {3, 1, 1}) {  // the rows move with their folder
        sortBy(column);
        EXPECT_EQ(shownIn(a), ".h 0.01 KB|sub/y 2.00 KB|x 1.00 KB|");
        EXPECT_TRUE(on.model().index(0, 1, a).parent() == a);
        EXPECT_TRUE(outline.isExpanded(a));
    }

    write("f/a", "/new", 100, 1);
    outline.setCurrentIndex(a);
    press(Qt::Key_Left);
    EXPECT_EQ(on.model().rowCount(a), 0);
    ASSERT_TRUE(on.chooseInMenu(outline, a, "Show What Is in It"));
    ASSERT_SOON(shownIn(a) == ".h 0.01 KB|new 0.10 KB|sub/y 2.00 KB|x 1.00 KB|") << shownIn(a);
    ASSERT_TRUE(on.chooseInMenu(outline, a, "Hide What Is in It"));
    EXPECT_EQ(on.model().rowCount(a), 0);
    std::filesystem::remove_all(on.tree.at("f/a"));
    ASSERT_TRUE(on.chooseInMenu(outline, a, "Show What Is in It"));
    ASSERT_SOON(shownIn(a) == "What is in it can not be told: No such file or directory |")
        << shownIn(a);
}

TEST_F(WholeFoldersShown, AreListedBesideTheWindowAndShownInPieces) {
    for (const char* each : {"f/many1/", "f/many2/"})
        for (int i = 0; i < 6000; ++i)
            ASSERT_TRUE(on.tree.write(each + std::to_string(i), i == 0 ? "x" : ""));
    ASSERT_TRUE(find());
    std::string group;
    for (int g = 0; g < on.model().rowCount(); ++g)
        if (const std::string name = on.nameOf(on.model().index(g, 0)); name.starts_with("many"))
            group = name;
    auto& outline = on.control<QTreeView>("outline");
    const QPersistentModelIndex many = on.row(group, "f/many1");
    const auto begun = std::make_shared<std::atomic<int>>(0);
    on.files.onReadFolder = [this, begun] { ++*begun, listing.pass(); };
    listing.shut();
    outline.expand(many.parent());
    outline.expand(many);
    ASSERT_SOON(listing.isWaitedAt());
    EXPECT_SOON(shownIn(many) == "Looking at what is in it\xE2\x80\xA6 |");
    on.tick("p1");
    EXPECT_EQ(on.textOf("titleLabel"), "13 entries in f, selected 1 entry in All.");
    outline.collapse(many);
    EXPECT_EQ(on.model().rowCount(many), 0);
    outline.expand(many);  // while the other listing still waits
    for (int threads = 2; threads <= 6; ++threads) {
        EXPECT_SOON(*begun == threads) << *begun << ": what is closed takes no place";
        if (threads < 6) outline.collapse(many), outline.expand(many);
    }
    listing.open();
    ASSERT_SOON(on.model().rowCount(many) == 5000);
    outline.scrollTo(on.model().index(4999, 1, many));
    ASSERT_SOON(on.model().rowCount(many) == 6000);
    EXPECT_EQ(on.nameOf(on.model().index(5999, 1, many)), "999");
    outline.expand(on.row(group, "f/many2"));
    on.dialogs.willAnswer(0);
    on.drop(on.tree.at("f"));  // what is open ends with its result
    ASSERT_SOON(!on.page().bSearchFinished());
    ASSERT_SOON(on.page().bSearchFinished());
}

// Of a plan that was kept with whole folders, done where their files stand as rows.
TEST_F(WholeFoldersShown, TakeTheRowsOfTheirFilesAlongInAnyList) {
    ASSERT_TRUE(find());
    on.tick(folder("f/a"));
    QTest::keyClick(&on.control("outline"), Qt::Key_S, Qt::ControlModifier);
    const auto sheet = [this](const char* name) {
        return on.window->window()->findChild<QWidget*>(QString::fromUtf8(name));
    };
    ASSERT_SOON(sheet("savePlanPanel") != nullptr);
    EXPECT_EQ(on.textOf("savePlanText"),
              "1 folder, 3.01 KB. It goes when the plan is opened and confirmed.");
    on.control<QLineEdit>("planPath").setText(QString::fromStdString(on.tree.at("plan.json")));
    on.click("savePlan");
    ASSERT_SOON(sheet("savePlanPanel") == nullptr);

    on.tick(folder("f/a"));
    on.settings().setBool(false, wholeFoldersKey);
    ASSERT_TRUE(find());
    ASSERT_EQ(on.model().rowCount(on.row("x")), 3);
    on.dialogs.willChoose({on.tree.at("plan.json")});
    QTest::keyClick(&on.control("outline"), Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_SOON(sheet("planPanel") != nullptr);
    EXPECT_TRUE(on.textOf("planText").starts_with("1 folder, 3.01 KB, can go. A copy of it"));
    on.dialogs.willAnswer(0);
    on.click("planRemove");
    ASSERT_SOON(on.page().bSearchFinished() && !there("f/a"));
    EXPECT_EQ(on.dialogs.alerts().back().text, QStringLiteral("1 folder, 3.01 KB, goes for good."));
    ASSERT_SOON(on.model().rowCount(on.row("x")) == 2);
    EXPECT_EQ(names().find("y "), std::string::npos) << "its other copy is alone";
}

TEST_F(WholeFoldersShown, TheMenuSaysHowTheListLooks) {
    ASSERT_TRUE(find());
    const std::string asFound = names();
    ASSERT_TRUE(choose("Biggest Gain First"));
    const std::string byGain = asFound.substr(0, 20) + "p3 p2 p1 x ";
    EXPECT_EQ(names(), byGain);
    EXPECT_TRUE(on.settings().boolForKey(gainFirstKey));
    ASSERT_TRUE(find());
    EXPECT_EQ(names(), byGain) << "it is remembered";
    ASSERT_TRUE(choose("As Found"));
    EXPECT_EQ(names(), asFound);

    on.tick("p1");
    on.dialogs.willAnswer(1);  // the ticks would be forgotten
    ASSERT_TRUE(choose("Whole Folders"));
    EXPECT_TRUE(on.page().bSearchFinished() && on.settings().boolForKey(wholeFoldersKey));
    EXPECT_EQ(names(), asFound);
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(choose("Whole Folders"));
    ASSERT_SOON(on.page().bSearchFinished() && names().find('=') == std::string::npos);
    EXPECT_EQ(on.textOf("titleLabel"), "11 files in f, selected 0 files in All.");
    EXPECT_FALSE(choose("Partly Equal Folders\xE2\x80\xA6")) << "nothing looked for them";
}

TEST_F(WholeFoldersShown, FoldersThatAreEqualInPartsAreShownOpenedAndSearched) {
    ASSERT_TRUE(find());
    ASSERT_TRUE(choose("Partly Equal Folders\xE2\x80\xA6", true));
    auto& list = on.control<QTreeView>("partlyList");
    ASSERT_EQ(list.model()->rowCount(), 1);
    const QModelIndex row = list.model()->index(0, 0);
    EXPECT_EQ(row.data().toString().toStdString(), on.tree.at("f/d"));
    EXPECT_EQ(row.data(Qt::AccessibleDescriptionRole).toString().toStdString(),
              "100% of it is also in " + on.tree.at("f/e"));
    on.click("partlyShow");
    EXPECT_EQ(on.revealed, (Strings{on.tree.at("f/d"), on.tree.at("f/e")}));
    QTest::keyClick(&list, Qt::Key_Return);
    ASSERT_SOON(on.page().bSearchFinished() && on.model().rowCount() == 3 &&
                on.isShown("detailView"));
    EXPECT_EQ(on.textOf("titleLabel"), "6 files in 2 folders, selected 0 files in All.");
}

}  // namespace
}  // namespace orrinvale
