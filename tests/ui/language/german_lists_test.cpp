// What the lists tell in German beside their rows: sharing, whole folders, the preview, the largest
// files, and what changed between two scans.
#include "engine/settings/SettingsKeys.h"
#include "ui/diskusage/ComparingPage.h"
#include "ui/duplicates/shareWords.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/language/GermanWindow.h"
#include "ui/preview/PreviewPane.h"
#include "ui/support/LargePage.h"

namespace orrinvale::testing {
namespace {

// One copy can become a hard link, the other keeps its own space.
TEST_F(GermanWindow, SharedSpace) {
    TestTree disk("/dev/shm");
    for (const char* const name : {"folder/a/x.txt", "folder/b/x.txt", "folder/c/x.txt"})
        ASSERT_TRUE(disk.write(name, someBytes(10000, 1)));
    ASSERT_TRUE(disk.setMode("folder/b/x.txt", 0600));
    PageWindow on;
    QWidget& window = *on.window->window();
    ASSERT_TRUE(on.search(disk.at("folder")));
    on.tick("x.txt", "b/x.txt");
    on.tick("x.txt", "c/x.txt");
    on.click("otherWayBtn");
    on.dialogs.willAnswer(0);
    chooseIn("menu of the ways", *on.page().detailView(), "moreMenu", "Platz teilen \u2026");
    ASSERT_SOON(on.dialogs.alerts().size() == 1);
    lookAt(on.dialogs.alerts().back());
    ASSERT_SOON(on.isShown("removedLine"));
    look("shared", window);
    on.click("failureLine");
    lookAtLines("not shared", window);
    ASSERT_TRUE(on.dialogs.alerts().back().linkAction);
    on.dialogs.alerts().back().linkAction();
    lookAtLines("why not", window);
    expectSeen({"1 nicht geteilt"});

    ShareOutlook outlook{.extents = {2, 3000}, .links = {2, 5000}, .already = 2, .noFiles = 3};
    outlook.wholeGroups = 2;
    for (const ShareOutlook& each : {outlook, ShareOutlook{.extents = {1, 2000}, .already = 1},
                                     ShareOutlook{.links = {2, 2000}, .noFiles = 1}})
        lookAt(shareQuestion(each));
}

TEST_F(GermanWindow, WholeFolders) {
    PageWindow on;
    QWidget& window = *on.window->window();
    const auto write = [&](const std::string& name, std::size_t bytes, unsigned seed) {
        ASSERT_TRUE(on.tree.write("folder/" + name, someBytes(bytes, seed)));
    };
    for (const char* const each : {"a", "b"})
        for (const unsigned i : {1U, 2U}) write(fmt::format("{}/{}.txt", each, i), 1000 * i, i);
    for (const char* const each : {"c", "d"})
        for (const unsigned i : {4U, 5U, 6U}) write(fmt::format("{}/{}.txt", each, i), 1000 * i, i);
    write("c/7.txt", 100, 7);
    write("e/1.txt", 1000, 1);
    on.settings().setBool(true, wholeFoldersKey);
    ASSERT_TRUE(on.search(on.tree.at("folder")));
    auto& outline = on.control<QTreeView>("outline");
    const QPersistentModelIndex group = on.model().index(0, 0),
                                folder = on.model().index(0, 0, group);
    on.tick(folder);
    ASSERT_SOON(on.isEnabled("stopBtn"));
    outline.expandAll();
    ASSERT_SOON(on.model().rowCount(folder) == 2);
    look("whole folders", window);
    on.dialogs.willAnswer(1);
    on.click("stopBtn");
    ASSERT_SOON(on.dialogs.alerts().size() == 1);
    lookAt(on.dialogs.alerts().back());
    on.click("otherWayBtn");
    chooseIn("menu of the ways", *on.page().detailView(), "moreMenu", "Ansicht \u2026");
    chooseIn("menu of the view", *on.page().detailView(), "viewMenu",
             "Teilweise gleiche Ordner \u2026");
    ASSERT_SOON(window.findChild<QWidget*>(QStringLiteral("partlyPanel")) != nullptr);
    look("partly equal folders", window);
    expectSeen({"Ein Ordner mit 2 Dateien, der als Ganzes geht oder bleibt"});
}

TEST_F(GermanWindow, ThePreviewBesideTheList) {
    PageWindow on;
    QWidget& window = *on.window->window();
    for (const char* const name : {"folder/a/x.txt", "folder/b/x.txt"})
        ASSERT_TRUE(on.tree.write(name, "2 3"));  // no words, which would be looked at too
    for (int i = 100; i < 205; ++i)
        ASSERT_TRUE(on.tree.write(fmt::format("folder/{}/many.txt", i), "1"));
    ASSERT_TRUE(on.search(on.tree.at("folder")));
    auto& outline = on.control<QTreeView>("outline");
    outline.expandAll();
    QTest::keyClick(&outline, Qt::Key_F3);
    for (const QSize size : {window.size(), QSize(1200, 800)}) {
        window.resize(size);
        for (const char* const name : {"many.txt", "x.txt"}) {
            outline.setCurrentIndex(on.row(name));
            ASSERT_SOON(on.isShown("previewPane") && on.isShown("previewComparison"));
            look("preview", window);
        }
    }
    ASSERT_TRUE(std::filesystem::remove(on.tree.at("folder/a/x.txt")) &&
                std::filesystem::remove(on.tree.at("folder/b/x.txt")) &&
                on.tree.symlink("nowhere", "folder/a/x.txt") && on.tree.fifo("folder/b/x.txt"));
    on.control<PreviewPane>("previewPane").lookAgain();
    ASSERT_SOON(on.isShown("previewWords"));
    look("preview of what can not be shown", window);
    expectSeen({"Die Texte sind gleich", "und 5 weitere"});
}

TEST_F(GermanWindow, TheLargestFiles) {
    LargePage on;
    QWidget& window = *on.window.window->window();
    ASSERT_TRUE(on.tree.write("folder/a/x.txt", "the same") &&
                on.tree.write("folder/b/y.txt", "another") &&
                on.tree.hardLink("folder/b/y.txt", "folder/z.txt"));
    const std::int64_t now = ::time(nullptr);
    constexpr std::int64_t day = 86'400;
    for (int i = 0; const std::int64_t days : {-5, 1, 40, 300, 5000}) {
        const auto name = fmt::format("folder/a/{}.txt", i++);
        const timespec times[]{{.tv_sec = now - day * days, .tv_nsec = 0},
                               {.tv_sec = now - day * days, .tv_nsec = 0}};
        ASSERT_TRUE(on.tree.write(name, "old"));
        ASSERT_EQ(::utimensat(AT_FDCWD, on.tree.at(name).c_str(), times, 0), 0);
    }
    ASSERT_TRUE(on.scan(on.tree.at("folder")));
    on.control<SegmentedControl>("viewSwitch").segment(1)->click();
    auto& list = on.control<QTreeView>("filesList");
    ASSERT_SOON(list.model()->rowCount() == 8);
    look("largest files", window);
    for (const char* const name : {"kind", "age"}) {
        const std::string button = name + std::string("Btn"), menu = name + std::string("Menu");
        on.click(button.c_str());
        QStringList entries;
        for (const QAction* const each : on.control<QMenu>(menu.c_str()).actions())
            if (each->isEnabled() && !each->isSeparator()) entries.push_back(each->text());
        on.control<QMenu>(menu.c_str()).close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_GT(entries.size(), 3);
        entries.push_back(entries.front());  // all of them at the end
        for (const QString& each : entries) {
            on.click(button.c_str());
            chooseIn(name, window, menu.c_str(), each.toUtf8().constData());
            look(name, window);
        }
    }
    on.dialogs.willAnswer(1);
    on.click("selectListedButton");
    on.click("deleteButton");
    ASSERT_SOON(on.dialogs.alerts().size() == 1);
    lookAt(on.dialogs.alerts().back());
    expectSeen({"Größte Dateien"});
}

TEST_F(GermanWindow, TheDiskUsagePage) {
    ComparingPage on;
    std::filesystem::remove(on.tree.at("data/films/two.mkv"));
    ASSERT_TRUE(on.tree.sparse("data/films/x/three.mkv", 9 * mega) &&
                on.tree.sparse("data/big.iso", 5 * mega) &&
                on.tree.write("data/small.txt", std::string(5300, 's')));
    on.window.resize(800, 600);
    ASSERT_TRUE(on.scan("data"));
    ASSERT_SOON(on.isEnabled("compareBtn"));
    on.clickRow(0, 0, true);
    look("result", on.window);
    on.click("mapBtn");
    look("map", on.window);
    on.click("compareBtn");
    lookAtMenu("scans", on.window, "compareMenu");
    ASSERT_TRUE(on.choose(""));
    ASSERT_SOON(on.isShown("changes"));
    on.control<ColumnBrowser>("changes").choose(0, 0);
    look("changes", on.window);
    on.click("columnsBtn");
    look("result of the comparison", on.window);
    on.dialogs.willAnswer(1);
    ASSERT_TRUE(on.choose("forgetScans"));
    ASSERT_SOON(on.dialogs.alerts().size() == 1);
    lookAt(on.dialogs.alerts().back());
    ASSERT_TRUE(on.remove(1));
    lookAt(on.dialogs.alerts().back());
    expectSeen({"Änderungen"});
}

}  // namespace
}  // namespace orrinvale::testing
