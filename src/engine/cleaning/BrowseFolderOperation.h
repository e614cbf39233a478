// BrowseFolderOperation: the first half of a Fast Clean, which measures what may go.
// DeleteFolderOperation.h has the second one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/cleaning/CategoryScan.h"
#include "engine/cleaning/CleanTasks.h"

namespace orrinvale {

/// Works on a thread of its own; made, started and destroyed on the main thread, where its notices
/// come. Posts ZvScanSingleFolder for each folder, then ZvScanOperationFinish; once it is
/// cancelled, ZvCleanCanceled as its last. None comes once it is gone: a disk that does not answer
/// then holds its thread, and nothing else.
class BrowseFolderOperation final : public CleanOperation {
public:
    /// initWithRootPath:; the folders are its own from now on.
    BrowseFolderOperation(std::vector<std::string> folders, const CleanParts& parts,
                          CleanPosts posts);
    ~BrowseFolderOperation() override;

    /// Starts it and returns.
    void main() override;
    void cancel() override;

    /// Bytes of what may go at this path. The count, which may be null, grows by its entries,
    /// folders among them. Waits for it, on any thread; one that is silent for 5 seconds has
    /// nothing.
    std::uint64_t sizeOfItemAtPath(const std::string& path, std::uint64_t* filesNum);

    /// Entries that were looked at so far.
    [[nodiscard]] std::uint64_t entriesSeen() const;
    /// What was measured; complete from ZvScanOperationFinish on.
    [[nodiscard]] const CategoryListing& listing() const { return m_listing; }
    /// The same, once.
    [[nodiscard]] CategoryListing takeListing() { return std::move(m_listing); }

    const std::vector<std::string> folderPathArr;

private:
    class Work;
    const CleanPosts m_posts;
    const std::shared_ptr<Work> m_work;
    CategoryListing m_listing;
};

/// Entries that go with a row, folders among them.
[[nodiscard]] std::uint64_t itemsOf(const CleanRow& row);

}  // namespace orrinvale
