// FSNode: a file or a folder in the tree of the disk usage page. FSNodeTree.h owns the nodes of one
// scan, DiskUsageScan.h makes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "engine/files/EntryIdentity.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class FSNodeTree;
class FSNode;

/// What a folder node has besides.
struct FSContents {
    FSNode** children = nullptr;
    std::uint64_t leftOutSize = 0;
    std::uint64_t outside = 0;  ///< bytes on the disk of files that have names elsewhere too
    std::uint32_t childCount = 0;
    std::uint32_t leftOutCount = 0;
    std::uint8_t marks = 0;  ///< FSNode::Mark: those of the folder itself and of what has no node
};

/// The entries directly in a folder that are under the limit and so have no nodes.
struct LeftOut {
    std::uint64_t entries = 0;  ///< files and folders
    std::uint64_t size = 0;     ///< bytes, with all that these folders hold
};

/// Belongs to its tree, and to the thread that owns the tree: in the window program the main
/// thread, which alone reads and changes it. Its address stays the same for the life of the tree,
/// also when it was taken out.
class FSNode {
public:
    /// The states of the box of a row.
    enum State : std::uint8_t { NotSelected = 0, Selected = 1, Mixed = 2 };

    /// Why the size may not be the whole truth. Those "within" hold for the node itself or for
    /// anything below it.
    enum Mark : std::uint8_t {
        Undecided = 1,       ///< directly in the chosen folder, and not counted to its end yet
        Unread = 2,          ///< a folder that could not be opened, or not listed to its end
        Foreign = 4,         ///< on another file system, and so not entered
        CutWithin = 8,       ///< a stop left something uncounted
        UnreadWithin = 16,   ///< something could not be read
        ForeignWithin = 32,  ///< something is on another file system
        LeftOutWithin = 64   ///< something is under the limit and has no node
    };

    FSNode(const FSNode&) = delete;
    FSNode& operator=(const FSNode&) = delete;

    /// Exact bytes; of the root the whole path.
    [[nodiscard]] std::string_view name() const { return m_name; }
    /// Put together from the names at each call; exact bytes, of any length. Any thread: names and
    /// fathers never change.
    [[nodiscard]] std::string path() const;
    /// The last component of the path.
    [[nodiscard]] std::string displayName() const;
    [[nodiscard]] bool isDirectory() const { return m_contents != nullptr; }

    /// Bytes: of a file its length, of a folder the sum of its whole contents, what is left out
    /// included. Each name of a file counts.
    [[nodiscard]] std::uint64_t size() const { return m_size; }
    std::uint64_t size(std::uint64_t bytes) { return m_size = bytes; }
    void setSize(std::uint64_t bytes) { m_size = bytes; }

    /// Bytes on the disk, of a folder with the folders themselves; a file with several names counts
    /// once. Extents that files share count for each of them.
    [[nodiscard]] std::uint64_t onDisk() const { return m_onDisk; }
    /// The same without files that have names elsewhere too: what a removal of the node can give
    /// back at most.
    [[nodiscard]] std::uint64_t onDiskWithin() const;

    [[nodiscard]] bool has(Mark mark) const { return (m_marks & mark) != 0; }
    [[nodiscard]] std::uint8_t marks() const { return m_marks; }
    /// Whether all below it stands in the tree. Of a folder that does not the ticks of its children
    /// tell less than all.
    [[nodiscard]] bool isWhole() const { return (m_marks & notWhole) == 0; }

    /// Null for the root.
    [[nodiscard]] FSNode* father() const { return m_father; }

    /// Those at or over the limit. The biggest first, but directly in the chosen folder by name
    /// until the scan has ended.
    [[nodiscard]] std::span<FSNode* const> children() const;
    [[nodiscard]] LeftOut leftOut() const;

    /// The box; UsageSelection.h has its rules.
    [[nodiscard]] State isButtonState() const { return m_isButtonState; }
    void setIsButtonState(State state) { m_isButtonState = state; }
    /// The state of the cell's plain button.
    [[nodiscard]] bool state() const { return m_state; }
    void setState(bool state) { m_state = state; }

    /// As the scan saw it. Whoever compares it with the disk has it learnPassing() first.
    [[nodiscard]] EntryIdentity identity() const;

    /// Less than 0 when this node is bigger than the other, 0 when they are of one size: the
    /// biggest comes first.
    [[nodiscard]] int compareSize(const FSNode& other) const {
        return m_size == other.m_size ? 0 : m_size > other.m_size ? -1 : 1;
    }
    /// Puts the children into that order, those of one size by the bytes of their names, and so on
    /// at each level below.
    void decendingSort();

    /// Walks what lies at the path of `root` by as many threads as pay, on one file system, and
    /// makes it the children of `root`, a folder; those that it had before leave. The size of what
    /// was found, left-out entries included; it is stored too, in the folders above as well.
    static std::uint64_t getFistListTree(const FileSystem& files, FSNode& root,
                                         std::uint64_t limit);

private:
    friend class FSNodeTree;
    friend class UsageWalk;
    friend struct UsageFolder;
    FSNode() = default;
    static constexpr std::uint8_t within = CutWithin | UnreadWithin | ForeignWithin | LeftOutWithin;
    static constexpr std::uint8_t notWhole = Undecided | within;

    using Sized = std::pair<std::uint64_t, FSNode*>;  // with its size
    static void sort(std::span<Sized> nodes);
    static void sort(std::span<FSNode*> nodes);
    [[nodiscard]] std::span<FSNode*> list() const;

    const char* m_name = nullptr;
    FSNode* m_father = nullptr;
    FSContents* m_contents = nullptr;  // of folders
    std::uint64_t m_size = 0;
    std::uint64_t m_onDisk = 0;
    std::uint64_t m_inode = 0;
    std::uint64_t m_times =
        0;  // of a regular file EntryIdentity::timesOf(), of all others the time of their making
    std::uint16_t m_device = 0;  // index into the tree's devices
    FileType m_type = FileType::Unknown;
    std::uint8_t m_marks = 0;
    State m_isButtonState = NotSelected;
    bool m_state = false;
    bool m_isLinked = false;  // a file with several names
    bool m_isTakenOut = false;
};

}  // namespace orrinvale
