// Measuring: the walk of TreeSize over one folder. Read Measuring::step() first.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/files/FolderNode.h"
#include "engine/files/TreeSize.h"
#include "engine/files/WorkCrew.h"

namespace orrinvale {

/// Lives until nobody needs its name for a path; open until the last subfolder was opened from it.
struct SizedFolder : FolderNode {
    std::string text;  // `name` points here
    SizedFolder* above = nullptr;
    Descriptor handle;
    std::atomic<std::uint32_t> handleUsers{1};  // its own listing, batches in hand, subfolders not opened yet
    std::atomic<std::uint32_t> users{1};        // the same, and subfolders that exist
};

/// One measuring of one folder, by as many threads as pay.
class Measuring final {
public:
    /// `shown` is the path that errors give for the start. The file system and what the watch points to must outlive it.
    Measuring(const FileSystem& files, const SizeWatch& watch, const std::string& shown, Descriptor start);
    Measuring(const Measuring&) = delete;
    Measuring& operator=(const Measuring&) = delete;

    /// Once only.
    [[nodiscard]] SizeTotals run();

private:
    struct alignas(64) Worker {
        CatalogBatch batch;
        std::vector<SizedFolder*> found;
        SizeTotals totals;  // of the step in hand
    };

    WorkCrew::Step step(unsigned number);
    void visit(Worker& worker, SizedFolder* folder);
    bool enter(Worker& worker, SizedFolder& folder);
    void list(Worker& worker, SizedFolder& folder);
    void takeEntry(Worker& worker, SizedFolder& folder, CatalogEntry& entry);
    void takeDeep(Worker& worker, const SizedFolder& folder);
    void add(SizedFolder& parent, Worker& worker, const char* name);
    bool isKernels(std::uint64_t device);
    [[nodiscard]] bool stopped() const { return m_watch.stop != nullptr && *m_watch.stop; }
    void push(SizedFolder* folder);
    SizedFolder* pushFound(Worker& worker);
    void count(SizeTotals& totals);
    void releaseHandle(SizedFolder& folder);
    static void release(SizedFolder* folder);
    void fail(const FolderNode& folder, std::string_view operation, int number);
    void skip(std::string_view operation, std::string path, int number);

    const FileSystem& m_files;
    const SizeWatch m_watch;
    WorkCrew m_crew;
    std::vector<Worker> m_workers = std::vector<Worker>(m_crew.most());
    std::once_flag m_asked;
    std::vector<std::uint64_t> m_kernelDevices;  // since m_asked
    std::uint64_t m_startDevice = 0;
    std::size_t m_mostOpen = 0;
    std::atomic<std::size_t> m_openFolders{1};
    SizeCounts m_counts;
    std::atomic<std::size_t> m_open{0};  // tasks that wait or run
    std::mutex m_mutex;
    std::vector<SizedFolder*> m_tasks;  // guarded by m_mutex; the last in goes first, which keeps the walk depth first
};

/// Adds without ever passing the largest number.
inline void addSaturating(std::atomic<std::uint64_t>& sum, std::uint64_t more) {
    std::uint64_t now = sum.load(std::memory_order_relaxed);
    while (!sum.compare_exchange_weak(now, now + std::min(more, ~std::uint64_t{0} - now), std::memory_order_relaxed)) {}
}

}  // namespace orrinvale
