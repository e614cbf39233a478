// The way to the trash and back: what the question says, what moves, what undo brings back and what
// it tells of.
#include <QApplication>
#include <QMenu>

#include "engine/duplicates/plan/PlanHistory.h"
#include "engine/settings/SettingsKeys.h"
#include "support/ScopedVariable.h"
#include "support/test.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

class ToTrash : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"f/a/two.txt", "f/b/two.txt"})
            ASSERT_TRUE(on.tree.write(name, testing::someBytes(3000, 1)));
        for (const char* name : {"f/a/three.jpg", "f/b/three.jpg", "f/c/three.jpg"})
            ASSERT_TRUE(on.tree.write(name, testing::someBytes(1000, 2)));
        ASSERT_TRUE(on.search(on.tree.at("f")));
    }
    bool there(const char* name) const { return isThere(on.tree.at(name)); }
    std::string trash(const std::string& name) const { return home.at("Trash/" + name); }
    std::string asked() { return on.dialogs.alerts().back().text.toStdString(); }
    /// Presses the button, of the menu of ways the second, gives the answer, and waits until
    /// all is over.
    bool move(const char* button, int answer = 0) {
        on.dialogs.willAnswer(answer);
        on.click(button);
        if (auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            menu->actions().at(1)->trigger();
            menu->close();
        }
        if (!on.waitFor([this] { return !on.page().bSearchFinished(); })) return false;
        EXPECT_FALSE(on.isShown("undoBtn") || on.isShown("againBtn")) << "there is nothing yet";
        return rests();
    }
    /// By its key where no menu was open before, which takes the activation of the window here.
    bool undo(bool byKey = false) {
        if (byKey) QTest::keyClick(&on.control("outline"), Qt::Key_Z, Qt::ControlModifier);
        else on.click("undoBtn");
        return on.waitFor([this] { return on.textOf("removedLine").find("back") < 30; }) && rests();
    }
    bool rests() {
        return on.waitFor([this] { return on.page().bSearchFinished(); });
    }

    TestTree home;
    testing::ScopedVariable data{"XDG_DATA_HOME", home.path()};
    testing::PageWindow on;
};

TEST_F(ToTrash, WhatMovesComesBackWithItsTimes) {
    on.tick("two.txt", "a/two.txt");
    on.tick("three.jpg", "c/three.jpg");
    EXPECT_TRUE(on.isShown("otherWayBtn"));
    const auto before = attributesOf(on.tree.at("f/a/two.txt"));
    ASSERT_TRUE(move("otherWayBtn"));
    EXPECT_EQ(on.dialogs.alerts().back().title, QStringLiteral("Move 2 files to the trash?"));
    EXPECT_FALSE(on.dialogs.alerts().back().isDestructive);
    EXPECT_EQ(asked(),
              "4.00 KB in all. What is moved can be brought back until the trash is emptied.");
    EXPECT_FALSE(there("f/a/two.txt") || there("f/c/three.jpg"));
    EXPECT_TRUE(isThere(trash("files/two.txt")));
    EXPECT_EQ(on.textOf("removedLine"), "2 files, 4.00 KB moved");
    EXPECT_EQ(on.list(), "three.jpg 0 0/2: ..\n");
    EXPECT_TRUE(on.isShown("undoBtn") && !on.isShown("againBtn"));

    ASSERT_TRUE(undo());
    EXPECT_TRUE(there("f/a/two.txt") && there("f/c/three.jpg"));
    const auto after = attributesOf(on.tree.at("f/a/two.txt"));
    EXPECT_TRUE(after.inode == before.inode && after.modified == before.modified);
    EXPECT_TRUE(namesIn(trash("files")).empty() && namesIn(trash("info")).empty());
    EXPECT_EQ(on.textOf("removedLine"), "2 files are back");
    EXPECT_FALSE(on.isShown("undoBtn") || on.isShown("failureLine"));
    EXPECT_EQ(on.window->window()->focusWidget(), &on.control("againBtn"));
    on.click("againBtn");
    ASSERT_SOON(on.page().bSearchFinished() && on.model().rowCount() == 2);
    EXPECT_FALSE(on.isShown("removedLine") || on.isShown("againBtn"));
}

TEST_F(ToTrash, TheQuestionTellsOfGroupsThatLoseAllCopiesAndHasTheTrashBesideTheRemoval) {
    on.tick("two.txt", "a/two.txt");
    on.dialogs.willAnswer(0);
    on.tick("two.txt", "b/two.txt");
    ASSERT_SOON(on.textOf("titleLabel").find("selected 2") != std::string::npos);
    on.dialogs.willAnswer(1);
    QTest::keyClick(&on.control("outline"), Qt::Key_Delete);
    EXPECT_EQ(asked(), "2 files, 6.00 KB, go for good.\n1 group loses all its copies.");
    QCoreApplication::processEvents();
    EXPECT_TRUE(there("f/a/two.txt") && there("f/b/two.txt"));
    constexpr int trashInstead = 2;
    ASSERT_TRUE(move("stopBtn", trashInstead));
    EXPECT_FALSE(there("f/a/two.txt") || there("f/b/two.txt"));
    ASSERT_TRUE(undo(true)) << "a person's own word is undone as well";
    EXPECT_TRUE(there("f/a/two.txt") && there("f/b/two.txt"));
}

TEST_F(ToTrash, WhatCanNotComeBackIsToldWithItsPlace) {
    on.click("button");
    ASSERT_TRUE(move("otherWayBtn"));
    Strings gone;
    for (const char* name :
         {"f/a/two.txt", "f/b/two.txt", "f/a/three.jpg", "f/b/three.jpg", "f/c/three.jpg"})
        if (!there(name)) gone.emplace_back(name);
    ASSERT_EQ(gone.size(), 3U);
    const auto text = std::ranges::find_if(gone, [](auto& each) { return each.ends_with("txt"); });
    std::filesystem::remove(trash("files/two.txt"));
    gone.erase(text);
    ASSERT_TRUE(on.tree.write(gone[0], "came since"));
    ASSERT_TRUE(undo());
    EXPECT_EQ(on.textOf("removedLine"), "1 file is back");
    EXPECT_EQ(on.textOf("failureLine"), "2 could not be brought back");
    const std::string lines = on.linesBehind("failureLine");
    EXPECT_NE(lines.find("it is not in the trash any more (1)"), std::string::npos) << lines;
    EXPECT_NE(lines.find("its name is taken by now (1)\n    " + on.tree.at(gone[0]) +
                         ", in the trash as " + trash("files/")),
              std::string::npos)
        << lines;
    EXPECT_EQ(contentOf(on.tree.at(gone[0])), "came since");
}

TEST_F(ToTrash, ASettingSaysWhichWayIsFirst) {
    on.tick("two.txt");
    EXPECT_EQ(on.textOf("stopBtn"), "Remove 1 \xC2\xB7 3.00 KB");
    on.settings().setBool(true, trashFirstKey);
    QEvent activated(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&on.control("detailView"), &activated);
    EXPECT_EQ(on.textOf("stopBtn"), "Move 1 to Trash \xC2\xB7 3.00 KB");
    ASSERT_TRUE(move("stopBtn"));
    EXPECT_EQ(namesIn(trash("files")), Strings{"two.txt"});
    on.tick("three.jpg", "c/three.jpg");
    ASSERT_TRUE(move("otherWayBtn"));
    EXPECT_EQ(on.textOf("removedLine"), "1 removed, 1.00 KB");
    EXPECT_FALSE(on.isShown("undoBtn"));
    EXPECT_EQ(namesIn(trash("files")), Strings{"two.txt"});
}

TEST_F(ToTrash, NothingMovesThatCouldNotBeUndone) {
    std::filesystem::create_directories(on.stateFolder());
    std::ofstream(on.stateFolder() + "/removed") << "in the way";
    on.tick("two.txt");
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(move("otherWayBtn"));
    EXPECT_EQ(on.dialogs.alerts().back().title, QStringLiteral("1 could not be moved"));
    EXPECT_EQ(asked(), "1: it could not be noted for undo");
    EXPECT_TRUE(there("f/a/two.txt") && there("f/b/two.txt") && !on.isShown("undoBtn"));
}

}  // namespace
}  // namespace orrinvale
