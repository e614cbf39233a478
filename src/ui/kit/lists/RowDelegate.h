// RowDelegate: draws the cells of a TickModel, and lets one tick its boxes. TickBox is the box
// outside of lists.
#pragma once

#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

namespace orrinvale {

/// Each cell is drawn by what the model answers to the roles of TickModel; a cell without a state
/// has no box. A click inside the box, and the space bar in the current cell, set the toggled state
/// when the flags have Qt::ItemIsEnabled and Qt::ItemIsUserCheckable; the model decides what
/// becomes of it. A click beside the box selects the row as any other. Main thread only.
class RowDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int rowHeight = 34, iconSide = 22, largeIconSide = 26, signSide = 16,
                         buttonSide = 18;

    using QStyledItemDelegate::QStyledItemDelegate;

    /// Where the box lies in a cell, and what of the cell counts as the box for a click.
    [[nodiscard]] static QRect boxRect(const QStyleOptionViewItem& option);
    [[nodiscard]] static QRect hitRect(const QStyleOptionViewItem& option);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

private:
    bool mouseEvent(const QEvent& event, QPoint position, QAbstractItemModel& model,
                    const QStyleOptionViewItem& option, const QModelIndex& index);
    void drawBox(QPainter& painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const;

    QPersistentModelIndex m_pressed;  // the cell whose box the button went down in
};

}  // namespace orrinvale
