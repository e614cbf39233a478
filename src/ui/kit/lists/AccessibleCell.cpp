// View and model are asked each time, and nothing is kept: a cell outlives its row, and is invalid
// then.
#include "ui/kit/lists/AccessibleCell.h"

#include <QHeaderView>

#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {

AccessibleCell::AccessibleCell(TickOutline& outline, const QModelIndex& index, int column)
    : m_outline(&outline), m_index(index), m_column(column), m_isHeader(!index.isValid()) {}

bool AccessibleCell::isValid() const {
    return m_outline != nullptr && m_outline->model() != nullptr &&
           (isHeader() || m_index.isValid());
}

QAccessibleInterface* AccessibleCell::parent() const {
    return QAccessible::queryAccessibleInterface(m_outline);
}

QString AccessibleCell::text(QAccessible::Text kind) const {
    if (!isValid()) return {};
    const auto data = [this](int role) {
        return isHeader()
                   ? m_outline->model()->headerData(m_column, Qt::Horizontal, role).toString()
                   : m_index.data(role).toString();
    };
    if (kind == QAccessible::Description) return data(Qt::AccessibleDescriptionRole);
    if (kind != QAccessible::Name) return {};
    const QString name = data(Qt::AccessibleTextRole);
    return name.isEmpty() ? data(Qt::DisplayRole) : name;
}

QRect AccessibleCell::rect() const {
    if (!isValid()) return {};
    if (!isHeader()) {
        const QRect cell = m_outline->visualRect(m_index);
        return {m_outline->viewport()->mapToGlobal(cell.topLeft()), cell.size()};
    }
    const QHeaderView& header = *m_outline->header();
    const QRect section(header.sectionViewportPosition(m_column), 0, header.sectionSize(m_column),
                        header.height());
    return {header.viewport()->mapToGlobal(section.topLeft()), section.size()};
}

// The toolkit's bridge passes on that something is checked, and not that it can be: only the role
// tells.
QAccessible::Role AccessibleCell::role() const {
    if (isHeader()) return QAccessible::ColumnHeader;
    return hasBox() ? QAccessible::CheckBox : QAccessible::TreeItem;
}

bool AccessibleCell::hasBox() const {
    return isValid() && m_index.flags().testFlag(Qt::ItemIsUserCheckable);
}

QAccessible::State AccessibleCell::state() const {
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    if (isHeader()) return state;
    state.selectable = true;
    state.focusable = true;
    state.selected = isSelected();
    state.focused = m_outline->hasFocus() && m_outline->currentIndex() == m_index;
    state.offscreen = !m_outline->viewport()->rect().intersects(m_outline->visualRect(m_index));
    if (hasBox()) {
        const QVariant checked = m_index.data(Qt::CheckStateRole);
        state.checkable = true;
        state.checked = checked.toInt() == Qt::Checked;
        state.checkStateMixed = checked.toInt() == Qt::PartiallyChecked;
    }
    if (m_column == m_outline->treePosition() &&
        m_outline->model()->hasChildren(m_index.sibling(m_index.row(), 0))) {
        state.expandable = true;
        state.expanded = m_outline->isExpanded(m_index.sibling(m_index.row(), 0));
        state.collapsed = !state.expanded;
    }
    return state;
}

void* AccessibleCell::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TableCellInterface)
        return static_cast<QAccessibleTableCellInterface*>(this);
    if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
    return nullptr;
}

bool AccessibleCell::isSelected() const {
    return isValid() && !isHeader() && m_outline->selectionModel()->isSelected(m_index);
}

int AccessibleCell::rowIndex() const {
    return isHeader() || !isValid() ? -1 : m_outline->openRow(m_index);
}

QList<QAccessibleInterface*> AccessibleCell::columnHeaderCells() const {
    QAccessibleInterface* const list = isHeader() || !isValid() ? nullptr : parent();
    return list != nullptr ? QList<QAccessibleInterface*>{list->child(m_column)}
                           : QList<QAccessibleInterface*>();
}

QStringList AccessibleCell::actionNames() const {
    if (!isValid() || isHeader()) return {};
    return {hasBox() ? toggleAction() : pressAction()};
}

// A press makes the row the current one; the outline does the rest, as for the pointer.
void AccessibleCell::doAction(const QString& name) {
    if (!actionNames().contains(name)) return;
    m_outline->setCurrentIndex(m_index);
    if (name == toggleAction()) m_outline->toggleBox(m_index);
}

}  // namespace orrinvale
