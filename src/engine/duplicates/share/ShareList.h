// ShareList: a plan as a list for the program's one removal, of which nothing goes: what the plan
// takes gives its bytes up for those of the copy that stays. ShareDoor.h does it.
#pragma once

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

namespace orrinvale {

/// Made on one thread, from the start of the job to its end the removing thread's alone.
class ShareList final : public RemovalList {
public:
    /// A sound plan: faultOf() has nothing against it. The file system outlives the list.
    ShareList(const FileSystem& files, const DuplicatePlan& plan);

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
        std::size_t index) override {
        return m_copies.judge(index);
    }
    void settled(std::size_t index, const RemovalResult& result) override;

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
    /// What the entries had on the disk for themselves, and give back at the most.
    [[nodiscard]] std::uint64_t promised() const { return m_promised; }

    /// Before the job: has the removing thread ask what is free when the turn has come.
    void measureGain() { m_isMeasured = true; }
    /// By how much the free space grew since then, once the job has ended; nothing where a disk
    /// does not tell. May wait for slow disks.
    [[nodiscard]] std::optional<std::int64_t> gained() const;

private:
    using FileKey = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
    void noteLinked(std::size_t index, const FileKey& kept);

    PlanRemoval m_copies;
    bool m_hasProtected;  // folders
    std::set<FileKey> m_protectedFiles;
    std::map<FileKey, std::uint32_t> m_names;  // that the plan knows, and that were made since
    std::set<std::string> m_folders;           // of what goes
    bool m_isMeasured = false;
    std::optional<std::int64_t> m_freeBefore;
    std::vector<Settled> m_account;
    std::uint64_t m_promised = 0;
};

/// Bytes that are free on the file systems of the folders, once these have written what waits; each
/// file system counts once. Nothing where one does not tell. May wait for slow disks.
[[nodiscard]] std::optional<std::int64_t> freeSpaceBehind(const std::set<std::string>& folders);

}  // namespace orrinvale
