// ChangesColumn: what changed in one folder between two scans, as a column of the disk usage page,
// and the words for it.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/diskusage/history/ScanDifference.h"
#include "ui/kit/columns/ColumnModel.h"

namespace orrinvale {

class FSNode;
struct ShownScan;

/// Rows are the changes of at least the scan's limit, the biggest first; a last line tells of the
/// rest. Sizes are those of this moment: what a removal takes is gone here too. Main thread only.
class ChangesColumn final : public ColumnModel {
    Q_OBJECT
public:
    /// Of the comparison that the scan stands in.
    ChangesColumn(std::shared_ptr<const ShownScan> scan, std::uint32_t folder);

    /// Nothing for the last line.
    [[nodiscard]] std::optional<std::uint32_t> number(int row) const;
    [[nodiscard]] const ScanDifference& difference() const { return *m_difference; }
    /// Bytes.
    [[nodiscard]] std::int64_t change(int row) const;
    /// What the row says at its end: "+1.20 GB".
    [[nodiscard]] QString sizeText(int row) const;
    /// "new", "gone", "removed", "mostly film.mkv", "another file system there"; empty where there
    /// is nothing to add. Tip and accessible text say more where there is more.
    [[nodiscard]] QString note(int row) const;
    /// It is not there any more.
    [[nodiscard]] bool isGone(int row) const;
    /// Against the biggest change of the column, from 0 to 1.
    [[nodiscard]] double share(int row) const;

    [[nodiscard]] std::unique_ptr<ColumnModel> open(int row) const override;
    void reload() override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    struct Row {
        std::uint32_t number;
        std::uint64_t now;  // its size
        bool isRemoved = false;
    };
    void takePresentSizes();
    [[nodiscard]] QString restText() const;
    [[nodiscard]] QString tip(int row) const;
    [[nodiscard]] QStringList wholeNote(int row, bool isWithPath) const;
    [[nodiscard]] const ScanChange& changeAt(int row) const;
    [[nodiscard]] bool hadNode(const ScanChange& change) const;

    const std::shared_ptr<const ShownScan> m_scan;
    const std::shared_ptr<const ScanDifference> m_difference;
    const std::uint32_t m_folder;
    std::vector<Row> m_rows;
    std::int64_t m_rest = 0;      // what the rows do not explain
    std::size_t m_restCount = 0;  // changes that are no rows
    bool m_hasRest = false;       // of the comparison, so that no row comes or goes later
};

/// "+1.20 GB", "-5.00 MB", "0.00 KB".
[[nodiscard]] QString changeText(std::int64_t change);
/// With a sign before it where something could not be counted in one of the scans.
[[nodiscard]] QString aboutText(const QString& size, bool isDoubtful);

/// What became of an entry of the tree since the earlier scan.
struct NodeChange {
    enum class Kind : std::uint8_t { None, Grew, Shrank, Came };
    Kind kind = Kind::None;  ///< None where it is not worth telling
    std::int64_t bytes = 0;
};
/// `size`: the node's, as it was when it was copied from the tree. Any thread: of the node itself
/// only what never changes is read.
[[nodiscard]] NodeChange changeOfNode(const ScanDifference& difference, const FSNode& node,
                                      std::uint64_t size);
/// "+1.20 GB" or "new"; empty for None.
[[nodiscard]] QString markText(const NodeChange& change);
/// What a row of the tree says beside its size. Main thread.
[[nodiscard]] QString changeMark(const ScanDifference& difference, const FSNode& node);

/// The entry of the tree that a change is of, or the nearest folder above it that is still there.
struct ChangedNode {
    FSNode* node;
    bool isItself;
};
[[nodiscard]] ChangedNode nodeOfChange(const ScanDifference& difference, std::uint32_t number,
                                       FSNode& root);

}  // namespace orrinvale
