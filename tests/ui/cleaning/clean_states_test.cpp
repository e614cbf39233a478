// The cleaning page in each of its states: with its window closed and opened again, without rights,
// with entries that come and go, at the end of the program; and how its three boxes look.
#include <QLabel>
#include <QPainter>
#include <QTreeView>

#include "ui/cleaning/CleanDesk.h"
#include "ui/cleaning/FigureLabel.h"
#include "ui/cleaning/V3MainListView.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale::testing {
namespace {

using enum CleanCategory;
using State = MainViewController::State;

TEST(CleanStates, TheWindowMayBeClosedInEachAndComesBack) {
    const struct {
        const char* state;
        std::function<void(CleanDesk&)> reach, goOn;
        bool isCleaned;
    } cases[] = {
        {"fresh", [](CleanDesk&) {}, [](CleanDesk& desk) { EXPECT_TRUE(desk.scan()); }, false},
        {"scanning",
         [](CleanDesk& desk) {
             desk.held.hold(desk.home.tree.at("Downloads"));
             desk.click("startButton");
         },
         [](CleanDesk& desk) { desk.held.letAllGo(); }, false},
        {"stopping",
         [](CleanDesk& desk) {
             desk.held.hold(desk.home.tree.at("Downloads"));
             desk.click("startButton");
             EXPECT_SOON(desk.page->finishScanCount() == 1);
             desk.click("stopButton");
         },
         [](CleanDesk& desk) {
             EXPECT_EQ(int(desk.state()), int(State::Stopping));
             desk.held.letAllGo();
             EXPECT_TRUE(desk.waitForRest());
             desk.click("rescanButton");
         },
         false},
        {"reviewing", [](CleanDesk& desk) { EXPECT_TRUE(desk.scan()); }, [](CleanDesk&) {}, false},
        {"asking",
         [](CleanDesk& desk) {
             EXPECT_TRUE(desk.scan());
             desk.dialogs.willAnswer(0);
             desk.click("cleanButton");
             EXPECT_TRUE(desk.page->isAsking());
         },
         [](CleanDesk&) {}, true},
        {"cleaning",
         [](CleanDesk& desk) {
             EXPECT_TRUE(desk.scan());
             desk.removing.shut();
             desk.dialogs.willAnswer(0);
             desk.click("cleanButton");
             EXPECT_SOON(desk.removing.isWaitedAt());
         },
         [](CleanDesk& desk) { desk.removing.open(); }, true},
        {"cleaning one",
         [](CleanDesk& desk) {
             EXPECT_TRUE(desk.scan());
             desk.page->shouldSelectRow(2);
             desk.removing.shut();
             desk.dialogs.willAnswer(0);
             desk.click("oneListCleanButton");
             EXPECT_SOON(desk.removing.isWaitedAt());
             EXPECT_EQ(int(desk.state()), int(State::CleaningOne));
         },
         [](CleanDesk& desk) { desk.removing.open(); }, true},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.state);
        CleanDesk desk{{".cache/a", 1'000}, {".cache/b/c", 2'000}, {"Downloads/d", 1}};
        desk.tickOnly({UserCaches});
        each.reach(desk);
        desk.window->window()->close();
        EXPECT_FALSE(desk.isShown("cleanPage"));
        desk.window->showWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(desk.window->window()));
        each.goOn(desk);
        ASSERT_TRUE(desk.waitForRest());
        EXPECT_EQ(desk.sentence("stateTextField"),
                  each.isCleaned ? "3.00 KB is cleaned" : "2 of 3 selected, 3.00 KB will free up.");
        EXPECT_EQ(desk.has(".cache/b"), !each.isCleaned);
        if (desk.page->selectRowNum != 0) desk.page->shouldSelectRow(0);
        EXPECT_TRUE(desk.isShown("outline") && desk.isEnabled("rescanButton"));
    }
}

// The strip that a clock runs down told nothing about the removal.
TEST(CleanStates, ARowThatIsCleanedShowsHowMuchOfItIsGone) {
    CleanDesk desk{{".cache/a", 1'000}, {".cache/b", 3'000}};
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    desk.click("scanButton");
    auto& row = desk.control<V3MainListView>("summary1");
    auto& bar = *row.findChild<QWidget*>(QStringLiteral("progress"));
    desk.removing.shut();
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_SOON(desk.removing.isWaitedAt());
    EXPECT_TRUE(bar.isVisible());
    EXPECT_FALSE(row.findChild<QWidget*>(QStringLiteral("animation"))->isVisible());
    const QImage nothing = bar.grab().toImage();
    row.showCleaned(3'000, 4'000);
    EXPECT_NE(bar.grab().toImage(), nothing);
    EXPECT_EQ(row.findChild<QLabel*>(QStringLiteral("cleanSizeLabel"))->text(),
              QStringLiteral("Cleaned: 3.00 KB"));
    desk.removing.open();
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_TRUE(bar.isHidden()) << "nothing is left that it could have a share of";
    row.showCleaned(1, 4);
    EXPECT_TRUE(bar.isHidden()) << "nothing is being cleaned";
}

// Each scan shows sizes that count up, and what changes behind its back is told at the end.
TEST(CleanStates, WhatComesGoesOrGrowsAfterTheScan) {
    CleanDesk desk{{".local/share/Trash/files/gone", 1'000},
                   {".local/share/Trash/files/grown", 2'000},
                   {".local/share/Trash/files/kind/x", 4'000},
                   {"Downloads/d", 1}};
    desk.tickOnly({UserTrash});
    desk.held.hold(desk.home.tree.at("Downloads"));
    desk.click("startButton");
    auto& size = *desk.control("summary4").findChild<QLabel*>(QStringLiteral("sizeLabel"));
    ASSERT_SOON(size.text() == QStringLiteral("7.00 KB"));
    EXPECT_EQ(int(desk.state()), int(State::Scanning));
    desk.page->shouldSelectRow(5);
    EXPECT_SOON(desk.isShown("list4") && desk.list(UserTrash).selectButton);
    EXPECT_EQ(desk.control<QTreeView>("list4").model()->rowCount(), 3) << "at its own end";
    EXPECT_EQ(int(desk.state()), int(State::Scanning));
    desk.page->shouldSelectRow(0);
    desk.held.letAllGo();
    ASSERT_TRUE(desk.waitForRest());
    std::filesystem::remove(desk.home.tree.at(".local/share/Trash/files/gone"));
    desk.write(".local/share/Trash/files/grown", 2'500);
    desk.write(".local/share/Trash/files/kind/new", 10);
    desk.write(".local/share/Trash/files/late", 20);
    for (const int answer : {0, 0}) desk.dialogs.willAnswer(answer);
    desk.click("cleanButton");
    ASSERT_SOON(desk.dialogs.alerts().size() == 2);
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_EQ(desk.sentence("stateTextField"), "4.00 KB is cleaned");
    const std::string stayed = desk.linesBehind("failureLine");
    for (const char* const name : {"grown", "kind/new"})
        EXPECT_TRUE(desk.has(std::string(".local/share/Trash/files/") + name) &&
                    stayed.find(name) != std::string::npos)
            << stayed;
    EXPECT_EQ(stayed.find("gone"), std::string::npos) << "gone is no failure";
    EXPECT_TRUE(desk.has(".local/share/Trash/files/late"));
    EXPECT_FALSE(desk.has(".local/share/Trash/files/kind/x"));
    EXPECT_FALSE(desk.page->isRemoving() && desk.noted() == 0);
}

// The padlock is pointed at where it would help; what stays of the downloads asks for nothing.
TEST(CleanStates, WithoutTheRight) {
    const struct {
        const char* locked;
        int row;  // of the left table
        bool isPadlockAsked;
    } cases[] = {
        {".cache/locked", 0, true}, {".cache/locked", 2, true}, {"Downloads/locked", 0, false}};
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.locked) + std::to_string(each.row));
        CleanDesk desk{{".cache/a", 1'000}, {each.locked, 2'000}, {"Downloads/b", 10}};
        desk.isLocked = true;
        desk.tickOnly({UserCaches, UserDownloads});
        ASSERT_TRUE(desk.scan());
        desk.page->shouldSelectRow(each.row);
        const std::size_t questions = each.row == 0 ? 2 : 1;
        for (std::size_t i = 0; i < questions; ++i) desk.dialogs.willAnswer(0);
        if (each.isPadlockAsked) desk.dialogs.willAnswer(0);
        desk.click(each.row == 0 ? "cleanButton" : "oneListCleanButton");
        ASSERT_SOON(desk.dialogs.alerts().size() == questions);
        ASSERT_TRUE(desk.waitForRest());
        QTest::qWait(300);
        ASSERT_EQ(desk.dialogs.alerts().size(), questions + (each.isPadlockAsked ? 1 : 0));
        if (each.isPadlockAsked) {
            EXPECT_TRUE(desk.dialogs.alerts().back().title.startsWith(
                QStringLiteral("You do not have privileges to clean these files.")));
        }
        EXPECT_TRUE(desk.has(each.locked));
        EXPECT_EQ(desk.textOf("failureLine"), "1 entry stayed");
        EXPECT_EQ(desk.sentence("stateTextField"),
                  each.row == 0 ? "1.01 KB is cleaned" : "1.00 KB is cleaned");
        desk.page->shouldSelectRow(0);
        EXPECT_NE(desk.outline().find("2.00 KB x"), std::string::npos) << desk.outline();
    }
}

TEST(CleanStates, TheEndOfTheProgramEndsACleanBeforeItsNextEntry) {
    CleanDesk desk{{".cache/a", 1'000}, {".cache/b", 1'000}, {".cache/c", 1'000}};
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    desk.removing.shut();
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_SOON(desk.removing.isWaitedAt());
    desk.page->giveUp();
    desk.removing.open();
    ASSERT_SOON(!desk.page->isRemoving());
    EXPECT_EQ(desk.has(".cache/a") + desk.has(".cache/b") + desk.has(".cache/c"), 2);
    EXPECT_EQ(desk.noted(), 1'000U);
    EXPECT_EQ(desk.outline(), "User Caches 2/2 2.00 KB xx\n") << "nobody unticked them";
}

// Nothing, all and some, as the one drawing of a box has them.
// Heights are kept, and are those of the sentence of the moment.
TEST(CleanStates, ASentenceIsAsHighAsItsWords) {
    constexpr int width = 160;
    const QString words = QStringLiteral("%1 has been recovered since the last clean, and more");
    FigureLabel label;
    label.setWordWrap(true);
    label.showSentence(QStringLiteral("%1"), {QStringLiteral("3 MB")});
    const int oneLine = label.heightForWidth(width);
    label.showSentence(words, {QStringLiteral("3 MB")});
    const int lines = label.heightForWidth(width);
    EXPECT_GT(lines, oneLine);
    EXPECT_LT(label.heightForWidth(4 * width), lines);
    label.setFixedWidth(width);
    EXPECT_EQ(label.heightForWidth(4 * width), lines) << "it gets no wider than that";
    QFont large = label.font();
    large.setPointSize(2 * large.pointSize());
    label.setFont(large);
    EXPECT_GT(label.heightForWidth(width), lines);
}

TEST(CleanStates, ThreeBoxes) {
    CleanDesk desk{
        {".cache/a", 1}, {".cache/b", 1}, {".local/share/Trash/files/t", 1}, {"Downloads/d", 1}};
    desk.tickOnly({UserCaches, UserTrash});
    ASSERT_TRUE(desk.scan());
    auto& outline = desk.control<QTreeView>("outline");
    desk.tick(outline, desk.rowOf(outline, "/a"));
    outline.clearSelection();
    outline.setCurrentIndex({});
    QTest::mouseMove(&desk.control("titleLabel"));
    const struct {
        const char* group;
        TickState state;
    } rows[] = {{"User Caches", TickState::Some},
                {"Trash", TickState::All},
                {"Downloads", TickState::Nothing}};
    for (const auto& each : rows) {
        SCOPED_TRACE(each.group);
        QStyleOptionViewItem option;
        option.rect = outline.visualRect(desk.rowOf(outline, each.group).siblingAtColumn(0));
        const QRect box = RowDelegate::boxRect(option);
        const QImage drawn = outline.viewport()->grab(box).toImage();
        for (const TickState state : {TickState::Nothing, TickState::All, TickState::Some}) {
            QImage wanted(drawn.size(), drawn.format());
            wanted.fill(outline.palette().color(QPalette::Base));
            QPainter painter(&wanted);
            paintTickBox(painter, {QPoint(0, 0), box.size()}, state, {});
            painter.end();
            EXPECT_EQ(drawn == wanted, state == each.state) << int(state);
        }
    }
}

}  // namespace
}  // namespace orrinvale::testing
