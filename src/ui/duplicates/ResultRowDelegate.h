// ResultRowDelegate: draws the rows of the result: the picture, a path with its folder in the
// background, figures.
#pragma once

#include <QStyledItemDelegate>

namespace orrinvale {

/// For every column but the boxes, which TickBoxDelegate draws. Main thread only.
class ResultRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int rowHeight = 34, iconSide = 22;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
};

}  // namespace orrinvale
