// FileNode: a file or a folder in the tree of the large file page, and FileNodeTree, which owns the
// nodes of one scan.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "engine/files/EntryIdentity.h"

namespace orrinvale {

class FileNodeTree;

/// What a scan hands over of one entry.
struct FoundEntry {
    const char* name = nullptr;  ///< NUL-terminated exact bytes; lives as long as the tree
    bool isDirectory = false;
    FileType type = FileType::Unknown;
    std::uint32_t links = 0;     ///< hard links
    std::uint32_t position = 0;  ///< its place in the listing of its folder, from 0
    std::uint64_t size = 0;      ///< bytes; 0 for a folder, whose contents add to it later
    std::uint64_t onDisk = 0;    ///< bytes that it takes on the disk
    std::uint64_t device =
        0;  ///< st_dev, inode and time of making, which tell it from what may stand there later
    std::uint64_t inode = 0;
    std::int64_t born = 0;  ///< 0 where it is not known
    std::int64_t modified =
        0;  ///< these two of regular files: they tell whether one was written since
    std::int64_t changed = 0;
    std::optional<std::int64_t> accessed = {};
};

/// Belongs to its tree, and to the thread that owns the tree: in the window program the main
/// thread, which alone reads and changes it. Its address stays the same for the life of the tree,
/// also when it was removed from its father.
///
/// Children are kept in order lazily: whoever looks at them gets the biggest first, as if each had
/// been put into its place at its coming and moved with each byte. Of equal ones the file that came
/// later stands before those that were there, while a folder that grew to that size stands behind
/// them; at the top level so does an empty folder.
class FileNode {
public:
    enum State : std::uint8_t { NotSelected = 0, Selected = 1, Mixed = 2 };

    FileNode(const FileNode&) = delete;
    FileNode& operator=(const FileNode&) = delete;

    [[nodiscard]] std::string_view name() const { return m_name; }
    /// Put together from the names at each call; exact bytes, of any length. Any thread, also for a
    /// node that was taken out: names and fathers never change.
    [[nodiscard]] std::string path() const;
    /// The last component of the path.
    [[nodiscard]] std::string displayName() const;
    [[nodiscard]] bool isDirectory() const { return m_isDirectory; }
    /// Whether this very path is one that nobody should select.
    [[nodiscard]] bool isSystemFile() const;

    /// Bytes: of a file its length, of a folder the sum of all that was found in it so far, each
    /// name of a file counted.
    [[nodiscard]] std::uint64_t size() const { return m_size; }
    /// The same on the disk.
    [[nodiscard]] std::uint64_t sizeOnDisk() const { return m_onDisk; }
    /// How many names the file has.
    [[nodiscard]] std::uint32_t links() const { return m_links; }
    /// As the scan saw it. Whoever compares it with the disk has it learnPassing() first.
    [[nodiscard]] EntryIdentity identity() const;
    /// Seconds since 1970 UTC, up to the year 2106, at which a file was written last, and at which
    /// it was read or written last; before1970 stands for all that lies before. Nothing where that
    /// is not known, and of folders. The second means something where the mount keeps it
    /// (platform/accessTimes.h).
    [[nodiscard]] std::optional<std::int64_t> lastWritten() const { return secondOf(m_childRoom); }
    [[nodiscard]] std::optional<std::int64_t> lastOpened() const { return secondOf(m_ordered); }
    static constexpr std::int64_t before1970 = -1;
    static constexpr std::int64_t from2106 = 4'294'967'293;  ///< stands for all later ones too
    /// Which of FileNodeTree::firstOfDevices() has its device.
    [[nodiscard]] std::uint16_t deviceNumber() const { return m_device; }

    [[nodiscard]] State state() const { return m_state; }
    void setState(State state) { m_state = state; }
    /// Whether its row is open in the list.
    [[nodiscard]] bool isExpand() const { return m_isExpand; }
    void setIsExpand(bool isExpand) { m_isExpand = isExpand; }

    /// Null for a node of the top level.
    [[nodiscard]] FileNode* father() const;

    /// Whether it stands in its tree no more: it or a folder above was taken out.
    [[nodiscard]] bool isTakenOut() const;

    [[nodiscard]] std::size_t childCount() const { return m_childCount; }
    /// All children, in order.
    [[nodiscard]] std::span<FileNode* const> children() { return biggestChildren(m_childCount); }
    /// All children, of which at least the first `count` stand in order. What a folder of a million
    /// entries costs to look at depends on this.
    [[nodiscard]] std::span<FileNode* const> biggestChildren(std::size_t count);
    /// All children, in no order: for sums and states.
    [[nodiscard]] std::span<FileNode* const> childrenInAnyOrder() const {
        return {m_children, m_childCount};
    }

    /// Puts some children of one folder into that order.
    static void putInOrder(std::span<FileNode*> children);

    /// Takes the child out. Sizes above stay as they are.
    void removeChild(FileNode& child) {
        FileNode* const leaving = &child;
        removeChildren({&leaving, 1});
    }
    /// The same for many, in one pass over the list; those that are no children are passed over.
    /// Cheapest when they come in the order of the list.
    void removeChildren(std::span<FileNode* const> leaving);

    /// Less than 0 when this node is bigger than the other, 0 when they are of one size: the
    /// biggest comes first.
    [[nodiscard]] int compareSize(const FileNode& other) const {
        return m_size == other.m_size ? 0 : m_size > other.m_size ? -1 : 1;
    }

private:
    friend class FileNodeTree;
    FileNode() = default;
    [[nodiscard]] bool standsBefore(const FileNode& other) const;
    // How times are kept: 0 for none, then 1 for all before 1970, and from there on by seconds.
    static std::uint32_t keptTime(std::int64_t nanoseconds);
    [[nodiscard]] std::optional<std::int64_t> secondOf(std::uint32_t kept) const {
        if (m_isDirectory || kept == 0) return std::nullopt;
        return std::int64_t{kept} - 2;
    }
    void removeChildrenInAnyOrder(std::span<FileNode* const> leaving);

    const char* m_name = nullptr;
    FileNode* m_father = nullptr;  // of the top level the tree's root, which father() hides
    std::uint64_t m_size = 0;
    std::uint64_t m_onDisk = 0;
    std::uint64_t m_inode = 0;
    std::uint64_t m_times =
        0;  // of a regular file EntryIdentity::timesOf(), of all others the time of their making
    FileNode** m_children = nullptr;
    std::uint32_t m_childCount = 0;
    std::uint32_t m_childRoom = 0;  // of a file, which has no children, its keptTime() of writing
    std::uint32_t m_ordered =
        0;  // how many of the first children stand in order; of a file its keptTime() of opening
    std::uint32_t m_position = 0;
    std::uint32_t m_links = 0;
    std::uint16_t m_device = 0;  // index into the tree's devices
    bool m_isDirectory : 1 = false;
    FileType m_type : 4 = FileType::Unknown;
    unsigned char : 0;  // what changes later shares no byte with what a removal reads meanwhile
    State m_state : 2 = NotSelected;
    bool m_isExpand : 1 = false;
    bool m_isTakenOut : 1 = false;  // of its father's list
};

}  // namespace orrinvale
