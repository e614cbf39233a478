// ChangesColumn: what changed in one folder between two scans, as a column of the disk usage page,
// and the words for it.
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/diskusage/history/ScanDifference.h"
#include "ui/kit/columns/ColumnModel.h"

namespace orrinvale {

class FSNode;

/// Rows are the changes of at least `limit` bytes, the biggest first; a last line tells of the
/// rest. Main thread only.
class ChangesColumn final : public ColumnModel {
    Q_OBJECT
public:
    ChangesColumn(std::shared_ptr<const ScanDifference> difference, std::uint32_t folder,
                  std::uint64_t limit);

    /// Nothing for the last line.
    [[nodiscard]] std::optional<std::uint32_t> number(int row) const;
    [[nodiscard]] const ScanDifference& difference() const { return *m_difference; }
    /// What the row says at its end: "+1.20 GB".
    [[nodiscard]] QString sizeText(int row) const;
    /// Against the biggest change of the column, from 0 to 1.
    [[nodiscard]] double share(int row) const;

    [[nodiscard]] std::unique_ptr<ColumnModel> open(int row) const override;
    void reload() override {}  // two scans that are over change no more

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] QString restText() const;
    [[nodiscard]] const ScanChange& changeAt(int row) const;

    const std::shared_ptr<const ScanDifference> m_difference;
    const std::uint32_t m_folder;
    const std::uint64_t m_limit;
    std::vector<std::uint32_t> m_rows;
    std::int64_t m_rest = 0;      // what the rows do not explain
    std::size_t m_restCount = 0;  // changes that are no rows
};

/// "+1.20 GB", "-5.00 MB", "0.00 KB".
[[nodiscard]] QString changeText(std::int64_t change);
/// "new", "gone", "mostly videos/film.mkv"; empty where there is nothing to add.
[[nodiscard]] QString changeNote(const ScanDifference& difference, std::uint32_t number);
/// What a row of the tree, or a rectangle of its map, says beside its size: "+1.20 GB" or "new";
/// empty where it did not change worth telling. Any thread.
[[nodiscard]] QString changeMark(const ScanDifference& difference, const FSNode& node);

}  // namespace orrinvale
