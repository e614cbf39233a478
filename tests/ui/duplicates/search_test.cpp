// From a dropped folder to the list: what the page shows before, during and after a search, how a
// search is stopped, and what a second one finds of the first.
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QTreeView>

#include "support/test.h"
#include "ui/duplicates/DuplicationLeftCell.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

using testing::PageWindow;

std::string sizes(PageWindow& on) {
    std::string text;
    for (int row = 0; row < 7; ++row) {
        const auto& cell =
            on.control<DuplicationLeftCell>(("leftCell" + std::to_string(row)).c_str());
        text += cell.title().toStdString() + ' ' + cell.sizeF().toStdString() +
                (cell.isSelected() ? "*|" : "|");
    }
    return text;
}

// One group of a kind, sizes that tell them apart.
bool makeOneOfEachKind(TestTree& tree, const std::string& in) {
    const std::pair<const char*, std::size_t> files[] = {{"d.PDF", 1000}, {"v.mkv", 2000},
                                                         {"m.mp3", 3000}, {"z.zip", 4000},
                                                         {"p.jpg", 5000}, {"o.bin", 6000}};
    return std::all_of(std::begin(files), std::end(files), [&](const auto& file) {
        const std::string bytes =
            testing::someBytes(file.second, static_cast<unsigned>(file.second));
        return tree.write(in + "/1/" + file.first, bytes) &&
               tree.write(in + "/2/" + file.first, bytes);
    });
}

TEST(DuplicatePage, StartsWithTheFirstViewAndEverythingNamed) {
    PageWindow on;
    EXPECT_TRUE(on.isShown("fristView") && on.isShown("pathChoseBtn"));
    EXPECT_FALSE(on.isShown("searchBtn")) << "a search starts with the folder";
    EXPECT_EQ(on.textOf("progress"), "0%");
    for (const char* const stop : {"pathChoseBtn", "animationHoverImageView"}) {
        QTest::keyClick(on.window->window(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), &on.control(stop)) << "what one came for is first";
    }
    const std::pair<const char*, const char*> toolTips[] = {
        {"pathChoseBtn", "Select scan path"},
        {"searchBtn", "Scan"},
        {"stopScanBtn", "Stop Scan"},
        {"openBtn", "Open selected file"},
        {"RevealFinder", "Reveal selected file in finder"},
        {"stopBtn", "Remove selected file"},
        {"lockButton", "Click lock to get a higer privileges."},
    };
    for (const auto& [name, toolTip] : toolTips)
        EXPECT_EQ(on.control(name).toolTip().section(QLatin1Char('\n'), 0, 0).toStdString(),
                  toolTip);
    EXPECT_EQ(on.control<DuplicationLeftCell>("leftCell6").sizeF(), QStringLiteral("0.00K"));
    for (QWidget* const view :
         {on.page().view(), on.page().progressageView(), on.page().detailView()})
        for (QWidget* const control : view->findChildren<QWidget*>()) {
            if ((control->focusPolicy() & Qt::TabFocus) == 0 || !control->isVisibleTo(view))
                continue;
            const auto* const read = QAccessible::queryAccessibleInterface(control);
            EXPECT_FALSE(read->text(QAccessible::Name).isEmpty())
                << control->objectName().toStdString();
        }
}

TEST(DuplicatePage, ASearchRunsOnWhateverTheWindowDoes) {
    PageWindow on;
    // 26 characters are cut, 25 are not.
    const std::string folder = on.tree.at(std::string(
        std::max<std::size_t>(26, on.tree.path().size() + 2) - on.tree.path().size() - 1, 'r'));
    const std::string name = folder.substr(folder.rfind('/') + 1);
    ASSERT_GE(folder.size(), 26U);
    ASSERT_TRUE(makeOneOfEachKind(on.tree, name));
    int firstEnds = 0;
    const auto observation = on.notifications.addObserver(
        "changeViewActionForDuplicate", [&](const Notification&) { ++firstEnds; });

    ASSERT_TRUE(on.holdSearch(folder));
    EXPECT_TRUE(on.isShown("progressageView") && on.isShown("stopScanBtn") &&
                on.isShown("animation"));
    EXPECT_FALSE(on.isShown("fristView") || on.isShown("detailView"));
    EXPECT_EQ(QApplication::focusWidget(), &on.control("stopScanBtn"));
    const auto& title = on.control<QLabel>("titleLabel");
    EXPECT_EQ(title.text().toStdString(), folder.substr(0, 25) + "...");
    EXPECT_EQ(title.toolTip().toStdString(), folder);
    EXPECT_SOON(on.textOf("countsLabel").starts_with("12 files listed, "));
    EXPECT_NE(on.textOf("nameTextStr").find(folder), std::string::npos);
    EXPECT_FALSE(on.control<QLabel>("imageView").pixmap(Qt::ReturnByValue).isNull());
    on.page().viewDragAction(on.tree.path());
    on.page().backButtonAction();
    EXPECT_EQ(on.page().searchPath(), folder) << "one search at a time";
    EXPECT_TRUE(on.isShown("progressageView"));

    QTest::keyClick(on.window->window(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(on.isShown("progressageView"));
    QTest::keyClick(on.window->window(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(on.window->window()->isVisible());
    on.reading.open();
    ASSERT_SOON(on.page().bSearchFinished());
    on.window->showWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(on.window->window()));
    EXPECT_TRUE(on.isShown("detailView"));
    EXPECT_EQ(firstEnds, 1);
    EXPECT_EQ(on.textOf("titleLabel"), "12 files in " + name + ", selected 0 files in All.");
    EXPECT_TRUE(on.control<QTreeView>("outline").isExpanded(on.model().index(0, 0)));
    EXPECT_EQ(on.window->window()->focusWidget(), &on.control("outline"));
    EXPECT_FALSE(on.isShown("quietLine") || on.isShown("stopRemoveBtn") || on.isShown("emptyView"));
    EXPECT_FALSE(on.isEnabled("stopBtn"));
    EXPECT_EQ(sizes(on),
              "All 42.00 KB*|Documents 2.00 KB|Videos 4.00 KB|Music 6.00 KB|Archives 8.00 KB|"
              "Pictures 10.00 KB|Others 12.00 KB|");

    const std::pair<const char*, const char*> kinds[] = {
        {"d.PDF", "Documents"}, {"v.mkv", "Videos"},   {"m.mp3", "Music"},
        {"z.zip", "Archives"},  {"p.jpg", "Pictures"}, {"o.bin", "Others"}};
    for (int row = 1; row <= 6; ++row) {
        const auto& [file, kind] = kinds[row - 1];
        const std::string cell = "leftCell" + std::to_string(row);
        on.click(cell.c_str());
        EXPECT_EQ(on.list(), std::string(file) + " 0 0/2: ..\n");
        EXPECT_EQ(on.textOf("titleLabel"),
                  std::string("2 files in ") + kind + ", selected 0 files in All.");
        EXPECT_TRUE(on.control<DuplicationLeftCell>(cell.c_str()).isSelected());
        EXPECT_FALSE(on.control<DuplicationLeftCell>("leftCell0").isSelected());
    }
    QTest::keyClick(&on.control("leftCell0"), Qt::Key_Space);
    EXPECT_EQ(on.textOf("titleLabel"), "12 files in " + name + ", selected 0 files in All.");

    // An empty folder, chosen from the first view: the old result is gone, and words stand in place
    // of the list.
    on.click("backButton");
    EXPECT_TRUE(on.isShown("fristView"));
    ASSERT_TRUE(on.tree.folder("none, of it"));
    on.dialogs.willChoose({});
    on.dialogs.willChoose({on.tree.at("none, of it"), on.tree.at("second")});
    on.click("pathChoseBtn");
    EXPECT_SOON(on.dialogs.choices().size() == 1);
    QTest::keyClick(on.window->window(), Qt::Key_O, Qt::ControlModifier);
    ASSERT_SOON(on.isShown("detailView"));
    EXPECT_EQ(on.dialogs.choices().front().title, QStringLiteral("Choose a path to search"));
    EXPECT_TRUE(on.dialogs.choices().front().withSeveral);
    EXPECT_EQ(on.dialogs.choices().back().directory, folder);
    EXPECT_TRUE(on.isShown("emptyView"));
    EXPECT_EQ(on.textOf("emptyLabel"), "No two files here are the same.");
    EXPECT_EQ(on.textOf("titleLabel"), "0 files in none, of it, selected 0 file in All.");
    EXPECT_EQ(sizes(on),
              "All 0.0KB*|Documents 0.0KB|Videos 0.0KB|Music 0.0KB|Archives 0.0KB|Pictures "
              "0.0KB|Others 0.0KB|");
    EXPECT_EQ(on.model().rowCount(), 0);
    EXPECT_EQ(firstEnds, 1) << "told once";
    on.dialogs.willChoose({});
    on.click("otherFolderBtn");
    EXPECT_SOON(on.dialogs.choices().size() == 3);
}

TEST(DuplicatePage, AStoppedSearchGoesBackAndLeavesTheNextOneAlone) {
    PageWindow on;
    ASSERT_TRUE(makeOneOfEachKind(on.tree, "f"));
    ASSERT_TRUE(on.holdSearch(on.tree.at("f")));
    on.click("stopScanBtn");
    EXPECT_FALSE(on.isEnabled("stopScanBtn") || on.isShown("animation"));
    ASSERT_SOON(on.isShown("fristView"));
    EXPECT_FALSE(on.page().bSearchFinished()) << "the thread stands before a file still";
    EXPECT_FALSE(on.isEnabled("pathChoseBtn"));
    on.reading.open();
    ASSERT_SOON(on.page().bSearchFinished());
    EXPECT_TRUE(on.isShown("fristView"));
    EXPECT_FALSE(on.isShown("detailView"));

    // The stop comes through at once; the next search begins before the stopped one has gone back.
    ASSERT_TRUE(on.holdSearch(on.tree.at("f")));
    on.click("stopScanBtn");
    on.reading.open();
    ASSERT_SOON(on.page().bSearchFinished());
    EXPECT_TRUE(on.isShown("progressageView"));
    on.reading.shut();
    on.page().viewDragAction(on.tree.at("f"));
    QTest::qWait(800);  // the stopped one would go back now
    EXPECT_TRUE(on.isShown("progressageView"));
    on.reading.open();
    EXPECT_SOON(on.isShown("detailView"));
    EXPECT_EQ(on.model().rowCount(), 6);
}

TEST(DuplicatePage, EachSearchClimbsFromItsOwnBeginning) {
    PageWindow on;
    ASSERT_TRUE(makeOneOfEachKind(on.tree, "f"));
    ASSERT_TRUE(on.search(on.tree.at("f")));
    const auto percent = [&] { return on.control<QLabel>("progress").text().chopped(1).toInt(); };
    const int highest = percent();
    EXPECT_GE(highest, 6);
    on.click("backButton");
    ASSERT_TRUE(on.holdSearch(on.tree.at("f")));
    EXPECT_LT(percent(), highest) << "that of the search before";
    on.reading.open();
    ASSERT_SOON(on.isShown("detailView"));
    EXPECT_EQ(percent(), highest);
}

TEST(DuplicatePage, MayEndDuringASearch) {
    PageWindow on;
    ASSERT_TRUE(makeOneOfEachKind(on.tree, "f"));
    ASSERT_TRUE(on.holdSearch(on.tree.at("f")));
    on.window.reset();
    on.notifications.post("refViewBgColor", UserInfo{{"rowNum", std::int32_t{1}}});
    on.reading.open();  // its end comes to a page that is gone; PageWindow waits for it
}

}  // namespace
}  // namespace orrinvale
