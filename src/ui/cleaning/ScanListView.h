// ScanListView: a list of the cleaning page, or its outline: boxes, and titles that order by a
// click.
#pragma once

#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {

/// Main thread only.
class ScanListView final : public TickOutline {
    Q_OBJECT
public:
    /// `boxName` is the object name of the box above, `name` and `boxWords` are for screen readers.
    ScanListView(const QString& objectName, const QString& boxName, const QString& name,
                 const QString& boxWords, QWidget* parent = nullptr);

    /// Shows by which column it is ordered, -1 for none.
    void showOrder(int column, bool isDescending);

Q_SIGNALS:
    /// A click on a title that orders: the biggest, the newest, or the first of the names first,
    /// then the other way round.
    void orderWanted(int key, bool isDescending);
    /// A picture of a cell was pressed.
    void buttonClicked(const QModelIndex& index);

private:
    void titleClicked(int column);

    int m_column = -1;
    bool m_isDescending = false;
};

}  // namespace orrinvale
