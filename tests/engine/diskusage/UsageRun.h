// What the tests of disk usage share: a scan with a queue that the test turns, and the tree as
// text.
#pragma once

#include "engine/diskusage/DiskUsageScan.h"
#include "support/ServedQueue.h"
#include "support/test.h"

namespace orrinvale::testing {

/// One scan into a tree of its own, to its end; with a queue by way of the first level that stands
/// at once.
struct UsageRun {
    UsageRun(const FileSystem& files, const std::string& path, UsageOptions options,
             ServedQueue* queue = nullptr)
        : tree(std::make_shared<FSNodeTree>(path)),
          scan({.files = &files, .mainQueue = queue, .news = {}}) {
        scan.start(tree, options);
        if (queue == nullptr) scan.waitForEnd();
        else EXPECT_TRUE(queue->serveUntil([this] { return scan.isEnded(); }));
    }

    std::shared_ptr<FSNodeTree> tree;
    DiskUsageScan scan;
};

inline FSNode* nodeAt(FSNodeTree& tree, std::string_view path) {
    FSNode* node = &tree.root();
    while (node != nullptr && !path.empty()) {
        const std::string_view name = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(name.size() + 1, path.size()));
        const auto children = node->children();
        const auto found = std::ranges::find(children, name, &FSNode::name);
        node = found == children.end() ? nullptr : *found;
    }
    return node;
}

/// "NAME/ SIZE on DISK, N under: SIZE" with what the marks say, a line for each node in order,
/// children indented.
inline std::string textOf(const FSNode& node, const std::string& indent = {}) {
    std::string out =
        indent + (node.father() == nullptr ? "." : std::string(node.name())) +
        fmt::format("{} {} on {}", node.isDirectory() ? "/" : "", node.size(), node.onDisk());
    if (node.leftOut().entries > 0)
        out += fmt::format(", {} under: {}", node.leftOut().entries, node.leftOut().size);
    constexpr std::pair<FSNode::Mark, const char*> words[] = {
        {FSNode::Undecided, " undecided"},
        {FSNode::Unread, " unread"},
        {FSNode::Foreign, " foreign"},
        {FSNode::CutWithin, " cut-within"},
        {FSNode::UnreadWithin, " unread-within"},
        {FSNode::ForeignWithin, " foreign-within"}};
    for (const auto& [mark, word] : words)
        if (node.has(mark)) out += word;
    out += '\n';
    for (const FSNode* const child : node.children()) out += textOf(*child, indent + "  ");
    return out;
}

}  // namespace orrinvale::testing
