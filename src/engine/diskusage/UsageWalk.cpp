// What an entry is and whether the walk goes into it. A folder under the limit holds nothing over
// it, so that nodes are made for good and nothing is kept of what does not pass. Three sources:
// UsageNodes.cpp makes nodes, UsageFolds.cpp adds up, UsageDeep.cpp takes what is very deep. Read
// take() here first, then settle() there.
#include "engine/diskusage/UsageWalk.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/diskusage/UsageFolder.h"
#include "engine/files/TreeSize.h"
#include "platform/files.h"

namespace orrinvale {

using usagewalk::foreign;
using usagewalk::unreadMarks;

namespace {

constexpr std::uint8_t unknownSize =
    FSNode::CutWithin | FSNode::UnreadWithin | FSNode::ForeignWithin;

// Beyond every file: a limit in TB. Nothing passes, whatever is known of it.
constexpr std::uint64_t beyondAll = std::uint64_t{1} << 63U;

bool isGoneBy(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

}  // namespace

UsageWalk::UsageWalk(const UsageErrand& errand)
    : FolderWalk(*errand.files, &errand.counts->stop, errand.skipped), m_errand(errand) {}

UsageResult UsageWalk::run(FSNode* start, const std::string& path, Links last) {
    m_start = start;
    auto handle = openFolderByPath(m_files, path, last);
    if (!handle) {
        const bool isGone = isGoneBy(handle.error());
        if (!isGone || last == Links::Follow) skip("open", path, handle.error());
        return {.contents = {.marks = unreadMarks}, .marks = unreadMarks, .isGone = isGone};
    }
    auto folder = std::make_unique<UsageFolder>(*this);
    if (const auto seen = m_files.attributes(handle->get())) {
        folder->device = seen->device;
        folder->inode = seen->inode;
        folder->mount = seen->mount;
        folder->onDisk = seen->onDisk;
    }
    if (m_errand.records != nullptr)
        if (const auto volume = volumeAtPlace(handle->get())) m_volume = *volume;
    m_startMount = folder->mount;
    m_startDevice = folder->device;
    m_isUpTo = m_errand.seen != nullptr && m_files.sharesExtents(handle->get());
    walk(std::move(folder), path, std::move(*handle));
    if (m_errand.sink != nullptr) tellLevel();
    return m_result;
}

// By the mount: subvolumes have devices of their own, and a folder may be mounted a second time.
bool UsageWalk::isForeign(const FileAttributes& entry) {
    if (m_errand.allFileSystems) return false;
    if (m_errand.seen != nullptr && entry.type == FileType::Folder &&
        entry.device != m_startDevice) {
        if (entry.mount == m_startMount) m_hasVolumes = true;
        return true;  // no removal enters it
    }
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
        folder.marks |= unreadMarks;
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
    Piece piece;
    for (CatalogEntry& entry : worker.batch.entries) {
        if (stopped()) {
            piece.marks |= FSNode::CutWithin;
            break;  // one look may take a second on a slow file system
        }
        m_files.readIdentities(handle, {&entry, 1});
        if (UsageFolder* const found = takeEntry(folder, handle, entry, piece))
            addFound(worker, folder, found, nullptr);
    }
    fold(folder, piece);
    if (folder.above == nullptr) tookOfLevel(worker.batch.entries.size());
}

// A folder that is to be entered, with no place in the walk; null for everything else.
UsageFolder* UsageWalk::takeEntry(UsageFolder& folder, int handle, CatalogEntry& entry,
                                  Piece& piece) {
    if (entry.error == ENOENT) {
        if (folder.above == nullptr) m_errand.counts->finished.fetch_add(1);
        return nullptr;
    }
    ++piece.files;
    std::uint8_t marks = 0;
    if (entry.error != 0) {
        marks = unreadMarks;
        skip("attributes", pathOf(folder, entry.name), entry.error);
    } else if (isForeign(entry.attributes)) {
        marks = foreign;
    }
    if (entry.error == 0 && entry.attributes.type == FileType::Folder)
        return makeFolder(folder, entry, marks, piece);
    if (m_isUpTo && marks == 0) askShared(handle, entry);
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
    if (m_errand.records != nullptr && (size >= recordedFilesFrom || !isKnown))
        piece.large.push_back({&entry, marks});
    const bool hasNode = passes(size, marks, folder.above == nullptr);
    (hasNode ? piece.childMarks : piece.marks) |= marks & FSNode::within;
    if (hasNode) {
        piece.passing.push_back({&entry, marks});
    } else {
        ++piece.leftOutCount;
        addSaturating(piece.leftOutSize, size);
    }
    if (m_errand.seen != nullptr && isKnown)
        piece.seen.emplace_back(m_errand.seen->keyOf(folder.key, entry.name, seen.inode),
                                SeenState::of(asScanned(seen)));
}

// Extents that other files have too come back with the last of these, and so count for none.
void UsageWalk::askShared(int handle, CatalogEntry& entry) {
    if (entry.attributes.type != FileType::Regular || entry.attributes.onDisk == 0) return;
    ReadState state;
    const auto file = m_files.openFile(handle, entry.name, Links::Keep, state);
    if (!file) return;
    if (const auto shared = m_files.sharedBytes(file->get()))
        entry.attributes.onDisk -= std::min(*shared, entry.attributes.onDisk);
}

}  // namespace orrinvale
