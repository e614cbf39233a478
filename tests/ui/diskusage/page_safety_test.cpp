// What the disk usage page must not lose, promise or wait for.
#include <QContextMenuEvent>
#include <QMenu>
#include <QStandardPaths>

#include "engine/diskusage/UsageRun.h"
#include "engine/diskusage/UsageSelection.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/diskusage/UsagePage.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale::testing {
namespace {

// With columns opening in between, each of which passes on what its folder has.
TEST(DiskUsagePage, BoxesFollowTheirRulesThroughTenThousandClicks) {
    UsagePage on;
    on.defaults.setInteger(0, ZvDiskUsageLimit);
    std::mt19937 random(17);
    for (int i = 0; i < 48; ++i)
        ASSERT_TRUE(on.tree.write(fmt::format("data/{}/{}/{}/{}", i % 2, i % 4, i % 8, i),
                                  std::string(20 + random() % 90, 'x')));
    ASSERT_TRUE(on.scan("data"));
    const FSNode& root = *on.page->rootNode();
    BoxModel model;
    const auto folderOf = [&](int column) -> const FSNode& {
        return static_cast<const FSNodeColumn&>(on.browser().model(column)).folder();
    };
    const std::vector<FSNode*> nodes = allOf(FSNodeTree::of(root));
    const QWidget& remove = on.control("removeBtn");
    for (int step = 0; step < 10'000; ++step) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // closed columns
        const int column = int(random() % unsigned(on.browser().lastColumn() + 1));
        if (on.browser().view(column) == nullptr) continue;
        const auto& rows = static_cast<const FSNodeColumn&>(on.browser().model(column));
        const int row = int(random() % unsigned(rows.rowCount()));
        const FSNode& node = *rows.node(row);
        const int before = on.browser().currentRow(column);
        const bool onBox = random() % 2 == 0;
        on.browser().view(column)->scrollTo(rows.index(row));
        on.clickRow(column, row, onBox);
        if (onBox) {
            model.click(node);
            for (int each = 0; each <= on.browser().lastColumn(); ++each)
                model.open(folderOf(each));
        } else if (before != row && node.isDirectory()) {
            model.open(node);
        }
        for (const FSNode* const each : nodes)
            ASSERT_EQ(each->isButtonState(), model.state[each]) << each->path() << ", " << step;
        ASSERT_EQ(remove.isEnabled(), hasTicks(root));
    }
}

TEST(DiskUsagePage, AStopEndsTheCountingOnADiskThatDoesNotAnswer) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.scan("data"));
    on.clickRow(0, 0, true);
    on.reading.shut();
    on.click("removeBtn");
    ASSERT_TRUE(on.waitFor([&] { return on.reading.isWaitedAt(); }));
    QElapsedTimer since;
    since.start();
    on.click("stopBtn");
    ASSERT_TRUE(on.ended());
    EXPECT_LT(since.elapsed(), 1100);
    on.reading.open();
    QTest::qWait(50);
    EXPECT_TRUE(on.dialogs.alerts().empty()) << "nobody waits for that answer any more";
    EXPECT_TRUE(on.column(0).starts_with("xfilms"));
    ASSERT_TRUE(on.remove(1)) << "and it can be asked for again";
}

TEST(DiskUsagePage, AsksForNothingThatWouldStay) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.tree.hardLink("data/films/one.mkv", "data/same.mkv"));
    QnAuthorization::shareQnAuthorization().setParts(
        {&on.authorization, &on.files, &on.permissions, {on.tree.at("data/big.iso")}});
    ASSERT_TRUE(on.scan("data"));
    ASSERT_TRUE(on.column(0).starts_with(".films 5.00 MB, .big.iso 4.00 MB, .same.mkv 3.00 MB"));
    on.clickRow(0, 1, true);
    on.dialogs.willAnswer(0);
    on.click("removeBtn");
    ASSERT_TRUE(on.waitFor([&] { return !on.dialogs.alerts().empty() && !on.page->isBusy(); }));
    EXPECT_EQ(on.dialogs.alerts().back().title,
              QStringLiteral("Nothing of what is ticked can be removed."));
    EXPECT_FALSE(on.isEnabled("removeBtn"));

    on.clickRow(0, 1, true);
    on.clickRow(0, 2, true);
    ASSERT_TRUE(on.remove(0));
    const QString asked = on.dialogs.alerts().back().text;
    EXPECT_TRUE(asked.contains(QStringLiteral("Files: 1. Folders: 0. Together: 3.00 MB")) &&
                asked.contains(QStringLiteral("Ticked, and stays all the same: 1\n")) &&
                asked.contains(QStringLiteral("data/big.iso: ")))
        << asked.toStdString();
    EXPECT_TRUE(on.column(0).starts_with(".films 5.00 MB, .big.iso 4.00 MB, 1 item"));
    // What is left of the file whose other name went is still what the scan saw.
    on.clickRow(0, 0, true);
    ASSERT_TRUE(on.remove(0));
    EXPECT_EQ(namesIn(on.tree.at("data")), (Strings{"big.iso", "small.txt"}));
}

// As Free Space and the tray do: a disk that is half free is short of space for who asks for more.
TEST(DiskUsagePage, ADiskIsShortOfSpaceBelowThePersonsOwnLevel) {
    UsagePage on;
    for (const float level : {0.1F, 0.6F}) {
        on.defaults.setFloat(level, ZvSpaceAlarmKey);
        on.showVolume("Disk", on.tree.at("disk"));
        const QImage drawn = on.row(1)->grab().toImage();
        const QRgb warning = Theme::shared().color(Theme::Color::Warning).rgb();
        bool isWarned = false;
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x) isWarned |= drawn.pixel(x, y) == warning;
        EXPECT_EQ(isWarned, level > 0.5F) << level;
        on.showVolume({}, {});
    }
}

TEST(DiskUsagePage, ALeavingVolumeEndsWhatRunsOnItAndTakesItsFolderAlong) {
    UsagePage on;
    fill(on.tree, "disk");
    const std::string disk = on.tree.at("disk");
    on.showVolume("Disk", disk);
    ASSERT_EQ(on.page->leftCellArr().size(), 2U);
    on.reading.shut();
    QTest::mouseClick(on.row(1), Qt::LeftButton);
    ASSERT_TRUE(on.waitFor([&] { return on.reading.isWaitedAt(); }));
    on.showVolume({}, {});
    on.reading.open();
    ASSERT_TRUE(on.ended());
    EXPECT_TRUE(on.waitFor([&] { return on.isShown("diskUsageView"); })) << "pulled out while read";
    EXPECT_EQ(on.page->leftCellArr().size(), 1U);

    on.showVolume("Disk", disk);
    ASSERT_EQ(on.page->leftCellArr().size(), 2U);
    QTest::mouseClick(on.row(1), Qt::LeftButton);
    ASSERT_TRUE(on.ended());
    on.clickRow(0, 0, true);
    on.reading.shut();
    on.click("removeBtn");
    ASSERT_TRUE(on.waitFor([&] { return on.reading.isWaitedAt(); }));
    on.showVolume("Another", disk);
    on.reading.open();
    ASSERT_TRUE(on.ended());
    EXPECT_TRUE(on.waitFor([&] { return on.isShown("diskUsageView"); }));
    EXPECT_TRUE(on.dialogs.alerts().empty()) << "nothing is asked of what was counted on the other";
    EXPECT_EQ(on.page->allScanArr().at(1), nullptr);
}

TEST(DiskUsagePage, AFolderOfOnesOwnLeavesWhenAskedAndGivesWayToAVolume) {
    UsagePage on;
    fill(on.tree, "disk");
    ASSERT_TRUE(on.scan("disk"));
    on.clickRow(0, 0, true);
    for (const int answer : {1, 0}) {
        on.dialogs.willAnswer(answer);
        on.click("backButton");
        ASSERT_TRUE(
            on.waitFor([&] { return on.dialogs.alerts().size() == std::size_t(2 - answer); }));
        QTest::qWait(1);
        EXPECT_EQ(on.page->leftCellArr().size(), answer == 1 ? 2U : 1U);
        EXPECT_EQ(on.isShown("diskUsageView"), answer == 0);
    }
    ASSERT_TRUE(on.scan("disk"));
    on.showVolume("disk", on.tree.at("disk"));
    EXPECT_TRUE(on.isShown("diskUsageView"));
    EXPECT_EQ(on.page->leftCellArr().size(), 2U);
    EXPECT_EQ(on.page->allScanArr().at(1), nullptr) << "the folder lies under the volume now";
}

// As a person without the right to one of the folders.
TEST(DiskUsagePage, OfWhatMayNotGoTheRestGoesAndItsSizesStayTrue) {
    if (::geteuid() == 0) {
        const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
        const std::string command =
            "setpriv --reuid=65534 --regid=65534 --clear-groups env HOME=/tmp XDG_RUNTIME_DIR=/tmp "
            "QT_QPA_PLATFORM=offscreen '" +
            program + "' --gtest_filter=DiskUsagePage.OfWhatMayNotGo* > /dev/null 2>&1";
        EXPECT_EQ(::system(command.c_str()), 0) << command;
        return;
    }
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.tree.sparse("data/films/kept/three.mkv", 6 * mega));
    ASSERT_TRUE(on.tree.write("data/films/shut/x", "1"));
    ASSERT_TRUE(on.tree.setMode("data/films/shut", 0));
    ASSERT_TRUE(on.scan("data"));
    EXPECT_TRUE(on.textOf("quietLine").starts_with("1 ")) << on.textOf("quietLine");
    on.clickRow(0, 0, true);
    ASSERT_TRUE(on.tree.setMode("data/films/kept", 0500));
    on.dialogs.willAnswer(0);
    on.dialogs.willAnswer(0);
    on.click("removeBtn");
    ASSERT_TRUE(on.waitFor([&] { return on.dialogs.alerts().size() == 2 && !on.page->isBusy(); }));
    EXPECT_EQ(namesIn(on.tree.at("data/films")), (Strings{"kept", "shut"}));
    EXPECT_EQ(on.page->rootNode()->size(), 10 * mega + 300);
    EXPECT_TRUE(on.column(0).starts_with(".films \u2265 6.00 MB, .big.iso 4.00 MB"))
        << on.column(0);
    EXPECT_TRUE(on.textOf("quietLine").starts_with("1 ")) << "not told twice";

    // From the map, with the rights by now; what is whole is no part any more, up to the top.
    ASSERT_TRUE(on.tree.setMode("data/films/kept", 0700) &&
                on.tree.setMode("data/films/shut", 0700));
    on.clickRow(0, 0, false);
    on.click("mapBtn");
    auto& map = on.control<TreemapView>("map");
    map.setCurrent(map.folder());
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(&map, &event);
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    menu->findChild<QAction*>(QStringLiteral("scanAgain"))->trigger();
    menu->close();
    ASSERT_TRUE(on.ended());
    on.click("columnsBtn");
    EXPECT_TRUE(on.column(0).starts_with(".films 6.00 MB, .big.iso 4.00 MB")) << on.column(0);
    EXPECT_FALSE(on.page->rootNode()->has(FSNode::UnreadWithin));
    EXPECT_FALSE(on.isShown("quietLine"));
}

TEST(FSNodeColumn, TheChosenLastLineStaysChosenWhenRowsLeave) {
    TestTree tree;
    const LinuxFileSystem files;
    ASSERT_TRUE(tree.write("big", std::string(50, 'x')) &&
                tree.write("two", std::string(40, 'x')) && tree.write("small", "1"));
    const UsageRun run(files, tree.path(), {.limit = 10});
    const auto shown = std::make_shared<ShownScan>();
    shown->tree = run.tree;
    FSNodeColumn column(shown, run.tree->root());
    const QPersistentModelIndex last = column.index(2);
    const QPersistentModelIndex leaves = column.index(0);
    run.tree->takeOut(run.tree->root().children().first(1));
    column.reload();
    EXPECT_EQ(last.row(), 1);
    EXPECT_FALSE(leaves.isValid());
}

}  // namespace
}  // namespace orrinvale::testing
