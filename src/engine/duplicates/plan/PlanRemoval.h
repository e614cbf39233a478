// PlanRemoval: a plan as a list for the program's one removal, which trusts nothing that it says.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "engine/duplicates/scope/ProtectedFolders.h"
#include "engine/removal/RemovalList.h"

namespace orrinvale {

/// Every entry that goes has a copy that stays by the plan, compared byte by byte when its turn
/// comes. Protected folders of the plan, bundles that stay, and what stays under another path are
/// left alone.
class PlanRemoval final : public RemovalList {
public:
    /// A sound plan: faultOf() has nothing against it. The file system outlives the list.
    PlanRemoval(const FileSystem& files, const DuplicatePlan& plan);

    void listenTo(const std::atomic<bool>& stop) override { m_plan->listenTo(stop); }
    void prepare() override { m_plan->prepare(); }
    void turnHasCome() override;
    [[nodiscard]] std::size_t size() const override { return m_plan->size(); }
    [[nodiscard]] std::string path(std::size_t index) const override { return m_paths[index]; }
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t index) const override {
        return m_plan->identity(index);
    }
    [[nodiscard]] std::uint64_t bytes(std::size_t index) const override {
        return m_plan->bytes(index);
    }
    [[nodiscard]] bool isCopy(std::size_t index) const override { return m_plan->isCopy(index); }
    [[nodiscard]] tl::expected<std::unique_ptr<CopyLook>, StayedEntry> judge(
        std::size_t index) override;
    void settled(std::size_t index, const RemovalResult& result) override;

    /// Whether what is at this path is protected by a folder of the plan. Once the turn has come,
    /// on the removing thread.
    [[nodiscard]] bool isGuarded(const std::string& path) { return m_guarded->covers(path); }

    /// What became of an entry, for when the removal has ended.
    struct Settled {
        enum class As : std::uint8_t { NotReached, Gone, GoneByOthers, Stayed, Partly };
        As as = As::NotReached;
        std::string reason;  ///< why it stayed, or its rest; empty for a rest after a stop
    };
    [[nodiscard]] const std::vector<Settled>& account() const { return m_account; }
    /// Nothing went, and nothing is in the trash that could not be given back.
    [[nodiscard]] bool isUntouched() const { return !m_isAnyAway; }
    /// Bytes that went with the last name of their file, or are in the trash, those of a part of a
    /// bundle as well.
    [[nodiscard]] std::uint64_t gained() const { return m_gained; }

private:
    [[nodiscard]] bool isToStay(std::size_t index);
    [[nodiscard]] std::optional<StayedEntry> objectionTo(const HeldEntry& bundle,
                                                         const FileAttributes& entry) const;
    void learnGain(const std::string& bundle, const BundleListing& listing);

    const FileSystem& m_files;
    std::shared_ptr<SimpleTreeNode> m_tree;
    std::unique_ptr<RemovalPlan> m_plan;
    const std::vector<std::string> m_protected;
    std::vector<std::string> m_paths;  // of what goes
    std::vector<std::string> m_stayingBundles;
    std::vector<std::string> m_staying;
    std::set<std::string> m_stayingPlaces;  // the same without links
    FoldersAbove m_aboveStaying;
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_stayingEntries;  // of lasting numbers
    std::optional<ProtectedFolders> m_guarded;  // both as they are when the turn has come
    std::optional<ProtectedFolders> m_bundles;
    std::vector<Settled> m_account;
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_moved;  // entries, to count each once
    std::map<std::string, std::uint64_t> m_gains;               // of bundles in hand, by path
    std::uint64_t m_gained = 0;
    bool m_isAnyAway = false;
};

}  // namespace orrinvale
