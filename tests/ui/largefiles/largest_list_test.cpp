// The list of largest files beside the tree, in the real window over real folders: its order, its
// filters, and that a tick in one is a tick in the other.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QHeaderView>
#include <QMenu>
#include <QTest>
#include <atomic>

#include "platform/accessTimes.h"
#include "support/OwnMounts.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/LargestFilesModel.h"
#include "ui/support/LargePage.h"

namespace orrinvale {
namespace {

using testing::LargePage;

/// A folder where nothing notes that a file is opened, for this thread and those that it starts:
/// they have a table of mounts of their own for as long as this lives.
class SilentFolder final {
public:
    explicit SilentFolder(const std::string& path) {
        if (::geteuid() != 0 || m_before < 0 || m_here < 0 || !testing::unshareMounts()) return;
        m_isOwn = true;
        m_isThere = ::mount("ram", path.c_str(), "tmpfs", MS_NOATIME, "size=1m") == 0;
    }
    ~SilentFolder() {
        // Threads that it started share its folder with it, and whoever shares that can not leave.
        if (m_isOwn && (::unshare(CLONE_FS) != 0 || ::setns(m_before, CLONE_NEWNS) != 0 ||
                        ::fchdir(m_here) != 0))
            ADD_FAILURE() << "this thread stays among mounts of its own";
        ::close(m_before);
        ::close(m_here);
    }
    SilentFolder(const SilentFolder&) = delete;
    SilentFolder& operator=(const SilentFolder&) = delete;

    [[nodiscard]] bool isThere() const { return m_isThere; }

private:
    const int m_before = ::open("/proc/thread-self/ns/mnt", O_RDONLY | O_CLOEXEC);
    const int m_here = ::open(".", O_PATH | O_CLOEXEC);
    bool m_isOwn = false;
    bool m_isThere = false;
};

class LargestList : public ::testing::Test {
protected:
    LargestList() {
        EXPECT_TRUE(on.tree.sparse("f/movie.mkv", 5'000'000) &&
                    on.tree.sparse("f/photos/new/lake.png", 900'000) &&
                    on.tree.sparse("f/photos/old.png", 600'000) &&
                    on.tree.sparse("f/Viewer.app/viewer", 700'000) &&
                    on.tree.write("f/notes.txt", std::string(1'500, 'n')));
        setTimes("f/photos/old.png", 1'400'000'000, 1'400'000'000);
        EXPECT_TRUE(on.scan(on.tree.at("f")));
    }
    void setTimes(const char* name, std::int64_t opened, std::int64_t written) {
        const timespec times[]{{.tv_sec = opened, .tv_nsec = 0}, {.tv_sec = written, .tv_nsec = 0}};
        EXPECT_EQ(::utimensat(AT_FDCWD, on.tree.at(name).c_str(), times, 0), 0);
    }
    QTreeView& files() { return on.control<QTreeView>("filesList"); }
    void show(int segment) {
        on.control<SegmentedControl>("viewSwitch").segment(segment)->click();
        if (segment == 1) {
            EXPECT_TRUE(comes(5));
        }
    }
    bool comes(int rows) {
        return on.waitFor([=, this] { return files().model()->rowCount() == rows; });
    }
    QModelIndex file(const std::string& name) {
        for (int row = 0; row < files().model()->rowCount(); ++row)
            if (const QModelIndex cell = files().model()->index(row, LargestFilesModel::Name);
                cell.data().toString().toStdString() == name)
                return cell;
        ADD_FAILURE() << "no row " << name;
        return {};
    }
    void tick(const std::string& name) {
        QStyleOptionViewItem option;
        option.rect = files().visualRect(file(name).siblingAtColumn(LargestFilesModel::CheckBox));
        QTest::mouseClick(files().viewport(), Qt::LeftButton, {},
                          RowDelegate::boxRect(option).center());
    }
    // "x movie.mkv" for each row, joined.
    std::string list() {
        std::string text;
        for (int row = 0; row < files().model()->rowCount(); ++row) {
            const auto cell = [&](int column, int role) {
                return files().model()->index(row, column).data(role);
            };
            const auto state = cell(LargestFilesModel::CheckBox, FileNodeModel::StateRole).toInt();
            text += std::string(1, ".x-"[state]) + ' ' +
                    cell(LargestFilesModel::Name, Qt::DisplayRole).toString().toStdString() + ' ';
        }
        return text;
    }
    std::string cell(const std::string& name, int column) {
        return file(name).siblingAtColumn(column).data().toString().toStdString();
    }
    bool pick(const char* button, const char* menu, const char* entry) {
        on.click(button);
        auto& shown = on.control<QMenu>(menu);
        bool isThere = false;
        for (QAction* const action : shown.actions())
            if (action->text() == QLatin1String(entry) && action->isEnabled()) {
                action->trigger();
                isThere = true;
            }
        shown.close();
        return isThere;
    }
    /// Of an entry of the menu of ages: "on", "off", or nothing where it is not there.
    std::string age(const char* entry) {
        on.click("ageBtn");
        auto& shown = on.control<QMenu>("ageMenu");
        std::string found;
        for (const QAction* const action : shown.actions())
            if (action->text() == QLatin1String(entry)) found = action->isEnabled() ? "on" : "off";
        shown.close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return found;
    }
    bool becomes(const char* rows) {
        return on.waitFor([&] { return list() == rows; });
    }
    void sort(int column) { Q_EMIT files().header()->sectionClicked(column); }
    bool says(const std::string& ticked) {
        return on.waitFor([&] { return on.textOf("tickedLabel") == ticked; });
    }

    LargePage on;
};

TEST_F(LargestList, ShowsTheFilesOfAllFoldersByWhatAPersonWishes) {
    show(1);
    EXPECT_EQ(list(), ". movie.mkv . lake.png . Viewer.app . old.png . notes.txt ");
    EXPECT_TRUE(says("5 files, 7.20 MB"));
    EXPECT_EQ(cell("old.png", LargestFilesModel::Kind), "Pictures");
    EXPECT_EQ(cell("old.png", LargestFilesModel::Folder), on.tree.at("f/photos"));
    EXPECT_TRUE(cell("old.png", LargestFilesModel::Changed).ends_with(" years"));
    EXPECT_EQ(cell("movie.mkv", LargestFilesModel::Changed), "today");
    const QModelIndex lake = file("lake.png").siblingAtColumn(LargestFilesModel::Size);
    EXPECT_DOUBLE_EQ(lake.data(FileNodeModel::ShareRole).toDouble(), 0.18);

    files().setFocus();
    QTest::keyClicks(&files(), QStringLiteral("ol"));
    EXPECT_EQ(files().currentIndex().data().toString(), QStringLiteral("old.png"));
    QTest::keyClick(&files(), Qt::Key_Down);
    QTest::keyClick(&files(), Qt::Key_Space);
    EXPECT_TRUE(says("5 files, 7.20 MB, ticked: 1.50 KB")) << "notes.txt";
    QTest::keyClick(&files(), Qt::Key_Space);
    EXPECT_TRUE(says("5 files, 7.20 MB"));

    sort(LargestFilesModel::Name);
    EXPECT_TRUE(becomes(". lake.png . movie.mkv . notes.txt . old.png . Viewer.app "));
    sort(LargestFilesModel::Name);
    EXPECT_TRUE(becomes(". Viewer.app . old.png . notes.txt . movie.mkv . lake.png "));
    sort(LargestFilesModel::Size);
    EXPECT_TRUE(pick("kindBtn", "kindMenu", "Pictures"));
    EXPECT_TRUE(becomes(". lake.png . old.png "));
    EXPECT_TRUE(pick("ageBtn", "ageMenu", "Not changed for a year"));
    EXPECT_TRUE(becomes(". old.png "));
    EXPECT_TRUE(says("1 file, 600.00 KB"));
    EXPECT_TRUE(pick("kindBtn", "kindMenu", "Music"));
    EXPECT_TRUE(becomes(""));
    EXPECT_EQ(on.textOf("listNote"), "No such files");
    EXPECT_TRUE(pick("ageBtn", "ageMenu", "Any age") && pick("kindBtn", "kindMenu", "All kinds"));
    EXPECT_TRUE(comes(5));
}

// Size, writing and opening order the files differently.
TEST_F(LargestList, TellsWhenFilesWereOpened) {
    if (!keepsAccessTimes(on.tree.at("f")).value_or(false))
        GTEST_SKIP() << "nothing notes here that a file is opened";
    const std::int64_t now = ::time(nullptr);
    constexpr std::int64_t day = 86'400;
    setTimes("f/movie.mkv", now - 250 * day, 1'300'000'000);
    setTimes("f/photos/new/lake.png", now - 60 * day, 1'320'000'000);
    setTimes("f/notes.txt", now, 1'350'000'000);
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    show(1);
    ASSERT_SOON(cell("notes.txt", LargestFilesModel::Opened) == "today");
    EXPECT_EQ(cell("movie.mkv", LargestFilesModel::Opened), "8 months");
    EXPECT_TRUE(cell("old.png", LargestFilesModel::Opened).ends_with(" years"));
    EXPECT_TRUE(pick("ageBtn", "ageMenu", "Not changed for a year"));
    EXPECT_TRUE(becomes(". movie.mkv . lake.png . old.png . notes.txt ")) << list();
    sort(LargestFilesModel::Opened);
    EXPECT_TRUE(becomes(". old.png . movie.mkv . lake.png . notes.txt ")) << list();
    sort(LargestFilesModel::Opened);
    EXPECT_TRUE(becomes(". notes.txt . lake.png . movie.mkv . old.png ")) << list();
    sort(LargestFilesModel::Changed);
    EXPECT_TRUE(becomes(". movie.mkv . lake.png . notes.txt . old.png ")) << list();
    const std::pair<const char*, const char*> cases[] = {
        {"Not opened for a month", ". movie.mkv . lake.png . old.png "},
        {"Not opened for half a year", ". movie.mkv . old.png "},
        {"Not opened for a year", ". old.png "}};
    for (const auto& [age, rows] : cases) {
        EXPECT_TRUE(pick("ageBtn", "ageMenu", age));
        EXPECT_TRUE(becomes(rows)) << age << ": " << list();
    }
    EXPECT_EQ(on.textOf("listNote"), "");
}

TEST_F(LargestList, SaysWhereNothingNotesThatAFileIsOpened) {
    if (!keepsAccessTimes(on.tree.at("f")).value_or(false))
        GTEST_SKIP() << "nothing notes here that a file is opened";
    ASSERT_TRUE(on.tree.folder("f/silent"));
    const SilentFolder silent(on.tree.at("f/silent"));
    if (!silent.isThere()) GTEST_SKIP() << "no mount without times of opening to be had";
    ASSERT_TRUE(on.tree.sparse("f/silent/far.mkv", 2'000'000));
    setTimes("f/silent/far.mkv", 1'400'000'000, 1'400'000'000);
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    on.control<SegmentedControl>("viewSwitch").segment(1)->click();
    ASSERT_TRUE(comes(6));
    ASSERT_SOON(cell("old.png", LargestFilesModel::Opened) != "\u2013");
    const QModelIndex opened = file("far.mkv").siblingAtColumn(LargestFilesModel::Opened);
    EXPECT_EQ(opened.data().toString(), QStringLiteral("\u2013"));
    EXPECT_EQ(opened.data(Qt::ToolTipRole).toString(),
              QStringLiteral("It is not noted here when a file is opened"));
    EXPECT_TRUE(pick("ageBtn", "ageMenu", "Not opened for a year"));
    EXPECT_TRUE(becomes(". old.png ")) << list();
    EXPECT_EQ(on.textOf("listNote"), "1 left out: it is not noted there when a file is opened");
    EXPECT_EQ(age("It is not noted here when files are opened"), "") << "elsewhere it is";
    EXPECT_TRUE(pick("ageBtn", "ageMenu", "Not changed for a year"));
    EXPECT_TRUE(becomes(". far.mkv . old.png ")) << list();
    EXPECT_EQ(on.textOf("listNote"), "");

    on.window.window->window()->activateWindow();  // a menu was active
    ASSERT_TRUE(QTest::qWaitForWindowActive(on.window.window->window()));
    ASSERT_TRUE(on.scan(on.tree.at("f/silent")));
    EXPECT_SOON(age("It is not noted here when files are opened") == "off");
    for (const char* const each :
         {"Not opened for a month", "Not opened for half a year", "Not opened for a year"})
        EXPECT_EQ(age(each), "off") << each;
    EXPECT_EQ(age("Not changed for a year"), "on");
}

TEST_F(LargestList, SharesItsTicksWithTheTree) {
    on.tick("photos");
    show(1);
    EXPECT_EQ(list(), ". movie.mkv x lake.png . Viewer.app x old.png . notes.txt ");
    tick("lake.png");
    tick("movie.mkv");
    EXPECT_EQ(list(), "x movie.mkv . lake.png . Viewer.app x old.png . notes.txt ");
    EXPECT_TRUE(says("5 files, 7.20 MB, ticked: 5.60 MB"));
    EXPECT_TRUE(pick("kindBtn", "kindMenu", "Pictures"));
    EXPECT_TRUE(says("2 files, 1.50 MB, ticked: 5.60 MB, of it not in this list: 5.00 MB"));
    show(0);
    EXPECT_EQ(on.textOf("tickedLabel"), "Ticked: 5.60 MB");
    on.open("photos");
    on.open("new");
    EXPECT_EQ(on.list(),
              "x movie.mkv 5.00 MB\n- photos 1.50 MB\n  . new 900.00 KB\n    . lake.png 900.00 "
              "KB\n  x old.png 600.00 KB\n. Viewer.app 700.00 KB\n. notes.txt 1.50 KB\n");
    // All that is listed, and nothing else.
    on.control<SegmentedControl>("viewSwitch").segment(1)->click();
    EXPECT_TRUE(comes(2));
    on.click("selectListedButton");
    EXPECT_TRUE(on.waitFor([&] { return list() == "x lake.png x old.png "; }));
    EXPECT_TRUE(on.list().starts_with("x movie.mkv 5.00 MB\n- photos 1.50"));
    EXPECT_TRUE(says("2 files, 1.50 MB, ticked: 6.50 MB, of it not in this list: 5.00 MB"));
    on.click("selectListedButton");
    EXPECT_TRUE(on.waitFor([&] { return list() == ". lake.png . old.png "; }));
    EXPECT_TRUE(says("2 files, 1.50 MB, ticked: 5.00 MB, of it not in this list: 5.00 MB"));
}

TEST_F(LargestList, WhatGoesLeavesItAndWhatChangedStaysOnTheDisk) {
    const QByteArray dataBefore = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(on.tree.at("data")));
    show(1);
    for (const char* const name : {"lake.png", "old.png", "movie.mkv"}) tick(name);
    EXPECT_TRUE(on.chooseInMenu(files(), file("lake.png"), "Move to Trash"));
    EXPECT_TRUE(comes(4));
    EXPECT_TRUE(testing::isThere(on.tree.at("data/Trash/files/lake.png")));
    EXPECT_TRUE(says("4 files, 6.30 MB, ticked: 5.60 MB"));
    ASSERT_TRUE(on.tree.patch("f/movie.mkv", 0, "written since"));
    EXPECT_TRUE(on.remove());
    EXPECT_TRUE(comes(2));
    EXPECT_EQ(list(), ". Viewer.app . notes.txt ");
    EXPECT_TRUE(says("2 files, 701.50 KB"));
    EXPECT_FALSE(testing::isThere(on.tree.at("f/photos/old.png")));
    EXPECT_TRUE(testing::isThere(on.tree.at("f/photos"))) << "nobody ticked the folder";
    EXPECT_TRUE(testing::isThere(on.tree.at("f/movie.mkv")));
    EXPECT_EQ(on.textOf("failureLine"), "1 could not be removed; a new scan will show it again");
    if (dataBefore.isNull()) qunsetenv("XDG_DATA_HOME");
    else qputenv("XDG_DATA_HOME", dataBefore);
}

// One after the other, while the removal stands before the next.
TEST_F(LargestList, RowsLeaveAsTheyGo) {
    show(1);
    for (const char* const name : {"lake.png", "old.png", "movie.mkv"}) tick(name);
    std::atomic<int> steps = 0;
    const auto passing = on.window.files.beforeRemoval;
    on.window.files.beforeRemoval = [&](const char* operation) {
        if (std::string_view(operation) == "removeEntry" && ++steps > 1) passing(operation);
    };
    EXPECT_TRUE(on.remove([&](QWidget& /*window*/) {
        EXPECT_TRUE(comes(4)) << list();
        EXPECT_EQ(testing::namesIn(on.tree.at("f")).size() +
                      testing::namesIn(on.tree.at("f/photos")).size() +
                      testing::namesIn(on.tree.at("f/photos/new")).size(),
                  6);
    }));
    EXPECT_TRUE(comes(2));
    on.window.files.beforeRemoval = passing;
}

TEST_F(LargestList, SaysWhatGoesBeforeItGoes) {
    const auto asked = [&] {
        on.dialogs.willAnswer(1);
        on.click("deleteButton");
        return on.dialogs.alerts().back().text.toStdString();
    };
    ASSERT_TRUE(on.tree.hardLink("f/movie.mkv", "f/photos/again.mkv") && on.scan(on.tree.at("f")));
    ASSERT_TRUE(on.waitFor([&] { return on.list().find("photos 6.50 MB") != std::string::npos; }));
    on.tick("photos");
    const std::string inFolders =
        "What lies in folders and has other names elsewhere frees nothing while one of them is "
        "left.";
    EXPECT_EQ(asked(), "1 folder with all that is in it, 6.50 MB, goes for good.\n" + inFolders);
    on.control<SegmentedControl>("viewSwitch").segment(1)->click();
    EXPECT_TRUE(comes(6));
    tick("notes.txt");
    EXPECT_TRUE(pick("kindBtn", "kindMenu", "Pictures"));
    EXPECT_TRUE(says("2 files, 1.50 MB, ticked: 6.50 MB, of it not in this list: 5.00 MB"));
    EXPECT_EQ(asked(),
              "1 file and 1 folder with all that is in it, 6.50 MB in all, go for good.\n5.00 MB "
              "of it is not in the list that you see.\n" +
                  inFolders);
    EXPECT_TRUE(pick("kindBtn", "kindMenu", "All kinds"));
    EXPECT_TRUE(comes(6));
    for (const char* const name : {"lake.png", "old.png", "again.mkv", "movie.mkv"}) tick(name);
    EXPECT_TRUE(says("6 files, 12.20 MB, ticked: 5.00 MB"));
    EXPECT_EQ(asked(),
              "2 files, 5.00 MB, go for good.\n1 of the files has other names, and frees nothing "
              "while one of them is left.");
}

TEST_F(LargestList, OneOfSeveralNamesSaysThatItFreesNothingAlone) {
    ASSERT_TRUE(on.tree.hardLink("f/movie.mkv", "f/photos/again.mkv") && on.scan(on.tree.at("f")));
    on.control<SegmentedControl>("viewSwitch").segment(1)->click();
    EXPECT_TRUE(comes(6));
    const QModelIndex movie = file("movie.mkv");
    const auto names =
        QStringLiteral("One of 2 names of one file; its space is free when all are gone");
    for (const int column : {int(LargestFilesModel::Name), int(LargestFilesModel::Size)})
        EXPECT_TRUE(movie.siblingAtColumn(column).data(Qt::ToolTipRole).toString().contains(names))
            << column;
    EXPECT_FALSE(file("lake.png").data(Qt::ToolTipRole).toString().contains(names));
}

}  // namespace
}  // namespace orrinvale
