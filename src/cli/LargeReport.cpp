// A list of levels stands in for the call stack, since trees may be deeper than that.
#include "cli/LargeReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <string>

#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

/// Goes through what is to be printed, a folder before its contents. `path` is the path of the
/// entry in hand.
class Rows {
public:
    Rows(FileNodeTree& tree, const LargeExtent& extent)
        : m_extent(extent), m_path(tree.rootPath()) {
        open(tree.root());
    }

    /// The next entry, or null when the folder that was open last has no more; that folder is
    /// closed then.
    FileNode* next() {
        Level& level = m_levels.back();
        m_path.resize(level.pathLength);
        if (level.left.empty()) {
            m_levels.pop_back();
            return nullptr;
        }
        FileNode* const node = level.left.front();
        level.left = level.left.subspan(1);
        m_path += '/';
        m_path += node->name();
        return node;
    }

    /// Whether what is in the entry in hand is printed. If so, next() goes on with it.
    bool enter(FileNode& node) {
        if (!node.isDirectory() || m_levels.size() >= m_extent.depth) return false;
        open(node);
        return true;
    }

    [[nodiscard]] bool atEnd() const { return m_levels.empty(); }
    [[nodiscard]] const std::string& path() const { return m_path; }
    /// 1 for what lies directly in the folder.
    [[nodiscard]] std::size_t depth() const { return m_levels.size(); }

private:
    struct Level {
        std::span<FileNode* const> left;
        std::size_t pathLength;
    };

    void open(FileNode& folder) {
        const std::size_t count =
            m_extent.depth == 0 ? 0 : std::min<std::uint64_t>(m_extent.top, folder.childCount());
        m_levels.push_back({folder.biggestChildren(count).first(count), m_path.size()});
    }

    const LargeExtent m_extent;
    std::vector<Level> m_levels;
    std::string m_path;
};

}  // namespace

void printJson(Output& out, FileNodeTree& tree, const LargeExtent& extent,
               const std::vector<Error>& skipped, bool stopped) {
    std::string text = "{\n  ";
    appendJsonPath(text, tree.rootPath(), "root");
    text += fmt::format(",\n  \"size\": {},\n  \"stopped\": {},\n  \"skipped\": [",
                        tree.root().size(), stopped);
    appendJsonSkipped(text, skipped);
    text += "],\n  \"entries\": [";
    bool isFirst = true;
    for (Rows rows(tree, extent); !rows.atEnd();) {
        FileNode* const node = rows.next();
        if (node == nullptr) {
            if (!rows.atEnd()) text += "]}";
            isFirst = false;
            continue;
        }
        if (!isFirst) text += ',';
        text += "\n    {\"name\": ";
        appendJsonText(text, node->name());
        text += ", ";
        appendJsonPath(text, rows.path());
        text += fmt::format(", \"directory\": {}, \"size\": {}", node->isDirectory(), node->size());
        isFirst = rows.enter(*node);
        text += isFirst ? ", \"children\": [" : "}";
        out.write(text);
        text.clear();
    }
    out.write(text + "]\n}\n");
}

void printPaths(Output& out, FileNodeTree& tree, const LargeExtent& extent) {
    for (Rows rows(tree, extent); !rows.atEnd();) {
        FileNode* const node = rows.next();
        if (node == nullptr) continue;
        out.write(rows.path());
        out.write(std::string_view("\0", 1));
        rows.enter(*node);
    }
}

void printListing(Output& out, FileNodeTree& tree, const LargeExtent& extent, bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    const auto line = [&](std::uint64_t bytes, std::size_t depth, const std::string& what) {
        out.write(fmt::format("{}{:>10}{}  {:{}}{}\n", strong,
                              UtilityFunction::convertVolSpace(bytes), plain, "", 2 * depth, what));
    };
    for (Rows rows(tree, extent); !rows.atEnd();) {
        const std::size_t depth = rows.depth();
        FileNode* const node = rows.next();
        if (node == nullptr) continue;
        line(node->size(), depth - 1, printable(node->name()) + (node->isDirectory() ? "/" : ""));
        rows.enter(*node);
    }
    line(tree.root().size(), 0, printable(tree.rootPath()));
}

}  // namespace orrinvale::cli
