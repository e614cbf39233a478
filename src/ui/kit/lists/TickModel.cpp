// What the table of columns decides by itself: widths, titles, and which column has boxes and
// names.
#include "ui/kit/lists/TickModel.h"

namespace orrinvale {

void TickModel::addColumn(Head head) {
    const int column = int(m_heads.size());
    if (head.look == CellLook::Box || head.hasBox) m_boxColumn = column;
    if (isNamed(head.look)) m_nameColumn = column;
    m_heads.push_back(std::move(head));
}

int TickModel::columnCount(const QModelIndex& /*parent*/) const { return int(m_heads.size()); }

int TickModel::columnWidth(int column) const { return m_heads[std::size_t(column)].width; }

std::optional<int> TickModel::sortKey(int column) const {
    return m_heads[std::size_t(column)].sortKey;
}

bool TickModel::hasChildren(const QModelIndex& parent) const { return rowCount(parent) > 0; }

bool TickModel::setData(const QModelIndex& index, const QVariant& /*value*/, int role) {
    if (role != StateRole && role != Qt::CheckStateRole) return false;
    return flags(index).testFlag(Qt::ItemIsUserCheckable) && clickBox(index);
}

void TickModel::refresh() {
    if (rowCount() > 0) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

QVariant TickModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    const Head& head = m_heads[std::size_t(section)];
    switch (role) {
        case Qt::TextAlignmentRole:
            return head.look == CellLook::Figure ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                                 : QVariant();
        // Columns of boxes and pictures have no words over them, but a name for those who do not
        // see them.
        case Qt::AccessibleTextRole: return head.title.isEmpty() ? head.name : head.title;
        case Qt::DisplayRole: return head.title.isEmpty() ? QVariant() : head.title;
        default: return {};
    }
}

}  // namespace orrinvale
