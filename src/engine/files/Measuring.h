// Measuring: the walk of TreeSize over one folder. Read FolderWalk.h first.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/base/saturating.h"
#include "engine/files/FolderWalk.h"
#include "engine/files/TreeSize.h"

namespace orrinvale {

/// One measuring of one folder, by as many threads as pay.
class Measuring final : FolderWalk {
public:
    /// The file system and what the watch points to must outlive it.
    Measuring(const FileSystem& files, const SizeWatch& watch);

    /// `shown` is the path that errors give for the start. Once only.
    [[nodiscard]] SizeTotals run(const std::string& shown, Descriptor start);

private:
    struct alignas(64) Tally {
        SizeTotals totals;  // of the folder in hand
    };

    void take(Worker& worker, WalkedFolder& folder, std::uint32_t first) override;
    void takeDeep(Worker& worker, WalkedFolder& folder) override;
    void visited(Worker& worker) override { count(totalsOf(worker)); }
    void takeEntry(Worker& worker, WalkedFolder& folder, CatalogEntry& entry);
    void addFolder(Worker& worker, WalkedFolder& parent, const char* name);
    SizeTotals& totalsOf(const Worker& worker) { return m_tallies[worker.number].totals; }
    void count(SizeTotals& totals);

    const SizeWatch m_watch;
    std::vector<Tally> m_tallies;
    SizeCounts m_counts;
};

}  // namespace orrinvale
