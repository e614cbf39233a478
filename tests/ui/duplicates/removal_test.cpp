// Removals of real files: what goes, what stays, what the list and the sizes say afterwards, how a
// person stops one, the padlock, and what an ordinary user may not remove.
#include <QApplication>
#include <QLabel>
#include <QProcess>

#include "engine/base/UtilityObject.h"
#include "engine/cleaning/QnAuthorization.h"
#include "support/test.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/DuplicationLeftCell.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

using testing::PageWindow;

class Removal : public ::testing::Test {
protected:
    bool there(const std::string& name) const { return std::filesystem::exists(on.tree.at(name)); }
    struct Group {
        std::string name;
        int copies;
        std::size_t size;
    };
    /// Makes them in "f" and searches it.
    bool find(const std::vector<Group>& groups) {
        for (const auto& [name, copies, size] : groups)
            for (int i = 0; i < copies; ++i)
                EXPECT_TRUE(on.tree.write("f/" + std::string(1, char('a' + i)) + '/' + name,
                                          testing::someBytes(size, unsigned(size))));
        return on.search(on.tree.at("f"));
    }
    std::string size(int row) {
        return on.control<DuplicationLeftCell>(("leftCell" + std::to_string(row)).c_str())
            .sizeF()
            .toStdString();
    }
    /// How many of the copies of a name are on the disk.
    int copies(const std::string& name) const {
        int count = 0;
        for (const char* folder : {"f/a/", "f/b/", "f/c/", "f/d/"})
            count += there(folder + name) ? 1 : 0;
        return count;
    }
    /// The first ticked, or clear, copy of a group, below the tree; not the one of another name.
    std::string copy(const std::string& group, bool isTicked, const std::string& but = {}) {
        const QModelIndex parent = on.row(group);
        for (int c = 0; c < on.model().rowCount(parent); ++c) {
            const QModelIndex row = on.model().index(c, 0, parent);
            const std::string path = row.data(Qt::ToolTipRole)
                                         .toString()
                                         .toStdString()
                                         .substr(on.tree.path().size() + 1);
            const bool isIt =
                row.data(DuplicateResultModel::StateRole).toInt() == (isTicked ? 1 : 0);
            if ((isIt || !but.empty()) && path != but) return path;
        }
        return "no such copy";
    }
    PageWindow on;
};

TEST_F(Removal, KeepsListSizesAndDiskTrueInAViewOfOneType) {
    ASSERT_TRUE(find({{"two.jpg", 2, 1000},
                      {"three.png", 3, 2000},
                      {"both.gif", 2, 3000},
                      {"more.bmp", 4, 500},
                      {"text.txt", 2, 4000}}));
    EXPECT_EQ(size(0) + ' ' + size(5), "24.00 KB 16.00 KB");
    on.click("leftCell5");
    on.tick("two.jpg");
    on.tick("three.png", "b/three.png");
    on.tick("more.bmp");
    on.tick("both.gif", "a/both.gif");
    on.dialogs.willAnswer(0);
    on.tick("both.gif", "b/both.gif");
    ASSERT_SOON(on.list().find("both.gif 1 2/2: xx") != std::string::npos);
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(on.list(), "three.png 0 0/2: ..\n");
    EXPECT_EQ(on.textOf("titleLabel"), "2 files in Pictures, selected 0 file in All.");
    EXPECT_EQ(size(0) + ' ' + size(5), "12.00 KB 4.00 KB");
    EXPECT_EQ(std::to_string(copies("two.jpg")) + std::to_string(copies("three.png")) +
                  std::to_string(copies("both.gif")) + std::to_string(copies("more.bmp")) +
                  std::to_string(copies("text.txt")),
              "12012");
    EXPECT_FALSE(there("f/b/three.png"));
    EXPECT_EQ(QApplication::focusWidget(), &on.control("outline"));
    on.click("leftCell0");
    EXPECT_EQ(on.model().rowCount(), 2);
    EXPECT_EQ(on.textOf("titleLabel"), "4 files in f, selected 0 files in All.");
    // The rest goes too: words take the place of the list.
    on.click("button");
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(on.textOf("emptyLabel"), "No duplicates are left here.");
    EXPECT_TRUE(on.isShown("otherFolderBtn"));
    EXPECT_EQ(size(0), "0.0KB");
    EXPECT_EQ(copies("three.png") + copies("text.txt"), 2);
}

TEST_F(Removal, StopsBetweenTwoFilesAndForgetsTheRestInAllViews) {
    ASSERT_TRUE(find({{"four.txt", 4, 1000}, {"other.jpg", 4, 2000}}));
    on.tick("four.txt");
    // Given up between the person's yes and the first file, it does not begin.
    on.dialogs.willAnswer(0);
    on.click("stopBtn");
    ASSERT_TRUE(on.waitFor([&] { return on.page().isBusy(); }));
    on.page().giveUp();
    QTest::qWait(600);
    EXPECT_TRUE(!on.page().isBusy() && on.isEnabled("stopBtn"));
    ASSERT_EQ(copies("four.txt"), 4);
    ASSERT_TRUE(on.remove([&] {
        EXPECT_TRUE(on.isShown("stopRemoveBtn") && on.isShown("loadPathView") &&
                    on.isShown("removalView"));
        EXPECT_FALSE(on.isShown("stopBtn") || on.isShown("outline"));
        for (const char* const name : {"openBtn", "RevealFinder", "lockButton", "backButton"})
            EXPECT_FALSE(on.isEnabled(name)) << name;
        EXPECT_SOON(on.textOf("nameTextStr").ends_with("four.txt"));
        EXPECT_EQ(on.textOf("countsLabel"), "Compared again and removed: 0 of 3");
        EXPECT_FALSE(on.control<QLabel>("imageView").pixmap(Qt::ReturnByValue).isNull());
        // None of these may reach the tree while it changes.
        on.click("leftCell5");
        EXPECT_EQ(on.model().rowCount(), 0);
        on.click("leftCell0");
        on.page().setAllSelectOrNoSelect();
        on.page().searchBtnClicked();
        on.page().backButtonAction();
        EXPECT_TRUE(on.isShown("detailView"));
        on.click("stopRemoveBtn");
        EXPECT_FALSE(on.isShown("titleLabel") || on.isShown("openBtn"));
    }));
    EXPECT_EQ(copies("four.txt"), 3) << "the file in hand is finished";
    EXPECT_EQ(on.list().substr(on.list().find("four")), "four.txt 0 0/3: ...\n");
    EXPECT_EQ(on.dialogs.alerts().size(), 2U) << "no word about what was not tried";
    EXPECT_EQ(on.textOf("titleLabel"), "7 files in f, selected 0 file in All.");
    for (const char* const name : {"openBtn", "RevealFinder", "lockButton", "backButton"})
        EXPECT_TRUE(on.isShown(name) && on.isEnabled(name)) << name;
    EXPECT_TRUE(on.isShown("stopBtn") && on.isShown("outline"));
    EXPECT_FALSE(on.isEnabled("stopBtn") || on.isShown("stopRemoveBtn") ||
                 on.isShown("failureLine"));
    EXPECT_EQ(size(0), "11.00 KB");
    // The ticks of all views are forgotten, whichever is shown.
    on.click("button");
    on.click("leftCell6");
    ASSERT_TRUE(on.remove([&] { on.click("stopRemoveBtn"); }));
    for (const auto& [row, name] :
         {std::pair("leftCell1", "four.txt"), std::pair("leftCell5", "other.jpg")}) {
        on.click(row);
        const std::string left = std::to_string(copies(name));
        EXPECT_EQ(on.list(), std::string(name) + " 0 0/" + left + ": " +
                                 std::string(std::stoul(left), '.') + '\n')
            << "a box that is ticked and does not count";
    }
}

TEST_F(Removal, TellsOfWhatCouldNotGoAndWhy) {
    ASSERT_TRUE(find({{"three.txt", 3, 1000}, {"two.jpg", 2, 2000}}));
    on.click("button");
    const std::string changed = copy("three.txt", true), kept = copy("two.jpg", false);
    ASSERT_TRUE(on.tree.patch(changed, 3, "changed") && on.tree.patch(kept, 3, "changed"));
    on.dialogs.willAnswer(0);
    on.dialogs.willAnswer(0);
    on.click("stopBtn");
    ASSERT_SOON(on.dialogs.alerts().size() == 2 && on.page().bSearchFinished());
    ASSERT_EQ(on.dialogs.alerts().size(), 2U);
    EXPECT_EQ(on.dialogs.alerts()[0].title,
              QStringLiteral("Are you sure you want to delete all your selected files?"));
    // Nobody's rights would change it, so that the padlock is not pointed at.
    EXPECT_EQ(on.dialogs.alerts()[1].title, QStringLiteral("2 could not be removed"));
    EXPECT_EQ(on.dialogs.alerts()[1].text,
              QStringLiteral("1: changed since the scan\n1: no other verified copy is left"));
    EXPECT_EQ(on.dialogs.alerts()[1].buttons, QStringList{QStringLiteral("OK")});
    EXPECT_EQ(on.textOf("failureLine"), "2 could not be removed");
    const std::string lines = on.linesBehind("failureLine");
    EXPECT_EQ(lines, "changed since the scan (1)\n    " + on.tree.at(changed) +
                         "\nno other verified copy is left (1)\n    " +
                         on.tree.at(copy("two.jpg", true, kept)));
    EXPECT_EQ(copies("two.jpg") + copies("three.txt"), 4);
    EXPECT_EQ(on.textOf("titleLabel"), "4 files in f, selected 0 file in All.");
    EXPECT_EQ(on.list().find('x', on.list().rfind('/')), std::string::npos)
        << "unticked, to start afresh";
}

TEST_F(Removal, WhatLeavesTheListLeavesTheSelection) {
    ASSERT_TRUE(find({{"two.jpg", 2, 1000}, {"more.txt", 2, 3000}}));
    // The copy that the box leaves alone is ticked by hand: both are, and the second one has no
    // other to stay.
    on.tick(on.model().index(1, 0, on.row("two.jpg")));
    on.click("leftCell5");
    on.click("button");
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(copies("two.jpg"), 1);
    EXPECT_EQ(on.textOf("failureLine"), "1 could not be removed");
    EXPECT_EQ(on.textOf("titleLabel"), "0 files in Pictures, selected 0 file in All.");
    on.click("leftCell0");
    EXPECT_EQ(on.textOf("titleLabel"), "2 files in f, selected 0 files in All.");
    on.click("leftCell1");
    on.tick("more.txt");
    on.click("button");
    on.click("button");
    EXPECT_EQ(on.textOf("titleLabel"), "2 files in Documents, selected 0 file in All.");
}

TEST_F(Removal, ThePageMayEndMeanwhile) {
    ASSERT_TRUE(find({{"four.txt", 4, 1000}}));
    on.tick("four.txt");
    on.dialogs.willAnswer(0);
    on.removing.shut();
    on.click("stopBtn");
    ASSERT_SOON(on.removing.isWaitedAt());
    on.window.reset();
    on.removing.open();
    EXPECT_SOON(copies("four.txt") == 3) << "the file in hand is finished";
    QTest::qWait(100);
    EXPECT_EQ(copies("four.txt"), 3);
}

TEST_F(Removal, ThePadlockHoldsTheRightAndSaysWhy) {
    ASSERT_TRUE(on.tree.folder("f"));
    ASSERT_TRUE(on.search(on.tree.at("f")));
    const auto isOpen = [] { return UtilityObject::getMyObject().isOpenLocked.load(); };
    auto& padlock = on.control<TCImageButton>("lockButton");
    on.authorization.failures["copyRights"] = AuthorizationStatus::canceled;
    on.authorization.refusal = AuthorizationRefusal::Dismissed;
    on.click("lockButton");
    EXPECT_SOON(padlock.isEnabled());
    EXPECT_FALSE(isOpen() || padlock.isChecked());
    EXPECT_TRUE(padlock.toolTip().contains(QLatin1Char('\n'))) << "the reason stands below";
    EXPECT_EQ(QApplication::focusWidget(), &padlock) << "where the person was before the dialog";
    on.authorization.failures.clear();
    int changes = 0;
    const auto observation =
        on.notifications.addObserver("changeLockState", [&](const Notification&) { ++changes; });
    on.click("lockButton");
    EXPECT_SOON(isOpen());
    EXPECT_TRUE(padlock.isChecked() && QnAuthorization::shareQnAuthorization().isValidAuth);
    on.click("lockButton");
    EXPECT_FALSE(isOpen() || padlock.isChecked() ||
                 QnAuthorization::shareQnAuthorization().isValidAuth);
    EXPECT_EQ(changes, 2);
}

// In a process of its own as an ordinary user, on a tree that root has prepared.
TEST(RemovalAsUser, InTheOtherProcess) {
    const std::string tree = qEnvironmentVariable("ORRINVALE_TEST_TREE").toStdString();
    if (tree.empty()) GTEST_SKIP() << "run by RemovalAsUser.LeavesWhatBelongsToRoot";
    ASSERT_NE(geteuid(), 0U);
    PageWindow on;
    ASSERT_TRUE(on.search(tree));
    EXPECT_EQ(on.textOf("quietLine"), "1 entry could not be read");
    on.tick("mine.txt");
    on.tick("roots.txt");
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(on.dialogs.alerts().back().title,
              QStringLiteral("Some files that require admin access can't be removed!"));
    EXPECT_EQ(on.textOf("removedLine"), "2 removed, 0.03 KB");
    EXPECT_EQ(on.textOf("failureLine"), "2 could not be removed");
    EXPECT_EQ(on.list(), "roots.txt 0 0/3: ...\n");
    EXPECT_EQ(on.textOf("titleLabel"),
              "3 files in " + tree.substr(tree.rfind('/') + 1) + ", selected 0 file in All.");
}

TEST(RemovalAsUser, LeavesWhatBelongsToRoot) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root, who makes files that others may not remove";
    TestTree tree;
    constexpr uid_t nobody = 65534;
    for (const char* folder : {"f/a", "f/b", "f/c"}) {
        const std::string in = folder;
        ASSERT_TRUE(tree.write(in + "/mine/mine.txt", "mine, three times"));
        ASSERT_TRUE(tree.write(in + "/roots/roots.txt", "of root, three times"));
        ASSERT_TRUE(tree.setMode(in + "/roots", 0755) &&
                    tree.setMode(in + "/roots/roots.txt", 0644));
        for (const std::string& mine : {in + "/mine", in + "/mine/mine.txt"})
            ASSERT_EQ(chown(tree.at(mine).c_str(), nobody, nobody), 0);
        ASSERT_TRUE(tree.setMode(in, 0755));
    }
    ASSERT_TRUE(tree.folder("f/closed") && tree.setMode("f/closed", 0700) &&
                tree.setMode("f", 0755));
    ASSERT_EQ(chmod(tree.path().c_str(), 0755), 0);
    QProcess other;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ORRINVALE_TEST_TREE"), QString::fromStdString(tree.at("f")));
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/tmp"));
    other.setProcessEnvironment(environment);
    other.setProcessChannelMode(QProcess::MergedChannels);
    other.setChildProcessModifier([] {
        if (setgid(nobody) != 0 || setuid(nobody) != 0) _exit(126);
    });
    other.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--gtest_filter=RemovalAsUser.InTheOtherProcess")});
    ASSERT_TRUE(other.waitForFinished(60'000)) << other.errorString().toStdString();
    const std::string said = other.readAll().toStdString();
    EXPECT_EQ(other.exitCode(), 0) << said;
    EXPECT_NE(said.find("1 test from 1 test suite ran"), std::string::npos) << said;
    const auto left = [&](const std::string& name) {
        int count = 0;
        for (const char* folder : {"f/a", "f/b", "f/c"})
            count += std::filesystem::exists(tree.at(folder + name)) ? 1 : 0;
        return count;
    };
    EXPECT_EQ(left("/mine/mine.txt"), 1);
    EXPECT_EQ(left("/roots/roots.txt"), 3);
}

}  // namespace
}  // namespace orrinvale
