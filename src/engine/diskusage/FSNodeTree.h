// FSNodeTree: the nodes of one scan of disk usage, in blocks that go with it.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/diskusage/FSNode.h"
#include "engine/files/OwnChanges.h"

namespace orrinvale {

/// What a walk through a folder found.
struct UsageResult {
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;
    FSContents contents;  ///< the biggest child first
    std::uint8_t marks = 0;
    bool isGone = false;  ///< the folder was not there any more
};

/// One thread at a time, which owns the tree. A node costs 64 bytes, 8 in its father's list, a
/// folder 40 more, and the name.
class FSNodeTree final {
public:
    /// `rootPath` is absolute; exact bytes.
    explicit FSNodeTree(std::string rootPath);
    ~FSNodeTree();
    FSNodeTree(const FSNodeTree&) = delete;
    FSNodeTree& operator=(const FSNodeTree&) = delete;

    [[nodiscard]] const std::string& rootPath() const { return m_rootPath; }
    [[nodiscard]] FSNode& root();
    [[nodiscard]] const FSNode& root() const;

    /// Takes nodes out of their fathers' lists, and their bytes and marks of every folder above:
    /// what a removal took away. Those that were taken out before are passed over. The lists are
    /// gone through once for each father. Files that have names elsewhere stay in the bytes on the
    /// disk of the folders above, since nobody knows where; a new scan tells.
    void takeOut(std::span<FSNode* const> nodes);

    // For the scans.

    /// Replaces what a folder holds by what a walk found there, and passes the difference of its
    /// sizes and its marks to the folders above.
    void put(FSNode& folder, const UsageResult& found);
    /// Takes back from the folder and those above what no child of theirs says any more.
    static void settleMarks(FSNode& folder);
    /// The first level, before it is counted. The list lasts as long as the tree.
    void putLevel(std::span<FSNode*> level);
    /// A node directly in the root has this size by now, and so has the root more.
    void countUp(FSNode& node, std::uint64_t size);
    /// What the walk found on the whole, with the first level in its last order.
    void putWhole(const UsageResult& found);
    /// In its place when the walk did not come to its end: brings the first level into its order.
    /// What is still undecided was cut.
    void closeLevel();
    /// Takes nodes out of the root's list; their bytes stay in its size.
    void leaveOut(std::span<FSNode* const> nodes) { removeFromList(root(), nodes); }
    /// Any thread.
    [[nodiscard]] std::uint16_t deviceIndex(std::uint64_t device);
    /// Storage that lives as long as the tree.
    void keep(std::shared_ptr<const void> storage) { m_kept.push_back(std::move(storage)); }

    /// What our own removals of what the tree shows did to its files; for PlainDoor.
    [[nodiscard]] const std::shared_ptr<OwnChanges>& ownChanges() const { return m_ownChanges; }

    /// The tree that a node belongs to.
    [[nodiscard]] static FSNodeTree& of(const FSNode& node);

private:
    friend class FSNode;
    struct Root;
    [[nodiscard]] std::uint64_t deviceAt(std::uint16_t index) const;
    static void removeFromList(FSNode& father, std::span<FSNode* const> leaving);

    const std::string m_rootPath;
    const std::unique_ptr<Root> m_rootHolder;
    mutable std::mutex m_devicesMutex;
    std::vector<std::uint64_t> m_devices;             // guarded by m_devicesMutex: scans add to it
    std::vector<std::shared_ptr<const void>> m_kept;  // arenas of the scans
    const std::shared_ptr<OwnChanges> m_ownChanges = std::make_shared<OwnChanges>();
};

}  // namespace orrinvale
