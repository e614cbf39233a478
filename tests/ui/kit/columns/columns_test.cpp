// The column browser over a tree of numbers: each row opens a column of as many rows as all others.
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "support/test.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/columns/ColumnGrip.h"
#include "ui/kit/columns/ColumnView.h"

namespace orrinvale::testing {
namespace {

struct Rows {
    int count = 5, depth = 4;
    std::vector<int> gone{};
};

class NumberColumn final : public ColumnModel {
public:
    NumberColumn(const Rows& rows, int level) : m_rows(rows), m_level(level) { load(); }
    [[nodiscard]] std::unique_ptr<ColumnModel> open(int /*row*/) const override {
        if (m_level + 1 == m_rows.depth) return nullptr;
        return std::make_unique<NumberColumn>(m_rows, m_level + 1);
    }
    void reload() override {
        Q_EMIT layoutAboutToBeChanged();
        const QModelIndexList before = persistentIndexList();
        std::vector<int> numbers;
        for (const QModelIndex& each : before) numbers.push_back(m_shown[std::size_t(each.row())]);
        load();
        QModelIndexList after;
        for (const int number : numbers) {
            const auto found = std::ranges::find(m_shown, number);
            after.push_back(found == m_shown.end() ? QModelIndex()
                                                   : index(int(found - m_shown.begin())));
        }
        changePersistentIndexList(before, after);
        Q_EMIT layoutChanged();
    }
    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(m_shown.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole ? QVariant(m_shown[std::size_t(index.row())]) : QVariant();
    }

private:
    void load() {
        m_shown.clear();
        for (int number = 0; number < m_rows.count; ++number)
            if (std::ranges::find(m_rows.gone, number) == m_rows.gone.end())
                m_shown.push_back(number);
    }
    const Rows& m_rows;
    const int m_level;
    std::vector<int> m_shown;
};

struct Shown {
    explicit Shown(Rows of = {}, Qt::LayoutDirection direction = Qt::LeftToRight) : rows(of) {
        browser.setLayoutDirection(direction);
        browser.resize(700, 300);
        browser.setDetail(detail);
        browser.setRoot(std::make_unique<NumberColumn>(rows, 0));
        browser.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&browser));
        browser.setFocus();
    }
    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    [[nodiscard]] bool isInSight(int column) const {
        const ColumnView* const view = browser.view(column);
        return view != nullptr && browser.rect().contains(view->geometry());
    }

    Rows rows;
    ColumnBrowser browser;
    QWidget* const detail = new QWidget;
};

TEST(ColumnBrowser, IsWalkedByTheKeyboardInTheDirectionOfReading) {
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        const bool isMirrored = direction == Qt::RightToLeft;
        const Qt::Key deeper = isMirrored ? Qt::Key_Left : Qt::Key_Right;
        const Qt::Key back = isMirrored ? Qt::Key_Right : Qt::Key_Left;
        Shown on({}, direction);
        ColumnBrowser& browser = on.browser;
        const QSignalSpy ticks(&browser, &ColumnBrowser::tickWanted);
        const int first = browser.view(0)->x();
        EXPECT_EQ(first, isMirrored ? 700 - ColumnBrowser::columnWidth + 1 : 0);
        for (const Qt::Key key :
             {Qt::Key_Down, Qt::Key_Down, deeper, Qt::Key_Space, deeper, Qt::Key_Down, deeper})
            on.press(key);
        EXPECT_EQ(browser.currentRows(), (std::vector<int>{1, 0, 1, 0}));
        EXPECT_EQ(browser.selectedColumn(), 3);
        EXPECT_EQ(ticks.first(), (QList<QVariant>{1, 0}));
        EXPECT_TRUE(on.detail->isVisible()) << "a row that opens nothing is chosen";
        EXPECT_TRUE(on.isInSight(3)) << "what was opened last";
        EXPECT_FALSE(on.isInSight(0));
        for (int step = 0; step < 5; ++step) on.press(back);
        EXPECT_EQ(browser.currentRows(), std::vector<int>{1});
        EXPECT_EQ(browser.lastColumn(), 1);
        EXPECT_TRUE(on.isInSight(0)) << "scrolling follows back";
        EXPECT_FALSE(on.detail->isVisible());
    }
}

TEST(ColumnBrowser, HasViewsOnlyForColumnsInSightHoweverDeepTheWayIs) {
    Shown on({.count = 3, .depth = 10'000});
    on.browser.openRows(std::vector<int>(9'000, 2));
    EXPECT_EQ(on.browser.lastColumn(), 9'000);
    EXPECT_LE(on.browser.findChildren<ColumnView*>().size(), 8);
    on.browser.setFocus();
    on.press(Qt::Key_Left);
    EXPECT_EQ(on.browser.lastColumn(), 8'999);
    on.browser.horizontalScrollBar()->setValue(0);
    ASSERT_NE(on.browser.view(0), nullptr);
    EXPECT_EQ(on.browser.view(0)->currentIndex().row(), 2) << "a view that comes back knows";
}

TEST(ColumnBrowser, AColumnIsPulledWiderAndNeverTooNarrow) {
    Shown on;
    on.browser.choose(0, 1);
    const auto drag = [&](int by) {
        auto* const grip = on.browser.findChild<ColumnGrip*>();
        const QPoint start = grip->rect().center();
        QTest::mousePress(grip, Qt::LeftButton, {}, start);
        QMouseEvent move(QEvent::MouseMove, start, grip->mapToGlobal(start + QPoint(by, 0)),
                         Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(grip, &move);
        QTest::mouseRelease(grip, Qt::LeftButton);
    };
    drag(80);
    EXPECT_EQ(on.browser.view(1)->x(), ColumnBrowser::columnWidth + 80);
    drag(-500);
    EXPECT_EQ(on.browser.view(1)->x(), ColumnBrowser::narrowest);
}

TEST(ColumnBrowser, WhatWasChosenStaysWhileOthersLeaveAndClosesWhenItLeavesItself) {
    Shown on;
    on.browser.openRows({3, 4, 2});
    on.rows.gone = {0, 1};
    on.browser.reload();
    EXPECT_EQ(on.browser.currentRows(), (std::vector<int>{1, 2, 0}));
    on.rows.gone.push_back(4);
    on.browser.reload();
    EXPECT_EQ(on.browser.currentRows(), std::vector<int>{1});
    EXPECT_EQ(on.browser.lastColumn(), 1);
}

}  // namespace
}  // namespace orrinvale::testing
