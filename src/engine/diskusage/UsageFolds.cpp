// UsageWalk: how entries add to their folder, and folders that are counted to the one above.
#include <algorithm>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/diskusage/UsageFolder.h"

namespace orrinvale {

using usagewalk::foreign;
using usagewalk::unreadMarks;

// Once for the entries of a piece, since all that work in the folder wait here.
void UsageWalk::fold(UsageFolder& folder, Piece& piece) {
    const bool isLevel = folder.above == nullptr && m_errand.sink != nullptr;
    const std::vector<FSNode*> nodes = makeNodes(piece);
    recordFiles(piece);
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
        folder.childMarks |= piece.childMarks;
        if (piece.leftOutCount > 0) folder.marks |= FSNode::LeftOutWithin;
        for (FSNode* const node : nodes) folder.children.emplace_back(node->m_size, node);
        if (!piece.linked.empty() && folder.linked == nullptr)
            folder.linked = std::make_unique<LinkedFiles>();
        for (const Piece::Link& each : piece.linked)
            addSaturating(folder.onDisk,
                          folder.linked->add(each.device, each.inode, each.links, each.onDisk));
        if (piece.recorded != nullptr)
            piece.lastRecorded->next = std::exchange(folder.recorded, piece.recorded);
    }
    if (folder.top == nullptr || piece.size == 0) return;
    addSaturating(folder.top->size, piece.size);
    m_errand.sink->grew(*folder.top);
}

// All that is in the folder has been folded into it, and nobody else knows it any more.
void UsageWalk::complete(UsageFolder& folder) {
    const bool isExplained = (folder.marks & (unreadMarks | foreign) & ~FSNode::within) != 0;
    if (!folder.isListed && !folder.isGone && !isExplained) {
        if (stopped()) folder.marks |= FSNode::CutWithin;
        else folder.marks |= unreadMarks;
    }
    UsageResult found = resultOf(folder);
    if (folder.above != nullptr)
        return settle(folder, static_cast<UsageFolder&>(*folder.above), found);
    // A level that stands has them from tellLevel().
    for (std::uint32_t i = 0; i < found.contents.childCount && m_errand.sink == nullptr; ++i)
        found.contents.children[i]->m_father = m_start;
    m_result = found;
    if (folder.linked != nullptr) m_linked = std::move(*folder.linked);
    m_recorded = folder.recorded;
}

UsageResult UsageWalk::resultOf(UsageFolder& folder) {
    UsageResult found;
    found.size = folder.size;
    found.onDisk = folder.onDisk;
    found.marks = folder.marks | folder.childMarks;
    found.contents.marks = folder.marks;
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
    FSNode::sort(std::span(folder.children));
    std::ranges::transform(folder.children, found.contents.children, &FSNode::Sized::second);
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
    RecordedEntry* recorded = nullptr;
    if (m_errand.records != nullptr && !found.isGone) {
        recorded = record({}, folder.name);
        recorded->first = folder.recorded;
        recorded->size = found.size;
        recorded->onDisk = found.onDisk;
        recorded->marks = static_cast<std::uint8_t>(found.marks & ~FSNode::LeftOutWithin);
        recorded->isFolder = true;
    }
    m_errand.counts->found.fetch_add(1, std::memory_order_relaxed);
    {
        const std::lock_guard lock(mutexOf(above));
        if (recorded != nullptr) recorded->next = std::exchange(above.recorded, recorded);
        if (!found.isGone) {
            addSaturating(above.size, found.size);
            addSaturating(above.onDisk, found.onDisk);
            (stays ? above.childMarks : above.marks) |= found.marks & FSNode::within;
            if (stays) above.children.emplace_back(found.size, node);
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

}  // namespace orrinvale
