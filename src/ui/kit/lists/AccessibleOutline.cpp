// Children are counted as the toolkit counts them in its events: the header's cells first, then
// those of the open rows from top to bottom. The box over the list, which lies in the header, comes
// last.
#include "ui/kit/lists/AccessibleOutline.h"

#include <QAccessibleWidget>
#include <QHeaderView>
#include <map>
#include <utility>

#include "ui/kit/lists/AccessibleCell.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {
namespace {

class AccessibleOutline final : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    explicit AccessibleOutline(TickOutline& outline)
        : QAccessibleWidget(&outline, QAccessible::Tree), m_outline(outline) {}
    ~AccessibleOutline() override { forgetCells(); }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TableInterface)
            return static_cast<QAccessibleTableInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    // As a parent.
    int childCount() const override { return cellCount() + 1; }
    QAccessibleInterface* child(int index) const override {
        if (index == cellCount())
            return QAccessible::queryAccessibleInterface(m_outline.headerBox());
        if (index < 0 || index > cellCount() || columnCount() == 0) return nullptr;
        return cell({index / columnCount() - 1, index % columnCount()});
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (child != nullptr && child->object() == m_outline.headerBox()) return cellCount();
        const auto* const found = dynamic_cast<const AccessibleCell*>(child);
        return found == nullptr ? -1
                                : (found->rowIndex() + 1) * columnCount() + found->columnIndex();
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const QModelIndex found =
            m_outline.indexAt(m_outline.viewport()->mapFromGlobal(QPoint(x, y)));
        return found.isValid() ? cellOf(found) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        const QModelIndex current = m_outline.currentIndex();
        return m_outline.hasFocus() && current.isValid() ? cellOf(current) : nullptr;
    }

    // As a table.
    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    QAccessibleInterface* cellAt(int row, int column) const override {
        return row >= 0 && row < rowCount() && column >= 0 && column < columnCount()
                   ? cell({row, column})
                   : nullptr;
    }
    int selectedCellCount() const override {
        return static_cast<int>(selection().selectedIndexes().size());
    }
    QList<QAccessibleInterface*> selectedCells() const override {
        QList<QAccessibleInterface*> cells;
        for (const QModelIndex& each : selection().selectedIndexes()) cells.push_back(cellOf(each));
        return cells;
    }
    QString columnDescription(int column) const override {
        return m_outline.model()->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    }
    QString rowDescription(int /*row*/) const override { return {}; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override {
        return static_cast<int>(selection().selectedRows().size());
    }
    int columnCount() const override {
        return m_outline.model() != nullptr ? m_outline.model()->columnCount() : 0;
    }
    int rowCount() const override { return m_outline.openRows(); }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override {
        QList<int> rows;
        for (const QModelIndex& each : selection().selectedRows())
            rows.push_back(m_outline.openRow(each));
        return rows;
    }
    bool isColumnSelected(int /*column*/) const override { return false; }
    bool isRowSelected(int row) const override { return selectedRows().contains(row); }
    bool selectRow(int row) override {
        m_outline.setCurrentIndex(m_outline.indexOfOpenRow(row, 0));
        return true;
    }
    bool selectColumn(int /*column*/) override { return false; }
    bool unselectRow(int /*row*/) override { return false; }
    bool unselectColumn(int /*column*/) override { return false; }

    // Rows came, went or moved: who asks again gets cells of what is there now.
    void modelChange(QAccessibleTableModelChangeEvent* event) override {
        if (event->modelChangeType() != QAccessibleTableModelChangeEvent::DataChanged)
            forgetCells();
    }

private:
    [[nodiscard]] int cellCount() const { return columnCount() * (rowCount() + 1); }
    [[nodiscard]] const QItemSelectionModel& selection() const {
        return *m_outline.selectionModel();
    }

    QAccessibleInterface* cell(CellPlace place) const {
        if (place.row >= 0) return cellOf(m_outline.indexOfOpenRow(place.row, place.column));
        return kept({}, place.column);
    }
    QAccessibleInterface* cellOf(const QModelIndex& index) const {
        return index.isValid() ? kept(index, index.column()) : nullptr;
    }
    // The bridge knows a cell by its number, so that each is made once, as long as its row stays
    // where it is.
    QAccessibleInterface* kept(const QModelIndex& index, int column) const {
        const auto [found, isNew] = m_cells.try_emplace({index, column});
        auto* const there =
            isNew ? nullptr
                  : dynamic_cast<AccessibleCell*>(QAccessible::accessibleInterface(found->second));
        if (there != nullptr && there->index() == index) return there;
        if (!isNew) QAccessible::deleteAccessibleInterface(found->second);
        auto* const made = new AccessibleCell(m_outline, index, column);
        found->second = QAccessible::registerAccessibleInterface(made);
        return made;
    }
    void forgetCells() {
        for (const auto& [key, id] : m_cells) QAccessible::deleteAccessibleInterface(id);
        m_cells.clear();
    }

    TickOutline& m_outline;
    mutable std::map<std::pair<QModelIndex, int>, QAccessible::Id>
        m_cells;  // the header's without an index
};

QAccessibleInterface* makeOutline(const QString& /*className*/, QObject* object) {
    auto* const outline = qobject_cast<TickOutline*>(object);
    return outline != nullptr ? new AccessibleOutline(*outline) : nullptr;  // Qt owns it
}

}  // namespace

void installAccessibleOutline() {
    [[maybe_unused]] static const bool isInstalled =
        (QAccessible::installFactory(&makeOutline), true);
}

}  // namespace orrinvale
