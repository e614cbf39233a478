// The sheets beside the list: plans that are kept and opened, the history of
// what moved to the trash, and the order of best places. By keyboard where
// there is a key.
#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>

#include "engine/duplicates/plan/PlanFile.h"
#include "support/ScopedVariable.h"
#include "support/test.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

class PageSheets : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"f/a/two.txt", "f/b/two.txt"})
            ASSERT_TRUE(on.tree.write(name, testing::someBytes(3000, 1)));
        for (const char* name : {"f/a/three.jpg", "f/b/three.jpg", "f/c/three.jpg"})
            ASSERT_TRUE(on.tree.write(name, testing::someBytes(1000, 2)));
        ASSERT_TRUE(on.search(on.tree.at("f")));
    }
    bool there(const char* name) const { return isThere(on.tree.at(name)); }
    void key(Qt::Key key, Qt::KeyboardModifiers with = Qt::ControlModifier) {
        QTest::keyClick(&on.control("outline"), key, with);
    }
    QWidget* sheet(const char* name) {
        return on.window->window()->findChild<QWidget*>(QLatin1String(name));
    }
    /// Keeps what is ticked; what stands in its way, or nothing once it is kept.
    std::string save(const std::string& path) {
        on.control<QLineEdit>("planPath").setText(QString::fromStdString(path));
        on.click("savePlan");
        EXPECT_TRUE(on.waitFor([&] {
            return sheet("savePlanPanel") == nullptr || !on.textOf("savePlanFault").empty();
        }));
        return sheet("savePlanPanel") == nullptr ? std::string() : on.textOf("savePlanFault");
    }
    bool openPlan(const std::string& path) {
        on.dialogs.willChoose({path});
        key(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
        return on.waitFor([&] { return sheet("planPanel") != nullptr; });
    }
    bool ends(const char* state) {
        return on.waitFor([&] { return on.textOf("planState") == state; });
    }
    static QString cell(QTreeView& list, int row, int column) {
        return list.model()->index(row, column).data().toString();
    }

    TestTree home;
    testing::ScopedVariable data{"XDG_DATA_HOME", home.path()};
    testing::PageWindow on;
};

TEST_F(PageSheets, WhatIsTickedIsKeptAsAPlanThatTheTerminalReads) {
    on.tick("two.txt", "a/two.txt");
    on.dialogs.willAnswer(0);
    on.tick("two.txt", "b/two.txt");
    on.tick("three.jpg", "c/three.jpg");
    ASSERT_SOON(on.textOf("titleLabel").find("selected 3") != std::string::npos);
    key(Qt::Key_S);
    ASSERT_SOON(sheet("savePlanPanel") != nullptr);
    EXPECT_EQ(on.textOf("savePlanText"),
              "1 file, 1.00 KB. It goes when the plan is opened and confirmed.\n"
              "1 group is left out: all its copies are ticked, and a plan keeps one.");
    ASSERT_TRUE(on.tree.write("mine.json", "no plan"));
    on.control<QLineEdit>("planPath").setText(QStringLiteral("mine.json"));
    EXPECT_EQ(on.textOf("savePlanFault"), "Write the whole path, from the first slash on");
    EXPECT_FALSE(on.isEnabled("savePlan"));
    EXPECT_EQ(save(on.tree.at("mine.json")),
              "Could not be saved: there is a file that is no plan, which stays "
              "as it is");
    EXPECT_EQ(contentOf(on.tree.at("mine.json")), "no plan");
    EXPECT_EQ(save(on.tree.at("plan.json")), "");
    const auto plan = loadPlan(on.tree.at("plan.json"));
    ASSERT_TRUE(plan) << plan.error();
    ASSERT_EQ(plan->groups.size(), 1U);
    EXPECT_EQ(plan->roots, Strings{on.tree.at("f")});
    for (const PlanMember& member : plan->groups[0].members) {
        EXPECT_EQ(member.goes, member.path == on.tree.at("f/c/three.jpg")) << member.path;
        EXPECT_TRUE(member.contents.has_value());
    }
    EXPECT_TRUE(there("f/a/two.txt") && there("f/b/two.txt") && there("f/c/three.jpg"));
}

TEST_F(PageSheets, APlanIsShownDoneAndUndoneAndTheListFollows) {
    on.click("button");
    key(Qt::Key_S);
    ASSERT_SOON(sheet("savePlanPanel") != nullptr);
    ASSERT_EQ(save(on.tree.at("plan.json")), "");
    on.click("button");
    ASSERT_EQ(on.textOf("stopBtn"), "Remove");

    ASSERT_TRUE(openPlan(on.tree.at("plan.json")));
    EXPECT_EQ(on.textOf("planText"),
              "3 files, 5.00 KB, can go. Of each a copy stays.\n"
              "Each is compared with its copy once more before it goes.");
    EXPECT_EQ(on.control<QTreeView>("planList").model()->rowCount(), 5);
    on.click("planTrash");
    EXPECT_TRUE(on.page().isRemoving()) << "the end of the program waits for the entry in hand";
    ASSERT_TRUE(ends("3 files, 5.00 KB moved"));
    EXPECT_EQ(namesIn(home.at("Trash/files")).size(), 3U);
    EXPECT_EQ(on.model().rowCount(), 0) << "what went leaves the list";
    on.click("planUndo");
    ASSERT_TRUE(ends("3 files are back"));
    EXPECT_TRUE(namesIn(home.at("Trash/files")).empty());
    on.click("planCancel");
    EXPECT_SOON(sheet("planPanel") == nullptr);

    // The numbers and times of change are others since, which the plan does not
    // know.
    ASSERT_TRUE(openPlan(on.tree.at("plan.json")));
    on.dialogs.willAnswer(0);
    on.click("planRemove");
    ASSERT_TRUE(ends("Nothing went"));
    EXPECT_EQ(on.dialogs.alerts().back().text.toStdString(), "3 files, 5.00 KB, go for good.");
    EXPECT_EQ(on.textOf("planFailedLink"), "3 could not be removed");
    EXPECT_TRUE(on.isShown("planUndo") == false && there("f/a/two.txt") && there("f/b/two.txt"));
}

// What went leaves the list; the person's own ticks stay, but for one where a plan took the last
// clear copy.
TEST_F(PageSheets, OtherTicksStayWhereAPlanWasDone) {
    struct Case {
        const char* name;
        Strings ticked;
        const char* list;
    };
    const Case cases[] = {
        {"one of two that stay", {"a/three.jpg"}, "three.jpg 2 1/2: x.\n"},
        {"all that stay", {"a/three.jpg", "b/three.jpg"}, "three.jpg 2 1/2: x.\n"},
        {"what goes", {"c/three.jpg"}, "three.jpg 0 0/2: ..\n"}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        ASSERT_TRUE(on.tree.write("f/c/three.jpg", testing::someBytes(1000, 2)));
        std::filesystem::remove(on.tree.at("plan.json"));
        ASSERT_TRUE(on.search(on.tree.at("f")));
        on.tick("three.jpg", "c/three.jpg");
        key(Qt::Key_S);
        ASSERT_SOON(sheet("savePlanPanel") != nullptr);
        ASSERT_EQ(save(on.tree.at("plan.json")), "");
        on.tick("three.jpg", "c/three.jpg");
        for (const std::string& name : each.ticked) on.tick("three.jpg", name);
        ASSERT_TRUE(openPlan(on.tree.at("plan.json")));
        on.click("planTrash");
        ASSERT_TRUE(ends("1 file, 1.00 KB moved"));
        on.click("planCancel");
        ASSERT_SOON(sheet("planPanel") == nullptr);
        EXPECT_NE(on.list().find(each.list), std::string::npos) << on.list();
        const bool isTicked = each.ticked[0] != "c/three.jpg";
        EXPECT_EQ(on.isEnabled("stopBtn"), isTicked);
        if (isTicked) on.tick("three.jpg", "a/three.jpg");  // or the next search would ask
    }
}

// The other names of a file that went have another time of change since, by our own doing.
TEST_F(PageSheets, WhatHasANameLessByAPlanCanGoAfterIt) {
    for (const char* name : {"l/a/four.txt", "l/b/four.txt"})
        ASSERT_TRUE(on.tree.write(name, testing::someBytes(500, 4)));
    std::filesystem::create_hard_link(on.tree.at("l/a/four.txt"), on.tree.at("l/a/five.txt"));
    ASSERT_TRUE(on.search(on.tree.at("l")));
    const std::string group = on.nameOf(on.model().index(0, 0));
    on.tick(group, "a/four.txt");
    key(Qt::Key_S);
    ASSERT_SOON(sheet("savePlanPanel") != nullptr);
    ASSERT_EQ(save(on.tree.at("plan.json")), "");
    ASSERT_TRUE(openPlan(on.tree.at("plan.json")));
    on.click("planTrash");
    ASSERT_SOON(!there("l/a/four.txt") && on.isShown("planUndo"));
    on.click("planCancel");
    ASSERT_SOON(sheet("planPanel") == nullptr);
    on.tick(group, "a/five.txt");
    on.dialogs.willAnswer(0);
    on.click("stopBtn");
    EXPECT_SOON(!there("l/a/five.txt"));
    EXPECT_TRUE(there("l/b/four.txt"));
}

TEST_F(PageSheets, ASheetThatSlidesAwayTakesNoMoreAnswers) {
    on.click("button");
    key(Qt::Key_S);
    ASSERT_SOON(sheet("savePlanPanel") != nullptr);
    ASSERT_EQ(save(on.tree.at("plan.json")), "");
    key(Qt::Key_S);
    ASSERT_SOON(sheet("savePlanPanel") != nullptr);
    auto& field = on.control<QLineEdit>("planPath");
    field.setText(QString::fromStdString(on.tree.at("late.json")));
    QTest::keyClick(&field, Qt::Key_Escape);
    QTest::keyClick(&field, Qt::Key_Return);
    ASSERT_SOON(sheet("savePlanPanel") == nullptr);
    EXPECT_FALSE(there("late.json"));

    const auto pressAll = [&](const char* first, Strings others) {
        auto& panel = *on.control<QWidget>(first).parentWidget();
        std::vector<QAbstractButton*> buttons;
        for (const std::string& name : others)
            buttons.push_back(panel.findChild<QAbstractButton*>(QString::fromStdString(name)));
        on.click(first);
        for (QAbstractButton* const each : buttons) {
            ASSERT_NE(each, nullptr);
            each->click();
        }
    };
    ASSERT_TRUE(openPlan(on.tree.at("plan.json")));
    const std::size_t asked = on.dialogs.alerts().size();
    pressAll("planCancel", {"planStop", "planFailedLink", "planUndo", "planTrash", "planRemove"});
    ASSERT_SOON(sheet("planPanel") == nullptr);
    key(Qt::Key_H);
    ASSERT_SOON(sheet("historyPanel") != nullptr);
    pressAll("historyClose", {"historyStop", "historyFailedLink", "historyClear"});
    ASSERT_SOON(sheet("historyPanel") == nullptr);
    EXPECT_EQ(on.dialogs.alerts().size(), asked);
    EXPECT_TRUE(there("f/a/two.txt") && there("f/b/two.txt"));
}

TEST_F(PageSheets, AnEditedPlanIsRefusedWithItsReason) {
    on.click("button");
    key(Qt::Key_S);
    ASSERT_SOON(sheet("savePlanPanel") != nullptr);
    ASSERT_EQ(save(on.tree.at("plan.json")), "");
    std::string text = contentOf(on.tree.at("plan.json"));
    const auto at = text.find("\"goes\": false");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 13, "\"goes\": true ");
    ASSERT_TRUE(on.tree.write("plan.json", text));
    on.dialogs.willChoose({on.tree.at("plan.json")});
    on.dialogs.willAnswer(0);
    key(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_SOON(on.dialogs.alerts().size() == 1);
    EXPECT_EQ(on.dialogs.alerts()[0].text.toStdString(),
              on.tree.at("plan.json") + "\nit was changed since it was written");
    EXPECT_EQ(sheet("planPanel"), nullptr);
}

TEST_F(PageSheets, TheHistoryListsBringsBackAndForgets) {
    on.tick("two.txt");
    constexpr int trashInstead = 2;
    on.dialogs.willAnswer(trashInstead);
    on.click("stopBtn");
    ASSERT_SOON(on.isShown("undoBtn"));
    ASSERT_TRUE(on.waitFor([&] { return on.page().bSearchFinished(); }));
    const std::string damaged = on.stateFolder() + "/removed/20200101000000-000000001-1.json";
    std::ofstream(damaged) << "garbage";
    key(Qt::Key_H);
    ASSERT_SOON(sheet("historyPanel") != nullptr);
    auto& list = on.control<TickOutline>("historyList");
    ASSERT_SOON(list.model()->rowCount() == 2 && cell(list, 0, 3) == QStringLiteral("1"));
    EXPECT_EQ(cell(list, 0, 1).toStdString() + ' ' + cell(list, 0, 2).toStdString(), "1 3.00 KB");
    EXPECT_EQ(cell(list, 1, 0),
              QLocale().toString(QDateTime(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC).toLocalTime(),
                                 QLocale::ShortFormat))
        << "the removal's own time";
    EXPECT_EQ(list.model()->index(1, 0).data(TickModel::GreyRole).toBool(), true);
    EXPECT_EQ(list.model()->index(1, 0).data(Qt::ToolTipRole).toString(),
              QStringLiteral("its record is damaged"));
    EXPECT_EQ(QApplication::focusWidget(), &list);
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_FALSE(on.isEnabled("historyRestore"));
    QTest::keyClick(&list, Qt::Key_Up);
    QTest::keyClick(&list, Qt::Key_Return);
    ASSERT_SOON(on.textOf("historyState") == "1 file is back");
    EXPECT_TRUE(there("f/a/two.txt") && there("f/b/two.txt"));
    EXPECT_SOON(cell(list, 0, 3) == QStringLiteral("0"));
    EXPECT_FALSE(on.isEnabled("historyRestore")) << "nothing of it is in the trash any more";
    on.dialogs.willAnswer(0);
    on.click("historyClear");
    EXPECT_SOON(list.model()->rowCount() == 0);
    EXPECT_TRUE(namesIn(on.stateFolder() + "/removed").empty());
}

TEST_F(PageSheets, BestPlacesStandInTheirOrder) {
    const auto ticked = [&] {
        std::set<std::string> names;
        for (const char* group : {"two.txt", "three.jpg"})
            for (int i = 0; i < on.model().rowCount(on.row(group)); ++i) {
                const QModelIndex copy = on.model().index(i, 0, on.row(group));
                if (copy.data(TickModel::StateRole).toInt() == 1)
                    names.insert(on.nameOf(copy).substr(on.tree.at("f/").size()));
            }
        std::string text;
        for (const std::string& name : names) text += name + ' ';
        return text;
    };
    const auto open = [&] {
        on.click("keepBtn");
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        menu->actions().back()->trigger();
        menu->close();
        ASSERT_SOON(sheet("placesPanel") != nullptr);
    };
    open();
    EXPECT_FALSE(on.isEnabled("placesKeep"));
    on.dialogs.willChoose({on.tree.at("f/a"), on.tree.at("f/b")});
    on.click("placesAdd");
    auto& list = on.control<TickOutline>("placesList");
    ASSERT_SOON(list.model()->rowCount() == 2);
    list.setCurrentIndex(list.model()->index(1, 0));
    if (cell(list, 1, 0).endsWith(u'b')) QTest::keyClick(&list, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(cell(list, 0, 0).toStdString(), on.tree.at("f/b"));
    on.click("placesKeep");
    ASSERT_SOON(sheet("placesPanel") == nullptr);
    EXPECT_EQ(ticked(), "a/three.jpg a/two.txt c/three.jpg ");
    open();
    auto& again = on.control<TickOutline>("placesList");
    ASSERT_EQ(again.model()->rowCount(), 2) << "the last order is there again";
    QTest::keyClick(&again, Qt::Key_Delete);
    on.click("placesKeep");
    ASSERT_SOON(sheet("placesPanel") == nullptr);
    EXPECT_EQ(ticked(), "b/three.jpg b/two.txt c/three.jpg ");
}

}  // namespace
}  // namespace orrinvale
