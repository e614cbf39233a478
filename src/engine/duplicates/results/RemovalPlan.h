// RemovalPlan: what goes, fixed when a person confirms, and the last look at each copy before it goes.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "engine/files/EntryIdentity.h"
#include "platform/files.h"

namespace orrinvale {

/// Made on the main thread from the ticked leaves; the rest belongs to the thread that removes, and touches no node of the tree.
class RemovalPlan final {
public:
    /// Each ticked leaf once, in the order of ticking. The groups are those that the leaves stand in now.
    explicit RemovalPlan(std::span<const TreeNode::Pointer> ticked);

    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    [[nodiscard]] const std::string& path(std::size_t index) const;
    [[nodiscard]] const std::optional<EntryIdentity>& identity(std::size_t index) const;
    [[nodiscard]] const TreeNode::Pointer& leaf(std::size_t index) const { return m_entries.at(index).leaf; }

    /// Why the copy must not go now, or nothing when it may: it is gone already, it is not what the search saw any more, or, in a
    /// group that is not wholly ticked, no other copy is left that still is what the search saw. A bundle is looked at with all that
    /// is in it. A link is no copy for a file: it may point at the very file that goes. Logged.
    [[nodiscard]] std::optional<std::string> objection(std::size_t index, const FileSystem& files) const;

    /// The copy has gone. Other names of the same file have another change time from then on, by our own doing.
    void removed(std::size_t index, const FileSystem& files);

private:
    struct Member {
        std::string path;
        std::uint64_t size = 0;  ///< bytes, as the search counted them; of a bundle those of all that is in it
        std::optional<EntryIdentity> identity;
        bool removed = false;
    };
    /// A group may hold a hundred thousand copies, so that nothing here walks over all of them for each that goes.
    struct Group {
        std::vector<Member> members;
        std::vector<std::size_t>
            before;  ///< by member: one more than the next one towards the front that is not removed
        std::vector<std::size_t>
            after;  ///< the same towards the end; member i stands at i + 1 in both, 0 is the ring's joint
        std::vector<std::size_t> byFile;  ///< members by device and inode
        bool whollyTicked = false;
    };
    struct Place {
        std::size_t group;
        std::size_t member;
    };
    struct Entry {
        TreeNode::Pointer leaf;
        Place place;
    };
    void addGroup(const TreeNode& node, std::unordered_map<const TreeNode*, Place>& places);
    [[nodiscard]] const Member& member(std::size_t index) const;
    enum class Found { Same, Changed, Gone };
    [[nodiscard]] static Found lookUp(const Member& member, const FileSystem& files);
    [[nodiscard]] static bool isCopyFor(const Member& wanted, const Member& other, const FileSystem& files);
    [[nodiscard]] static bool hasOther(const Group& group, const Member& wanted, const FileSystem& files);

    std::vector<Group> m_groups;
    std::vector<Entry> m_entries;
};

}  // namespace orrinvale
