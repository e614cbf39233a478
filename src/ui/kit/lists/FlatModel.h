// FlatModel: a list of values without rows within rows, for the small lists of sheets.
#pragma once

#include <utility>
#include <vector>

#include "ui/kit/lists/TickModel.h"

namespace orrinvale {

/// Has no boxes. Main thread only.
template <class Row> class FlatModel : public TickModelOf<Row> {
public:
    using TickModelOf<Row>::TickModelOf;

    void setRows(std::vector<Row> rows) {
        this->beginResetModel();
        m_rows = std::move(rows);
        this->endResetModel();
    }
    [[nodiscard]] const std::vector<Row>& rows() const { return m_rows; }
    /// Null for an index of no row. Call refresh() after a change.
    [[nodiscard]] Row* row(const QModelIndex& index) const {
        return index.isValid() && std::size_t(index.row()) < m_rows.size()
                   ? &m_rows[std::size_t(index.row())]
                   : nullptr;
    }

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override {
        return parent.isValid() || row < 0 || std::size_t(row) >= m_rows.size() || column < 0 ||
                       column >= this->columnCount()
                   ? QModelIndex()
                   : this->createIndex(row, column);
    }
    [[nodiscard]] QModelIndex parent(const QModelIndex& /*child*/) const override { return {}; }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }

protected:
    [[nodiscard]] Row* rowAt(const QModelIndex& index) const override { return row(index); }
    bool clickBox(const QModelIndex& /*index*/) override { return false; }

private:
    mutable std::vector<Row> m_rows;  // as an index gives a row that may be changed
};

}  // namespace orrinvale
