// ComparingPage: the disk usage page where an earlier scan can be compared.
#pragma once

#include <QMenu>

#include "engine/diskusage/history/ScanHistory.h"
#include "ui/diskusage/UsagePage.h"

namespace orrinvale::testing {

/// A page that keeps scans, with one of the folder a week ago.
class ComparingPage : public UsagePage {
public:
    /// `marks`: of the earlier scan besides its own.
    explicit ComparingPage(std::uint8_t marks = 0) : UsagePage(true) {
        defaults.setBool(true, rememberScansKey);
        fill(tree, "data");
        DiskUsageScan scan({.files = &files, .mainQueue = nullptr, .news = {}});
        scan.start(std::make_shared<FSNodeTree>(tree.at("data")), {.records = true});
        scan.waitForEnd();
        const auto record = scan.record();
        record->facts.time -= 7 * 86400;
        record->facts.marks |= marks;
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
    /// A file comes, one grows, one goes, and a small one grows.
    void change() {
        std::filesystem::remove(tree.at("data/films/two.mkv"));
        EXPECT_TRUE(tree.sparse("data/films/new/three.mkv", 9 * mega) &&
                    tree.sparse("data/big.iso", 5 * mega) &&
                    tree.write("data/small.txt", std::string(5300, 's')));
    }
    /// A row of the columns, likewise.
    std::string said(int column, int row) {
        const QVariant text = browser().model(column).index(row).data(Qt::AccessibleTextRole);
        return text.toString().toStdString();
    }
    Strings keptFiles() { return namesIn(stateFolder() + "/scans"); }

    ScanHistory history{stateFolder()};
};

}  // namespace orrinvale::testing
