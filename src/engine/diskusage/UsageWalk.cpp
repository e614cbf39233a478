// A folder under the limit holds nothing over it, so that nodes are made for good and nothing is
// kept of what does not pass. Read take() and settle() first.
#include "engine/diskusage/UsageWalk.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/files/TreeLister.h"
#include "engine/files/TreeSize.h"
#include "platform/files.h"

namespace orrinvale {

/// A folder from its finding to the moment at which all that is in it is counted.
struct UsageFolder final : WalkedFolder {
    explicit UsageFolder(UsageWalk& owner) : walk(owner) {}
    ~UsageFolder() override { walk.complete(*this); }

    UsageWalk& walk;
    FSNode* node = nullptr;     // that was made at its finding, as on a level that stands at once
    CountedTop* top = nullptr;  // of the folder directly in the chosen one that this lies in
    SeenEntries::Key key = SeenEntries::chosenFolder;
    std::int64_t born = 0;
    bool isListed = false;
    bool isGone = false;

    // Of all in it that is counted so far; guarded by UsageWalk::mutexOf().
    std::uint8_t marks = 0;
    std::uint32_t leftOutCount = 0;
    std::uint64_t leftOutSize = 0;
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;  // from the start on with its own blocks
    std::vector<FSNode*> children;
    std::unique_ptr<LinkedFiles> linked;
};

/// What some entries of a folder add to it.
struct UsageWalk::Piece {
    struct Link {
        std::uint64_t device, inode, onDisk;
        std::uint32_t links;
    };
    struct Passing {
        const CatalogEntry* entry;
        std::uint8_t marks;
    };
    std::uint8_t marks = 0;
    std::uint32_t leftOutCount = 0;
    std::uint64_t leftOutSize = 0;
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;
    std::uint64_t files = 0;
    std::vector<Passing> passing;  // files; their names lie in the batch in hand
    std::vector<Link> linked;
    std::vector<std::pair<SeenEntries::Key, SeenState>> seen;
};

namespace {

constexpr std::uint8_t unread = FSNode::Unread | FSNode::UnreadWithin;
constexpr std::uint8_t foreign = FSNode::Foreign | FSNode::ForeignWithin;
constexpr std::uint8_t unknownSize =
    FSNode::CutWithin | FSNode::UnreadWithin | FSNode::ForeignWithin;

// Beyond every file: a limit in TB. Nothing passes, whatever is known of it.
constexpr std::uint64_t beyondAll = std::uint64_t{1} << 63U;

bool isGoneBy(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

unsigned char folded(char c) {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

bool isBeforeByName(const FSNode* a, const FSNode* b) {
    const std::string_view one = a->name();
    const std::string_view other = b->name();
    const auto [at, otherAt] = std::ranges::mismatch(one, other, {}, folded, folded);
    if (at == one.end() || otherAt == other.end())
        return one.size() != other.size() ? one.size() < other.size() : one < other;
    return folded(*at) < folded(*otherAt);
}

}  // namespace

UsageStorage::Room UsageStorage::room() {
    static std::atomic<unsigned> s_threads{0};
    thread_local const unsigned t_number = s_threads.fetch_add(1);
    Part& part = m_parts[t_number % m_parts.size()];
    return {part.mutex, part.arena};
}

UsageWalk::UsageWalk(const UsageErrand& errand)
    : FolderWalk(*errand.files, &errand.counts->stop, errand.skipped), m_errand(errand) {}

UsageResult UsageWalk::run(FSNode* start, const std::string& path, Links last) {
    m_start = start;
    auto handle = openFolderByPath(m_files, path, last);
    if (!handle) {
        const bool isGone = isGoneBy(handle.error());
        if (!isGone || last == Links::Follow) skip("open", path, handle.error());
        return {.size = 0, .onDisk = 0, .contents = {}, .marks = unread, .isGone = isGone};
    }
    auto folder = std::make_unique<UsageFolder>(*this);
    if (const auto seen = m_files.attributes(handle->get())) {
        folder->device = seen->device;
        folder->inode = seen->inode;
        folder->mount = seen->mount;
        folder->onDisk = seen->onDisk;
    }
    m_startMount = folder->mount;
    m_startDevice = folder->device;
    walk(std::move(folder), path, std::move(*handle));
    if (m_errand.sink != nullptr) tellLevel();
    return m_result;
}

// By the mount: subvolumes have devices of their own, and a folder may be mounted a second time.
bool UsageWalk::isForeign(const FileAttributes& entry) const {
    if (m_errand.allFileSystems) return false;
    if (m_startMount != 0 && entry.mount != 0) return entry.mount != m_startMount;
    return entry.device != m_startDevice;
}

bool UsageWalk::passes(std::uint64_t size, std::uint8_t marks, bool isFirstLevel) const {
    if (m_errand.tree == nullptr) return false;
    if (size >= m_errand.limit) return true;
    return isFirstLevel && (marks & unknownSize) != 0 && m_errand.limit < beyondAll;
}

SysResult<Descriptor> UsageWalk::open(const WalkedFolder& folder) {
    if (m_errand.allFileSystems) return FolderWalk::open(folder);
    return m_files.openInside(folder.above->handle.get(), folder.name);
}

bool UsageWalk::mayList(WalkedFolder& folder) {
    if (FolderWalk::mayList(folder)) return true;
    const std::lock_guard lock(mutexOf(static_cast<UsageFolder&>(folder)));
    static_cast<UsageFolder&>(folder).marks |= foreign;
    return false;
}

void UsageWalk::fail(WalkedFolder& walked, std::string_view operation, int number) {
    auto& folder = static_cast<UsageFolder&>(walked);
    const std::lock_guard lock(mutexOf(folder));
    if (number == EXDEV) {
        folder.marks |= foreign;
    } else if (isGoneBy(number) && folder.above != nullptr) {
        folder.isGone = true;
    } else {
        folder.marks |= unread;
        skip(operation, pathOf(folder), number);
    }
}

void UsageWalk::listed(WalkedFolder& walked) {
    static_cast<UsageFolder&>(walked).isListed = true;
    if (walked.above != nullptr) return;
    m_errand.counts->all = walked.listedCount;
    tookOfLevel(0);
}

void UsageWalk::take(Worker& worker, WalkedFolder& walked, std::uint32_t /*first*/) {
    auto& folder = static_cast<UsageFolder&>(walked);
    const int handle = folder.handle.get();
    const bool asksShared = m_errand.asksShared && m_files.sharesExtents(handle);
    if (asksShared) m_isUpTo = true;
    Piece piece;
    for (CatalogEntry& entry : worker.batch.entries) {
        if (stopped()) {
            piece.marks |= FSNode::CutWithin;
            break;  // one look may take a second on a slow file system
        }
        m_files.readIdentities(handle, {&entry, 1});
        if (asksShared) askShared(handle, entry);
        if (UsageFolder* const found = takeEntry(folder, entry, piece))
            addFound(worker, folder, found, nullptr);
    }
    fold(folder, piece);
    if (folder.above == nullptr) tookOfLevel(worker.batch.entries.size());
}

// A folder that is to be entered, with no place in the walk; null for everything else.
UsageFolder* UsageWalk::takeEntry(UsageFolder& folder, const CatalogEntry& entry, Piece& piece) {
    if (entry.error == ENOENT) {
        if (folder.above == nullptr) m_errand.counts->finished.fetch_add(1);
        return nullptr;
    }
    ++piece.files;
    std::uint8_t marks = 0;
    if (entry.error != 0) {
        marks = unread;
        skip("attributes", pathOf(folder, entry.name), entry.error);
    } else if (isForeign(entry.attributes)) {
        marks = foreign;
    }
    if (entry.error == 0 && entry.attributes.type == FileType::Folder)
        return makeFolder(folder, entry, marks, piece);
    takeFile(folder, entry, marks, piece);
    return nullptr;
}

UsageFolder* UsageWalk::makeFolder(UsageFolder& above, const CatalogEntry& entry,
                                   std::uint8_t marks, Piece& piece) {
    auto made = std::make_unique<UsageFolder>(*this);
    --piece.files;
    made->text = entry.name;
    made->device = entry.attributes.device;
    made->inode = entry.attributes.inode;
    made->born = entry.attributes.born;
    made->marks = marks;
    made->top = above.top;
    if (marks == 0) made->onDisk = entry.attributes.onDisk;
    if (m_errand.seen != nullptr && marks == 0) {
        made->key = m_errand.seen->keyOf(above.key, entry.name, entry.attributes.inode);
        piece.seen.emplace_back(made->key, SeenState::of(entry.attributes));
    }
    if (m_errand.sink != nullptr && above.above == nullptr) {
        made->node = makeFolderNode(entry.attributes, entry.name, FSNode::Undecided);
        auto top = std::make_unique<CountedTop>();
        top->node = made->node;
        made->top = top.get();
        const std::lock_guard lock(m_levelMutex);
        m_level.push_back(made->node);
        m_tops.push_back(std::move(top));
    }
    if (marks == 0) return made.release();
    // Not entered, and so through at once.
    made->above = &above;
    made->parent = &above;
    made->name = made->text.c_str();
    above.users.fetch_add(1);
    release(made.release());
    return nullptr;
}

void UsageWalk::takeFile(const UsageFolder& folder, const CatalogEntry& entry, std::uint8_t marks,
                         Piece& piece) {
    const FileAttributes& seen = entry.attributes;
    const bool isKnown = marks == 0;
    const std::uint64_t size = isKnown ? countedSize(seen) : 0;
    addSaturating(piece.size, size);
    if (isKnown && seen.links > 1)
        piece.linked.push_back({seen.device, seen.inode, seen.onDisk, seen.links});
    else if (isKnown) addSaturating(piece.onDisk, seen.onDisk);
    piece.marks |= marks & FSNode::within;
    if (passes(size, marks, folder.above == nullptr)) {
        piece.passing.push_back({&entry, marks});
    } else {
        ++piece.leftOutCount;
        addSaturating(piece.leftOutSize, size);
    }
    if (m_errand.seen != nullptr && isKnown)
        piece.seen.emplace_back(m_errand.seen->keyOf(folder.key, entry.name, seen.inode),
                                SeenState::of(seen));
}

// Extents that other files have too come back with the last of these.
void UsageWalk::askShared(int handle, const CatalogEntry& entry) {
    if (entry.error != 0 || entry.attributes.type != FileType::Regular) return;
    if (entry.attributes.onDisk == 0) return;
    ReadState state;
    const auto file = m_files.openFile(handle, entry.name, Links::Keep, state);
    if (!file) return;
    if (const auto shared = m_files.sharedBytes(file->get()))
        m_sharedBytes.fetch_add(std::min(*shared, entry.attributes.onDisk));
}

FSNode* UsageWalk::makeNode(Arena& arena, std::uint16_t device, const FileAttributes& seen,
                            std::string_view name, std::uint8_t marks) {
    auto* const node = new (arena.allocate<FSNode>()) FSNode;
    node->m_name = arena.copy(name);
    if (seen.type == FileType::Folder)
        node->m_contents = new (arena.allocate<FSContents>()) FSContents;
    node->m_inode = seen.inode;
    node->m_times = seen.type == FileType::Regular
                        ? EntryIdentity::timesOf(seen.modified, seen.changed)
                        : static_cast<std::uint64_t>(seen.born);
    node->m_device = device;
    node->m_type = seen.type;
    node->m_marks = marks;
    return node;
}

FSNode* UsageWalk::makeFolderNode(const FileAttributes& seen, std::string_view name,
                                  std::uint8_t marks) {
    const std::uint16_t device = m_errand.tree->deviceIndex(seen.device);
    const UsageStorage::Room room = m_errand.storage->room();
    return makeNode(*room, device, seen, name, marks);
}

std::vector<FSNode*> UsageWalk::makeNodes(const Piece& piece) {
    std::vector<FSNode*> nodes;
    if (piece.passing.empty()) return nodes;
    nodes.reserve(piece.passing.size());
    std::uint64_t device = piece.passing.front().entry->attributes.device;
    std::uint16_t index = m_errand.tree->deviceIndex(device);
    const UsageStorage::Room room = m_errand.storage->room();
    for (const auto& [entry, marks] : piece.passing) {
        const FileAttributes& seen = entry->attributes;
        if (seen.device != device) index = m_errand.tree->deviceIndex(device = seen.device);
        FSNode* const node = makeNode(*room, index, seen, entry->name, marks);
        if (marks == 0) {
            node->m_size = countedSize(seen);
            node->m_onDisk = seen.onDisk;
            node->m_isLinked = seen.links > 1;
        }
        nodes.push_back(node);
    }
    return nodes;
}

// Once for the entries of a piece, since all that work in the folder wait here.
void UsageWalk::fold(UsageFolder& folder, Piece& piece) {
    const bool isLevel = folder.above == nullptr && m_errand.sink != nullptr;
    const std::vector<FSNode*> nodes = makeNodes(piece);
    if (isLevel) {
        const std::lock_guard lock(m_levelMutex);
        m_level.insert(m_level.end(), nodes.begin(), nodes.end());
    }
    m_errand.counts->found.fetch_add(piece.passing.size() + piece.leftOutCount);
    m_errand.counts->files.fetch_add(piece.files);
    if (folder.above == nullptr) m_errand.counts->finished.fetch_add(piece.files);
    addSaturating(m_errand.counts->size, piece.size);
    if (!piece.seen.empty()) {
        const std::lock_guard lock(m_seenMutex);
        for (const auto& [key, state] : piece.seen) m_errand.seen->add(key, state);
    }
    {
        const std::lock_guard lock(mutexOf(folder));
        addSaturating(folder.size, piece.size);
        addSaturating(folder.onDisk, piece.onDisk);
        addSaturating(folder.leftOutSize, piece.leftOutSize);
        folder.leftOutCount += piece.leftOutCount;
        folder.marks |= piece.marks;
        if (piece.leftOutCount > 0) folder.marks |= FSNode::LeftOutWithin;
        if (!isLevel) folder.children.insert(folder.children.end(), nodes.begin(), nodes.end());
        if (!piece.linked.empty() && folder.linked == nullptr)
            folder.linked = std::make_unique<LinkedFiles>();
        for (const Piece::Link& each : piece.linked)
            addSaturating(folder.onDisk,
                          folder.linked->add(each.device, each.inode, each.links, each.onDisk));
    }
    if (folder.top == nullptr || piece.size == 0) return;
    addSaturating(folder.top->size, piece.size);
    m_errand.sink->grew(*folder.top);
}

// All that is in the folder has been folded into it, and nobody else knows it any more.
void UsageWalk::complete(UsageFolder& folder) {
    const bool isExplained = (folder.marks & (unread | foreign) & ~FSNode::within) != 0;
    if (!folder.isListed && !folder.isGone && !isExplained) {
        if (stopped()) folder.marks |= FSNode::CutWithin;
        else folder.marks |= unread;
    }
    UsageResult found = resultOf(folder);
    if (folder.above != nullptr)
        return settle(folder, static_cast<UsageFolder&>(*folder.above), found);
    for (std::uint32_t i = 0; i < found.contents.childCount; ++i)
        found.contents.children[i]->m_father = m_start;
    m_result = found;
    if (folder.linked != nullptr) m_linked = std::move(*folder.linked);
}

UsageResult UsageWalk::resultOf(UsageFolder& folder) {
    UsageResult found;
    found.size = folder.size;
    found.onDisk = folder.onDisk;
    found.marks = folder.marks;
    found.isGone = folder.isGone;
    found.contents.leftOutSize = folder.leftOutSize;
    found.contents.leftOutCount = folder.leftOutCount;
    if (folder.linked != nullptr) found.contents.outside = folder.linked->outside();
    if (folder.children.empty()) return found;
    const std::size_t count = folder.children.size();
    found.contents.childCount = static_cast<std::uint32_t>(count);
    {
        const UsageStorage::Room room = m_errand.storage->room();
        found.contents.children = room->allocate<FSNode*>(count);
    }
    std::copy(folder.children.begin(), folder.children.end(), found.contents.children);
    FSNode::sort({found.contents.children, count});
    return found;
}

// The folder takes its place in the one above: as a node, or as a part of what is left out there.
void UsageWalk::settle(UsageFolder& folder, UsageFolder& above, const UsageResult& found) {
    const bool isFirstLevel = above.above == nullptr;
    const bool stays = !found.isGone && passes(found.size, found.marks, isFirstLevel);
    FSNode* node = folder.node;
    if (stays && node == nullptr) {
        FileAttributes seen;
        seen.type = FileType::Folder;
        seen.device = folder.device;
        seen.inode = folder.inode;
        seen.born = folder.born;
        node = makeFolderNode(seen, folder.name, found.marks);
        node->m_size = found.size;
        node->m_onDisk = found.onDisk;
        *node->m_contents = found.contents;
    }
    for (std::uint32_t i = 0; i < found.contents.childCount; ++i)
        found.contents.children[i]->m_father = node;
    m_errand.counts->found.fetch_add(1, std::memory_order_relaxed);
    {
        const std::lock_guard lock(mutexOf(above));
        if (!found.isGone) {
            addSaturating(above.size, found.size);
            addSaturating(above.onDisk, found.onDisk);
            above.marks |= found.marks & FSNode::within;
            if (stays && folder.node == nullptr) above.children.push_back(node);
            if (!stays) {
                ++above.leftOutCount;
                addSaturating(above.leftOutSize, found.size);
                above.marks |= FSNode::LeftOutWithin;
            }
            if (folder.linked != nullptr) {
                if (above.linked == nullptr) above.linked = std::make_unique<LinkedFiles>();
                const std::uint64_t twice = above.linked->merge(std::move(*folder.linked));
                above.onDisk -= std::min(twice, above.onDisk);
            }
        }
    }
    if (folder.node != nullptr) m_errand.sink->finished(*folder.node, found, stays);
    if (isFirstLevel) m_errand.counts->finished.fetch_add(1);
}

std::mutex& UsageWalk::mutexOf(const UsageFolder& folder) {
    const auto number = reinterpret_cast<std::uintptr_t>(&folder) / sizeof folder;
    return m_folderMutexes[number % m_folderMutexes.size()];
}

void UsageWalk::tookOfLevel(std::uint64_t entries) {
    if (m_errand.sink == nullptr) return;
    {
        const std::lock_guard lock(m_levelMutex);
        m_levelTaken += entries;
        if (m_errand.counts->all < 0 ||
            m_levelTaken < static_cast<std::uint64_t>(m_errand.counts->all))
            return;
    }
    tellLevel();
}

void UsageWalk::tellLevel() {
    std::span<FSNode*> level;
    {
        const std::lock_guard lock(m_levelMutex);
        if (std::exchange(m_isLevelTold, true)) return;
        std::sort(m_level.begin(), m_level.end(), isBeforeByName);
        const UsageStorage::Room room = m_errand.storage->room();
        level = {room->allocate<FSNode*>(m_level.size()), m_level.size()};
        std::ranges::copy(m_level, level.begin());
    }
    for (FSNode* const node : level) node->m_father = m_start;
    m_errand.sink->levelStands(level);
}

// What one thread lists depth first, where descriptors are short. The levels are the folders on the
// way to the entry in hand.
struct UsageWalk::DeepLevels {
    DeepLevels(UsageWalk& owner, UsageFolder& start) : walk(owner) {
        levels.push_back({&start, 0});
    }
    ~DeepLevels() {
        while (levels.size() > 1) leave();  // the first is the caller's
    }
    DeepLevels(const DeepLevels&) = delete;
    DeepLevels& operator=(const DeepLevels&) = delete;

    void take(const TreeEntry& entry) {
        leaveBehind(entry.relative.size() - entry.name.size());
        UsageFolder& folder = *levels.back().folder;
        CatalogEntry one{.name = entry.name.data(), .type = entry.type, .attributes = {}};
        walk.m_files.readIdentities(entry.folder, {&one, 1});
        Piece piece;
        UsageFolder* const found = walk.takeEntry(folder, one, piece);
        walk.fold(folder, piece);
        isEntered = found != nullptr;
        if (found == nullptr) return;
        found->above = &folder;
        found->parent = &folder;
        found->name = found->text.c_str();
        found->isListed = true;
        folder.users.fetch_add(1);
        levels.push_back({found, entry.relative.size() + 1});
        if (!walk.isKernels(found->device)) return;
        found->marks |= foreign;
        isEntered = false;
    }
    void failed(std::string_view relative, int error) {
        leaveBehind(relative.size() + 1);
        walk.fail(*levels.back().folder, "open", error);
    }
    // Of folders that are told before their contents.
    void leaveBehind(std::size_t prefixLength) {
        while (levels.back().prefixLength > prefixLength) leave();
    }
    void leave() {
        release(levels.back().folder);
        levels.pop_back();
    }

    struct Level {
        UsageFolder* folder;
        std::size_t prefixLength;  // of what stands before the names of its entries in their paths
    };
    UsageWalk& walk;
    std::vector<Level> levels;
    bool isEntered = false;  // the folder that was told last is to be
};

void UsageWalk::takeDeep(Worker& /*worker*/, WalkedFolder& walked) {
    auto& start = static_cast<UsageFolder&>(walked);
    DeepLevels levels(*this, start);
    TreeListing listing;
    listing.foldersFirst = true;
    listing.entry = [&](const TreeEntry& entry) { levels.take(entry); };
    listing.mayEnter = [&](const TreeEntry&) { return levels.isEntered; };
    listing.failed = [&](std::string_view relative, int error) { levels.failed(relative, error); };
    const auto done = listTree(m_files, start.handle.get(), listing, stopFlag());
    if (!done) fail(start, "list", done.error());
    start.isListed = true;
    if (!stopped()) return;
    for (const auto& level : levels.levels) {
        const std::lock_guard lock(mutexOf(*level.folder));
        level.folder->marks |= FSNode::CutWithin;
    }
}

}  // namespace orrinvale
