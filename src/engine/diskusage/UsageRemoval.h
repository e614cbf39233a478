// UsageRemoval: the list of a removal from the disk usage page, for RemovalJob.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/diskusage/TickedCount.h"
#include "engine/removal/RemovalList.h"

namespace orrinvale {

/// The ticked entries from the last to the first. Of a folder goes what was counted below it; what
/// came or changed since stays. The page takes news from its RemovalJob; of what is gone it hands
/// the nodes to FSNodeTree::takeOut(), and what is there in part to DiskUsageScan::scanAgain().
class UsageRemoval final : public RemovalList {
public:
    UsageRemoval(const FileSystem& files, std::vector<CountedEntry> counted);

    /// Any thread; the node itself is the tree owner's.
    [[nodiscard]] FSNode* node(std::size_t index) const { return m_entries[index].node; }

    void prepare() override;
    [[nodiscard]] std::size_t size() const override { return m_entries.size(); }
    [[nodiscard]] std::string path(std::size_t index) const override {
        return m_entries[index].path;
    }
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t index) const override {
        return m_entries[index].identity;
    }
    [[nodiscard]] std::uint64_t bytes(std::size_t index) const override {
        return m_entries[index].size;
    }
    [[nodiscard]] std::shared_ptr<const SeenEntries> seen(std::size_t index) override {
        return m_entries[index].seen;
    }

private:
    const FileSystem& m_files;
    std::vector<CountedEntry> m_entries;  // the last of the tree first
};

}  // namespace orrinvale
