// Folders that gained bytes are remembered and passed up the tree together, deepest first.
#include "engine/largefiles/TreeGrowth.h"

#include <algorithm>
#include <utility>

#include "engine/base/saturating.h"

namespace orrinvale {
namespace {

// So many folders are held back at most: passing up costs the depth of the tree each time, holding
// one costs memory.
constexpr std::size_t mostBehind = 4096;

}  // namespace

TreeGrowth::TreeGrowth(std::shared_ptr<FileNodeTree> tree, FileNode& start,
                       std::shared_ptr<ScanCounts> counts)
    : m_tree(std::move(tree)), m_start(start), m_counts(std::move(counts)) {}

void TreeGrowth::take(const FoundChunk& chunk) {
    if (chunk.folder == nullptr) {
        // In the place of a folder that is scanned anew it is another entry, which nobody chose.
        if (&m_start == &m_tree->root()) m_tree->addChosenFile(chunk.entries.front());
        return;
    }
    TreeFolder& folder = *chunk.folder;
    if (folder.depth == 0) folder.node = &m_start;
    const FileNodeTree::Added added = m_tree->addHere(*folder.node, chunk.entries);
    auto next = chunk.folders.begin();
    for (std::size_t i = 0; next != chunk.folders.end(); ++i)
        if (chunk.entries[i].isDirectory) (*next++)->node = added.nodes[i];
    if ((added.size | added.onDisk) != 0) gained(folder, added.size, added.onDisk);
    if (folder.depth == 0)
        m_counts->finished.fetch_add(added.nodes.size() - chunk.folders.size() + chunk.goneCount);
    NodeTreeOperator::releaseFolders(chunk);
    if (m_behind.size() >= mostBehind) passUp();
}

void TreeGrowth::gained(TreeFolder& folder, std::uint64_t size, std::uint64_t onDisk) {
    if (folder.depth == 0) return FileNodeTree::growAbove(m_start, size, onDisk);
    addSaturating(folder.size, size);
    addSaturating(folder.onDisk, onDisk);
    if (std::exchange(folder.isBehind, true)) return;
    folder.users.fetch_add(1);
    m_behind.push_back(&folder);
}

void TreeGrowth::passUp() {
    std::vector<TreeFolder*> waiting = std::exchange(m_behind, {});
    std::sort(waiting.begin(), waiting.end(),
              [](const TreeFolder* a, const TreeFolder* b) { return a->depth < b->depth; });
    // The deepest first. Those above that gain by it are collected in m_behind and are of the next
    // level.
    std::vector<TreeFolder*> level;
    while (!waiting.empty() || !level.empty()) {
        const std::uint32_t depth = level.empty() ? waiting.back()->depth : level.front()->depth;
        for (; !waiting.empty() && waiting.back()->depth == depth; waiting.pop_back())
            level.push_back(waiting.back());
        for (TreeFolder* const folder : level) {
            auto& above = static_cast<TreeFolder&>(*folder->above);
            FileNodeTree::grow(*above.node, folder->size, folder->onDisk);
            gained(above, folder->size, folder->onDisk);
            folder->size = folder->onDisk = 0;
            folder->isBehind = false;
            NodeTreeOperator::releaseFolder(folder);
        }
        level.clear();
        level.swap(m_behind);
    }
}

}  // namespace orrinvale
