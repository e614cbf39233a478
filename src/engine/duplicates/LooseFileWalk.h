// The walk of a duplicate search: all cores list and size the tree, and the result stands in the
// order of a sequential walk.
//
// Each folder is a task, and so is each further thousand entries of a large folder. A task writes
// its entries, files and subfolders alike, into a run of records; when all is done the runs are
// read off depth first. LooseFileWalk.cpp has the stages.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/duplicates/fileAttrbItem.h"
#include "engine/files/SkipList.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// What a walk looks for.
struct LooseFileQuery {
    std::string root;
    std::uint64_t limit = 0;                        ///< only files larger than that
    bool hidden = false;                            ///< entries with a dot in front too
    bool systemFolders = false;                     ///< the system's folders directly in "/" too
    std::vector<std::uint64_t> passingInodes = {};  ///< FileSystem::devicesOfPassingInodes()
};

/// What a walk found.
struct LooseFiles {
    FileList files;  ///< larger than the limit, outside of bundles
    std::vector<std::string>
        bundles;  ///< outermost bundles in which an entry is larger than the limit
    std::vector<std::shared_ptr<Arena>> storage;
    bool mayRepeat = false;   ///< a link was followed or a mount was met: much may be listed twice
    bool inodesPass = false;  ///< a folder was met whose inode numbers need not last
};

class LooseFileWalk final {
public:
    /// All references must outlive the walk. `stop` may be set from any thread.
    LooseFileWalk(const FileSystem& files, const LooseFileQuery& query,
                  const std::atomic<bool>& stop, SkipList& skipped);
    ~LooseFileWalk();
    LooseFileWalk(const LooseFileWalk&) = delete;
    LooseFileWalk& operator=(const LooseFileWalk&) = delete;

    /// Walks. The error when the root itself could not be listed. After a stop the result is empty.
    [[nodiscard]] Result<LooseFiles> run();

    /// The folder that is being listed; any thread, at any time before the walk is destroyed.
    [[nodiscard]] std::string currentPath() const;

    /// Files found so far; any thread.
    [[nodiscard]] std::uint64_t listedFiles() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace orrinvale
