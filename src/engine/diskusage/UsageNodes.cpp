// UsageWalk: nodes in their storage, and the first level that stands before it is counted.
#include <algorithm>
#include <new>
#include <utility>

#include "engine/diskusage/UsageFolder.h"
#include "engine/files/TreeSize.h"

namespace orrinvale {
namespace {

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
        FSNode* const node = makeNode(*room, index, asScanned(seen), entry->name, marks);
        if (marks == 0) {
            node->m_size = countedSize(seen);
            node->m_onDisk = seen.onDisk;
            node->m_isLinked = seen.links > 1;
        }
        nodes.push_back(node);
    }
    return nodes;
}

RecordedEntry* UsageWalk::record(const FileAttributes& seen, std::string_view name) const {
    const UsageStorage::Room room = m_errand.records->room();
    auto* const made = new (room->allocate<RecordedEntry>()) RecordedEntry;
    made->name = room->copy(name);
    made->size = countedSize(seen);
    made->onDisk = seen.onDisk;
    return made;
}

void UsageWalk::recordFiles(Piece& piece) const {
    for (const auto& [entry, marks] : piece.large) {
        RecordedEntry* const made =
            record(marks == 0 ? entry->attributes : FileAttributes(), entry->name);
        made->marks = marks;
        made->next = piece.recorded;
        piece.recorded = made;
        if (piece.lastRecorded == nullptr) piece.lastRecorded = made;
    }
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

}  // namespace orrinvale
