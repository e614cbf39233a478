// FileNodeTree: the nodes of one scan. The top level of it is what the large file page shows first.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/files/Arena.h"
#include "engine/files/OwnChanges.h"
#include "engine/files/SeenEntries.h"
#include "engine/largefiles/FileNode.h"

namespace orrinvale {

/// One thread at a time, which owns the tree. A node costs 80 bytes, 8 to 12 in its father's list,
/// and its name.
class FileNodeTree final {
public:
    /// `rootPath` is absolute; exact bytes.
    explicit FileNodeTree(std::string rootPath);
    ~FileNodeTree();
    FileNodeTree(const FileNodeTree&) = delete;
    FileNodeTree& operator=(const FileNodeTree&) = delete;

    [[nodiscard]] const std::string& rootPath() const { return m_rootPath; }
    /// Holds the top level as its children. Is shown nowhere and is no node's father().
    [[nodiscard]] FileNode& root() { return *m_root; }

    /// Adds a node for each entry to `folder`, in one step, and their sizes to every folder above.
    /// The new nodes, in the order of the entries; good until the next call for the folder.
    std::span<FileNode* const> add(FileNode& folder, std::span<const FoundEntry> entries);

    /// The same in two halves, for many additions at once: what add() did to the sizes of the
    /// folders above `folder` is left to grow(), for each of them, before anybody looks.
    struct Added {
        std::span<FileNode* const> nodes;
        std::uint64_t size = 0;  ///< bytes of all of them
        std::uint64_t onDisk = 0;
    };
    Added addHere(FileNode& folder, std::span<const FoundEntry> entries);
    static void grow(FileNode& folder, std::uint64_t size, std::uint64_t onDisk);
    /// grow() for every folder above.
    static void growAbove(const FileNode& folder, std::uint64_t size, std::uint64_t onDisk);

    /// Takes out all that stands below a folder, and its bytes of it and of every folder above.
    void empty(FileNode& folder);

    /// Adds the only node of a tree whose rootPath() is that of a file.
    void addChosenFile(const FoundEntry& entry);

    /// Storage that lives as long as the tree, such as an arena with names.
    void keep(std::shared_ptr<const void> storage) { m_kept.push_back(std::move(storage)); }

    /// Nodes added so far, removed ones included.
    [[nodiscard]] std::uint64_t nodeCount() const { return m_nodeCount; }
    /// Of each device that was met the entry that was met first: of a mount the folder at its top.
    [[nodiscard]] const std::vector<FileNode*>& firstOfDevices() const { return m_firstOfDevices; }
    /// Rises with every change by add() and removeChild().
    [[nodiscard]] std::uint64_t revision() const { return m_revision; }
    /// The same, but for changes that only took nodes out by removeChild().
    [[nodiscard]] std::uint64_t growthRevision() const { return m_revision - m_removals; }

    /// What the scan saw below a folder, for the removal of it. Any thread, also while the owner of
    /// the tree changes it.
    [[nodiscard]] SeenEntries seenBelow(const FileNode& folder, bool inodesPass) const;

    /// What our own removals of what the tree shows did to its files. For the one removal that is
    /// under way.
    [[nodiscard]] const std::shared_ptr<OwnChanges>& ownChanges() const { return m_ownChanges; }

    /// The tree that a node belongs to.
    [[nodiscard]] static FileNodeTree& of(const FileNode& node);

private:
    friend class FileNode;
    struct Root;
    void makeRoom(FileNode& folder, std::size_t more);
    std::uint16_t deviceIndex(std::uint64_t device);

    std::string m_rootPath;
    // Held by whoever changes a list of children or its order, and by seenBelow() while it copies
    // one. What a node keeps of its entry never changes once it stands in a list.
    mutable std::mutex m_lists;
    Arena m_nodes;
    FileNode* m_root = nullptr;
    std::vector<FileNode*> m_longLists;  // folders whose list of children is allocated for itself
    std::vector<std::uint64_t> m_devices;
    std::vector<FileNode*> m_firstOfDevices;
    std::uint16_t m_lastDevice = 0;
    std::vector<std::shared_ptr<const void>> m_kept;
    const std::shared_ptr<OwnChanges> m_ownChanges = std::make_shared<OwnChanges>();
    std::uint64_t m_nodeCount = 0;
    std::uint64_t m_revision = 0;
    std::uint64_t m_removals = 0;  // of the revisions those by removeChild()
};

}  // namespace orrinvale
