// DiskUsageScan: one scan of one folder for the disk usage page and the command. UsageWalk.h walks.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/base/Progress.h"
#include "engine/diskusage/FSNodeTree.h"
#include "engine/diskusage/history/RecordedEntry.h"
#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

struct UsageOptions {
    std::uint64_t limit = 0;      ///< bytes; what is smaller gets no node. getLimitSize() has the
                                  ///< person's own
    bool allFileSystems = false;  ///< else only the one of the chosen folder, with its subvolumes
    bool records = false;  ///< record() gives what can be kept of the scan; costs 48 bytes and the
                           ///< name for each folder and each large file while it runs
};

/// What a turn of the main thread did to the tree.
struct UsageNews {
    bool levelStands = false;      ///< the first level came into the tree, whole, by name
    std::vector<FSNode*> counted;  ///< nodes directly in the chosen folder whose sizes or marks
                                   ///< changed; of a scan anew the folders that were scanned
    std::vector<FSNode*> left;     ///< nodes that were taken out: under the limit, or gone
    bool ended = false;            ///< the last news; everything is in order now
};

/// What a scan works with, not owned. The file system is in use until waitForEnd() returns, since a
/// stop waits for no disk. With a queue the tree is changed on the main thread only; the queue may
/// go after the end or with the DiskUsageScan. Without one the tree is the caller's when
/// waitForEnd() returns, and no first level stands before.
struct UsageScanParts {
    const FileSystem* files = nullptr;
    MainQueue* mainQueue = nullptr;
    std::function<void(const UsageNews&)> news;  ///< on the main thread, at most every 50 ms and at
                                                 ///< the end; never once the scan object is gone
};

/// Used from the thread that owns the tree, but for what says otherwise. One start for each object.
class DiskUsageScan final {
public:
    explicit DiskUsageScan(UsageScanParts parts);
    ~DiskUsageScan();  ///< stops the scan; nothing changes the tree any more
    DiskUsageScan(const DiskUsageScan&) = delete;
    DiskUsageScan& operator=(const DiskUsageScan&) = delete;

    /// Starts the scan of tree->rootPath() into the tree, which is new, and returns. The whole
    /// first level comes at once, by name and undecided; then sizes count up in it, and what turns
    /// out under the limit leaves. What stands below an entry comes with its last size. A folder
    /// whose size nobody can know, since it or something in it could not be read or is on another
    /// file system, stays whatever the limit, unless nothing can pass that.
    void start(std::shared_ptr<FSNodeTree> tree, UsageOptions options);

    /// Starts the scan of some folders of the tree anew, none of them within another, and returns.
    /// Each changes in one step when it is counted; it stays whatever the limit and loses its
    /// ticks, and the folders above follow. One that is gone is taken out.
    void scanAgain(std::shared_ptr<FSNodeTree> tree, std::vector<FSNode*> folders,
                   UsageOptions options);

    /// Ends the scan with what was found, within a second even when a disk does not answer. With a
    /// queue the end comes as news. Any thread.
    void stopScan();

    /// Entries directly in the chosen folder that are finished; of a scan anew those of the
    /// folder in hand. Any thread.
    [[nodiscard]] Progress progress() const;
    /// Entries counted so far, at every depth. Any thread.
    [[nodiscard]] std::uint64_t foundCount() const;
    [[nodiscard]] bool isEnded() const;
    /// A stop came before the end. Any thread.
    [[nodiscard]] bool wasStopped() const;
    /// Returns when no thread scans any more. What then waits for the queue's turn is put into the
    /// tree here.
    void waitForEnd();

    /// What could not be read so far. Other file systems are none of it. Any thread.
    [[nodiscard]] std::vector<Error> skipped() const;

    /// Of a scan with `records` that was not stopped and could list its folder, once it has ended;
    /// else null. Of a scan anew always null. Any thread.
    [[nodiscard]] std::shared_ptr<ScanRecord> record() const;

private:
    class Scan;
    UsageScanParts m_parts;
    std::shared_ptr<Scan> m_scan;
};

}  // namespace orrinvale
