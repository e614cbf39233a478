// ColumnModel: the rows of one column of a ColumnBrowser, and the columns that they open.
#pragma once

#include <QAbstractListModel>
#include <memory>

namespace orrinvale {

/// Rows tell by the toolkit's roles what a screen reader hears and what stands in their tips; how
/// they are drawn is the browser's delegate's matter. Main thread only.
class ColumnModel : public QAbstractListModel {
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;

    /// The column that the row opens; null for a row that opens none.
    [[nodiscard]] virtual std::unique_ptr<ColumnModel> open(int row) const = 0;
    /// Shows what the column has by now. Rows that are still there keep their indexes.
    virtual void reload() = 0;
};

}  // namespace orrinvale
