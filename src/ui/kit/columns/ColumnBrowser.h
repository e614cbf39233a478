// ColumnBrowser: a tree as columns side by side, each with what lies in the chosen row of the one
// before. ColumnModel.h has the rows; a delegate of the page's draws them.
#pragma once

#include <QAbstractItemDelegate>
#include <QAbstractScrollArea>
#include <QPersistentModelIndex>
#include <QPointer>
#include <memory>
#include <vector>

#include "ui/kit/columns/ColumnModel.h"

namespace orrinvale {

class ColumnGrip;
class ColumnView;

/// Only the columns in sight have a view, so that a way of ten thousand folders can be walked. Left
/// and right go through the columns, up and down through the rows of one, Space ticks. What has
/// been opened last is scrolled into sight. Main thread only.
class ColumnBrowser final : public QAbstractScrollArea {
    Q_OBJECT
public:
    static constexpr int columnWidth = 220, narrowest = 140;

    explicit ColumnBrowser(QWidget* parent = nullptr);
    ~ColumnBrowser() override;

    /// Not owned; outlives the browser or is its child.
    void setItemDelegate(QAbstractItemDelegate* delegate) { m_delegate = delegate; }
    /// What stands behind the last column while a row that opens none is chosen. Owned from now on.
    void setDetail(QWidget* detail);
    /// Nothing is chosen in it; null: no columns.
    void setRoot(std::unique_ptr<ColumnModel> root);

    /// -1 where there are none.
    [[nodiscard]] int lastColumn() const { return int(m_columns.size()) - 1; }
    /// The one that has the keyboard, or would get it.
    [[nodiscard]] int selectedColumn() const { return m_selected; }
    [[nodiscard]] ColumnModel& model(int column) const {
        return *m_columns.at(std::size_t(column)).model;
    }
    /// -1 where none is chosen.
    [[nodiscard]] int currentRow(int column) const {
        return m_columns.at(std::size_t(column)).current.row();
    }
    /// The chosen rows from the first column on.
    [[nodiscard]] std::vector<int> currentRows() const;
    /// The deepest chosen row; invalid where nothing is chosen.
    [[nodiscard]] QModelIndex current() const;
    /// Null for a column that is not in sight.
    [[nodiscard]] ColumnView* view(int column) const {
        return m_columns.at(std::size_t(column)).view;
    }

    /// As a click on the row: opens its column, or the detail. -1: nothing is chosen any more.
    void choose(int column, int row);
    /// One after the other, as far as there are such rows. Nothing is told but the last one.
    void openRows(const std::vector<int>& rows);
    /// Closes all columns behind this one; what was chosen in it is chosen no more.
    void closeBehind(int column);
    /// What the rows show has changed.
    void redraw();
    /// Rows may have come, gone or changed their places. What was chosen stays chosen as far as it
    /// is there.
    void reload();
    /// The place of a row in this widget; empty where it is not in sight.
    [[nodiscard]] QRect rowRect(int column, int row) const;

Q_SIGNALS:
    /// Another row is the deepest chosen one, or none is.
    void chosenChanged();
    void tickWanted(int column, int row);
    /// Return, or a double click.
    void openWanted(int column, int row);
    void removalWanted();
    void menuWanted(int column, int row, QPoint globalPosition);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Column {
        std::unique_ptr<ColumnModel> model;
        QPersistentModelIndex current;
        int width = columnWidth;
        int scroll = 0;              // while it has no view
        ColumnView* view = nullptr;  // owned by the viewport
        ColumnGrip* grip = nullptr;
    };
    void push(std::unique_ptr<ColumnModel> model);
    void dropBehind(int column);
    void drop(Column& column);
    void take(int column, const QModelIndex& row);
    void setCurrent(int column, const QModelIndex& row);
    void goTo(int column, int step);
    void select(int column);
    void makeView(int number);
    void putAway(Column& column);
    void connectView(ColumnView& made);
    [[nodiscard]] int columnOf(const ColumnView* view) const;
    void place();
    void placeColumn(int number, int start);
    void showEnd();
    void showColumn(int column);
    [[nodiscard]] int startOf(int column) const;
    [[nodiscard]] bool hasDetail() const;

    std::vector<Column> m_columns;
    QPointer<QAbstractItemDelegate> m_delegate;
    QPointer<QWidget> m_detail;
    int m_selected = 0;
    int m_widthAtPress = 0;
    bool m_isTaking = false;  // a row is being chosen: what the views tell of it is known
};

}  // namespace orrinvale
