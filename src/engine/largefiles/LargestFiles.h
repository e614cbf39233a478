// LargestFiles: the files of a scanned tree in one list, whatever folder they lie in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/FileKind.h"
#include "engine/largefiles/FileNodeTree.h"
#include "engine/largefiles/OpeningInquiry.h"

namespace orrinvale {

/// Which files are listed, and in what order. A value; all files, the biggest first, to begin with.
struct FileWish {
    enum class Order : std::uint8_t {
        Size,     ///< the biggest first
        Written,  ///< what was not written for the longest time first
        Opened,   ///< what was not opened for the longest time first
        Name
    };

    std::vector<FileKind> kinds = {};  ///< none: all
    /// Only what was last written at this second since 1970 or before; nothing: whenever.
    std::optional<std::int64_t> writtenBy = {};
    std::optional<std::int64_t> openedBy = {};  ///< the same of the last opening
    Order order = Order::Size;
    bool isReversed = false;  ///< what is not known stays at the end
    /// By FileNode::deviceNumber(), whether times of opening mean anything there.
    std::vector<OpeningNotes> openings = {};

    [[nodiscard]] OpeningNotes openingsAt(const FileNode& file) const {
        return file.deviceNumber() < openings.size() ? openings[file.deviceNumber()]
                                                     : OpeningNotes::Unanswered;
    }
    /// FileNode::lastOpened() where that means something.
    [[nodiscard]] std::optional<std::int64_t> lastOpened(const FileNode& file) const {
        return openingsAt(file) == OpeningNotes::Kept ? file.lastOpened() : std::nullopt;
    }
};

/// A row is whatever is no folder, and a bundle, which is taken for one thing here as in the tree.
/// 16 bytes a row. The order is total, so that the same files always stand in the same order: of
/// one size by name, then by place. Belongs to the thread that owns the tree, which it neither
/// holds nor changes.
class LargestFiles final {
public:
    struct Row {
        std::uint64_t key;  // what the wish orders by, the smallest first
        FileNode* node;
    };

    LargestFiles(FileNodeTree& tree, FileWish wish);
    /// What another list of the tree still has when nothing happened to that but that nodes were
    /// taken out: the same wish, the same order, and much less work. It may go on looking while
    /// further ones are taken out, which then the next list of the rest leaves away.
    explicit LargestFiles(std::shared_ptr<const LargestFiles> before);

    /// Looks at up to so many nodes. True when nothing is left to look at. The tree must not change
    /// between the first step and the last, but for what that constructor says: see isCurrent().
    bool step(std::size_t nodes);
    void finish() { static_cast<void>(step(~std::size_t{0})); }
    /// False since the tree has changed.
    [[nodiscard]] bool isCurrent() const { return m_revision == m_tree.revision(); }
    /// Since then nodes were taken out of the tree, if anything.
    [[nodiscard]] bool isOnlyLess() const { return m_growthRevision == m_tree.growthRevision(); }

    [[nodiscard]] const FileWish& wish() const { return m_wish; }
    [[nodiscard]] std::size_t count() const { return m_rows.size(); }
    [[nodiscard]] std::uint64_t bytes() const { return m_bytes; }
    /// Bytes of the biggest row.
    [[nodiscard]] std::uint64_t biggest() const { return m_biggest; }
    /// Files that the wish leaves out only since it is not noted when they are opened, and those
    /// whose disk has not answered whether it is. Those of a list of the rest are of its first one.
    [[nodiscard]] std::uint64_t unknownCount() const { return m_unknown; }
    [[nodiscard]] std::uint64_t unansweredCount() const { return m_unanswered; }

    /// All rows, of which the first `count` stand in order. Costs what it takes to find these.
    [[nodiscard]] std::span<const Row> first(std::size_t count);
    /// How many rows stand in order. All others may have changed their places since it was less.
    [[nodiscard]] std::size_t orderedCount() const { return m_ordered; }
    /// All rows, in no order but that of those.
    [[nodiscard]] std::span<const Row> rows() const { return m_rows; }

private:
    struct Level {
        FileNode* folder;
        std::size_t next;
    };

    bool stepRest(std::size_t nodes);
    void take(FileNode& node);
    void add(const Row& row);
    [[nodiscard]] bool isWished(const FileNode& node);
    [[nodiscard]] FileKind kindOf(const FileNode& node);
    [[nodiscard]] std::uint64_t keyOf(const FileNode& node) const;
    [[nodiscard]] std::uint64_t partOf(const FileNode& node, std::size_t part) const;
    [[nodiscard]] bool standsBefore(const Row& a, const Row& b) const;
    void choose(std::span<Row> rows, std::size_t count, std::size_t part) const;
    void arrange(std::span<Row> rows, std::size_t part) const;

    FileNodeTree& m_tree;
    const FileWish m_wish;
    const std::uint64_t m_revision, m_growthRevision;
    std::shared_ptr<const LargestFiles> m_before;  // until all of its rows were looked at
    std::size_t m_next = 0, m_orderedBefore = 0;   // in it
    std::vector<Level> m_levels;                   // the way to the node in hand
    std::vector<Row> m_rows;
    std::size_t m_ordered = 0;  // how many of the first rows stand in order
    std::uint64_t m_bytes = 0;
    std::uint64_t m_biggest = 0;
    std::uint64_t m_unknown = 0, m_unanswered = 0;
    std::unordered_map<std::uint64_t, FileKind> m_kinds;  // by extension, eight bytes at most
};

}  // namespace orrinvale
