// What the tests of the large file page's controller share: a queue for the main thread that the
// test serves itself, and nodes by their paths.
#pragma once

#include <algorithm>
#include <string_view>

#include "engine/largefiles/FileNodeTree.h"
#include "support/ServedQueue.h"

namespace orrinvale::testing {

/// The node with that path below the root of the tree, or null.
inline FileNode* nodeAt(FileNodeTree& tree, std::string_view path) {
    FileNode* node = &tree.root();
    while (node != nullptr && !path.empty()) {
        const std::string_view name = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(name.size() + 1, path.size()));
        FileNode* next = nullptr;
        for (FileNode* const child : node->childrenInAnyOrder())
            if (child->name() == name) next = child;
        node = next;
    }
    return node;
}

}  // namespace orrinvale::testing
