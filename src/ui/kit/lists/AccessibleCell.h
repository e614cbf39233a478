// AccessibleCell: one cell of a list, or of its header, as screen readers hear it.
// AccessibleOutline.cpp makes them.
#pragma once

#include <QAccessible>
#include <QPersistentModelIndex>
#include <QPointer>

namespace orrinvale {

class TickOutline;

/// Where a cell is: the header's have no index.
struct CellPlace {
    int row = 0;  ///< among the rows that are open, from 0; of the header -1
    int column = 0;
};

class AccessibleCell final : public QAccessibleInterface,
                             public QAccessibleTableCellInterface,
                             public QAccessibleActionInterface {
public:
    /// Of the header where the index is none.
    AccessibleCell(TickOutline& outline, const QModelIndex& index, int column);

    [[nodiscard]] const QPersistentModelIndex& index() const { return m_index; }

    bool isValid() const override;
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    bool isSelected() const override;
    QList<QAccessibleInterface*> columnHeaderCells() const override;
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return m_column; }
    int rowIndex() const override;
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    [[nodiscard]] bool isHeader() const { return m_isHeader; }
    [[nodiscard]] bool hasBox() const;

    const QPointer<TickOutline> m_outline;
    const QPersistentModelIndex m_index;
    const int m_column;
    const bool m_isHeader;
};

}  // namespace orrinvale
