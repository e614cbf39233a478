// The large file page on real folders: a scan, ticks, a removal, what is told of them, and how a
// person gets about.
#include <gtest/gtest.h>
#include <sys/fsuid.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <atomic>

#include "ui/largefiles/FileNodeModel.h"
#include "ui/support/LargePage.h"

namespace orrinvale {
namespace {

using testing::LargePage;

constexpr uid_t nobody = 65534;

class LargeFilePage : public ::testing::Test {
protected:
    bool makeFolder() {
        return on.tree.sparse("f/movie.mkv", 5'000'000) &&
               on.tree.sparse("f/photos/new/lake.png", 900'000) &&
               on.tree.sparse("f/photos/old.png", 600'000) &&
               on.tree.sparse("f/Viewer.app/viewer", 700'000) &&
               on.tree.write("f/notes.txt", std::string(1'500, 'n')) &&
               on.tree.hardLink("f/notes.txt", "f/same.txt");
    }
    bool isThere(const std::string& name) { return testing::isThere(on.tree.at(name)); }
    bool choose(const std::string& row, const char* entry) {
        return on.chooseInMenu(on.outline(), on.row(row), entry);
    }

    LargePage on;
};

TEST_F(LargeFilePage, ShowsTheBiggestFirstAndRemovesWhatIsTicked) {
    ASSERT_TRUE(makeFolder());
    EXPECT_TRUE(on.isShown("aLoadView"));
    on.choose({on.tree.at("f"), on.tree.at("g")});
    EXPECT_EQ(on.dialogs.choices().back().title, QStringLiteral("Choose a path to search"));
    EXPECT_TRUE(on.isShown("stopScanButton"));
    ASSERT_TRUE(on.waitFor([&] { return !on.page().isScan(); }));
    on.choose({on.tree.at("gone while the panel stood")});
    EXPECT_EQ(on.list(),
              ". movie.mkv 5.00 MB\n. photos 1.50 MB\n. Viewer.app 700.00 KB\n. same.txt 1.50 "
              "KB\n. notes.txt 1.50 KB\n");
    EXPECT_FALSE(on.isShown("stopScanButton") || on.isShown("progressLabel") ||
                 on.isEnabled("deleteButton"));
    const QModelIndex notes = on.row("notes.txt").siblingAtColumn(FileNodeModel::Size);
    EXPECT_TRUE(notes.data(Qt::ToolTipRole)
                    .toString()
                    .endsWith(QStringLiteral(
                        "\nOne of 2 names of one file; its space is free when all are gone")));
    EXPECT_EQ(
        on.row("movie.mkv").siblingAtColumn(FileNodeModel::Size).data(Qt::ToolTipRole).toString(),
        QStringLiteral("5.00 MB, 0 byte on disk"));

    on.open("photos");
    on.tick("new");
    on.tick("movie.mkv");
    EXPECT_EQ(on.list(),
              "x movie.mkv 5.00 MB\n- photos 1.50 MB\n  x new 900.00 KB\n  . old.png 600.00 KB\n. "
              "Viewer.app 700.00 KB\n"
              ". same.txt 1.50 KB\n. notes.txt 1.50 KB\n");
    on.dialogs.willAnswer(1);
    on.click("deleteButton");
    QTest::qWait(700);
    EXPECT_TRUE(isThere("f/movie.mkv")) << "nobody agreed";

    ASSERT_TRUE(on.remove([&](QWidget& progressWindow) {
        EXPECT_EQ(progressWindow.windowModality(), Qt::ApplicationModal);
        const auto& path = *progressWindow.findChild<QLabel*>(QStringLiteral("pathLabel"));
        EXPECT_TRUE(
            on.waitFor([&] { return path.text().toStdString() == on.tree.at("f/movie.mkv"); }));
        // Whoever gets past the window changes nothing.
        on.page().setAllSelectOrNoSelect();
        on.page().backButtonAction();
        EXPECT_FALSE(on.isEnabled("deleteButton"));
    }));
    EXPECT_FALSE(isThere("f/movie.mkv") || isThere("f/photos/new"));
    EXPECT_TRUE(isThere("f/photos/old.png") && isThere("f/Viewer.app/viewer"));
    EXPECT_EQ(on.list(),
              ". photos 1.50 MB\n  . old.png 600.00 KB\n. Viewer.app 700.00 KB\n. same.txt 1.50 "
              "KB\n. notes.txt 1.50 KB\n");
    EXPECT_FALSE(on.isShown("failureLine") || on.isEnabled("deleteButton"));
    EXPECT_EQ(on.textOf("removedLabel"), "2 removed, 5.90 MB");

    on.click("selectAllButton");
    EXPECT_EQ(on.list().find(". "), std::string::npos) << "all boxes are ticked";
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(on.textOf("emptyLabel"), "Nothing is left in this folder.");
    EXPECT_EQ(on.textOf("removedLabel"), "4 removed, 1.30 MB")
        << "a file with two names counts once";
    EXPECT_FALSE(isThere("f/notes.txt") || isThere("f/photos"));
}

TEST_F(LargeFilePage, TicksInThreeStatesDownToWhatIsOpened) {
    ASSERT_TRUE(makeFolder() && on.scan(on.tree.at("f")));
    on.tick("photos");
    on.open("photos");
    EXPECT_NE(on.list().find("x photos 1.50 MB\n  x new"), std::string::npos)
        << "the tick reaches what comes into view";
    on.tick("old.png");
    EXPECT_NE(on.list().find("- photos"), std::string::npos);
    on.tick("photos");
    EXPECT_NE(on.list().find("x photos 1.50 MB\n  x new 900.00 KB\n  x old.png"), std::string::npos)
        << "a click on a mixed box selects";
    on.tick("new");
    const std::string mixed = on.list();
    on.outline().collapse(on.row("photos"));
    on.outline().expand(on.row("photos"));
    EXPECT_EQ(on.list(), mixed) << "opening a mixed folder leaves the boxes in it alone";
    on.tick("photos");
    // A bundle has no inside.
    on.open("Viewer.app");
    EXPECT_FALSE(on.outline().isExpanded(on.row("Viewer.app")));
    on.click("selectAllButton");
    EXPECT_EQ(on.list().find(". "), std::string::npos) << "from some to all";
    on.click("selectAllButton");
    EXPECT_EQ(on.list().find("x "), std::string::npos);
    EXPECT_FALSE(on.isEnabled("deleteButton"));
}

TEST_F(LargeFilePage, IsTickedAndLookedAtByTheKeyboard) {
    ASSERT_TRUE(makeFolder() && on.scan(on.tree.at("f")));
    EXPECT_EQ(QApplication::focusWidget(), &on.outline());
    QTest::keyClick(&on.outline(), Qt::Key_Down);
    QTest::keyClick(&on.outline(), Qt::Key_Space);
    EXPECT_EQ(on.list().substr(0, 2), "x ");
    QTest::keyClick(&on.outline(), Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(on.window.window->filePath(), on.tree.at("f/movie.mkv"));
    on.window.window->quickLookWithPath({});
    QTest::keyClick(&on.outline(), Qt::Key_Down);
    QTest::keyClick(&on.outline(), Qt::Key_Right);
    EXPECT_TRUE(on.outline().isExpanded(on.row("photos")));
    EXPECT_FALSE(on.outline().selectionModel()->hasSelection())
        << "opening takes the highlight away";
    QTest::keyClick(&on.outline(), Qt::Key_Asterisk);
    EXPECT_FALSE(on.outline().isExpanded(on.row("new")));
    QTest::keyClick(&on.outline(), Qt::Key_Left);
    EXPECT_FALSE(on.outline().isExpanded(on.row("photos")));
}

TEST_F(LargeFilePage, OpensWhatARowIsAskedFor) {
    ASSERT_TRUE(makeFolder() && on.scan(on.tree.at("f")));
    on.clickCell("photos", FileNodeModel::OpenFinder);
    EXPECT_EQ(on.revealed, std::vector<std::string>{on.tree.at("f/photos")});
    on.clickCell("photos", FileNodeModel::Pareview);
    EXPECT_EQ(on.window.window->filePath(), "");
    on.clickCell("notes.txt", FileNodeModel::Pareview);
    EXPECT_EQ(on.window.window->filePath(), on.tree.at("f/notes.txt"));
    on.window.window->quickLookWithPath({});

    EXPECT_FALSE(choose("photos", "Preview"));
    EXPECT_TRUE(choose("movie.mkv", "Copy Path"));
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), on.tree.at("f/movie.mkv"));
    EXPECT_TRUE(choose("movie.mkv", "Show in Folder"));
    EXPECT_EQ(on.revealed.back(), on.tree.at("f/movie.mkv"));
}

TEST_F(LargeFilePage, MovesARowToTheTrashAndSaysWhyItCouldNot) {
    ASSERT_TRUE(makeFolder());
    const QByteArray dataBefore = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(on.tree.at("data")));
    on.setOwnFiles({on.tree.at("f/movie.mkv")});
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    on.open("photos");
    on.tick("old.png");
    EXPECT_TRUE(choose("old.png", "Move to Trash"));
    ASSERT_TRUE(on.waitFor([&] { return on.list().find("old.png") == std::string::npos; }));
    EXPECT_FALSE(isThere("f/photos/old.png"));
    EXPECT_TRUE(isThere("data/Trash/files/old.png"));
    EXPECT_NE(on.list().find(". photos"), std::string::npos)
        << "nothing below it is ticked any more";
    EXPECT_FALSE(on.isEnabled("deleteButton"));

    on.dialogs.willAnswer(0);
    EXPECT_TRUE(choose("movie.mkv", "Move to Trash"));
    ASSERT_TRUE(on.waitFor([&] { return !on.dialogs.alerts().empty(); }));
    EXPECT_TRUE(isThere("f/movie.mkv"));
    EXPECT_NE(on.list().find("movie.mkv"), std::string::npos);
    EXPECT_TRUE(on.dialogs.alerts().back().text.startsWith(
        QString::fromStdString(on.tree.at("f/movie.mkv") + '\n')));
    if (dataBefore.isNull()) qunsetenv("XDG_DATA_HOME");
    else qputenv("XDG_DATA_HOME", dataBefore);
}

TEST_F(LargeFilePage, TakesNoTicksDuringAScanAndKeepsWhatItFoundWhenItIsStopped) {
    ASSERT_TRUE(makeFolder());
    std::atomic<int> reads{0};
    on.window.files.onReadFolder = [&] {
        // The chosen folder is read in one go; what lies below it waits.
        if (++reads > 2) on.window.reading.pass();
    };
    on.window.reading.shut();
    on.choose({on.tree.at("f")});
    ASSERT_TRUE(on.waitFor([&] { return on.window.reading.isWaitedAt() && on.list().size() > 20; }))
        << on.list();
    EXPECT_TRUE(on.page().isScan() && on.isShown("progressView") && on.isShown("progressLabel"));
    on.tick("movie.mkv");
    on.click("selectAllButton");
    on.page().deleteFiles();
    EXPECT_EQ(on.list().find('x'), on.list().find("txt") + 1) << on.list();
    EXPECT_FALSE(on.isEnabled("deleteButton"));
    on.click("stopScanButton");
    EXPECT_FALSE(on.page().isScan() || on.isShown("stopScanButton") || on.isShown("progressLabel"));
    EXPECT_EQ(on.control("listView").findChild<QProgressBar*>(), nullptr);
    on.tick("movie.mkv");
    EXPECT_EQ(on.list().substr(0, 11), "x movie.mkv");
    on.window.reading.open();

    on.click("backHomeButton");
    EXPECT_TRUE(on.isShown("aLoadView") && !on.isShown("listView"));
    ASSERT_TRUE(on.scan(on.tree.at("f/photos")));
    EXPECT_EQ(on.list(), ". new 900.00 KB\n. old.png 600.00 KB\n");
    EXPECT_EQ(on.textOf("titleLabel"), on.tree.at("f/photos"));
}

TEST_F(LargeFilePage, SaysOfAnEmptyListWhetherTheFolderIsEmptyToo) {
    const auto says = [&](const char* words) {
        return on.waitFor([&] { return on.isShown("emptyLabel"); }) &&
               on.textOf("emptyLabel") == words;
    };
    ASSERT_TRUE(on.tree.folder("empty"));
    on.choose({on.tree.at("empty")});
    EXPECT_TRUE(says("This folder is empty."));
    EXPECT_EQ(on.textOf("progressLabel"), "0.0%");
    EXPECT_TRUE(on.page().isScan()) << "until it is stopped";
    on.click("stopScanButton");
    EXPECT_FALSE(on.page().isScan());
    EXPECT_TRUE(says("This folder is empty."));
    on.click("backHomeButton");

    ASSERT_TRUE(on.tree.write("f/gone", "1") && on.tree.write("f/stays", "1"));
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    ASSERT_TRUE(on.tree.patch("f/stays", 0, "2"));
    on.click("selectAllButton");
    ASSERT_TRUE(on.remove());
    ASSERT_TRUE(isThere("f/stays") && !isThere("f/gone"));
    EXPECT_TRUE(says("The list is empty. A new scan shows what stayed in this folder."));
    on.page().viewDragAction(on.tree.at("f"));
    ASSERT_TRUE(on.waitFor([&] { return !on.page().isScan(); }));
    on.click("selectAllButton");
    ASSERT_TRUE(on.remove());
    EXPECT_TRUE(says("Nothing is left in this folder."));
}

TEST_F(LargeFilePage, ThePreviewGoesOnToTheNextFile) {
    ASSERT_TRUE(makeFolder());
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    on.clickCell("movie.mkv", FileNodeModel::Pareview);
    ASSERT_TRUE(on.window.isShown("previewPanel"));
    for (const auto& [key, name] :
         {std::pair(Qt::Key_Down, "same.txt"), std::pair(Qt::Key_Down, "notes.txt"),
          std::pair(Qt::Key_Down, "notes.txt"), std::pair(Qt::Key_Up, "same.txt")}) {
        QTest::keyClick(&on.window.control("previewPanel"), key);
        EXPECT_EQ(on.window.window->filePath(), on.tree.at("f/" + std::string(name)))
            << "folders have no preview";
    }
}

TEST_F(LargeFilePage, TellsWhatCouldNotBeRead) {
    ASSERT_TRUE(on.tree.write("f/locked/secret.txt", "some words") &&
                on.tree.setMode("f/locked", 0) && on.tree.setMode("f", 0755) &&
                on.tree.setMode(".", 0755));
    // The threads of the scan take over whose rights this one has on files.
    const int before = ::setfsuid(nobody);
    const bool isScanned = on.scan(on.tree.at("f"));
    ::setfsuid(static_cast<uid_t>(before));
    ASSERT_TRUE(isScanned);
    EXPECT_EQ(on.list(), ". locked 0 byte\n");
    EXPECT_EQ(on.textOf("quietLine"), "1 entry could not be read");
    EXPECT_EQ(on.linesBehind("quietLine"), "Permission denied: " + on.tree.at("f/locked"));
}

TEST_F(LargeFilePage, StopsARemovalBetweenTwoNodesAndTellsOfFailures) {
    ASSERT_TRUE(makeFolder());
    on.setOwnFiles({on.tree.at("f/movie.mkv")});
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    on.tick("movie.mkv");
    on.tick("notes.txt");
    ASSERT_TRUE(on.remove());
    EXPECT_TRUE(isThere("f/movie.mkv"));
    EXPECT_FALSE(isThere("f/notes.txt"));
    EXPECT_EQ(on.list().find("movie.mkv"), std::string::npos) << "it leaves the list all the same";
    EXPECT_EQ(on.textOf("failureLine"), "1 could not be removed; a new scan will show it again");
    EXPECT_NE(on.linesBehind("failureLine").find("    " + on.tree.at("f/movie.mkv")),
              std::string::npos);

    on.click("selectAllButton");
    ASSERT_TRUE(on.remove([&](QWidget& progressWindow) {
        QTest::keyClick(&progressWindow, Qt::Key_Escape);
        EXPECT_TRUE(progressWindow.isVisible()) << "the file in hand is finished first";
        EXPECT_FALSE(progressWindow.findChild<QWidget*>(QStringLiteral("stopButton"))->isEnabled());
    }));
    // What is left of the folder in hand stays in the list.
    EXPECT_TRUE(isThere("f/photos") && isThere("f/Viewer.app/viewer") && isThere("f/same.txt"));
    const std::string left = ". photos 900.00 KB\n. Viewer.app 700.00 KB\n. same.txt 1.50 KB\n";
    EXPECT_TRUE(on.waitFor([&] { return on.list() == left; })) << on.list();
    EXPECT_FALSE(on.isShown("failureLine"));
    EXPECT_EQ(on.textOf("removedLabel"), "Stopped: 0 removed, 600.00 KB");
}

}  // namespace
}  // namespace orrinvale
