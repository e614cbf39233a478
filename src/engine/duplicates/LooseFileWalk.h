// The walk of a duplicate search: all cores list and size the tree, and the result stands in the
// order of a sequential walk.
//
// FolderWalk walks. What it has read of a folder at once becomes a run of records, files and
// subfolders alike; when all is done the runs are read off depth first. LooseFileWalk.cpp has the
// stages.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/duplicates/fileAttrbItem.h"
#include "engine/duplicates/folders/SeenFolder.h"
#include "engine/duplicates/scope/SearchFilter.h"
#include "engine/files/FolderWalk.h"
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
    const SearchFilter* filter = nullptr;           ///< outlives the walk; null leaves nothing out
    bool notesFolders = false;                      ///< LooseFiles::folders is wanted
};

/// What a walk found.
struct LooseFiles {
    FileList files;  ///< larger than the limit, outside of bundles
    std::vector<std::string>
        bundles;  ///< outermost bundles in which an entry is larger than the limit
    std::vector<std::shared_ptr<const void>> storage;  ///< what the files point into
    std::vector<SeenFolder> folders;  ///< all that were met; nothing where nobody asked
    bool mayRepeat = false;   ///< a link was followed or a mount was met: much may be listed twice
    bool inodesPass = false;  ///< a folder was met whose inode numbers need not last
};

class LooseFileWalk final : FolderWalk {
public:
    /// All references must outlive the walk. `stop` may be set from any thread.
    LooseFileWalk(const FileSystem& files, const LooseFileQuery& query,
                  const std::atomic<bool>& stop, SkipList& skipped);
    ~LooseFileWalk() override;

    /// Walks. The error when the root itself could not be listed. After a stop the result is empty.
    [[nodiscard]] Result<LooseFiles> run();

    /// The folder that is being listed; any thread, at any time before the walk is destroyed.
    [[nodiscard]] std::string currentPath() const;

    /// Files found so far; any thread.
    [[nodiscard]] std::uint64_t listedFiles() const {
        return m_listed.load(std::memory_order_relaxed);
    }

private:
    struct Bundle;
    struct Folder;
    struct Run;
    struct Share;

    bool isWanted(const WalkedFolder& folder) override;
    SysResult<Descriptor> open(const WalkedFolder& folder) override;
    bool mayList(WalkedFolder& walked) override;
    void read(Worker& worker, WalkedFolder& walked) override;
    void take(Worker& worker, WalkedFolder& walked, std::uint32_t first) override;
    void takeDeep(Worker& worker, WalkedFolder& walked) override;
    void fail(WalkedFolder& walked, std::string_view operation, int number) override;

    void learn(Folder& folder, const FileAttributes& seen);
    void learnExclusions(Folder& folder, int handle);
    [[nodiscard]] bool isLeftOut(const Folder& folder, const CatalogEntry& entry) const;
    bool takeEntry(Worker& worker, Folder& folder, CatalogEntry& entry, fileAttrbItem& record);
    bool takeTopLevelEntry(const Folder& folder, CatalogEntry& entry, bool& throughLink);
    bool takeFile(Worker& worker, Folder& folder, CatalogEntry& entry, fileAttrbItem& record);
    void addFolder(Worker& worker, Folder& above, const CatalogEntry& entry, bool throughLink,
                   fileAttrbItem& record);
    Bundle* newBundle();
    [[nodiscard]] bool numbersPass(std::uint64_t device) const;
    [[nodiscard]] LooseFiles collect() const;
    void note(std::vector<SeenFolder>& folders, const Folder& folder) const;

    const LooseFileQuery m_query;
    SkipList& m_skipped;
    std::vector<Share> m_shares;  // one for each thread
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Bundle>> m_bundles;            // guarded by m_mutex
    std::vector<std::unique_ptr<ExclusionList>> m_exclusions;  // guarded by m_mutex
    Folder* m_root = nullptr;
    std::optional<Error> m_rootError;  // of whoever lists the root
    std::atomic<const WalkedFolder*> m_current{nullptr};
    std::atomic<bool> m_mayRepeat{false};
    std::atomic<bool> m_inodesPass{false};
    std::atomic<std::uint64_t> m_listed{0};
};

}  // namespace orrinvale
