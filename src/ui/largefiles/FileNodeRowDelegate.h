// FileNodeRowDelegate: draws the rows of the large file page: picture and name, size, path, and the
// two pictures to press.
#pragma once

#include <QStyledItemDelegate>

namespace orrinvale {

/// For every column but the boxes, which TickBoxDelegate draws. Main thread only.
class FileNodeRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int rowHeight = 34, iconSide = 22, buttonSide = 18;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;

private:
    static void drawButton(QPainter& painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index);
};

}  // namespace orrinvale
