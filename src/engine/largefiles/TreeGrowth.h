// TreeGrowth: makes the tree of the large file page of the chunks that NodeTreeOperator hands over.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/largefiles/FileNodeTree.h"
#include "engine/largefiles/NodeTreeOperator.h"

namespace orrinvale {

/// Used by the thread that owns the tree, one at a time.
///
/// What a folder gained goes to the folders above it not with each chunk, which would take the
/// depth of the tree for each, but once for many chunks, level by level.
class TreeGrowth final {
public:
    /// What the walk finds comes below `start`, a folder of the tree.
    TreeGrowth(std::shared_ptr<FileNodeTree> tree, FileNode& start,
               std::shared_ptr<ScanCounts> counts);
    TreeGrowth(const TreeGrowth&) = delete;
    TreeGrowth& operator=(const TreeGrowth&) = delete;

    /// Takes out what stands below the start, before the first chunk.
    void startAnew() { m_tree->empty(m_start); }
    /// Takes in a chunk, those that tell of its folder before it, and lets go of its folders.
    void take(const FoundChunk& chunk);
    /// Brings all sizes up to date. Before anybody looks at the tree, and before the object goes.
    void passUp();

private:
    void gained(TreeFolder& folder, std::uint64_t size, std::uint64_t onDisk);

    const std::shared_ptr<FileNodeTree> m_tree;
    FileNode& m_start;
    const std::shared_ptr<ScanCounts> m_counts;
    std::vector<TreeFolder*> m_behind;  // held; the folders above them lack something
};

}  // namespace orrinvale
