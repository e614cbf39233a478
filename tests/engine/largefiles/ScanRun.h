// What the tests of the large file scan share: a main queue that the test itself turns, and the
// tree as text.
#pragma once

#include "engine/largefiles/EumeRoot.h"
#include "engine/largefiles/FileNodeTree.h"
#include "engine/largefiles/ScannedTree.h"
#include "support/test.h"

namespace orrinvale::testing {

/// One scan into a tree of its own; with the queue when it is given.
struct ScanRun {
    ScanRun(const FileSystem& files, const std::string& path, ServedQueue* queue = nullptr)
        : tree(std::make_shared<FileNodeTree>(path)),
          scan({.files = &files, .mainQueue = queue, .grown = {}}) {
        scan.eumeAllRootFileNodeWithRootArr(tree, path);
        if (queue == nullptr) scan.waitForEnd();
    }

    std::shared_ptr<FileNodeTree> tree;
    EumeRoot scan;
};

/// Turns the queue until the scan has ended, for a minute at most; looks on after each turn.
inline bool turnToEnd(const EumeRoot& scan, ServedQueue& queue,
                      const std::function<void()>& look = {}) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!scan.isEnded() && std::chrono::steady_clock::now() < until) {
        if (!queue.step()) std::this_thread::yield();
        else if (look) look();
    }
    return scan.isEnded();
}

/// One line for each node, in order, children behind their father.
inline std::vector<std::string> linesOf(FileNodeTree& tree) {
    std::vector<std::string> lines;
    std::vector<FileNode*> waiting(tree.root().children().rbegin(), tree.root().children().rend());
    while (!waiting.empty()) {
        FileNode* const node = waiting.back();
        waiting.pop_back();
        lines.push_back(
            fmt::format("{}{} {}", node->path(), node->isDirectory() ? "/" : "", node->size()));
        const auto children = node->children();
        waiting.insert(waiting.end(), children.rbegin(), children.rend());
    }
    return lines;
}

/// Folders whose sizes are not the sums of what they hold, the root included.
inline std::vector<std::string> wrongSums(FileNodeTree& tree) {
    std::vector<std::string> wrong;
    std::vector<FileNode*> waiting{&tree.root()};
    while (!waiting.empty()) {
        FileNode* const node = waiting.back();
        waiting.pop_back();
        std::uint64_t size = 0;
        std::uint64_t onDisk = 0;
        for (FileNode* const child : node->childrenInAnyOrder()) {
            size += child->size();
            onDisk += child->sizeOnDisk();
            waiting.push_back(child);
        }
        if (node->isDirectory() && (size != node->size() || onDisk != node->sizeOnDisk()))
            wrong.push_back(fmt::format("{}: {} instead of {}", node->path(), node->size(), size));
    }
    return wrong;
}

}  // namespace orrinvale::testing
