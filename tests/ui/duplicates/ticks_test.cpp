// Ticks: the boxes of copies and groups, the box over the list, the order of the list, keys and the
// menu of a row.
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QTreeView>

#include "support/test.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

using testing::PageWindow;
using Model = DuplicateResultModel;

class Ticks : public ::testing::Test {
protected:
    void SetUp() override {
        // The kinds in an order that is not that of the names or sizes.
        const std::string two = testing::someBytes(3000, 1), three = testing::someBytes(1000, 2);
        ASSERT_TRUE(on.tree.write("f/a/two.txt", two) && on.tree.write("f/b/two.txt", two));
        for (const char* name : {"f/a/three.jpg", "f/b/three.jpg", "f/c/three.jpg"})
            ASSERT_TRUE(on.tree.write(name, three));
        ASSERT_TRUE(on.search(on.tree.at("f")));
    }
    void sortBy(int column) {
        QHeaderView& header = *outline.header();
        const int x = header.sectionViewportPosition(column) + header.sectionSize(column) / 2;
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(x, header.height() / 2));
    }
    std::string selected() {
        const QString title = on.control<QLabel>("titleLabel").text();
        return title.mid(title.indexOf(QLatin1String(", ")) + 2).toStdString();
    }
    std::string group(const char* name) {
        const std::string list = on.list();
        const std::size_t from = list.find(name);
        return list.substr(from, list.find('\n', from) - from);
    }
    int state(const char* group, const char* copy) {
        return on.row(group, copy).siblingAtColumn(Model::Checkbox).data(Model::StateRole).toInt();
    }
    TickState box() { return on.control<TickBox>("button").state(); }

    PageWindow on;
    QTreeView& outline = on.control<QTreeView>("outline");
};

TEST_F(Ticks, AFolderWithACommaInItsNameKeepsAllOfItInTheTitle) {
    ASSERT_TRUE(on.tree.write("a, b/1/x.txt", "same") && on.tree.write("a, b/2/x.txt", "same"));
    ASSERT_TRUE(on.search(on.tree.at("a, b")));
    on.click("leftCell0");
    on.tick(on.row("x.txt", "1/x.txt"));
    ASSERT_SOON(on.control("stopBtn").isEnabled());
    EXPECT_EQ(on.textOf("titleLabel"), "2 files in a, b, selected 1 files in All.");
}

TEST_F(Ticks, OneCopyStaysUnlessAPersonInsists) {
    EXPECT_FALSE(on.isEnabled("stopBtn"));
    on.tick("two.txt", "a/two.txt");
    EXPECT_EQ(group("two").substr(0, 13), "two.txt 2 1/2");
    EXPECT_TRUE(on.dialogs.alerts().empty()) << "no question for all but one";
    EXPECT_TRUE(on.isEnabled("stopBtn"));
    EXPECT_EQ(selected(), "selected 1 files in All.");
    EXPECT_EQ(box(), TickState::Some);

    for (const int button : {1, 0}) {
        on.dialogs.willAnswer(button);
        on.tick("two.txt", "b/two.txt");
        EXPECT_EQ(group("two").substr(0, 13), "two.txt 2 1/2")
            << "the question alone changes nothing";
        QCoreApplication::processEvents();
        EXPECT_EQ(group("two"), button == 0 ? "two.txt 1 2/2: xx" : group("two"));
    }
    ASSERT_EQ(on.dialogs.alerts().size(), 2U);
    const Alert& asked = on.dialogs.alerts().front();
    EXPECT_EQ(asked.title,
              QStringLiteral("Are you sure you want to delete all the duplicate files?"));
    EXPECT_EQ(asked.text, QStringLiteral(" "));
    EXPECT_EQ(asked.buttons, (QStringList{QStringLiteral("OK"), QStringLiteral("Cancel")}));
    EXPECT_EQ(std::make_pair(asked.defaultButton, asked.cancelButton), std::make_pair(0, 1));
    EXPECT_EQ(selected(), "selected 2 files in All.");
    on.tick("three.jpg");
    EXPECT_EQ(group("three"), "three.jpg 2 2/3: xx.");
    on.tick("three.jpg");
    EXPECT_EQ(group("three"), "three.jpg 0 0/3: ...");
    on.tick("two.txt", "a/two.txt");
    on.tick("two.txt", "b/two.txt");
    EXPECT_EQ(group("two"), "two.txt 0 0/2: ..");
    EXPECT_FALSE(on.isEnabled("stopBtn"));
    // A tick that is taken back while its picture is still on the way leaves nothing to remove.
    EXPECT_SOON(selected() == "selected 0 files in All." ||
                selected() == "selected 0 file in All.");
    EXPECT_EQ(box(), TickState::Nothing);
}

// A person goes to a view, ticks the first copies of a group by hand, or none, and may click the
// box over the list.
TEST_F(Ticks, TheBoxOverTheListTicksAndItsNextClickClears) {
    const char *const pictures = "three.jpg 2 2/3: xx.\n", *const noPictures =
                                                               "three.jpg 0 0/3: ...\n";
    const char* const text = "two.txt 2 1/2: x.\n";
    const struct {
        const char* view;
        const char* group;
        int byHand;
        bool clicks;
        const char* has;  // the list
        const char* selected;
        TickState box;
    } steps[] = {
        {"leftCell5", "", 0, true, pictures, "2 files", TickState::Some},
        {"leftCell1", "", 0, false, "two.txt 0 0/2: ..\n", "2 files", TickState::Nothing},
        {"leftCell0", "", 0, false, pictures, "2 files", TickState::Some},
        {"leftCell5", "", 0, true, noPictures, "0 file", TickState::Nothing},
        // Two ticked by hand stand in the list of ticks twice after the box, and count once.
        {"leftCell5", "three.jpg", 2, true, pictures, "2 files", TickState::Some},
        {"leftCell5", "", 0, true, noPictures, "0 file", TickState::Nothing},
        // What was ticked in one view is cleared in any other, and the rest stays.
        {"leftCell0", "", 0, true, pictures, "3 files", TickState::Some},
        {"leftCell5", "", 0, true, noPictures, "1 files", TickState::Nothing},
        {"leftCell0", "", 0, true, noPictures, "0 file", TickState::Nothing},
        {"leftCell5", "", 0, true, pictures, "2 files", TickState::Some},
        {"leftCell0", "", 0, true, noPictures, "0 file", TickState::Nothing},
        // Where ticks by hand are seen along with others the box ticks the rest.
        {"leftCell1", "two.txt", 1, false, text, "1 files", TickState::Some},
        {"leftCell5", "", 0, true, pictures, "3 files", TickState::Some},
        {"leftCell0", "", 0, true, text, nullptr, TickState::Some},
        {"leftCell0", "", 0, true, noPictures, "0 file", TickState::Nothing},
    };
    for (const auto& each : steps) {
        SCOPED_TRACE(&each - steps);
        on.click(each.view);
        for (int copy = 0; copy < each.byHand; ++copy)
            on.tick(on.model().index(copy, 0, on.row(each.group)));
        if (each.clicks) on.click("button");
        EXPECT_NE(on.list().find(each.has), std::string::npos) << on.list();
        EXPECT_EQ(box(), each.box);
        if (each.selected == nullptr) continue;
        EXPECT_EQ(selected(), std::string("selected ") + each.selected + " in All.");
        EXPECT_EQ(on.isEnabled("stopBtn"), *each.selected != '0');
    }
    on.click("leftCell5");
    on.control("button").setFocus();
    QTest::keyClick(&on.control("button"), Qt::Key_Space);
    EXPECT_EQ(on.list(), pictures);
}

TEST_F(Ticks, TheOrderIsShownAndDecidesWhichCopyIsTheLast) {
    const auto nameAt = [&](int row, const QModelIndex& parent = {}) {
        return on.nameOf(on.model().index(row, 0, parent));
    };
    const QHeaderView& header = *outline.header();
    EXPECT_FALSE(header.isSortIndicatorShown()) << "as it was found";
    outline.expand(on.row("three.jpg"));
    const struct {
        int column;
        const char* first;
        const char* lastCopy;
        bool isShown;
        Qt::SortOrder order;
    } clicks[] = {
        {Model::NameColumn, "three.jpg", "b/two.txt", true, Qt::AscendingOrder},
        {Model::NameColumn, "two.txt", "a/two.txt", true, Qt::DescendingOrder},
        {Model::FileSize, "three.jpg", "", true, Qt::AscendingOrder},
        {Model::FileSize, "two.txt", "", true, Qt::DescendingOrder},
        {Model::FileSize, "three.jpg", "", true, Qt::AscendingOrder},
        {Model::AllSelectNum, "three.jpg", "", false, Qt::AscendingOrder},
        {Model::NameColumn, "three.jpg", "b/two.txt", true, Qt::AscendingOrder},
        {Model::NameColumn, "two.txt", "a/two.txt", true, Qt::DescendingOrder},
    };
    for (const auto& each : clicks) {
        SCOPED_TRACE(&each - clicks);
        sortBy(each.column);
        EXPECT_EQ(nameAt(0), each.first);
        EXPECT_TRUE(nameAt(1, on.row("two.txt")).ends_with(each.lastCopy));
        EXPECT_EQ(header.isSortIndicatorShown(), each.isShown);
        if (!each.isShown) continue;
        EXPECT_EQ(header.sortIndicatorSection(), each.column);
        EXPECT_EQ(header.sortIndicatorOrder(), each.order);
        EXPECT_TRUE(outline.isExpanded(on.row("three.jpg"))) << "what is open stays open";
    }
    on.tick("two.txt");
    EXPECT_EQ(std::make_pair(state("two.txt", "b/two.txt"), state("two.txt", "a/two.txt")),
              std::make_pair(1, 0));
    on.tick("two.txt");
    // Each kind has an order of its own.
    on.click("leftCell5");
    EXPECT_FALSE(header.isSortIndicatorShown()) << "the pictures are not sorted";
    sortBy(Model::FileSize);
    on.click("leftCell0");
    EXPECT_EQ(header.sortIndicatorSection(), Model::NameColumn);
    ASSERT_TRUE(on.search(on.tree.at("f")));
    EXPECT_FALSE(header.isSortIndicatorShown());
}

TEST_F(Ticks, TellWhatARemovalWouldGiveBack) {
    EXPECT_FALSE(on.isShown("gainLabel"));
    on.tick("two.txt");
    EXPECT_EQ(on.textOf("gainLabel"), "3.00 KB can be gained");
    on.tick("three.jpg");
    EXPECT_EQ(on.textOf("gainLabel"), "5.00 KB can be gained");
    on.click("button");
    on.click("button");
    EXPECT_FALSE(on.isShown("gainLabel"));
    // Names of one file.
    const std::string bytes = testing::someBytes(2000, 3);
    ASSERT_TRUE(on.tree.write("g/a", bytes) && on.tree.hardLink("g/a", "g/b") &&
                on.tree.write("g/c", bytes));
    ASSERT_TRUE(on.search(on.tree.at("g")));
    EXPECT_FALSE(on.isShown("gainLabel"));
    const std::string group = on.nameOf(on.model().index(0, 0));
    for (const char* name : {"/a", "/b"}) on.tick(on.row(group, name));
    EXPECT_EQ(on.textOf("gainLabel"), "2.00 KB can be gained");
    on.tick(on.row(group, "/a"));
    EXPECT_EQ(on.textOf("gainLabel"), "Nothing can be gained");
    const QModelIndex b = on.row(group, "/b").siblingAtColumn(Model::NameColumn);
    EXPECT_EQ(b.data(Model::SignsRole).toStringList(),
              QStringList{QStringLiteral("sign_hard_link")});
    EXPECT_TRUE(b.data(Qt::ToolTipRole).toString().contains(QStringLiteral("2 names")));
}

TEST_F(Ticks, WhatLiesElsewhereIsSaidInTheRowAndBeforeARemoval) {
    const std::string bytes = testing::someBytes(2000, 4);
    for (const char* name : {"h/a.txt", "h/b.txt", "out/1/c.txt", "out/2/d.txt"})
        ASSERT_TRUE(on.tree.write(name, bytes));
    ASSERT_TRUE(on.tree.symlink(on.tree.at("out/1"), "h/one") &&
                on.tree.symlink(on.tree.at("out/2"), "h/two"));
    ASSERT_TRUE(on.search(on.tree.at("h")));
    ASSERT_EQ(on.model().rowCount(), 1);
    const std::string name = on.nameOf(on.model().index(0, 0));
    const auto at = [&](const char* copy) {
        return on.row(name, copy).siblingAtColumn(Model::NameColumn);
    };
    EXPECT_EQ(at("/h/a.txt").data(Model::SignsRole).toStringList(), QStringList());
    EXPECT_EQ(at("/one/c.txt").data(Model::SignsRole).toStringList(),
              QStringList{QStringLiteral("sign_link")});
    EXPECT_TRUE(at("/one/c.txt")
                    .data(Qt::ToolTipRole)
                    .toString()
                    .toStdString()
                    .ends_with(on.tree.at("out/1/c.txt")));
    const auto asked = [&](const char* copy) {
        on.tick(name, copy);
        on.dialogs.willAnswer(1);
        on.click("stopBtn");
        return on.dialogs.alerts().back().text.toStdString();
    };
    EXPECT_EQ(asked("/h/a.txt"), "1 file, 2.00 KB, goes for good.");
    EXPECT_EQ(asked("/one/c.txt"),
              "2 files, 4.00 KB, go for good.\n"
              "1 of them lies outside of the folder that was searched.");
    EXPECT_EQ(asked("/two/d.txt"),
              "3 files, 6.00 KB, go for good.\n"
              "2 of them lie outside of the folder that was searched.");
}

TEST_F(Ticks, ThePreviewGoesOnToTheNextFileAndClosesAlone) {
    outline.setFocus();
    outline.collapseAll();
    outline.setCurrentIndex(on.model().index(0, 0));
    const auto path = [&](int group, int copy) {
        return on.nameOf(on.model().index(copy, 0, on.model().index(group, 0)));
    };
    on.click("openBtn");
    QWidget& preview = on.control("previewPanel");
    preview.activateWindow();
    ASSERT_SOON(QApplication::activeWindow() == &preview);
    EXPECT_EQ(on.window->filePath(), path(0, 0));
    const auto after = [&](Qt::Key key) {
        QTest::keyClick(&preview, key);
        return on.window->filePath();
    };
    EXPECT_EQ(after(Qt::Key_Down), path(1, 0)) << "a closed group is its first copy";
    EXPECT_EQ(after(Qt::Key_Down), path(1, 0)) << "there is no further one";
    outline.expandAll();
    EXPECT_EQ(after(Qt::Key_Down), path(1, 1)) << "the first copy has been seen";
    EXPECT_EQ(after(Qt::Key_Up), path(1, 0));
    EXPECT_EQ(outline.currentIndex().parent(), on.model().index(1, 0)) << "the list goes along";
    QTest::keyClick(&preview, Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(preview.isVisible());
    EXPECT_TRUE(on.window->window()->isVisible()) << "one window at a time";
}

TEST_F(Ticks, EverythingByKeyAndByTheMenuOfARow) {
    outline.setFocus();
    outline.collapseAll();
    outline.setCurrentIndex(on.row("two.txt"));
    const auto key = [&](Qt::Key each, Qt::KeyboardModifiers with = {}) {
        QTest::keyClick(&outline, each, with);
    };
    key(Qt::Key_Right);
    EXPECT_TRUE(outline.isExpanded(on.row("two.txt")));
    key(Qt::Key_Left);
    EXPECT_FALSE(outline.isExpanded(on.row("two.txt")));
    key(Qt::Key_Space);
    EXPECT_EQ(group("two"), "two.txt 2 1/2: x.");
    key(Qt::Key_Right);
    key(Qt::Key_Down);
    key(Qt::Key_Space);
    EXPECT_EQ(group("two"), "two.txt 0 0/2: ..");
    const std::string copy = on.nameOf(outline.currentIndex());
    EXPECT_EQ(copy.find(on.tree.at("f/")), 0U);
    EXPECT_EQ(outline.currentIndex().data(Qt::ToolTipRole).toString().toStdString(), copy);

    key(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(on.window->filePath(), copy);
    EXPECT_TRUE(on.isShown("previewPanel"));
    outline.setCurrentIndex(on.row("three.jpg"));
    on.click("openBtn");
    EXPECT_FALSE(on.isShown("previewPanel")) << "the same action closes it";
    EXPECT_EQ(on.window->filePath(), copy);
    on.click("RevealFinder");
    const std::string first = on.nameOf(on.model().index(0, 0, on.row("three.jpg")));
    EXPECT_EQ(on.revealed, Strings{first}) << "of a group its first copy";

    EXPECT_FALSE(on.chooseInMenu(outline, on.row("three.jpg"), "Tick All but This One"));
    EXPECT_TRUE(on.chooseInMenu(outline, on.row("three.jpg"), "Copy Path"));
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), first);
    outline.expand(on.row("three.jpg"));
    for (const char* entry : {"Copy Path", "Show in Folder", "Tick All but This One"})
        EXPECT_TRUE(on.chooseInMenu(outline, on.row("three.jpg", "a/three.jpg"), entry)) << entry;
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), on.tree.at("f/a/three.jpg"));
    EXPECT_EQ(on.revealed.back(), on.tree.at("f/a/three.jpg"));
    EXPECT_EQ(state("three.jpg", "a/three.jpg"), 0);
    EXPECT_EQ(group("three").substr(0, 15), "three.jpg 2 2/3");
    EXPECT_EQ(selected(), "selected 2 files in All.");
}

}  // namespace
}  // namespace orrinvale
