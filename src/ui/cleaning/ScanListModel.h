// ScanListModel: the list of one category as a view reads it: filtered, in its order, with its
// ticks.
#pragma once

#include <QIcon>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/cleaning/CleanRun.h"
#include "ui/kit/lists/TickModel.h"

namespace orrinvale {

/// What can be ordered by a click on a title.
enum class CleanOrder { Name, Size, Age };

/// One row of the list, with what the record of the page does not hold.
struct ScanListRow {
    std::shared_ptr<CleanFileInfo> info;
    std::size_t number = 0;   ///< in scanFiles
    std::int64_t newest = 0;  ///< nanoseconds since 1970-01-01 UTC
};

/// Holds its rows by itself, so that a new scan may throw the list away. Main thread only.
class ScanListModel final : public TickModelOf<ScanListRow> {
    Q_OBJECT
public:
    enum Column { Checkbox, Name, Size, Age, OpenFiled, ColumnCount };

    using IconSource = std::function<QIcon(const IconRequest&)>;
    using BoxClicked = std::function<void(std::size_t number)>;

    /// `cleaned` has the paths that were cleaned before, and outlives the model.
    ScanListModel(IconSource icons, BoxClicked boxClicked,
                  const std::unordered_set<std::string>& cleaned, QObject* parent = nullptr);

    /// Shows what the list has by now.
    void setList(const ScanViewController& list);
    /// This row alone has left the list.
    void takeOut(const std::string& path);
    void clear();
    void setFilter(const QString& words);
    void setOrder(std::optional<CleanOrder> order, bool isDescending);

    /// Null for an index of no row.
    [[nodiscard]] const ScanListRow* row(const QModelIndex& index) const { return rowAt(index); }
    /// In the list, of the rows that the filter shows.
    [[nodiscard]] std::vector<std::size_t> shownNumbers() const;
    [[nodiscard]] bool isFiltered() const { return !m_filter.isEmpty(); }
    /// Of the rows that the filter shows; the ticked ones in the order of the list.
    [[nodiscard]] CleanSums shownSums() const;
    [[nodiscard]] ScanViewController::Rows shownTicked() const;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& /*child*/) const override { return {}; }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;

protected:
    [[nodiscard]] ScanListRow* rowAt(const QModelIndex& index) const override;
    [[nodiscard]] std::optional<TickState> stateOf(const ScanListRow& row) const override;
    [[nodiscard]] QString toolTipOf(const ScanListRow& row) const override;
    [[nodiscard]] QString descriptionOf(const ScanListRow& row) const override;
    [[nodiscard]] QString folderOf(const ScanListRow& row) const override;
    [[nodiscard]] QStringList signsOf(const ScanListRow& row) const override;
    bool clickBox(const QModelIndex& index) override;

private:
    void arrange();

    BoxClicked m_boxClicked;
    const std::unordered_set<std::string>& m_cleaned;
    mutable std::vector<ScanListRow> m_rows;
    std::vector<std::size_t> m_shown;  // in m_rows
    QString m_filter;
    std::optional<CleanOrder> m_order;
    bool m_isDescending = false;
};

/// What a row says that was cleaned before and is back.
[[nodiscard]] QString cameBackWords();

}  // namespace orrinvale
