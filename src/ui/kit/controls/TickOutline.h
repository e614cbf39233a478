// TickOutline: a tree of rows that are ticked, with the keys of such a list and a box over the column of boxes.
#pragma once

#include <QTreeView>

#include "ui/kit/chrome/buttonLook.h"

namespace orrinvale {

class FlatHeader;
class TickBox;

/// Space ticks the current row, in whatever column the cursor is; Ctrl and space ask for a preview. The menu key and the right
/// button ask for the menu of the row. Main thread only.
class TickOutline : public QTreeView {
    Q_OBJECT
public:
    /// Where the boxes of a row are.
    struct BoxColumn {
        int column = 0;
        int stateRole = Qt::UserRole;
    };
    static constexpr int boxColumnWidth = 34;

    /// Owns the header, in which the box that ticks everything lies; it has no title of its own.
    TickOutline(BoxColumn boxes, FlatHeader* header, QWidget* parent);
    ~TickOutline() override;

    [[nodiscard]] TickBox* headerBox() const { return m_headerBox; }

Q_SIGNALS:
    void menuWanted(const QModelIndex& index, QPoint globalPosition);
    void previewWanted();

public Q_SLOTS:
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles) override;

protected:
    void placeHeaderBox();
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;

private:
    void followTheme();

    const BoxColumn m_boxes;
    KeyboardFocus m_keyboardFocus;
    TickBox* m_headerBox = nullptr;
};

}  // namespace orrinvale
