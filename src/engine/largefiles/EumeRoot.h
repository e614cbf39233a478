// EumeRoot: one scan of one folder for the large file page.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/base/Progress.h"
#include "engine/largefiles/FileNodeTree.h"
#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// What a scan works with, not owned. Without a queue the tree is filled by the scanning threads,
/// and is the caller's when waitForEnd() returns; with one it is changed on the main thread only,
/// in batches of at most 16 ms. The queue may go after a stop or the end; the file system is in use
/// until waitForEnd() returns, since a stop waits for no disk.
struct ScanParts {
    const FileSystem* files = nullptr;
    MainQueue* mainQueue = nullptr;
    std::function<void()> grown;  ///< on the main thread, after each turn that changed the tree;
                                  ///< never once the EumeRoot is gone
};

/// Used from the thread that owns the tree, but for what says otherwise. A scan under way when the
/// object goes is stopped, and without a queue waited for.
class EumeRoot final {
public:
    explicit EumeRoot(ScanParts parts);
    ~EumeRoot();
    EumeRoot(const EumeRoot&) = delete;
    EumeRoot& operator=(const EumeRoot&) = delete;

    /// Starts the scan of the path into the tree, which is empty, and returns. Once for each
    /// object.
    void eumeAllRootFileNodeWithRootArr(std::shared_ptr<FileNodeTree> rootArr,
                                        const std::string& rootPath);

    /// Starts the scan of one folder of the tree anew, and returns. With the first that comes of it
    /// the folder loses what stood below it; the sizes of the folders above stay true. For a queue,
    /// and in place of the other scan.
    void scanAgain(std::shared_ptr<FileNodeTree> rootArr, FileNode& folder);

    /// Percent of the entries directly in the chosen folder that are finished, 0 to 100; 0 when
    /// there are none. Any thread.
    [[nodiscard]] float getProgress() const { return static_cast<float>(progress().percent()); }
    /// The same in entries; no path is told.
    [[nodiscard]] Progress progress() const;

    /// The tree stays as it is at this moment, with the sizes found so far, and remains usable.
    /// Without a queue any thread may ask for the stop, and the moment is the return of
    /// waitForEnd().
    void stopScan();

    /// The scan is over, stopped or not, and all that it found is in the tree. Any thread.
    [[nodiscard]] bool isEnded() const;
    /// Returns when no thread scans any more. What then waits for the queue's turn is put into the
    /// tree here.
    void waitForEnd();

    /// The chosen folder was listed to its end and holds nothing. Any thread.
    [[nodiscard]] bool isEmptyFolder() const;
    /// Entries found so far. Any thread.
    [[nodiscard]] std::uint64_t foundCount() const;
    /// What could not be read so far. Any thread.
    [[nodiscard]] std::vector<Error> skipped() const;

private:
    class Scan;
    std::shared_ptr<Scan> m_scan;
    ScanParts m_parts;
};

}  // namespace orrinvale
