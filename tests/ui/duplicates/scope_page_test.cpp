// A search in several folders: the sheet by drop, panel and keys, protected folders under every way
// of ticking, and searches that have a name.
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTreeView>

#include "platform/paths.h"
#include "support/test.h"
#include "ui/duplicates/ScopePanel.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/support/PageWindow.h"
#include "ui/support/dropOn.h"

namespace orrinvale {
namespace {

class SeveralFolders : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"a/x.txt", "b/x.txt", "p/x.txt", "p/in/y.tmp", "a/in/y.tmp"})
            ASSERT_TRUE(on.tree.write(name, std::string(100, name[std::strlen(name) - 1])));
    }
    void dropOn(QWidget& place, const Strings& names) {
        Strings paths;
        for (const std::string& each : names) paths.push_back(on.tree.at(each));
        testing::dropOn(place, paths);
    }
    ScopePanel& panel() { return on.control<ScopePanel>("scopePanel"); }
    bool hasFolders(const Strings& names) {
        Strings paths;
        for (const std::string& each : names) paths.push_back(on.tree.at(each));
        return on.waitFor([&] { return panel().scope().roots == paths; });
    }
    void protect(std::size_t row) {
        std::vector<TickBox*> boxes;
        for (TickBox* const box : panel().findChildren<TickBox*>(QStringLiteral("protectedBox")))
            boxes.push_back(box);
        boxes.at(row)->click();
    }
    bool search() {
        on.click("searchYes");
        return on.waitFor([&] { return on.page().bSearchFinished() && on.isShown("detailView"); });
    }
    std::string ticked() {
        std::string text;
        for (int g = 0; g < on.model().rowCount(); ++g) {
            const QModelIndex group = on.model().index(g, 0);
            for (int i = 0; i < on.model().rowCount(group); ++i) {
                const QVariant state = on.model().index(i, 0, group).data(TickModel::StateRole);
                text += !state.isValid() ? '-' : state.toInt() == 1 ? 'x' : '.';
            }
            text += ' ';
        }
        return text;
    }

    testing::PageWindow on;
};

TEST_F(SeveralFolders, AreSearchedAsOneAndProtectedOnesStay) {
    dropOn(on.control("dragView"), {"a", "p", "b/x.txt"});
    ASSERT_TRUE(hasFolders({"a", "p"})) << "a file is none";
    ASSERT_TRUE(on.waitFor([&] { return panel().y() == 0; })) << "it slides in";
    dropOn(panel(), {"b", "a"});
    ASSERT_TRUE(hasFolders({"a", "p", "b"}));
    protect(1);
    ASSERT_TRUE(search());
    EXPECT_EQ(on.textOf("titleLabel"), "5 files in 3 folders, selected 0 files in All.");
    ASSERT_EQ(on.model().rowCount(), 2);
    QTreeView& outline = on.control<QTreeView>("outline");
    outline.expandAll();
    const std::string clear = ticked();
    EXPECT_EQ(std::count(clear.begin(), clear.end(), '-'), 2) << "no box where it is protected";
    for (int g = 0; g < 2; ++g)
        for (int i = 0; i < on.model().rowCount(on.model().index(g, 0)); ++i) {
            const QModelIndex copy = on.model().index(i, 0, on.model().index(g, 0));
            if (copy.data(TickModel::StateRole).isValid()) continue;
            on.tick(copy);
            outline.setCurrentIndex(copy);
            QTest::keyClick(&outline, Qt::Key_Space);
            EXPECT_EQ(ticked(), clear);
            const std::string folder(lastPathComponent(folderOf(on.nameOf(copy))));
            const std::string entry = "Tick All Copies in \u201C" + folder + "\u201D";
            EXPECT_TRUE(on.chooseInMenu(outline, copy, entry.c_str()));
            EXPECT_EQ(ticked(), clear);
        }
    on.click("button");
    const std::string all = ticked();
    EXPECT_EQ(std::count(all.begin(), all.end(), 'x'), 3) << all;
    EXPECT_EQ(std::count(all.begin(), all.end(), '-'), 2);
    ASSERT_TRUE(on.remove());
    for (const char* name : {"a/x.txt", "b/x.txt", "a/in/y.tmp"})
        EXPECT_FALSE(testing::isThere(on.tree.at(name))) << name;
    for (const char* name : {"p/x.txt", "p/in/y.tmp"})
        EXPECT_TRUE(testing::isThere(on.tree.at(name))) << name;
}

TEST_F(SeveralFolders, ManyByKeyboardAlone) {
    Strings folders;
    for (int i = 0; i < 40; ++i) {
        folders.push_back("many/" + std::to_string(100 + i));
        ASSERT_TRUE(on.tree.write(folders.back() + "/x.txt", "the same in all"));
    }
    Strings paths;
    for (const std::string& each : folders) paths.push_back(on.tree.at(each));
    QWidget& first = on.control("pathChoseBtn");
    first.setFocus();
    QTest::keyClick(&first, Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_SOON(QApplication::focusWidget() == &on.control("addBtn") && panel().y() == 0);
    on.dialogs.willChoose(paths);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    ASSERT_SOON(panel().scope().roots.size() == 40);
    QTest::qWait(100);  // the last rows are laid out
    std::string way;
    const auto goTo = [&](const char* name, const std::string& path, Qt::Key key) {
        way.clear();
        for (int i = 0; i < 120; ++i) {
            const QWidget* const now = QApplication::focusWidget();
            if (now == nullptr) return false;
            const std::string place = now->accessibleDescription().toStdString();
            way += now->objectName().toStdString() + ' ' + place + '\n';
            if (now->objectName() == QLatin1String(name) && place == path)
                return !now->visibleRegion().isEmpty();
            QTest::keyClick(QApplication::focusWidget(), key);
        }
        return false;
    };
    ASSERT_TRUE(goTo("protectedBox", paths[39], Qt::Key_Backtab)) << way;
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    ASSERT_TRUE(goTo("protectedBox", paths[7], Qt::Key_Backtab)) << way;
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(panel().scope().protectedFolders, (Strings{paths[39], paths[7]}));
    ASSERT_TRUE(goTo("searchYes", "", Qt::Key_Tab)) << way;
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    ASSERT_SOON(on.page().bSearchFinished() && on.isShown("detailView"));
    ASSERT_EQ(on.model().rowCount(), 1);
    // Every way of ticking that has a key.
    QTreeView& outline = on.control<QTreeView>("outline");
    on.control("button").setFocus();
    QTest::keyClick(&on.control("button"), Qt::Key_Space);
    const auto tickedOf = [&](char sign) {
        const std::string all = ticked();
        return std::count(all.begin(), all.end(), sign);
    };
    EXPECT_EQ(std::pair(tickedOf('x'), tickedOf('-')), std::pair(38L, 2L));
    on.control("keepBtn").setFocus();
    QTest::keyClick(&on.control("keepBtn"), Qt::Key_Space);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    EXPECT_EQ(std::pair(tickedOf('x'), tickedOf('-')), std::pair(38L, 2L));
    outline.expandAll();
    for (int i = 0; i < 40; ++i) {
        outline.setCurrentIndex(on.model().index(i, 1, on.model().index(0, 0)));
        if (!on.model().index(i, 0, on.model().index(0, 0)).data(TickModel::StateRole).isValid())
            QTest::keyClick(&outline, Qt::Key_Space);
    }
    on.dialogs.willAnswer(0);
    on.control("stopBtn").setFocus();
    QTest::keyClick(&on.control("stopBtn"), Qt::Key_Space);
    ASSERT_SOON(on.textOf("removedLine").starts_with("38 removed"));
    for (std::size_t i = 0; i < 40; ++i)
        EXPECT_EQ(testing::isThere(paths[i] + "/x.txt"), i == 7 || i == 39) << i;
}

TEST_F(SeveralFolders, WhatIsWrongIsSaidAndWhatIsLeftOutIsNotFound) {
    on.click("scopeBtn");
    EXPECT_FALSE(on.isEnabled("searchYes")) << "nothing to search yet";
    on.dialogs.willChoose({on.tree.at("p"), on.tree.at("a"), on.tree.at("a/in")});
    on.click("addBtn");
    ASSERT_TRUE(hasFolders({"p", "a", "a/in"}));
    EXPECT_TRUE(on.isEnabled("searchYes"));
    const struct {
        const char* field;
        const char* text;
        const char* fault;
    } cases[] = {
        {"patternField", "x; a[b", "character 2"},
        {"patternField", " *.tmp ;; ", ""},
        {"smallestField", "many", "is no size"},
        {"smallestField", "1 KB", ""},
        {"largestField", "10", "larger than"},
        {"smallestField", "10", ""},
        {"largestField", "", ""},
    };
    for (const auto& [field, text, fault] : cases) {
        on.control<QLineEdit>(field).setText(QString::fromUtf8(text));
        EXPECT_NE(on.textOf("scopeFault").find(fault), std::string::npos) << text;
        EXPECT_EQ(on.isEnabled("searchYes"), *fault == '\0') << text;
        EXPECT_EQ(on.textOf("scopeFault").empty(), *fault == '\0') << text;
    }
    ASSERT_TRUE(search());
    EXPECT_EQ(on.model().rowCount(), 1);
    EXPECT_FALSE(on.isShown("onlyOneNote")) << "with patterns a/in is searched by itself";
    // The next single folder is a search of its own again.
    ASSERT_TRUE(on.search(on.tree.at("a")));
    EXPECT_FALSE(on.isShown("onlyOneNote"));
    EXPECT_EQ(on.model().rowCount(), 0);
}

TEST_F(SeveralFolders, ASearchIsKeptUnderItsName) {
    dropOn(on.control("dragView"), {"a", "p"});
    ASSERT_TRUE(hasFolders({"a", "p"}));
    protect(1);
    EXPECT_FALSE(on.isEnabled("saveBtn")) << "it needs a name";
    on.control<QLineEdit>("nameField").setText(QStringLiteral("Photos & more"));
    EXPECT_FALSE(on.isEnabled("keptBtn"));
    on.click("saveBtn");
    ASSERT_TRUE(on.waitFor([&] { return on.isEnabled("keptBtn"); }));
    const SearchScope kept = panel().scope();
    panel().setScope({});
    const auto choose = [&](int entry) {
        on.click("keptBtn");
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr) return false;
        menu->actions().at(entry)->trigger();
        menu->close();
        return true;
    };
    ASSERT_TRUE(choose(0));
    EXPECT_EQ(panel().scope(), kept);
    EXPECT_EQ(kept.protectedFolders, Strings{on.tree.at("p")});
    ASSERT_TRUE(choose(2));
    EXPECT_TRUE(on.waitFor([&] { return !on.isEnabled("keptBtn"); })) << "cleared";
    QTest::keyClick(&panel(), Qt::Key_Escape);
    EXPECT_TRUE(on.waitFor([&] { return !on.page().isBusy(); }));
}

}  // namespace
}  // namespace orrinvale
