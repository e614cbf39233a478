// FSNodeColumn: what lies in one folder, as a column of the disk usage browser.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/diskusage/FSNodeTree.h"
#include "engine/diskusage/history/ScanDifference.h"
#include "engine/diskusage/limitSize.h"
#include "ui/kit/columns/ColumnModel.h"

namespace orrinvale {

/// One scan, shared by the columns that show it and the page.
struct ShownScan {
    std::shared_ptr<FSNodeTree> tree;
    std::uint64_t limit = 0;  ///< bytes, of the scan
    bool allFileSystems = false;
    bool isRunning = false;
    bool hasChanged = false;  ///< by a removal, or a folder that was read again
    /// What changed since an earlier scan; null while nothing is compared. Of the main thread.
    std::shared_ptr<const ScanDifference> compared;
};

/// A folder's size counts up and its entries come and go under the columns: reload() shows them.
/// Main thread only.
class FSNodeColumn final : public ColumnModel {
    Q_OBJECT
public:
    /// Loading a column passes its folder's tick on to what is in it.
    FSNodeColumn(std::shared_ptr<const ShownScan> scan, FSNode& folder);

    [[nodiscard]] FSNode& folder() const { return m_folder; }
    /// Null for the last line, which tells what is left out.
    [[nodiscard]] FSNode* node(int row) const;
    /// -1 for none of this column's.
    [[nodiscard]] int rowOf(const FSNode& node) const;

    [[nodiscard]] std::unique_ptr<ColumnModel> open(int row) const override;
    void reload() override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    void load();

    const std::shared_ptr<const ShownScan> m_scan;
    FSNode& m_folder;
    std::vector<FSNode*> m_rows;  // the tree's own list changes while the view counts on this one
    bool m_hasLastLine = false;
};

/// "1.20 GB", or what is known of a size that is not the whole truth.
[[nodiscard]] QString sizeWords(const FSNode& node, bool isRunning);
/// "3,000 items under 1.00 MB".
[[nodiscard]] QString leftOutWords(std::uint64_t entries, std::uint64_t limit);
/// Path and sizes; plain text, as a tool tip.
[[nodiscard]] QString entryTip(const FSNode& node, const ShownScan& scan);
/// A size in bytes for people, in the language of the window.
[[nodiscard]] QString bytesWords(std::uint64_t bytes);

}  // namespace orrinvale
