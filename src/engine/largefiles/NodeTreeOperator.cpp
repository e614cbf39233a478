// What is deeper than descriptors reach goes through DeepTree.
#include "engine/largefiles/NodeTreeOperator.h"

#include <algorithm>
#include <cerrno>
#include <span>
#include <utility>

#include "engine/files/Catalog.h"
#include "engine/files/TreeLister.h"
#include "engine/files/TreeSize.h"
#include "platform/accessTimes.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Entries of a deep folder that are handed over at once.
constexpr std::size_t batchEntries = 40;

FoundEntry foundEntry(const FileAttributes& seen, const char* name,
                      std::optional<std::int64_t> accessed) {
    return {.name = name,
            .isDirectory = seen.type == FileType::Folder,
            .type = seen.type,
            .links = seen.links,
            .position = 0,
            .size = countedSize(seen),
            .onDisk = seen.type == FileType::Folder ? 0 : seen.onDisk,
            .device = seen.device,
            .inode = seen.inode,
            .born = seen.born,
            .modified = seen.modified,
            .changed = seen.changed,
            .accessed = accessed};
}

}  // namespace

// Everything in a folder is in the tree when its last user goes, unless a stop threw something
// away.
TreeFolder::~TreeFolder() {
    if (counts != nullptr && !counts->stop) counts->finished.fetch_add(1);
}

NodeTreeOperator::Arenas NodeTreeOperator::makeArenas() {
    return std::make_shared<std::vector<NameArena>>(mostThreads);
}

NodeTreeOperator::NodeTreeOperator(const FileSystem& files, std::shared_ptr<ScanCounts> counts,
                                   SkipList& skipped, Arenas arenas, Receiver receiver)
    : FolderWalk(files, &counts->stop, &skipped),
      m_counts(std::move(counts)),
      m_arenas(std::move(arenas)),
      m_receiver(std::move(receiver)) {}

void NodeTreeOperator::eumeAllFilesWithPath(const std::string& path) {
    auto folder = openFolderByPath(m_files, path, Links::Follow);
    if (folder) walk(std::make_unique<TreeFolder>(), path, std::move(*folder));
    else if (folder.error() == ENOTDIR) takeFile(path);
    else if (folder.error() != ENOENT) skip("open", path, folder.error());
}

void NodeTreeOperator::takeFile(const std::string& path) {
    const Catalog catalog(m_files);
    const auto reference = catalog.fsref(path);
    FSCatalogInfo info;
    if (!reference || catalog.FSGetCatalogInfo(*reference, info) != noErr) return;
    FoundChunk chunk;
    chunk.entries.push_back(
        foundEntry(info.attributes, m_arenas->front().names.copy(splitPath(path).name), {}));
    m_counts->found.fetch_add(1);
    m_receiver(std::move(chunk));
}

void NodeTreeOperator::take(Worker& worker, WalkedFolder& walked, std::uint32_t first) {
    auto& folder = static_cast<TreeFolder&>(walked);
    Arena& arena = (*m_arenas)[worker.number].names;
    const std::span<CatalogEntry> entries(worker.batch.entries);
    FoundChunk chunk;
    chunk.folder = &folder;
    chunk.entries.reserve(entries.size());
    for (CatalogEntry& entry : entries) {
        if (stopped()) break;  // one look may take a second on a slow file system
        askAccessTime(entry);
        m_files.readIdentities(folder.handle.get(), {&entry, 1});
        TreeFolder* const found = addEntry(chunk, arena, entry, first++);
        if (found != nullptr) addFound(worker, folder, found, chunk.entries.back().name);
    }
    handOver(std::move(chunk));
}

// The folder that the entry is, in the chunk already but with no place in the walk; null for any
// other entry.
TreeFolder* NodeTreeOperator::addEntry(FoundChunk& chunk, Arena& arena, const CatalogEntry& entry,
                                       std::uint32_t position) {
    if (entry.error == ENOENT) {
        ++chunk.goneCount;
        return nullptr;
    }
    FoundEntry& found = chunk.entries.emplace_back();
    if (entry.error == 0) {
        found = foundEntry(entry.attributes, arena.copy(entry.name), toldAccessTime(entry));
    } else {  // what can not be reached counts as a file of which nothing is known
        found.name = arena.copy(entry.name);
        found.device = chunk.folder->device;
        found.inode = entry.inode;
        skip("attributes", pathOf(*chunk.folder, entry.name), entry.error);
    }
    found.position = position;
    if (!found.isDirectory) return nullptr;
    auto folder = std::make_unique<TreeFolder>();
    folder->device = found.device;
    folder->inode = found.inode;
    folder->depth = chunk.folder->depth + 1;
    if (chunk.folder->above == nullptr) folder->counts = m_counts;
    folder->users.fetch_add(1);  // the chunk's
    chunk.folders.push_back(folder.get());
    return folder.release();
}

void NodeTreeOperator::handOver(FoundChunk&& chunk) {
    if (chunk.entries.empty() && chunk.goneCount == 0) return;
    m_counts->found.fetch_add(chunk.entries.size(), std::memory_order_relaxed);
    chunk.folder->users.fetch_add(1);
    m_receiver(std::move(chunk));
}

void NodeTreeOperator::releaseFolders(const FoundChunk& chunk) {
    for (TreeFolder* const folder : chunk.folders) release(folder);
    release(chunk.folder);
}

// Only now the share of the finished entries means something.
void NodeTreeOperator::listed(WalkedFolder& folder) {
    if (folder.above == nullptr) m_counts->all = folder.listedCount;
}

// What one thread lists depth first below the start, made into chunks. The levels are the folders
// on the way to the entry in hand.
class NodeTreeOperator::DeepTree {
public:
    DeepTree(NodeTreeOperator& walk, Arena& arena, TreeFolder& start)
        : m_walk(walk), m_arena(arena) {
        enter(&start, 0);
    }
    ~DeepTree() {
        while (!m_levels.empty()) leave();
    }
    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

    // A folder comes before its contents, and these before what stands behind it.
    void take(const TreeEntry& entry) {
        while (m_levels.back().prefixLength + entry.name.size() > entry.relative.size()) leave();
        Level& level = m_levels.back();
        const bool isListed = entry.type == FileType::Folder;
        TreeFolder* found = nullptr;
        if (level.folder != nullptr) {
            CatalogEntry one{.name = entry.name.data(), .type = entry.type, .attributes = {}};
            askAccessTime(one);
            m_walk.m_files.readIdentities(entry.folder, {&one, 1});
            found = m_walk.addEntry(level.chunk, m_arena, one, level.position++);
            if (found != nullptr) hang(*found, level);
            // Its own entries must not come before it.
            if (found != nullptr || level.chunk.entries.size() >= batchEntries) flush(level);
        }
        if (found != nullptr && (!isListed || m_walk.isKernels(found->device))) {
            release(found);
            found = nullptr;
        }
        if (isListed) enter(found, entry.relative.size() + 1);
    }

private:
    struct Level {
        TreeFolder* folder;        // null where nothing counts
        std::size_t prefixLength;  // of what stands before the names of its entries in their paths
        std::uint32_t position = 0;
        FoundChunk chunk = {};  // found, and not handed over yet
    };

    void enter(TreeFolder* folder, std::size_t prefixLength) {
        m_levels.push_back({.folder = folder, .prefixLength = prefixLength});
        m_levels.back().chunk.folder = folder;
    }
    void leave() {
        flush(m_levels.back());
        if (m_levels.size() > 1) release(m_levels.back().folder);  // the first is the caller's
        m_levels.pop_back();
    }
    void flush(Level& level) {
        if (level.folder == nullptr) return;
        m_walk.handOver(std::exchange(level.chunk, {}));
        level.chunk.folder = level.folder;
    }
    static void hang(TreeFolder& found, Level& level) {
        found.above = level.folder;
        found.parent = level.folder;
        found.name = level.chunk.entries.back().name;
        level.folder->users.fetch_add(1);
    }

    NodeTreeOperator& m_walk;
    Arena& m_arena;
    std::vector<Level> m_levels;
};

void NodeTreeOperator::takeDeep(Worker& worker, WalkedFolder& start) {
    DeepTree tree(*this, (*m_arenas)[worker.number].names, static_cast<TreeFolder&>(start));
    TreeListing listing;
    listing.foldersFirst = true;
    listing.entry = [&](const TreeEntry& entry) { tree.take(entry); };
    listing.failed = [&](std::string_view relative, int error) {
        if (error == ENOENT || error == ENOTDIR || error == ELOOP) return;
        skip("open", joinPath(pathOf(start), relative), error);
    };
    const auto done = listTree(m_files, start.handle.get(), listing, stopFlag());
    if (!done) fail(start, "list", done.error());
}

}  // namespace orrinvale
