// ShareList: a plan as a list for the program's one removal, of which nothing goes: what the plan
// takes gives its bytes up for those of the copy that stays. ShareDoor.h does it.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/duplicates/plan/PlanRemoval.h"
#include "engine/duplicates/share/FreeSpaceLook.h"
#include "engine/duplicates/share/ShareGivers.h"

namespace orrinvale {

/// Made on one thread, from the start of the job to its end the removing thread's alone.
class ShareList final : public RemovalList {
public:
    /// A sound plan: faultOf() has nothing against it. The file system outlives the list.
    ShareList(const FileSystem& files, const DuplicatePlan& plan);

    void listenTo(const std::atomic<bool>& stop) override;
    void prepare() override { m_copies.prepare(); }
    void turnHasCome() override;
    [[nodiscard]] std::size_t size() const override { return m_copies.size(); }
    [[nodiscard]] std::string path(std::size_t index) const override {
        return m_copies.path(index);
    }
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t index) const override {
        return m_copies.identity(index);
    }
    [[nodiscard]] std::uint64_t bytes(std::size_t index) const override {
        return m_copies.bytes(index);
    }
    [[nodiscard]] bool isCopy(std::size_t index) const override { return m_copies.isCopy(index); }
    [[nodiscard]] tl::expected<std::unique_ptr<CopyLook>, StayedEntry> judge(
        std::size_t index) override;
    void settled(std::size_t index, const RemovalResult& result) override;

    /// That of the copy which was judged last. On the removing thread, as the next two.
    [[nodiscard]] ShareGroup groupInHand() const;
    /// What ShareDoor::Order::takenBack tells.
    void noteTakenBack(const RemovalResult::Shared& touched);

    /// Why no file may become another name of this copy, which has so many names now: one of them
    /// is protected, or may be. Empty where one may. Once the turn has come, on the removing
    /// thread.
    [[nodiscard]] std::string_view objectionToLink(const KeptCopy& kept, std::uint32_t names);

    /// What became of an entry, for when the job has ended.
    struct Settled {
        enum class As : std::uint8_t { NotReached, Shared, GoneByOthers, Stayed };
        As as = As::NotReached;
        RemovalResult::Shared shared = {};
        std::string reason = {};                             ///< why it keeps its own bytes
        std::optional<std::int64_t> changed = std::nullopt;  ///< RemovalResult::changed
    };
    [[nodiscard]] const std::vector<Settled>& account() const { return m_account; }
    /// The copies to which a link was taken back, with the time of change that this gave them.
    [[nodiscard]] const std::vector<RemovalResult::Shared>& takenBack() const {
        return m_takenBack;
    }
    /// What the entries had on the disk for themselves, and give back at the most.
    [[nodiscard]] std::uint64_t promised() const { return m_promised; }

    static constexpr std::chrono::seconds longestMeasuring{10};
    /// Before the job: has the removing thread ask what is free when the turn has come, and wait so
    /// long for the answer.
    void measureGain(std::chrono::milliseconds patience = longestMeasuring,
                     FreeSpaceLook::Ask ask = freeSpaceBehind);
    /// By how much the free space grew since then, once the job has ended; nothing where a disk
    /// does not tell in time, or after stopMeasuring(). Waits for slow disks, as long again.
    [[nodiscard]] std::optional<std::int64_t> gained() const;
    /// Any thread.
    [[nodiscard]] bool isMeasuring() const { return m_isMeasuring; }
    /// Nobody wants to know any more. Any thread.
    void stopMeasuring() { m_isGainUnwanted = true; }

private:
    using FileKey = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
    void noteLinked(std::size_t index, const FileKey& kept);

    void learnStaying(const FileSystem& files, const DuplicatePlan& plan);
    [[nodiscard]] std::optional<std::int64_t> measured(const std::atomic<bool>* stop) const;

    std::vector<std::size_t> m_groups;  // of the entries; before the next, which fills it
    PlanRemoval m_copies;
    std::map<std::size_t, std::vector<KeptCopy>> m_staying;  // where more than one does
    std::size_t m_inHand = 0;
    std::vector<RemovalResult::Shared> m_takenBack;
    bool m_hasProtected;  // folders
    std::set<FileKey> m_protectedFiles;
    std::map<FileKey, std::uint32_t> m_names;  // that the plan knows, and that were made since
    std::shared_ptr<std::set<std::string>> m_folders;  // of what goes
    FreeSpaceLook::Ask m_ask = nullptr;                // empty: nobody does
    std::chrono::milliseconds m_patience{0};
    const std::atomic<bool>* m_stop = nullptr;  // the job's, while it is there
    mutable std::atomic<bool> m_isMeasuring{false};
    std::atomic<bool> m_isGainUnwanted{false};
    std::optional<std::int64_t> m_freeBefore;
    std::vector<Settled> m_account;
    std::uint64_t m_promised = 0;
};

}  // namespace orrinvale
