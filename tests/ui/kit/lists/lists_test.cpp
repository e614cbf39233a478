// Lists of the pages: what a table of columns makes of a view, boxes within names, shares, what is
// drawn anew, and the rows at the left of a page. tick_box_test.cpp has the boxes themselves.
#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QApplication>
#include <QHeaderView>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include "support/test.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/LeftRow.h"
#include "ui/kit/lists/LevelModel.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

struct Place {
    QString name;
    double share = 0;
    bool isGrey = false;
    std::vector<Place> below = {};
    TickState state = TickState::Nothing;
};

using Columns = std::vector<TickColumn<Place>>;

TickColumn<Place> nameColumn() {
    return {.title = QStringLiteral("Name"),
            .look = CellLook::Name,
            .hasBox = true,
            .text = [](const Place& place) { return place.name; }};
}

TickColumn<Place> sizeColumn() {
    return {.title = QStringLiteral("Size"),
            .look = CellLook::Figure,
            .width = 100,
            .sortKey = 7,
            .text = [](const Place& /*place*/) { return QString(); },
            .share = [](const Place& place) { return place.share; }};
}

class Places final : public LevelModel<Place> {
public:
    Places(std::vector<Place>& top, Columns columns) : LevelModel(std::move(columns)), m_top(top) {
        restart(true, [] {});
    }

protected:
    std::vector<Place*> rowsBelow(Place* above, std::size_t /*wanted*/) const override {
        std::vector<Place*> rows;
        for (Place& each : above != nullptr ? above->below : m_top) rows.push_back(&each);
        return rows;
    }
    std::size_t countBelow(Place* above) const override { return rowsBelow(above, 0).size(); }
    std::uint64_t revision() const override { return 1; }
    bool isOpenable(const Place& place) const override { return !place.below.empty(); }
    std::optional<TickState> stateOf(const Place& place) const override { return place.state; }
    bool isGrey(const Place& place) const override { return place.isGrey; }
    bool clickBox(const QModelIndex& index) override {
        Place& place = *node(index);
        place.state = stateAfterClick(place.state);
        for (Place& each : place.below) each.state = place.state;
        refresh();
        return true;
    }

private:
    std::vector<Place>& m_top;
};

class Lists : public ::testing::Test {
protected:
    void show(Columns columns) {
        model = std::make_unique<Places>(top, std::move(columns));
        tester = std::make_unique<QAbstractItemModelTester>(
            model.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        view.setModel(model.get());
        view.resize(400, 200);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    QRect cell(const QModelIndex& index) const { return view.visualRect(index); }
    // What stands on the screen, without asking the list to draw itself anew.
    QImage seen(const QModelIndex& index) const {
        QTest::qWait(30);
        const QRect part(view.viewport()->mapTo(&view, cell(index).topLeft()), cell(index).size());
        return view.screen()->grabWindow(view.winId()).copy(part).toImage();
    }

    std::vector<Place> top;
    std::unique_ptr<Places> model;
    std::unique_ptr<QAbstractItemModelTester> tester;
    TickOutline view{new FlatHeader, nullptr};
};

TEST_F(Lists, ATableOfColumnsLaysOutTheView) {
    top = {{QStringLiteral("home")}};
    show({{.name = QStringLiteral("Ticked"), .look = CellLook::Box, .width = 34},
          {.title = QStringLiteral("Name"), .look = CellLook::Name},
          sizeColumn()});
    const auto head = [&](int column, int role) {
        return model->headerData(column, Qt::Horizontal, role).toString();
    };
    EXPECT_EQ(head(0, Qt::DisplayRole), QString());
    EXPECT_EQ(head(0, Qt::AccessibleTextRole), QStringLiteral("Ticked"));
    EXPECT_EQ(head(2, Qt::AccessibleTextRole), QStringLiteral("Size"));
    EXPECT_EQ(std::make_pair(view.treePosition(), view.columnWidth(2)), std::make_pair(1, 100));
    EXPECT_EQ(view.columnWidth(1), view.viewport()->width() - 134) << "what the others leave";
    EXPECT_EQ(model->sortKey(2), 7);
    EXPECT_EQ(model->sortKey(1), std::nullopt);
    EXPECT_TRUE(view.headerBox()->isVisible());
}

TEST_F(Lists, ABoxBeforeANameIsDrawnAnewWithThoseBelowASingleRow) {
    top = {{QStringLiteral("home"), 0, false, {{QStringLiteral("notes")}}}};
    show({nameColumn()});
    EXPECT_FALSE(view.headerBox()->isVisible()) << "over names there is no room for one";
    const QModelIndex home = model->index(0, 0), notes = model->index(0, 0, home);
    view.expand(home);
    const QImage before = seen(notes);
    QStyleOptionViewItem option;
    option.rect = cell(home);
    const QPoint box = RowDelegate::boxRect(option).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, box + QPoint(40, 0));
    EXPECT_EQ(top[0].state, TickState::Nothing) << "beside the box";
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, box);
    EXPECT_EQ(top[0].below[0].state, TickState::All);
    EXPECT_NE(seen(notes), before) << "ticked, and not on the screen";
    view.setCurrentIndex(notes);
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(top[0].below[0].state, TickState::Nothing);
}

TEST_F(Lists, AShareIsABarAndWhatIsGreyLooksIt) {
    top = {{QStringLiteral("none"), 0}, {QStringLiteral("half"), 0.5}, {QStringLiteral("more"), 3}};
    top.push_back({QStringLiteral("none"), 0, true});
    show({nameColumn(), sizeColumn()});
    const auto accented = [&](int row) {
        const QImage drawn = view.viewport()->grab(cell(model->index(row, 1))).toImage();
        int widest = 0;
        for (int y = 0; y < drawn.height(); ++y) {
            int width = 0;
            for (int x = 0; x < drawn.width(); ++x)
                width += drawn.pixelColor(x, y) == Theme::shared().color(Theme::Color::Accent);
            widest = std::max(widest, width);
        }
        return widest;
    };
    const int whole = 100 - 2 * FlatHeader::textMargin;
    EXPECT_EQ((std::vector{accented(0), accented(1), accented(2)}),
              (std::vector{0, whole / 2, whole}));
    const auto name = [&](int row) {
        return view.viewport()->grab(cell(model->index(row, 0))).toImage();
    };
    EXPECT_NE(name(0), name(3));
}

// No title is cut for the size beside it, whatever the language makes of the title.
TEST(LeftRail, SizesStandBelowWhereATitleIsLong) {
    for (const char* const title : {"Logs", "Records of all that runs"}) {
        LeftRail rail;
        rail.setFixedWidth(220);
        for (const char* const each : {"Caches", title}) {
            auto* const added = new LeftRow({QLatin1String(each), QStringLiteral("ic_doc")});
            added->setBox(TickState::All);
            rail.add(added);
        }
        rail.makeRoomForSizes(QStringLiteral("888.88 MB"));
        LeftRow& row = rail.row(0);
        row.resize(220, 36);
        const auto foot = [&] { return row.grab(QRect(40, 28, 60, 6)).toImage(); };
        const QImage without = foot();
        row.setSizeText(QStringLiteral("3 MB"));
        EXPECT_EQ(foot() != without, QLatin1String(title).size() > 4) << title;
    }
}

TEST(LeftRail, ARowIsChosenByPointerAndKeysAndTickedByItsBox) {
    LeftRail rail;
    for (const char* title : {"Caches", "Logs", "Trash"})
        rail.add(new LeftRow({QLatin1String(title), QStringLiteral("ic_doc")}));
    rail.row(1).setBox(TickState::Some);
    rail.row(1).setSizeText(QStringLiteral("3 MB"));
    rail.resize(LeftRail::railWidth, 200);
    rail.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&rail));
    QSignalSpy chosen(&rail, &LeftRail::chosen), ticked(&rail.row(1), &LeftRow::boxClicked);
    const auto key = [&](Qt::Key each) { QTest::keyClick(QApplication::focusWidget(), each); };
    const auto choices = [&] {
        std::vector<int> rows;
        for (; !chosen.isEmpty(); chosen.removeFirst())
            rows.push_back(chosen.front().front().toInt());
        return rows;
    };
    QTest::mouseClick(&rail.row(0), Qt::LeftButton);
    rail.row(0).setFocus();
    key(Qt::Key_Space);
    key(Qt::Key_Down);
    key(Qt::Key_Return);
    EXPECT_EQ(choices(), (std::vector{0, 0, 1}));
    key(Qt::Key_Space);
    QTest::mouseClick(rail.row(1).findChild<TickBox*>(), Qt::LeftButton);
    EXPECT_EQ(ticked.count(), 2);
    EXPECT_TRUE(choices().empty()) << "a tick chooses nothing";
    EXPECT_EQ(rail.row(1).box(), TickState::Some) << "until the page says so";
    EXPECT_EQ(rail.row(1).findChild<TickBox*>()->state(), TickState::Some);
    EXPECT_EQ(rail.row(0).box(), std::nullopt);
    rail.select(2);
    for (const int row : {0, 1, 2}) {
        auto* const told = QAccessible::queryAccessibleInterface(&rail.row(row));
        EXPECT_EQ(told->role(), QAccessible::ListItem);
        EXPECT_EQ(told->state().selected, row == 2);
    }
    EXPECT_EQ(rail.row(1).accessibleName(), QStringLiteral("Logs, 3 MB"));
    EXPECT_EQ(rail.row(1).findChild<TickBox*>()->accessibleName(), QStringLiteral("Logs"));
}

}  // namespace
}  // namespace orrinvale
