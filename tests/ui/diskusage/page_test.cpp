// The disk usage page over real folders, driven by clicks and keys.
#include <QPainter>
#include <QTest>
#include <QVBoxLayout>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/linux/LinuxPermissions.h"
#include "services/foundation/QtMainQueue.h"
#include "support/SteadyVolumes.h"
#include "support/test.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/FileSystemBrowserCell.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/columns/ColumnView.h"
#include "ui/kit/controls/DragView.h"
#include "ui/support/PageWindow.h"

namespace orrinvale::testing {
namespace {

constexpr std::uint64_t mega = 1'000'000;

/// The page in a window of its own, with a limit of 1 MB.
class UsagePage : public NamedControls {
public:
    UsagePage() {
        UserDefaults::setStandardUserDefaults(&defaults);
        defaults.setInteger(1, ZvDiskUsageLimit);
        defaults.setInteger(2, ZvDiskUsageUnit);
        files.onReadFolder = [this] { reading.pass(); };
        QnAuthorization::shareQnAuthorization().setParts(
            {&authorization, &files, &permissions, {}});
        page = std::make_unique<DiskUsageAppController>(
            PageServices{.files = &files,
                         .notifications = &notifications,
                         .defaults = &defaults,
                         .dialogs = &dialogs,
                         .mainQueue = &mainQueue,
                         .stateFolder = {},
                         .icons = {},
                         .reveal = [this](const std::string& path) { told.push_back(path); },
                         .openAddress = {}},
            DiskUsageParts{.watch = &watch,
                           .home = tree.at("home"),
                           .userName = QStringLiteral("anna"),
                           .open = {}});
        (new QVBoxLayout(&window))->addWidget(page->view());
        page->setMainWindow(&window);
        window.resize(1000, 600);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    ~UsagePage() override {
        reading.open();
        page.reset();
        QnAuthorization::shareQnAuthorization().setParts({});
        UserDefaults::setStandardUserDefaults(nullptr);
    }
    UsagePage(const UsagePage&) = delete;
    UsagePage& operator=(const UsagePage&) = delete;

    ColumnBrowser& browser() { return control<ColumnBrowser>("browser"); }
    bool ended() {
        return waitFor([this] { return !page->isBusy(); });
    }
    bool scan(const std::string& name) {
        page->takeFolder(tree.at(name));
        return ended();
    }
    /// The rows of a column: box, name and size.
    std::string column(int number) {
        std::string text;
        if (number > browser().lastColumn()) return text;
        const ColumnModel& rows = browser().model(number);
        for (int row = 0; row < rows.rowCount({}); ++row) {
            const FSNode* const node = static_cast<const FSNodeColumn&>(rows).node(row);
            if (!text.empty()) text += ", ";
            if (node != nullptr) text += ".x-"[node->isButtonState()];
            text += rows.data(rows.index(row),
                              node != nullptr ? Qt::DisplayRole : Qt::AccessibleTextRole)
                        .toString()
                        .toStdString();
            if (node != nullptr) text += ' ' + sizeWords(*node, false).toStdString();
        }
        return text;
    }
    void clickRow(int number, int row, bool onBox) {
        ColumnView& view = *browser().view(number);
        const QRect place = view.visualRect(view.model()->index(row, 0));
        QTest::mouseClick(
            view.viewport(), Qt::LeftButton, {},
            onBox ? FileSystemBrowserCell::checkBoxForFrame(place, Qt::LeftToRight).center()
                  : place.center());
    }
    /// Presses Remove, waits for the question, and answers it.
    bool remove(int button) {
        const std::size_t asked = dialogs.alerts().size();
        dialogs.willAnswer(button);
        click("removeBtn");
        if (!waitFor([&] { return dialogs.alerts().size() > asked; })) return false;
        QTest::qWait(1);  // the answer comes in a turn of its own
        return ended();
    }

    TestTree tree;
    Gate reading;
    WatchedFiles files;
    LinuxPermissions permissions;
    FakeAuthorization authorization;
    UserDefaults defaults{tree.at("settings.ini")};
    NotificationCenter notifications;
    RecordedDialogs dialogs;
    QtMainQueue mainQueue;
    SteadyVolumes volumes;
    CountedMemory memory;
    SystemWatch watch{volumes, memory, mainQueue, std::chrono::hours(1)};
    Strings told;
    QWidget window;
    std::unique_ptr<DiskUsageAppController> page;

protected:
    std::vector<QWidget*> places() override { return {page->view()}; }
};

// A folder with 5 MB of what counts and 3 small files beside.
void fill(TestTree& tree, const std::string& name) {
    EXPECT_TRUE(tree.sparse(name + "/films/one.mkv", 3 * mega));
    EXPECT_TRUE(tree.sparse(name + "/films/two.mkv", 2 * mega));
    EXPECT_TRUE(tree.write(name + "/films/note.txt", std::string(500, 'n')));
    EXPECT_TRUE(tree.sparse(name + "/big.iso", 4 * mega));
    EXPECT_TRUE(tree.write(name + "/small.txt", std::string(300, 's')));
}

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
        if (std::string_view(step) != "holdFolder") return;
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
