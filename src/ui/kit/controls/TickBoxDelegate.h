// TickBoxDelegate: the cell of a list with a tick box and a label beside it. TickBox is its brother
// outside of lists.
#pragma once

#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

#include "ui/kit/controls/paintTickBox.h"

namespace orrinvale {

/// Reads a TickState's number from a role of the model; a cell without one has no box. A click
/// inside the box, and the space bar in the current cell, set the toggled number in that role when
/// the flags have Qt::ItemIsEnabled and Qt::ItemIsUserCheckable; the model decides what becomes of
/// it. A click on the label selects the row as any other. For screen readers the model also answers
/// Qt::CheckStateRole, see checkState(). Main thread only.
class TickBoxDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit TickBoxDelegate(int stateRole, QObject* parent = nullptr);

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
    [[nodiscard]] bool hasBox(const QModelIndex& index) const {
        return index.data(m_stateRole).isValid();
    }
    bool mouseEvent(const QEvent& event, QPoint position, QAbstractItemModel& model,
                    const QStyleOptionViewItem& option, const QModelIndex& index);
    bool toggle(QAbstractItemModel& model, const QModelIndex& index) const;
    void paintLabel(QPainter& painter, const QStyleOptionViewItem& option, bool isBoxed) const;

    const int m_stateRole;
    QPersistentModelIndex m_pressed;  // the cell whose box the button went down in
};

}  // namespace orrinvale
