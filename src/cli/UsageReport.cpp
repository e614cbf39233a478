// A list of levels stands in for the call stack, since trees may be deeper than that.
#include "cli/UsageReport.h"

#include <fmt/format.h>

#include <span>
#include <string>
#include <string_view>

#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

/// Goes through what is to be printed, a folder before its contents and its end behind them.
/// `path` is the path of the entry in hand.
class UsageRows {
public:
    UsageRows(const FSNodeTree& tree, std::uint64_t depth)
        : m_depth(depth), m_path(tree.rootPath()) {
        open(tree.root());
    }

    /// The next entry, or null when the folder that was open last has no more: closed() then.
    const FSNode* next() {
        Level& level = m_levels.back();
        m_path.resize(level.pathLength);
        if (level.left.empty()) {
            m_closed = level.folder;
            m_levels.pop_back();
            return nullptr;
        }
        const FSNode* const node = level.left.front();
        level.left = level.left.subspan(1);
        if (!m_path.ends_with('/')) m_path += '/';
        m_path += node->name();
        return node;
    }

    /// Whether what is in the entry in hand is printed. If so, next() goes on with it.
    bool enter(const FSNode& node) {
        if (!node.isDirectory() || m_levels.size() >= m_depth) return false;
        open(node);
        return true;
    }

    [[nodiscard]] bool atEnd() const { return m_levels.empty(); }
    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] const FSNode& closed() const { return *m_closed; }
    /// 1 for what lies directly in the folder.
    [[nodiscard]] std::size_t depth() const { return m_levels.size(); }

private:
    struct Level {
        const FSNode* folder;
        std::span<FSNode* const> left;
        std::size_t pathLength;
    };

    void open(const FSNode& folder) {
        const auto all = m_depth == 0 ? std::span<FSNode* const>() : folder.children();
        m_levels.push_back({&folder, all, m_path.size()});
    }

    const std::uint64_t m_depth;
    std::vector<Level> m_levels;
    const FSNode* m_closed = nullptr;
    std::string m_path;
};

// Only where it holds.
void appendMarks(std::string& text, const FSNode& node) {
    if (node.has(FSNode::Foreign)) text += ", \"otherFileSystem\": true";
    else if (node.has(FSNode::Unread)) text += ", \"unread\": true";
    const auto isPartial = [&](FSNode::Mark mark) { return node.has(mark); };
    if (isPartial(FSNode::UnreadWithin) || isPartial(FSNode::CutWithin) ||
        isPartial(FSNode::ForeignWithin))
        text += ", \"partial\": true";
}

void appendBelow(std::string& text, const FSNode& folder) {
    const LeftOut leftOut = folder.leftOut();
    fmt::format_to(std::back_inserter(text), "\"below\": {{\"entries\": {}, \"size\": {}}}",
                   leftOut.entries, leftOut.size);
}

std::string wordsFor(const FSNode& node) {
    if (node.has(FSNode::Foreign)) return "  (on another file system)";
    if (node.has(FSNode::Unread)) return "  (could not be read)";
    if (node.has(FSNode::CutWithin)) return "  (not counted to its end)";
    if (node.has(FSNode::UnreadWithin)) return "  (not all of it could be read)";
    if (node.has(FSNode::ForeignWithin)) return "  (another file system in it)";
    return {};
}

}  // namespace

void printJson(Output& out, const FSNodeTree& tree, const UsageExtent& extent,
               const std::vector<Error>& skipped, bool stopped) {
    const FSNode& root = tree.root();
    std::string text = "{\n  ";
    appendJsonPath(text, tree.rootPath(), "root");
    text += fmt::format(",\n  \"size\": {},\n  \"onDisk\": {},\n  \"limit\": {}", root.size(),
                        root.onDisk(), extent.limit);
    appendMarks(text, root);
    text += fmt::format(",\n  \"stopped\": {},\n  \"skipped\": [", stopped);
    appendJsonSkipped(text, skipped);
    text += "],\n  \"entries\": [";
    bool isFirst = true;
    for (UsageRows rows(tree, extent.depth); !rows.atEnd();) {
        const FSNode* const node = rows.next();
        if (node == nullptr) {
            if (rows.atEnd()) break;
            text += "], ";
            appendBelow(text, rows.closed());
            text += '}';
            isFirst = false;
            continue;
        }
        if (!isFirst) text += ',';
        text += "\n    {\"name\": ";
        appendJsonText(text, node->name());
        text += ", ";
        appendJsonPath(text, rows.path());
        fmt::format_to(std::back_inserter(text),
                       ", \"directory\": {}, \"size\": {}, \"onDisk\": {}", node->isDirectory(),
                       node->size(), node->onDisk());
        appendMarks(text, *node);
        isFirst = rows.enter(*node);
        if (isFirst) {
            text += ", \"children\": [";
        } else {
            if (node->isDirectory()) appendBelow(text += ", ", *node);
            text += '}';
        }
        out.write(text);
        text.clear();
    }
    text += "],\n  ";
    appendBelow(text, root);
    out.write(text + "\n}\n");
}

void printPaths(Output& out, const FSNodeTree& tree, const UsageExtent& extent) {
    for (UsageRows rows(tree, extent.depth); !rows.atEnd();) {
        const FSNode* const node = rows.next();
        if (node == nullptr) continue;
        out.write(rows.path());
        out.write(std::string_view("\0", 1));
        rows.enter(*node);
    }
}

void printListing(Output& out, const FSNodeTree& tree, const UsageExtent& extent, bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    const auto line = [&](std::uint64_t bytes, std::size_t depth, const std::string& what) {
        out.write(fmt::format("{}{:>10}{}  {:{}}{}\n", strong,
                              UtilityFunction::convertVolSpace(bytes), plain, "", 2 * depth, what));
    };
    const std::string limit = UtilityFunction::convertVolSpace(extent.limit);
    const auto lineOfLeftOut = [&](const FSNode& folder, std::size_t depth) {
        const LeftOut leftOut = folder.leftOut();
        if (leftOut.entries == 0) return;
        line(leftOut.size, depth,
             fmt::format("({} {} under {})", leftOut.entries,
                         leftOut.entries == 1 ? "item" : "items", limit));
    };
    for (UsageRows rows(tree, extent.depth); !rows.atEnd();) {
        const std::size_t depth = rows.depth();
        const FSNode* const node = rows.next();
        if (node == nullptr) {
            if (extent.depth > 0) lineOfLeftOut(rows.closed(), depth - 1);
            continue;
        }
        line(node->size(), depth - 1,
             printable(node->name()) + (node->isDirectory() ? "/" : "") + wordsFor(*node));
        rows.enter(*node);
    }
    line(tree.root().size(), 0, printable(tree.rootPath()) + wordsFor(tree.root()));
}

}  // namespace orrinvale::cli
