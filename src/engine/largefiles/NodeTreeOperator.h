// NodeTreeOperator: the walker of the large file page. It hands over what it meets in chunks,
// fathers before their children; TreeGrowth.h makes the tree of them.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/files/Arena.h"
#include "engine/files/FolderWalk.h"
#include "engine/files/SkipList.h"
#include "engine/largefiles/FileNode.h"
#include "platform/error.h"

namespace orrinvale {

/// What a scan tells of itself while it runs. Any thread.
struct ScanCounts {
    std::atomic<bool> stop{false};
    std::atomic<std::uint64_t> found{0};  ///< entries looked at
    std::atomic<std::int64_t> all{
        -1};  ///< entries directly in the chosen folder; -1 until it is listed
    std::atomic<std::uint64_t> finished{
        0};  ///< of these, those that stand in the tree with everything in them
};

/// A folder between its finding and the moment at which all that is below it stands in the tree.
struct TreeFolder final : WalkedFolder {
    ~TreeFolder() override;

    std::shared_ptr<ScanCounts> counts;  // of a folder directly in the chosen one; null otherwise

    // What follows belongs to TreeGrowth.
    FileNode* node = nullptr;  // since the chunk that tells of it was taken in
    std::uint64_t size = 0;    // bytes that the node has and the folders above lack
    std::uint64_t onDisk = 0;
    std::uint32_t depth = 0;  // 0 is the chosen folder
    bool isBehind = false;    // the folders above lack something
};

/// Entries of one folder. Holds the folders that it names.
struct FoundChunk {
    TreeFolder* folder = nullptr;  ///< null for the entry of a chosen path that is a file
    std::vector<FoundEntry> entries;
    std::vector<TreeFolder*> folders;  ///< one for each entry that is a folder, in their order
    std::uint32_t goneCount =
        0;  ///< entries that were listed, but had gone when they were looked at
};

/// One walk. The names that the chunks hold lie in arenas, which whoever keeps the entries keeps
/// too.
class NodeTreeOperator final : FolderWalk {
public:
    /// Is given each chunk, on any of the walking threads.
    using Receiver = std::function<void(FoundChunk&& chunk)>;
    struct alignas(64) NameArena {
        Arena names;
    };
    using Arenas = std::shared_ptr<std::vector<NameArena>>;

    /// One for each thread that may walk.
    [[nodiscard]] static Arenas makeArenas();

    NodeTreeOperator(const FileSystem& files, std::shared_ptr<ScanCounts> counts, SkipList& skipped,
                     Arenas arenas, Receiver receiver);

    /// Walks below the path by as many threads as pay, and returns when all is handed over or
    /// counts->stop was set. Of a path that is a file that one entry is handed over, of one that is
    /// not there nothing. Once only.
    void eumeAllFilesWithPath(const std::string& path);

    /// A chunk that will not be taken in lets go of its folders. Any thread.
    static void releaseFolders(const FoundChunk& chunk);
    static void releaseFolder(TreeFolder* folder) { release(folder); }

private:
    class DeepTree;
    void take(Worker& worker, WalkedFolder& walked, std::uint32_t first) override;
    void takeDeep(Worker& worker, WalkedFolder& start) override;
    void listed(WalkedFolder& folder) override;
    void takeFile(const std::string& path);
    TreeFolder* addEntry(FoundChunk& chunk, Arena& arena, const CatalogEntry& entry,
                         std::uint32_t position);
    void handOver(FoundChunk&& chunk);

    const std::shared_ptr<ScanCounts> m_counts;
    const Arenas m_arenas;
    const Receiver m_receiver;
};

}  // namespace orrinvale
