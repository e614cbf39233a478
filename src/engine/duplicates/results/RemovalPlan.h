// RemovalPlan: the copies that go, fixed when a person confirms, and the copy that stays for each
// of them.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/duplicates/results/BundleLook.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "engine/files/EntryIdentity.h"
#include "engine/removal/RemovalList.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Made on the main thread from the ticked leaves; the rest belongs to the thread that removes. No
/// node of the tree is touched after prepare().
class RemovalPlan final : public RemovalList {
public:
    /// Whether contents are compared before a copy goes. What rests on anything but a search just
    /// made, what was recalled among it, is always compared.
    enum class Comparing : std::uint8_t { Always, Never };
    /// What a copy may go for: one that is ticked as well, or what is to stay alone.
    enum class Copies : std::uint8_t { Any, Staying };

    /// Each ticked leaf once, in the order of ticking, but whole folders first and the largest of
    /// them first, since each is compared with one that has to be whole still. These are always
    /// compared. The file system outlives the plan.
    RemovalPlan(const FileSystem& files, std::vector<TreeNode::Pointer> ticked, Comparing comparing,
                Copies copies = Copies::Any);

    [[nodiscard]] bool compares() const { return m_comparing == Comparing::Always; }

    /// What else may keep a bundle, by what is in it. Before the removal.
    void setObjection(ListingObjection objection) { m_objection = std::move(objection); }

    void listenTo(const std::atomic<bool>& stop) override { m_stop = &stop; }
    /// The groups are those that the leaves stand in now: nobody changes the tree before the first
    /// news of the removal.
    void prepare() override;
    /// Lists whole folders before anything goes: another name of a file in one that goes gives the
    /// file a new time of change.
    void turnHasCome() override;

    [[nodiscard]] std::size_t size() const override {
        return m_isPrepared ? m_entries.size() : m_ticked.size();
    }
    [[nodiscard]] std::string path(std::size_t index) const override { return member(index).path; }
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t index) const override {
        return member(index).identity;
    }
    [[nodiscard]] std::uint64_t bytes(std::size_t index) const override {
        return member(index).size;
    }
    [[nodiscard]] bool isCopy(std::size_t /*index*/) const override { return true; }
    [[nodiscard]] const TreeNode::Pointer& leaf(std::size_t index) const {
        return m_entries.at(index).leaf;
    }

    /// Why the copy must not go now: it is protected, or in a group that is not wholly ticked, no
    /// other copy is still what the search saw. One that is not ticked is asked first; where there
    /// is none any more a ticked one serves with Copies::Any, and is then the one that stays. A
    /// link is no copy for a file, since it may point at the very file that goes; neither is the
    /// same entry by another path, nor what lies in a bundle that goes. Else how it goes, with the
    /// copy that stays.
    [[nodiscard]] tl::expected<std::unique_ptr<CopyLook>, StayedEntry> judge(
        std::size_t index) override;

    /// Other names of the same file have another time of change once one has gone, by our own
    /// doing: exactly that one is excused.
    void settled(std::size_t index, const RemovalResult& result) override;

    /// A leaf whose file got this time of change by our own doing, as it was told, whether this
    /// name of it is gone, and how many further ones it got.
    struct Excuse {
        TreeNode::Pointer leaf;
        std::int64_t changed = 0;
        bool gone = false;
        std::uint32_t namesMade = 0;
    };
    /// The same for the tree, so that a further removal of the same result knows it, and how many
    /// names are left. Main thread, before the leaves leave their groups.
    static void excuse(std::span<const Excuse> excuses);

private:
    struct Member {
        std::string path;
        std::uint64_t size =
            0;  ///< bytes, as the search counted them; of a bundle those of all that is in it
        std::optional<EntryIdentity> identity;
        std::optional<std::uint64_t> digest;  ///< of a bundle's listing
        bool isProtected = false;
        bool isRecalled = false;
        bool isOut = false;  ///< gone, or found changed: no copy for any other
    };
    struct Group {
        std::vector<Member> members;
        std::vector<std::size_t> copies;  ///< members, those that are not ticked behind the others;
                                          ///< the last is asked first
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
    void addGroup(const TreeNode& node, const std::unordered_set<const TreeNode*>& ticked,
                  std::unordered_map<const TreeNode*, Place>& places);
    using FileKey = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
    static void learnChanged(Group& group, const FileKey& file, std::int64_t changed);
    [[nodiscard]] const Member& member(std::size_t index) const;
    [[nodiscard]] bool isCopyFor(const Member& wanted, const Member& other) const;
    [[nodiscard]] bool isAsListed(const Member& bundle) const;
    [[nodiscard]] bool liesInWhatGoes(const std::string& path) const;
    void foldersFirst();
    [[nodiscard]] bool learnListing(Member& folder) const;
    [[nodiscard]] const Member* copyFor(Group& group, const Member& wanted) const;
    [[nodiscard]] std::unique_ptr<CopyLook> lookFor(const Member& wanted, const Member* kept) const;

    const FileSystem& m_files;
    std::vector<TreeNode::Pointer> m_ticked;
    const Comparing m_comparing;
    const Copies m_copies;
    ListingObjection m_objection;
    static constexpr std::atomic<bool> never{false};
    const std::atomic<bool>* m_stop = &never;
    bool m_isPrepared = false;
    std::vector<Group> m_groups;
    std::vector<Entry> m_entries;
    std::unordered_set<std::string> m_leavingFolders;             ///< ticked bundles and folders
    std::unordered_map<std::string, FolderFacts> m_wholeFolders;  ///< of the groups, by path
};

}  // namespace orrinvale
