// Nodes and lists in blocks that go with the tree; how sizes go up to the folders above.
#include "engine/largefiles/FileNodeTree.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "engine/base/saturating.h"

namespace orrinvale {
namespace {

// Lists up to this length lie among the nodes; longer ones are allocated each for itself, so that
// growing leaves nothing behind.
constexpr std::uint32_t mostInArena = 1024;
constexpr std::size_t childBytes =
    sizeof(FileNode*);  // NOLINT(bugprone-sizeof-expression): a list of pointers

// A file system that keeps no times of opening tells 0, and nobody opened a file before it was
// written: only of a file that is as old as that 0 is a time.
bool isOpeningKnown(const FoundEntry& entry) {
    return entry.accessed && (*entry.accessed != 0 || entry.modified <= 0);
}

// As operator new does: whoever can make room is asked before the allocation fails.
void* resized(void* list, std::size_t bytes) {
    for (;;) {
        if (void* const out = std::realloc(list, bytes)) return out;
        const std::new_handler makeRoom = std::get_new_handler();
        if (makeRoom == nullptr) throw std::bad_alloc();
        makeRoom();
    }
}

}  // namespace

struct FileNodeTree::Root : FileNode {
    FileNodeTree* tree = nullptr;
};

FileNodeTree::FileNodeTree(std::string rootPath) : m_rootPath(std::move(rootPath)) {
    auto* const root = new (m_nodes.allocate<Root>()) Root;
    root->tree = this;
    root->m_name = m_rootPath.c_str();
    root->m_isDirectory = true;
    root->m_type = FileType::Folder;
    m_root = root;
}

FileNodeTree::~FileNodeTree() {
    for (const FileNode* const folder : m_longLists) std::free(folder->m_children);
}

FileNodeTree& FileNodeTree::of(const FileNode& node) {
    const FileNode* top = &node;
    while (top->m_father != nullptr) top = top->m_father;
    return *static_cast<const Root*>(top)->tree;
}

std::span<FileNode* const> FileNodeTree::add(FileNode& folder,
                                             std::span<const FoundEntry> entries) {
    const Added added = addHere(folder, entries);
    if ((added.size | added.onDisk) != 0) growAbove(folder, added.size, added.onDisk);
    return added.nodes;
}

FileNodeTree::Added FileNodeTree::addHere(FileNode& folder, std::span<const FoundEntry> entries) {
    const std::lock_guard lock(m_lists);
    makeRoom(folder, entries.size());
    const std::span<FileNode*> added{folder.m_children + folder.m_childCount, entries.size()};
    auto* const nodes = m_nodes.allocate<FileNode>(entries.size());
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const FoundEntry& entry = entries[i];
        auto* const node = new (nodes + i) FileNode;
        node->m_name = entry.name;
        node->m_father = &folder;
        node->m_size = entry.size;
        node->m_onDisk = entry.onDisk;
        node->m_inode = entry.inode;
        node->m_times = entry.type == FileType::Regular
                            ? EntryIdentity::timesOf(entry.modified, entry.changed)
                            : static_cast<std::uint64_t>(entry.born);
        node->m_position = entry.position;
        node->m_links = entry.links;
        node->m_device = deviceIndex(entry.device);
        node->m_isDirectory = entry.isDirectory;
        node->m_type = entry.type;
        if (node->m_device == m_firstOfDevices.size()) m_firstOfDevices.push_back(node);
        // Of what could not be looked at nothing is known.
        if (!entry.isDirectory && entry.type != FileType::Unknown) {
            node->m_childRoom = FileNode::keptTime(entry.modified);
            if (isOpeningKnown(entry))
                node->m_ordered = FileNode::keptTime(std::max(*entry.accessed, entry.modified));
        }
        added[i] = node;
        addSaturating(size, entry.size);
        addSaturating(onDisk, entry.onDisk);
    }
    folder.m_childCount += static_cast<std::uint32_t>(entries.size());
    folder.m_ordered = 0;
    if ((size | onDisk) != 0) grow(folder, size, onDisk);
    m_nodeCount += entries.size();
    ++m_revision;
    return {.nodes = added, .size = size, .onDisk = onDisk};
}

void FileNodeTree::grow(FileNode& folder, std::uint64_t size, std::uint64_t onDisk) {
    addSaturating(folder.m_size, size);
    addSaturating(folder.m_onDisk, onDisk);
    if (folder.m_father != nullptr) folder.m_father->m_ordered = 0;
}

void FileNodeTree::growAbove(const FileNode& folder, std::uint64_t size, std::uint64_t onDisk) {
    for (FileNode* above = folder.m_father; above != nullptr; above = above->m_father)
        grow(*above, size, onDisk);
}

// A sum that was held at its limit is not known any more; it then shrinks by what it would have.
void FileNodeTree::empty(FileNode& folder) {
    const std::lock_guard lock(m_lists);
    for (FileNode* const child : folder.childrenInAnyOrder()) child->m_isTakenOut = true;
    folder.m_childCount = folder.m_ordered = 0;
    const std::uint64_t size = folder.m_size;
    const std::uint64_t onDisk = folder.m_onDisk;
    for (FileNode* each = &folder; each != nullptr; each = each->m_father) {
        each->m_size -= std::min(size, each->m_size);
        each->m_onDisk -= std::min(onDisk, each->m_onDisk);
        if (each->m_father != nullptr) each->m_father->m_ordered = 0;
    }
    ++m_revision;
}

void FileNodeTree::addChosenFile(const FoundEntry& entry) {
    m_root->m_isDirectory = false;
    add(*m_root, {&entry, 1});
}

SeenEntries FileNodeTree::seenBelow(const FileNode& folder, bool inodesPass) const {
    SeenEntries seen(inodesPass);
    std::vector<std::pair<const FileNode*, SeenEntries::Key>> waiting{
        {&folder, SeenEntries::chosenFolder}};
    std::vector<const FileNode*> children;
    while (!waiting.empty()) {
        const auto [node, key] = waiting.back();
        waiting.pop_back();
        {
            const std::lock_guard lock(m_lists);
            children.assign(node->m_children, node->m_children + node->m_childCount);
        }
        for (const FileNode* const child : children) {
            const bool isFile = child->m_type == FileType::Regular;
            const auto own = seen.keyOf(key, child->m_name, child->m_inode);
            seen.add(own, {.type = child->m_type,
                           .size = isFile ? child->m_size : 0,
                           .stamp = child->m_times});
            if (child->m_isDirectory) waiting.emplace_back(child, own);
        }
    }
    return seen;
}

void FileNodeTree::makeRoom(FileNode& folder, std::size_t more) {
    const std::size_t needed = folder.m_childCount + more;
    if (needed <= folder.m_childRoom) return;
    if (needed <= mostInArena) {
        auto* const list = m_nodes.allocate<FileNode*>(needed);
        if (folder.m_childCount > 0)
            std::memcpy(list, folder.m_children, folder.m_childCount * childBytes);
        folder.m_children = list;
        folder.m_childRoom = static_cast<std::uint32_t>(needed);
        return;
    }
    const bool wasLong = folder.m_childRoom > mostInArena;
    const std::size_t room =
        std::max(needed, folder.m_childCount + std::size_t{folder.m_childCount} / 2);
    if (!wasLong) m_longLists.reserve(m_longLists.size() + 1);
    auto* const list =
        static_cast<FileNode**>(resized(wasLong ? folder.m_children : nullptr, room * childBytes));
    if (!wasLong) {
        if (folder.m_childCount > 0)
            std::memcpy(list, folder.m_children, folder.m_childCount * childBytes);
        m_longLists.push_back(&folder);
    }
    folder.m_children = list;
    folder.m_childRoom = static_cast<std::uint32_t>(room);
}

std::uint16_t FileNodeTree::deviceIndex(std::uint64_t device) {
    if (m_lastDevice < m_devices.size() && m_devices[m_lastDevice] == device) return m_lastDevice;
    const auto found = std::find(m_devices.begin(), m_devices.end(), device);
    m_lastDevice = static_cast<std::uint16_t>(found - m_devices.begin());
    if (found == m_devices.end()) m_devices.push_back(device);
    return m_lastDevice;
}

}  // namespace orrinvale
