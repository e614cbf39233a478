// What the tests of disk usage share: a scan with a queue that the test turns, and the tree as
// text.
#pragma once

#include "engine/diskusage/DiskUsageScan.h"
#include "support/ServedQueue.h"
#include "support/realFiles.h"
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

/// The boxes by their rules read literally: keeps states by node, and recurses as they are told.
struct BoxModel {
    std::map<const FSNode*, int> state;

    void click(const FSNode& node) {
        state[&node] = state[&node] == 1 ? 0 : 1;
        if (node.father() != nullptr) follow(*node.father());
        passDown(node, state[&node]);
    }
    void follow(const FSNode& node) {
        int zeros = 0;
        int mixed = 0;
        for (const FSNode* const child : node.children()) {
            zeros += state[child] == 0 ? 1 : 0;
            mixed += state[child] == 2 ? 1 : 0;
        }
        const bool hides = node.has(FSNode::LeftOutWithin) || node.has(FSNode::UnreadWithin) ||
                           node.has(FSNode::CutWithin) || node.has(FSNode::ForeignWithin);
        if (zeros == static_cast<int>(node.children().size())) state[&node] = 0;
        else if (zeros == 0 && mixed == 0 && !hides) state[&node] = 1;
        else state[&node] = 2;
        if (node.father() != nullptr) follow(*node.father());
    }
    void passDown(const FSNode& node, int given) {
        for (const FSNode* const child : node.children()) state[child] = given == 2 ? 1 : given;
    }
    void open(const FSNode& node) {
        if (state[&node] != 2) passDown(node, state[&node]);
    }
    void collect(const FSNode& node, std::vector<const FSNode*>& out) {
        for (const FSNode* const child : node.children()) {
            if (state[child] == 1) out.push_back(child);
            if (state[child] == 2) collect(*child, out);
        }
    }
};

inline std::vector<FSNode*> allOf(FSNodeTree& tree) {
    std::vector<FSNode*> nodes{&tree.root()};
    for (std::size_t i = 0; i < nodes.size(); ++i)
        for (FSNode* const child : nodes[i]->children()) nodes.push_back(child);
    return nodes;
}

}  // namespace orrinvale::testing
