// What changed since a scan of another day, on the disk usage page.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <cmath>

#include "platform/linux/LinuxFiles.h"
#include "ui/diskusage/ChangesColumn.h"
#include "ui/diskusage/ComparingPage.h"
#include "ui/diskusage/TreemapPicture.h"

namespace orrinvale::testing {
namespace {

TEST(DiskUsagePage, TellsWhatChangedSinceAKeptScan) {
    ComparingPage on;
    on.change();
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isEnabled("compareBtn"); }));
    EXPECT_TRUE(on.textOf("grownLine").starts_with("8.01 MB more than on "));
    EXPECT_TRUE(on.waitFor([&] { return on.keptFiles().size() == 2; })) << "this scan is kept too";
    ASSERT_TRUE(on.choose(""));
    ASSERT_TRUE(on.waitFor([&] { return on.isShown("changes"); }));
    EXPECT_EQ(on.changes(0),
              "films, +7.00 MB, mostly new; big.iso, +1.00 MB; Files under 1.00 MB, +5.00 KB");
    EXPECT_EQ(on.textOf("titleLabel"), "8.01 MB more");
    EXPECT_FALSE(on.isShown("openFinderBtn")) << "what would it open";
    on.window.activateWindow();  // the menu was active
    ASSERT_TRUE(QTest::qWaitForWindowActive(&on.window));
    // By the keyboard into the folder, and from there to the entry in the columns.
    on.control<ColumnBrowser>("changes").setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Right})
        QTest::keyClick(QApplication::focusWidget(), key);
    EXPECT_EQ(on.changes(1), "new, +9.00 MB, new; two.mkv, -2.00 MB, gone, or under 1.00 MB now");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(on.isShown("browser"));
    EXPECT_EQ(on.page->itemPath(), on.tree.at("data/films/new"));
    EXPECT_EQ(on.said(0, 0), "films, 12.00 MB, +7.00 MB");
    EXPECT_EQ(on.said(1, 1), "one.mkv, 3.00 MB");
    EXPECT_EQ(on.said(2, 0), "three.mkv, 9.00 MB, new");

    on.dialogs.willAnswer(1);
    ASSERT_TRUE(on.choose("forgetScans"));
    EXPECT_EQ(on.keptFiles().size(), 2) << "Cancel forgets nothing";
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.choose("forgetScans"));
    EXPECT_TRUE(on.waitFor([&] { return on.keptFiles().empty(); }));
    EXPECT_FALSE(on.isEnabled("compareBtn"));
    EXPECT_EQ(on.said(0, 0), "films, 12.00 MB");
}

TEST(DiskUsagePage, TheLineBeforeAComparisonIsNoSurerThanItsTitle) {
    ComparingPage on(FSNode::ForeignWithin);
    on.change();
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isShown("grownLine"); }));
    EXPECT_TRUE(on.textOf("grownLine").starts_with("\u2248 8.01 MB more than on "));
    on.click("grownLine");
    ASSERT_TRUE(on.waitFor([&] { return on.isShown("changes"); }));
    EXPECT_EQ(on.textOf("titleLabel"), "\u2248 8.01 MB more");
}

TEST(DiskUsagePage, KeepsNoScanWhereThatIsSwitchedOffAndTellsOfADamagedOne) {
    ComparingPage on;
    on.defaults.setBool(false, rememberScansKey);
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isEnabled("compareBtn"); }));
    ASSERT_EQ(on.keptFiles().size(), 1);
    ASSERT_TRUE(
        on.tree.write("state/com.kelpford.Orrinvale/scans/" + on.keptFiles().front(), "garbage"));
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.choose(""));
    ASSERT_TRUE(on.waitFor([&] { return !on.dialogs.alerts().empty(); }));
    EXPECT_EQ(on.dialogs.alerts().back().title, QStringLiteral("This scan can not be read."));
    EXPECT_FALSE(on.isEnabled("compareBtn") || on.isShown("changes"));
    EXPECT_TRUE(on.keptFiles().empty());
}

TEST(DiskUsagePage, TellsTheSameAsTheTerminalSinceLastWeek) {
    ComparingPage on;
    on.change();
    ASSERT_TRUE(on.tree.hardLink("data/films/new/three.mkv", "data/again.mkv"));
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isEnabled("changesBtn"); }));
    on.click("changesBtn");
    ASSERT_TRUE(on.waitFor([&] { return on.isShown("changes"); }));
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_STATE_HOME"),
                       QString::fromStdString(on.tree.at("state")));
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(ORRINVALE_CLI_PATH),
                  {QStringLiteral("usage"), QStringLiteral("--quiet"), QStringLiteral("--json"),
                   QStringLiteral("--all-file-systems"), QStringLiteral("--since"),
                   QStringLiteral("last-week"), QString::fromStdString(on.tree.at("data"))});
    ASSERT_TRUE(program.waitForFinished());
    const QJsonObject told = QJsonDocument::fromJson(program.readAllStandardOutput()).object();
    std::string ofTerminal;
    for (const QJsonValue each : told[u"entries"].toArray())
        ofTerminal += fmt::format("{} {}; ", each[u"name"].toString().toStdString(),
                                  each[u"change"].toInteger());
    std::string ofPage;
    const auto& rows = static_cast<ChangesColumn&>(on.control<ColumnBrowser>("changes").model(0));
    for (int row = 0; rows.number(row); ++row)
        ofPage += fmt::format("{} {}; ", rows.index(row).data().toString().toStdString(),
                              rows.change(row));
    EXPECT_EQ(ofPage, "again.mkv 9000000; films 7000000; big.iso 1000000; ");
    EXPECT_EQ(ofTerminal, ofPage) << program.readAllStandardError().toStdString();
    EXPECT_EQ(told[u"change"].toInteger(), 17'005'000);
    EXPECT_EQ(rows.change(3), told[u"below"][u"change"].toInteger());
}

TEST(DiskUsagePage, ARemovalIsGoneFromTheComparisonToo) {
    ComparingPage on;
    on.change();
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isShown("grownLine"); }));
    on.click("grownLine");
    ASSERT_TRUE(on.waitFor([&] { return on.isShown("changes"); }));
    on.click("columnsBtn");
    on.clickRow(0, 0, false);
    on.clickRow(1, 0, true);
    ASSERT_TRUE(on.remove(0));
    ASSERT_FALSE(isThere(on.tree.at("data/films/new")));
    on.click("changesBtn");
    EXPECT_EQ(on.textOf("titleLabel"), "995.00 KB less");
    EXPECT_EQ(on.changes(0), "films, -2.00 MB; big.iso, +1.00 MB; Files under 1.00 MB, +5.00 KB");
    on.control<ColumnBrowser>("changes").choose(0, 0);
    EXPECT_EQ(on.changes(1),
              "new, 0.00 KB, removed; two.mkv, -2.00 MB, gone, or under 1.00 MB now");
    const std::string marks = on.said(0, 0) + "; " + on.said(0, 1);
    EXPECT_TRUE(marks.find("big.iso, 5.00 MB, +1.00 MB") != std::string::npos &&
                marks.find("films, 3.00 MB, -2.00 MB") != std::string::npos)
        << marks;
}

TEST(DiskUsagePage, WhatIsForgottenMeanwhileIsNotCompared) {
    ComparingPage on;
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.isEnabled("compareBtn"); }));
    EXPECT_TRUE(on.textOf("grownLine").starts_with("As much as on "));
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.choose("forgetScans") && on.choose(""));
    ASSERT_TRUE(on.waitFor([&] { return on.keptFiles().empty(); }));
    QTest::qWait(50);
    EXPECT_FALSE(on.isShown("changes") || on.isEnabled("compareBtn") || on.isShown("grownLine"));
}

TEST(DiskUsagePage, KeepsNothingOfAScanThatWasStopped) {
    ComparingPage on;
    on.reading.shut();
    on.page->takeFolder(on.tree.at("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.reading.isWaitedAt(); }));
    on.click("stopBtn");
    ASSERT_TRUE(on.ended());
    on.reading.open();
    QTest::qWait(50);
    EXPECT_EQ(on.keptFiles().size(), 1);
    EXPECT_EQ(on.control("compareBtn").toolTip(),
              QStringLiteral("Only a scan that came to its end can be compared"));
}

// The words are those of the terminal.
TEST(ChangesColumn, SaysWhatIsNotKnownOfAChange) {
    TestTree tree;
    const LinuxFileSystem files;
    const auto scan = [&](const std::shared_ptr<FSNodeTree>& into, bool isLater) {
        DiskUsageScan run({.files = &files, .mainQueue = nullptr, .news = {}});
        run.start(into, {.records = true});
        run.waitForEnd();
        const auto record = run.record();
        for (RecordedEntry* each = record->first; isLater && each != nullptr; each = each->next) {
            const bool isOver = each->name == std::string_view("over");
            if (!isOver && each->name != std::string_view("lost")) continue;
            record->facts.size -= each->size;
            each->size = each->onDisk = 0;
            each->first = nullptr;
            constexpr std::uint8_t unread = FSNode::Unread | FSNode::UnreadWithin;
            constexpr std::uint8_t foreign = FSNode::Foreign | FSNode::ForeignWithin;
            each->marks = isOver ? foreign : unread;
        }
        return parseScan(encodeScan(*record));
    };
    ASSERT_TRUE(tree.sparse("f/over/film", 4 * mega) && tree.sparse("f/lost/film", 5 * mega) &&
                tree.sparse("f/gone.iso", 2 * mega) && tree.sparse("f/file", 3 * mega) &&
                tree.sparse("f/folder/film", 3 * mega / 2));
    const auto before = scan(std::make_shared<FSNodeTree>(tree.at("f")), false);
    for (const char* const name : {"gone.iso", "file", "folder"})
        std::filesystem::remove_all(tree.at(std::string("f/") + name));
    ASSERT_TRUE(tree.sparse("f/file/film", 6 * mega) && tree.sparse("f/folder", 7 * mega) &&
                tree.sparse("f/new.iso", 8 * mega));
    const auto shown = std::make_shared<ShownScan>();
    shown->tree = std::make_shared<FSNodeTree>(tree.at("f"));
    const auto after = scan(shown->tree, true);
    shown->compared = std::make_shared<const ScanDifference>(*ScanDifference::of(*before, *after));
    const ChangesColumn column(shown, 0);
    std::string told;
    for (int row = 0; row < column.rowCount(); ++row) {
        const QModelIndex index = column.index(row);
        const QString said = index.data(Qt::AccessibleTextRole).toString();
        told += said.toStdString() + '\n';
        const QString last = said.section(QStringLiteral(" MB, "), 1);
        EXPECT_TRUE(index.data(Qt::ToolTipRole).toString().contains(last)) << said.toStdString();
    }
    EXPECT_EQ(told,
              "new.iso, +8.00 MB, new, or under 1.00 MB before\n"
              "folder, +7.00 MB, new, in the place of a folder\n"
              "file, +6.00 MB, new, in the place of a file\n"
              "lost, \u2248 -5.00 MB, could not be read each time\n"
              "over, \u2248 -4.00 MB, another file system there\n"
              "file, -3.00 MB, gone, a folder is in its place\n"
              "gone.iso, -2.00 MB, gone, or under 1.00 MB now\n"
              "folder, -1.50 MB, gone, a file is in its place\n");
    EXPECT_EQ(column.note(0), QStringLiteral("new")) << "nearly every new file is such a one";
    EXPECT_EQ(column.note(4), QStringLiteral("another file system there"));

    // Sizes of this moment are not those of what came in the place of the other kind.
    shown->hasChanged = true;
    const ChangesColumn later(shown, 0);
    for (const int row : {1, 2, 5, 7}) EXPECT_EQ(later.change(row), column.change(row)) << row;
    EXPECT_EQ(later.change(later.rowCount()), 0) << "nothing is left to the last line";
    EXPECT_FALSE(
        nodeOfChange(*shown->compared, column.number(7).value(), shown->tree->root()).isItself);
    EXPECT_EQ(
        nodeOfChange(*shown->compared, column.number(2).value(), shown->tree->root()).node->size(),
        6 * mega);
}

// By shape and lightness, in both palettes.
TEST(TreemapPicture, MarksWhatChangedSoThatItCanBeToldWithoutColours) {
    TestTree tree;
    const LinuxFileSystem files;
    for (const char* const name : {"grows.mkv", "shrinks.mkv", "stays.mkv"})
        ASSERT_TRUE(tree.sparse(name, 40 * mega));
    const auto scan = [&](const std::shared_ptr<FSNodeTree>& into) {
        DiskUsageScan run({.files = &files, .mainQueue = nullptr, .news = {}});
        run.start(into, {.records = true});
        run.waitForEnd();
        return parseScan(encodeScan(*run.record()));
    };
    const auto before = scan(std::make_shared<FSNodeTree>(tree.path()));
    ASSERT_TRUE(tree.sparse("grows.mkv", 43 * mega) && tree.sparse("shrinks.mkv", 39 * mega) &&
                tree.sparse("comes.mkv", 42 * mega));
    const auto shown = std::make_shared<ShownScan>();
    shown->tree = std::make_shared<FSNodeTree>(tree.path());
    const auto after = scan(shown->tree);
    const auto compared =
        std::make_shared<const ScanDifference>(*ScanDifference::of(*before, *after));
    constexpr QSize size(400, 300);
    for (const Theme::Scheme scheme : {Theme::Scheme::Dark, Theme::Scheme::Light}) {
        Theme::shared().setScheme(scheme);
        shown->compared = nullptr;
        const auto plain = drawTreemap(treemapOrder(shown, shown->tree->root(), size, 1));
        shown->compared = compared;
        const auto marked = drawTreemap(treemapOrder(shown, shown->tree->root(), size, 1));
        std::string told;
        for (const FSNode* const node : shown->tree->root().children()) {
            const TreemapRectangle place = *marked.placeOf(*node);
            const QPoint low(int(place.left) + 10, int(place.bottom) - 10);
            told += fmt::format("{}:", node->name());
            if (marked.image.pixel(low) != plain.image.pixel(low)) told += " steps back";
            // Of the sign in the corner how wide it is at its top and at its foot.
            const QRgb ink = Theme::color(Theme::Color::Text, scheme).rgb();
            for (const int y : {0, 7}) {
                int width = 0;
                for (int x = 0; x < 8; ++x)
                    width += marked.image.pixel(int(std::lround(place.right)) - 13 + x,
                                                int(std::lround(place.top)) + 4 + y) == ink
                                 ? 1
                                 : 0;
                told += width == 0 ? " -" : width < 4 ? " narrow" : " wide";
            }
            told += "; ";
        }
        EXPECT_EQ(told,
                  "grows.mkv: - wide; comes.mkv: narrow narrow; "
                  "stays.mkv: steps back - -; shrinks.mkv: wide -; ");
    }
}

}  // namespace
}  // namespace orrinvale::testing
