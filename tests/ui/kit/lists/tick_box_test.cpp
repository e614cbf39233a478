// Tick boxes, alone and in a tree: what a click and a key change, what is drawn, what a screen
// reader hears.
#include <QAccessible>
#include <QHeaderView>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QTreeView>

#include "support/test.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int stateRole = TickModel::StateRole;

TEST(TickBox, ClicksAndKeysToggleAndSomeBecomesAll) {
    TickBox box(QStringLiteral("Select all"));
    box.resize(300, 30);
    box.show();
    const QSignalSpy clicked(&box, &TickBox::clicked);
    const auto click = [&](QPoint at) {
        QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, at);
    };
    box.setState(TickState::Some);
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(&box)->state().checkStateMixed);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&box)->role(), QAccessible::CheckBox);
    click(QPoint(10, 15));
    EXPECT_EQ(box.state(), TickState::All);
    click(QPoint(50, 15));
    EXPECT_EQ(box.state(), TickState::Nothing) << "on the text";
    click(QPoint(290, 15));
    EXPECT_EQ(clicked.count(), 2) << "beside the text";
    box.setLayoutDirection(Qt::RightToLeft);
    click(QPoint(290, 15));
    EXPECT_EQ(box.state(), TickState::All);
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_EQ(box.state(), TickState::Nothing);
    box.setEnabled(false);
    click(QPoint(290, 15));
    EXPECT_EQ(clicked.count(), 4);
}

TEST(TickBox, EachLookCanBeToldFromTheOthers) {
    std::set<QByteArray> looks;
    for (const auto state : {TickState::Nothing, TickState::All, TickState::Some})
        for (const TickLook look :
             {TickLook{}, TickLook{false, false, false, false, false},
              TickLook{true, true, false, false, false}, TickLook{true, true, true, false, false},
              TickLook{true, false, false, true, false},
              TickLook{true, false, false, true, true}}) {
            QImage image(30, 30, QImage::Format_ARGB32);
            image.fill(Theme::shared().color(look.isOnAccent ? Theme::Color::Accent
                                                             : Theme::Color::Surface));
            QPainter painter(&image);
            paintTickBox(painter, QRect(6, 6, tickBoxSize, tickBoxSize), state, look);
            looks.emplace(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
        }
    EXPECT_EQ(looks.size(), 18U);
}

class TickTree : public ::testing::TestWithParam<Qt::LayoutDirection> {
protected:
    enum Row { Clear, Ticked, Mixed, Disabled, Fixed, Boxless };

    void SetUp() override {
        model.setColumnCount(2);
        for (int row = Clear; row <= Boxless; ++row) {
            auto* cell = new QStandardItem(QStringLiteral("1/2"));
            if (row != Boxless) cell->setData(row <= Mixed ? row : 0, stateRole);
            cell->setCheckable(row != Fixed);
            cell->setEnabled(row != Disabled);
            cell->appendRow(new QStandardItem(QStringLiteral("child")));
            model.appendRow({cell, new QStandardItem(QStringLiteral("name"))});
        }
        view.setLayoutDirection(GetParam());
        view.setModel(&model);
        view.setEditTriggers(
            QAbstractItemView::NoEditTriggers);  // as on the pages; a double click opens the row
        view.setItemDelegateForColumn(0, &delegate);
        view.resize(500, 400);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    QModelIndex at(int row) const { return model.index(row, 0); }
    int state(int row) const { return at(row).data(stateRole).toInt(); }
    QStyleOptionViewItem option(int row) const {
        QStyleOptionViewItem cell;
        cell.rect = view.visualRect(at(row));
        cell.direction = GetParam();
        return cell;
    }
    QPoint box(int row) const { return RowDelegate::boxRect(option(row)).center(); }
    QPoint besideTheBox(int row) const {
        return box(row) + QPoint(GetParam() == Qt::LeftToRight ? 18 : -18, 0);
    }
    void click(QPoint where) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, where);
    }

    QStandardItemModel model;
    QTreeView view;
    RowDelegate delegate;
};

TEST_P(TickTree, OnlyTheBoxToggles) {
    ASSERT_TRUE(RowDelegate::hitRect(option(Clear)).contains(box(Clear)));
    const struct {
        Row row;
        int first, second;  // after one click and after two
    } cases[] = {{Clear, 1, 0},    {Ticked, 0, 1}, {Mixed, 1, 0},
                 {Disabled, 0, 0}, {Fixed, 0, 0},  {Boxless, 0, 0}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.row);
        const int before = state(each.row);
        click(besideTheBox(each.row));
        EXPECT_EQ(state(each.row), before);
        click(box(each.row));
        EXPECT_EQ(state(each.row), each.first);
        click(box(each.row));
        EXPECT_EQ(state(each.row), each.second);
    }
    EXPECT_FALSE(at(Boxless).data(stateRole).isValid());

    // A quick second click counts too, and does not open the row as a double click on its text
    // does.
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, box(Clear));
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, box(Clear));
    EXPECT_FALSE(view.isExpanded(at(Clear)));
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, besideTheBox(Clear));
    EXPECT_TRUE(view.isExpanded(at(Clear)));

    // Down on the label and up in the box, or with another button.
    const int before = state(Ticked);
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::NoModifier, besideTheBox(Ticked));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, box(Ticked));
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, box(Ticked));
    EXPECT_EQ(state(Ticked), before);
}

TEST_P(TickTree, TheSpaceBarTogglesTheCurrentRow) {
    view.setCurrentIndex(at(Mixed));
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(state(Mixed), 1);
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(state(Mixed), 0);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
    QCoreApplication::sendEvent(&view, &held);
    QTest::keyClick(&view, Qt::Key_X);
    EXPECT_EQ(state(Mixed), 0);
    view.setCurrentIndex(at(Fixed));
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(state(Fixed), 0);
}

TEST_P(TickTree, IsDrawnWithinItsRow) {
    EXPECT_GE(view.visualRect(at(Clear)).height(), Theme::rowHeight);
    const auto cellImage = [&](int row) {
        return view.viewport()->grab(view.visualRect(at(row))).toImage();
    };
    EXPECT_NE(cellImage(Clear), cellImage(Ticked));
    EXPECT_NE(cellImage(Clear), cellImage(Disabled));
    EXPECT_NE(cellImage(Clear), cellImage(Boxless));
    EXPECT_TRUE(view.visualRect(at(Clear)).contains(RowDelegate::hitRect(option(Clear))));
    const int middle = view.visualRect(at(Clear)).center().x();
    view.header()->resizeSection(0, 200);
    EXPECT_EQ(box(Clear).x() < view.visualRect(at(Clear)).center().x(),
              GetParam() == Qt::LeftToRight)
        << middle;
}

INSTANTIATE_TEST_SUITE_P(Directions, TickTree, ::testing::Values(Qt::LeftToRight, Qt::RightToLeft));

}  // namespace
}  // namespace orrinvale
