#include "ui/cleaning/ScanListView.h"

#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale {

ScanListView::ScanListView(const QString& objectName, const QString& boxName, const QString& name,
                           const QString& boxWords, QWidget* parent)
    : TickOutline(new FlatHeader, parent) {
    setObjectName(objectName);
    setAccessibleName(name);
    headerBox()->setObjectName(boxName);
    headerBox()->setAccessibleName(boxWords);
    header()->setSectionsClickable(true);
    setMouseTracking(true);
    connect(header(), &QHeaderView::sectionClicked, this, &ScanListView::titleClicked);
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
        if (index.data(TickModel::LookRole).toInt() == int(CellLook::Button))
            Q_EMIT buttonClicked(index);
    });
}

void ScanListView::titleClicked(int column) {
    const auto* const rows = qobject_cast<const TickModel*>(model());
    const auto key = rows != nullptr ? rows->sortKey(column) : std::nullopt;
    if (!key) return;
    const bool isBySize = rows->look(column) == CellLook::Figure;
    showOrder(column, column == m_column ? !m_isDescending : isBySize);
    Q_EMIT orderWanted(*key, m_isDescending);
}

void ScanListView::showOrder(int column, bool isDescending) {
    m_column = column;
    m_isDescending = isDescending;
    header()->setSortIndicatorShown(column >= 0);
    if (column >= 0)
        header()->setSortIndicator(column, isDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

}  // namespace orrinvale
