// The list of the uninstall page, by clicks and keys.
#include "ui/uninstall/UninstallDesk.h"

namespace orrinvale::testing {
namespace {

TEST(UninstallPage, ListsOnceTicksAndFilters) {
    UninstallDesk desk;
    desk.listing.shut();
    desk.open();
    EXPECT_TRUE(desk.isShown("searchAppsIndicator"));
    EXPECT_EQ(desk.control<TickBox>("selectButton").state(), TickState::Nothing);
    desk.clickRow(1);
    EXPECT_EQ(desk.page->nowSelectRow(), 0) << "clicks count once there is a list";
    desk.listing.open();
    ASSERT_SOON(desk.page->isScaned());
    EXPECT_TRUE(desk.page->searchFinished());
    EXPECT_EQ(desk.list(), "alpha Beta Chat Zeta ");
    EXPECT_FALSE(desk.isEnabled("uninstallButton"));
    desk.window.hide();
    desk.window.show();
    desk.page->beginSearchApps();

    auto& all = desk.control<TickBox>("selectButton");
    desk.tick("alpha");
    desk.tick("Zeta");
    EXPECT_EQ(desk.status(), "2 of 4 selected.");
    EXPECT_TRUE(desk.isEnabled("uninstallButton"));
    EXPECT_EQ(all.state(), TickState::Nothing);
    desk.clickRow(1);
    EXPECT_EQ(desk.list(), "alpha* ");
    EXPECT_EQ(desk.status(), "1 of 1 selected.");
    EXPECT_EQ(all.state(), TickState::All);
    desk.clickRow(2);
    EXPECT_EQ(desk.list(), "Beta Chat Zeta* ");
    EXPECT_EQ(desk.status(), "1 of 3 selected.") << "what nobody sees does not count";
    QTest::keyClicks(&desk.control("filterField"), QString::fromUtf8("CHÁ"));
    EXPECT_EQ(desk.list(), "Chat ");
    EXPECT_EQ(desk.status(), "0 of 1 selected.");
    EXPECT_FALSE(desk.isEnabled("uninstallButton"));
    QTest::keyClick(&desk.control("filterField"), Qt::Key_Escape);
    EXPECT_EQ(desk.list(), "Beta Chat Zeta* ");
    QTest::mouseClick(&all, Qt::LeftButton);
    EXPECT_EQ(desk.status(), "3 of 3 selected.");
    QTest::keyClick(&desk.table(), Qt::Key_Home);
    QTest::keyClick(&desk.table(), Qt::Key_Space);
    EXPECT_EQ(desk.list(), "Beta Chat* Zeta* ");
    EXPECT_EQ(all.state(), TickState::Nothing);
    EXPECT_EQ(desk.inventories, 1);
}

TEST(UninstallPage, RowsComeAsTheirKindsAnswer) {
    UninstallDesk desk;
    desk.further.shut();
    desk.open();
    ASSERT_SOON(desk.list() == "Zeta ");
    EXPECT_TRUE(desk.table().isVisible() && !desk.isShown("searchAppsIndicator"));
    EXPECT_TRUE(desk.textOf("titleLabel").starts_with("Looking for applications"));
    desk.clickRow(1);
    EXPECT_EQ(desk.page->nowSelectRow(), 0) << "clicks count once there is a whole list";
    desk.tick("Zeta");
    EXPECT_EQ(desk.status(), "1 of 1 selected.");
    EXPECT_FALSE(desk.isEnabled("uninstallButton") || desk.isEnabled("selectButton"));
    desk.further.open();
    EXPECT_SOON(desk.list() == "alpha Beta Chat Zeta* ");
    EXPECT_SOON(desk.isEnabled("uninstallButton") && desk.isEnabled("selectButton"));
}

TEST(UninstallPage, SizesComeLaterAndMoveNoRowUntilAskedTo) {
    UninstallDesk desk;
    desk.measuring.shut();
    desk.sizes = {{"Beta", 2'000'000}, {"Zeta", 3'000'000'000}, {"alpha", 0}};
    desk.openAndList();
    EXPECT_EQ(desk.column(Model::Size), "--|--|--|--|");
    desk.measuring.open();
    EXPECT_SOON(desk.column(Model::Size) == "0.00 KB|2.00 MB|--|3.00 GB|");
    EXPECT_EQ(desk.list(), "alpha Beta Chat Zeta ");
    QHeaderView& header = *desk.table().header();
    const auto clickSize = [&] {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          QPoint(header.sectionViewportPosition(Model::Size) + 20, 10));
    };
    clickSize();
    EXPECT_EQ(desk.list(), "Zeta Beta alpha Chat ");
    clickSize();
    EXPECT_EQ(desk.list(), "alpha Beta Zeta Chat ") << "what is not known stays last";
}

TEST(UninstallPage, FollowsWhatIsInstalledElsewhereAndKeepsTicks) {
    UninstallDesk desk;
    desk.openAndList();
    desk.tick("Beta");
    desk.table().setCurrentIndex(desk.row("Zeta"));
    auto& field = desk.control<QLineEdit>("filterField");
    field.setFocus();
    desk.found.erase(desk.found.begin());
    desk.found.push_back(item("Added", ApplicationType::Snap));
    desk.listing.shut();
    desk.state = 2;
    ASSERT_SOON(desk.listing.isWaitedAt());
    EXPECT_EQ(desk.window.focusWidget(), &field) << "somebody may be writing";
    QTest::mouseClick(&desk.control("selectButton"), Qt::LeftButton);
    desk.tick("Chat");
    EXPECT_EQ(desk.list(), "alpha* Beta* Chat Zeta* ") << "nothing vanishes meanwhile";
    EXPECT_FALSE(desk.isEnabled("uninstallButton"));
    desk.listing.open();
    EXPECT_SOON(desk.list() == "Added alpha* Beta* Chat ");
    EXPECT_TRUE(desk.isEnabled("uninstallButton"));
    desk.work->isListOld = true;
    desk.click("uninstallButton");
    ASSERT_SOON(desk.isEnabled("uninstallYes"));
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Escape);
    EXPECT_SOON(desk.inventories == 3);
}

TEST(UninstallPage, AKindThatKeepsSilentStaysListedAndIsTold) {
    UninstallDesk desk;
    desk.openAndList();
    desk.tick("Chat");
    EXPECT_FALSE(desk.isShown("quietLine"));
    std::erase_if(desk.found, [](const auto& each) { return each->name == "Chat"; });
    desk.sources->unread[ApplicationType::Flatpak] = "The snap service does not answer";
    desk.page->refresh();
    EXPECT_SOON(desk.isShown("quietLine"));
    EXPECT_EQ(desk.list(), "alpha Beta Chat* Zeta ");
    desk.sources->unread.clear();
    desk.page->refresh();
    EXPECT_SOON(!desk.isShown("quietLine") && desk.list() == "alpha Beta Zeta ");
}

TEST(UninstallPage, TheSheetMeasuresAndCutsWhatIsLong) {
    for (const auto& [letters, isCut] : {std::pair(28, false), {29, true}})
        EXPECT_EQ(UninstallDetails::shownName(QString(letters, u'n')),
                  QString(28, u'n') + QLatin1String(isCut ? "..." : ""));
    for (const auto& [letters, isCut] : {std::pair(70, false), {71, true}})
        EXPECT_EQ(UninstallDetails::shownPath(QString(letters, u'p')),
                  QString(70, u'p') + QLatin1String(isCut ? "..." : ""));
    UninstallDesk desk;
    desk.sizes = {{"Beta", 4'000'000}};
    desk.openAndList();
    desk.clickCell("Beta", Model::View);
    ASSERT_NE(desk.page->listWindow(), nullptr);
    EXPECT_SOON(desk.textOf("sizeLabel") == "4.00 MB");
    EXPECT_EQ(desk.textOf("pathLabel"), "/made/up/Beta");
    desk.click("okButton");
    EXPECT_SOON(desk.page->listWindow() == nullptr);
    desk.table().setCurrentIndex(desk.row("Chat"));
    QTest::keyClick(&desk.table(), Qt::Key_Return);
    EXPECT_SOON(desk.textOf("sizeLabel") == "--");
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Escape);
    EXPECT_SOON(desk.page->listWindow() == nullptr);
}

TEST(UninstallPage, TwoThousandRowsHoldNoTurnUp) {
    UninstallDesk desk;
    for (int i = 0; i < 2000; ++i)
        desk.found.push_back(item("Application " + std::to_string(i), ApplicationType::Deb));
    desk.open();
    EXPECT_TRUE(desk.page->view()->isVisible());
    qint64 longest = 0;
    const auto turnUntil = [&](const auto& isSo) {
        while (!isSo()) {
            QElapsedTimer turn;
            turn.start();
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            longest = std::max(longest, turn.elapsed());
        }
    };
    turnUntil([&] { return desk.page->isScaned() && desk.table().model()->rowCount() >= 2000; });
    RecordProperty("longest_turn_ms", int(longest));
    const int most = 1000;  // many times of what a turn may take, for a busy machine
    EXPECT_LT(longest, most);
    longest = 0;
    QElapsedTimer asking;
    asking.start();
    QTest::mouseClick(&desk.control("selectButton"), Qt::LeftButton);
    QTest::mouseClick(&desk.control("uninstallButton"), Qt::LeftButton);
    const qint64 asked = asking.elapsed();
    turnUntil([&] { return desk.isEnabled("uninstallYes"); });
    RecordProperty("ticking_all_and_asking_ms", int(asked));
    RecordProperty("longest_turn_of_the_question_ms", int(longest));
    EXPECT_LT(asked, most / 2);
    EXPECT_LT(longest, most / 2);
    // All of it can be scrolled to.
    const auto shown = [&] {
        return desk.sheet()->findChildren<QLabel*>(QStringLiteral("lineLabel")).size();
    };
    ASSERT_SOON(shown() >= 20);
    const qsizetype first = shown();
    EXPECT_LT(first, 200);
    EXPECT_EQ(desk.textOf("moreLabel"),
              QLocale().toString(2004 - first).toStdString() + " more follow");
    QScrollBar& bar = *desk.control<QScrollArea>("partsArea").verticalScrollBar();
    const auto isMoreAtTheEnd = [&] {
        bar.setValue(bar.maximum());
        return shown() > first;
    };
    EXPECT_SOON(isMoreAtTheEnd());
    desk.click("uninstallYes");
    ASSERT_SOON(!desk.page->isRemoving());
    EXPECT_EQ(std::ranges::count(desk.work->attempts.at(0), 'A'), 2000) << "seen or not";
}

}  // namespace
}  // namespace orrinvale::testing
