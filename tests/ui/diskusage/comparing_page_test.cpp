// What changed since a scan of another day, on the disk usage page.
#include <QMenu>

#include "engine/diskusage/history/ScanHistory.h"
#include "ui/diskusage/ChangesColumn.h"
#include "ui/diskusage/UsagePage.h"

namespace orrinvale::testing {
namespace {

/// A page that keeps scans, with one of the folder a week ago.
class ComparingPage : public UsagePage {
public:
    ComparingPage() : UsagePage(true) {
        defaults.setBool(true, rememberScansKey);
        fill(tree, "data");
        DiskUsageScan scan({.files = &files, .mainQueue = nullptr, .news = {}});
        scan.start(std::make_shared<FSNodeTree>(tree.at("data")), {.records = true});
        scan.waitForEnd();
        const auto record = scan.record();
        record->facts.time -= 7 * 86400;
        record->facts.allFileSystems = true;  // as the page scans where nothing is set
        EXPECT_TRUE(history.keep(*parseScan(encodeScan(*record))));
    }
    bool choose(const char* objectName) {
        click("compareBtn");
        for (QMenu* const menu :
             page->view()->findChildren<QMenu*>(QStringLiteral("compareMenu"))) {
            if (!menu->isVisible()) continue;
            QAction* const named = menu->findChild<QAction*>(QLatin1String(objectName));
            (*objectName != 0 ? named : menu->actions().front())->trigger();
            menu->close();
            return true;
        }
        return false;
    }
    /// The rows of a column of changes, as a screen reader tells them.
    std::string changes(int number) {
        const ColumnModel& rows = control<ColumnBrowser>("changes").model(number);
        std::string text;
        for (int row = 0; row < rows.rowCount({}); ++row)
            text += (text.empty() ? "" : "; ") +
                    rows.data(rows.index(row), Qt::AccessibleTextRole).toString().toStdString();
        return text;
    }
    Strings keptFiles() { return namesIn(tree.at("state/scans")); }

    ScanHistory history{tree.at("state")};
};

TEST(DiskUsagePage, TellsWhatChangedSinceAKeptScan) {
    ComparingPage on;
    std::filesystem::remove(on.tree.at("data/films/two.mkv"));
    ASSERT_TRUE(on.tree.sparse("data/films/new/three.mkv", 9 * mega) &&
                on.tree.sparse("data/big.iso", 5 * mega) &&
                on.tree.write("data/small.txt", std::string(5300, 's')));
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isEnabled("compareBtn"); }));
    EXPECT_FALSE(on.isEnabled("changesBtn"));
    EXPECT_TRUE(on.waitFor([&] { return on.keptFiles().size() == 2; })) << "this scan is kept too";
    ASSERT_TRUE(on.choose(""));
    ASSERT_TRUE(on.waitFor([&] { return on.isShown("changes"); }));
    EXPECT_EQ(on.changes(0),
              "films, +7.00 MB, mostly new; big.iso, +1.00 MB; Files under 1.00 MB, +5.00 KB");
    EXPECT_TRUE(on.textOf("titleLabel").starts_with("8.01 MB more in ")) << on.textOf("titleLabel");
    on.window.activateWindow();  // the menu was active
    ASSERT_TRUE(QTest::qWaitForWindowActive(&on.window));
    // By the keyboard into the folder, and from there to the entry in the columns.
    on.control<ColumnBrowser>("changes").setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Right})
        QTest::keyClick(QApplication::focusWidget(), key);
    EXPECT_EQ(on.changes(1), "new, +9.00 MB, new; two.mkv, -2.00 MB, gone");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(on.isShown("browser"));
    EXPECT_EQ(on.page->itemPath(), on.tree.at("data/films/new"));
    const auto said = [&](int column, int row) {
        return on.browser()
            .model(column)
            .index(row)
            .data(Qt::AccessibleTextRole)
            .toString()
            .toStdString();
    };
    EXPECT_EQ(said(0, 0), "films, 12.00 MB, +7.00 MB");
    EXPECT_EQ(said(1, 1), "one.mkv, 3.00 MB");
    EXPECT_EQ(said(2, 0), "three.mkv, 9.00 MB, new");

    on.dialogs.willAnswer(1);
    ASSERT_TRUE(on.choose("forgetScans"));
    EXPECT_EQ(on.keptFiles().size(), 2) << "Cancel forgets nothing";
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.choose("forgetScans"));
    EXPECT_TRUE(on.waitFor([&] { return on.keptFiles().empty(); }));
    EXPECT_FALSE(on.isEnabled("compareBtn"));
    EXPECT_EQ(said(0, 0), "films, 12.00 MB");
}

TEST(DiskUsagePage, KeepsNoScanWhereThatIsSwitchedOffAndTellsOfADamagedOne) {
    ComparingPage on;
    on.defaults.setBool(false, rememberScansKey);
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isEnabled("compareBtn"); }));
    ASSERT_EQ(on.keptFiles().size(), 1);
    ASSERT_TRUE(on.tree.write("state/scans/" + on.keptFiles().front(), "garbage"));
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.choose(""));
    ASSERT_TRUE(on.waitFor([&] { return !on.dialogs.alerts().empty(); }));
    EXPECT_EQ(on.dialogs.alerts().back().title, QStringLiteral("This scan can not be read."));
    EXPECT_FALSE(on.isEnabled("compareBtn") || on.isShown("changes"));
    EXPECT_TRUE(on.keptFiles().empty());
}

}  // namespace
}  // namespace orrinvale::testing
