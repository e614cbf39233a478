// ResultOutline: the tree of groups and copies, with the keys of a list that is ticked.
#pragma once

#include <QTreeView>

#include "ui/kit/chrome/buttonLook.h"

namespace orrinvale {

class TickBox;

/// Space ticks the current row, in whatever column the cursor is. The menu key and the right button ask for the menu of the
/// row. The header carries the box that ticks the whole view. Main thread only.
class ResultOutline final : public QTreeView {
    Q_OBJECT
public:
    explicit ResultOutline(QWidget* parent = nullptr);

    /// The box over the column of boxes, named "button".
    [[nodiscard]] TickBox* headerBox() const { return m_headerBox; }

    void setModel(QAbstractItemModel* model) override;

Q_SIGNALS:
    void menuWanted(const QModelIndex& index, QPoint globalPosition);
    void previewWanted();

public Q_SLOTS:
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;

private:
    void followTheme();
    void placeHeaderBox();

    KeyboardFocus m_keyboardFocus;
    TickBox* m_headerBox = nullptr;
};

}  // namespace orrinvale
