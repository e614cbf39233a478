// The disk usage page over real folders, driven by clicks and keys.
#include <QPainter>

#include "ui/diskusage/TreemapView.h"
#include "ui/diskusage/UsagePage.h"
#include "ui/kit/controls/DragView.h"

namespace orrinvale::testing {
namespace {

TEST(DiskUsagePage, ShowsEachLevelByItsSizesAndAddsUpWhatIsTooSmall) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.scan("data"));
    EXPECT_EQ(on.column(0), ".films 5.00 MB, .big.iso 4.00 MB, 1 item under 1.00 MB: 0.30 KB");
    on.browser().setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(on.column(1), ".one.mkv 3.00 MB, .two.mkv 2.00 MB, 1 item under 1.00 MB: 0.50 KB");
    EXPECT_EQ(on.page->itemPath(), on.tree.at("data/films"));
    on.click("revealFinderBtn");
    EXPECT_EQ(on.told, Strings{on.tree.at("data/films")});
    EXPECT_TRUE(on.textOf("titleLabel").starts_with("9.00 MB in ")) << on.textOf("titleLabel");
}

TEST(DiskUsagePage, FoldersWithWhatNobodySeesAreTickedAsAWholeByTheirOwnBoxAlone) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.scan("data"));
    EXPECT_FALSE(on.isEnabled("removeBtn"));
    on.clickRow(0, 0, false);
    on.clickRow(1, 0, true);
    on.clickRow(1, 1, true);
    EXPECT_TRUE(on.column(0).starts_with("-films")) << "the note in it was not ticked";
    EXPECT_EQ(on.textOf("removeBtn"), "Remove 5.00 MB");
    EXPECT_EQ(on.browser().currentRows(), std::vector<int>{0}) << "a box chooses no row";
    EXPECT_EQ(on.page->itemPath(), on.tree.at("data/films/two.mkv")) << "and touches its item";
    on.clickRow(0, 0, true);
    EXPECT_TRUE(on.column(0).starts_with("xfilms"));
    EXPECT_TRUE(on.column(1).starts_with("xone.mkv 3.00 MB, xtwo.mkv"));
    on.browser().setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_FALSE(on.isEnabled("removeBtn"));
}

TEST(DiskUsagePage, RemovesWhatWasCountedAndKeepsItsSizesTrue) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.scan("data"));
    on.clickRow(0, 0, true);
    ASSERT_TRUE(on.remove(1));
    EXPECT_TRUE(isThere(on.tree.at("data/films/one.mkv"))) << "Cancel removes nothing";
    ASSERT_TRUE(on.remove(0));
    const Alert& question = on.dialogs.alerts().back();
    EXPECT_EQ(question.title, QStringLiteral("Are you sure you want to remove all checked items?"));
    EXPECT_TRUE(question.text.contains(QStringLiteral("Files: 3. Folders: 1. Together: 5.00 MB")))
        << question.text.toStdString();
    EXPECT_TRUE(on.waitFor([&] { return on.isShown("removedLabel"); }));
    EXPECT_EQ(namesIn(on.tree.at("data")), (Strings{"big.iso", "small.txt"}));
    EXPECT_EQ(on.column(0), ".big.iso 4.00 MB, 1 item under 1.00 MB: 0.30 KB");
    EXPECT_EQ(on.page->rootNode()->size(), 4 * mega + 300);
    EXPECT_FALSE(on.isEnabled("removeBtn"));
}

TEST(DiskUsagePage, WhatStaysIsToldAndTickedNoMoreAndAFolderInPartIsMeasuredAnew) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.tree.sparse("data/films/late.mkv", mega));
    ASSERT_TRUE(on.scan("data"));
    on.clickRow(0, 0, true);
    on.clickRow(0, 1, true);
    on.dialogs.willAnswer(0);
    // Somebody writes between the question and the removal.
    on.files.beforeRemoval = [&, isDone = std::make_shared<std::once_flag>()](const char* step) {
        if (std::string_view(step) != "holdFolder" || on.dialogs.alerts().empty()) return;
        std::call_once(*isDone, [&] {
            EXPECT_TRUE(on.tree.patch("data/big.iso", 0, "changed"));
            EXPECT_TRUE(on.tree.sparse("data/films/new.mkv", 7 * mega));
        });
    };
    on.dialogs.willAnswer(0);
    on.click("removeBtn");
    ASSERT_TRUE(on.waitFor([&] { return on.dialogs.alerts().size() == 2 && !on.page->isBusy(); }));
    EXPECT_EQ(namesIn(on.tree.at("data")), (Strings{"big.iso", "films", "small.txt"}));
    EXPECT_EQ(namesIn(on.tree.at("data/films")), Strings{"new.mkv"});
    EXPECT_EQ(on.column(0), ".films 7.00 MB, .big.iso 4.00 MB, 1 item under 1.00 MB: 0.30 KB");
    EXPECT_EQ(on.textOf("failureLine"), "2 could not be removed");
}

TEST(DiskUsagePage, EveryPlaceHasItsOwnTreeAndRowsFollowTheirVolumes) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.tree.sparse("home/mine.bin", 2 * mega));
    ASSERT_TRUE(on.tree.sparse("disk/theirs.bin", 3 * mega));
    EXPECT_THROW(on.page->backButtonAction(), std::out_of_range) << "there is no custom row yet";
    const auto row = [&](int number) { return on.page->leftCellArr().at(std::size_t(number)); };
    QTest::mouseClick(row(0), Qt::LeftButton);
    ASSERT_TRUE(on.ended());
    EXPECT_EQ(row(0)->FreeSizeTF(), QStringLiteral("2.00 MB"));
    ASSERT_TRUE(on.scan("data"));
    EXPECT_EQ(on.page->beforeSelectRow(), 1);
    EXPECT_EQ(row(1)->totleSizeTF().size(), 15) << "twelve letters and three dots";

    on.volumes.change([&](auto& standing) {
        standing = {FakeVolumes::volume(1, "Disk", on.tree.at("disk"), false)};
    });
    on.watch.lookNow();
    ASSERT_TRUE(on.waitFor([&] { return on.page->leftCellArr().size() == 3; }));
    EXPECT_EQ(on.page->beforeSelectRow(), 2) << "the folder keeps its row and its tree";
    EXPECT_TRUE(on.column(0).starts_with(".films"));
    QTest::mouseClick(row(1), Qt::LeftButton);
    ASSERT_TRUE(on.ended());
    EXPECT_EQ(on.column(0), ".theirs.bin 3.00 MB");
    QTest::mouseClick(row(0), Qt::LeftButton);
    EXPECT_EQ(on.column(0), ".mine.bin 2.00 MB") << "shown again, and not scanned again";
    QTest::mouseClick(row(1), Qt::LeftButton);

    on.volumes.change([](auto& standing) { standing.clear(); });
    on.watch.lookNow();
    ASSERT_TRUE(on.waitFor([&] { return on.page->leftCellArr().size() == 2; }));
    EXPECT_TRUE(on.isShown("diskUsageView")) << "its volume was pulled out";
    QTest::mouseClick(row(1), Qt::LeftButton);
    on.click("backButton");
    EXPECT_EQ(on.page->leftCellArr().size(), 1U);
}

TEST(DiskUsagePage, AScanCanBeStoppedAndShowsNothingAsIfItWereCounted) {
    UsagePage on;
    fill(on.tree, "data");
    on.reading.shut();
    on.page->takeFolder(on.tree.at("data"));
    ASSERT_TRUE(on.waitFor([&] { return on.reading.isWaitedAt(); }));
    EXPECT_TRUE(on.isShown("stopBtn") && !on.isShown("scanBtn"));
    EXPECT_FALSE(on.isEnabled("leftView")) << "no other place meanwhile";
    on.click("stopBtn");
    ASSERT_TRUE(on.ended()) << "a folder that does not answer holds nobody up";
    EXPECT_EQ(on.column(0).find(" 0 "), std::string::npos) << on.column(0);
    on.reading.open();
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.tree.folder("none"));
    ASSERT_TRUE(on.scan("none"));
    EXPECT_TRUE(on.waitFor([&] { return !on.dialogs.alerts().empty(); }));
    EXPECT_EQ(on.dialogs.alerts().back().text,
              QStringLiteral("No items found in selected folder. Please try another one."));
    EXPECT_EQ(on.textOf("emptyLabel"), "This folder is empty.");
}

TEST(DiskUsagePage, TheMapGoesWhereOneClicksAndBackUp) {
    UsagePage on;
    fill(on.tree, "data");
    ASSERT_TRUE(on.scan("data"));
    on.click("mapBtn");
    auto& map = on.control<TreemapView>("map");
    const auto drawn = [&] {
        return on.waitFor([&] { return map.isDrawn() && map.shownPicture() != nullptr; });
    };
    ASSERT_TRUE(drawn());
    const FSNode* const films = on.page->rootNode()->children().front();
    const FSNode* const two = films->children().back();
    const TreemapRectangle place = *map.shownPicture()->placeOf(*two);
    const QPoint middle(int(place.left + place.right) / 2, int(place.top + place.bottom) / 2);
    EXPECT_EQ(map.grab().toImage().pixelColor(middle + QPoint(0, int(place.height()) / 3)),
              Theme::shared().color(Theme::Color::KindVideos));
    QTest::mouseMove(&map, middle);
    EXPECT_TRUE(on.waitFor([&] { return on.textOf("mapLine").starts_with("2.00 MB"); }));
    QTest::mouseClick(&map, Qt::LeftButton, {}, middle);
    EXPECT_EQ(on.page->itemPath(), on.tree.at("data/films/two.mkv"));
    EXPECT_EQ(map.folder(), films);
    QTest::keyClick(&map, Qt::Key_Space);
    EXPECT_EQ(two->isButtonState(), FSNode::Selected);
    on.click("mapUpBtn");
    EXPECT_EQ(map.folder(), on.page->rootNode());
    on.click("columnsBtn");
    EXPECT_TRUE(on.column(0).starts_with("-films"));
}

TEST(FileSystemBrowserCell, DrawsSizesInTheColourOfTheirBoundOnBothPalettes) {
    struct Case {
        std::uint64_t size;
        Theme::Color color;
    };
    using Color = Theme::Color;
    const std::array<Case, 9> cases{{{0, Color::SizeWhite},
                                     {1'000, Color::SizeWhite},
                                     {1'001, Color::SizeGreen},
                                     {1'000'000, Color::SizeGreen},
                                     {1'000'001, Color::SizeYellow},
                                     {999'999'999, Color::SizeYellow},
                                     {1'000'000'000, Color::SizeOrange},
                                     {18'446'744'072'982'171'647U, Color::SizeOrange},
                                     {18'446'744'072'982'171'648U, Color::SizeRed}}};
    for (const Theme::Scheme scheme : {Theme::Scheme::Light, Theme::Scheme::Dark}) {
        Theme::shared().setScheme(scheme);
        for (const Case& each : cases) {
            FileSystemBrowserCell cell({.willDisplay =
                                            [&](FileSystemBrowserCell& shown, const QModelIndex&) {
                                                shown.sizeColor = getColorWithNode(each.size);
                                                shown.sizeStr = QString(6, QChar(0x2588));
                                            },
                                        .touched = {},
                                        .boxClicked = {}});
            QImage image(220, FileSystemBrowserCell::rowHeight, QImage::Format_RGB32);
            image.fill(Theme::shared().color(Color::Surface));
            QStyleOptionViewItem option;
            option.rect = image.rect();
            QPainter painter(&image);
            cell.paint(&painter, option, {});
            painter.end();
            bool isFound = false;
            for (int x = 0; x < image.width() && !isFound; ++x)
                for (int y = 0; y < image.height(); ++y)
                    isFound =
                        isFound || image.pixelColor(x, y) == Theme::shared().color(each.color);
            EXPECT_TRUE(isFound) << each.size << " in scheme " << int(scheme);
        }
    }
    Theme::shared().setScheme(Theme::Scheme::Light);
}

}  // namespace
}  // namespace orrinvale::testing
