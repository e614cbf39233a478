// TickOutline: a list or tree of a TickModel, with the keys of such a list and a box over the
// column of boxes.
#pragma once

#include <QPointer>
#include <QTreeView>

#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/lists/TickModel.h"

namespace orrinvale {

class FlatHeader;
class TickBox;

/// Space ticks the current row, in whatever column the cursor is; Ctrl and space ask for a preview.
/// The menu key and the right button ask for the menu of the row. Main thread only.
class TickOutline : public QTreeView {
    Q_OBJECT
public:
    /// Owns the header, in which the box that ticks everything lies, over boxes that have a column
    /// of their own.
    TickOutline(FlatHeader* header, QWidget* parent);
    ~TickOutline() override;

    /// Only a TickModel, whose table of columns this lays out.
    void setModel(QAbstractItemModel* model) override;

    [[nodiscard]] TickBox* headerBox() const { return m_headerBox; }

    /// The rows that are open, counted from top to bottom, whether they are in view or not; 0
    /// before the list is laid out.
    [[nodiscard]] int openRows() const;
    /// Among these; -1 for a row that is in a closed one.
    [[nodiscard]] int openRow(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex indexOfOpenRow(int row, int column) const;

    /// As a click on the box of the row.
    void toggleBox(const QModelIndex& index);

Q_SIGNALS:
    void menuWanted(const QModelIndex& index, QPoint globalPosition);
    void previewWanted();

public Q_SLOTS:
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                     const QList<int>& roles) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;
    void drawBranches(QPainter* painter, const QRect& rect,
                      const QModelIndex& index) const override;
    void verticalScrollbarValueChanged(int value) override;

private:
    void followTheme();
    void layOutColumns();
    void placeHeaderBox();
    void tellOfBox() const;

    QPointer<TickModel> m_rows;
    KeyboardFocus m_keyboardFocus;
    TickBox* m_headerBox = nullptr;
};

}  // namespace orrinvale
