// CleanList: the rows that go, fixed when a person confirms. RemovalJob works through it;
// everything is asked again on the way.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/cleaning/CategoryScan.h"
#include "engine/cleaning/SpaceGain.h"
#include "engine/files/HeldEntry.h"
#include "engine/removal/RemovalDoor.h"
#include "engine/removal/RemovalList.h"

namespace orrinvale {

/// Rows that go whole are one entry each; of the others each file is one, which is known only after
/// turnHasCome(). What a rule keeps by now has StayReason::Kept.
class CleanList final : public RemovalList {
public:
    /// `gain`, which may be null, is begun when the turn has come, on the removing thread: what
    /// another removal frees until then is not ours, and a slow disk may be asked there.
    CleanList(const CleanParts& parts, std::vector<CleanRow> rows,
              std::shared_ptr<SpaceGain> gain = nullptr);
    ~CleanList() override;

    void turnHasCome() override;
    [[nodiscard]] std::size_t size() const override {
        return m_isPrepared ? m_entries.size() : m_rows.size();
    }
    [[nodiscard]] std::string path(std::size_t index) const override;
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t index) const override;
    [[nodiscard]] std::uint64_t bytes(std::size_t index) const override;
    [[nodiscard]] std::shared_ptr<const SeenEntries> seen(std::size_t index) override;
    [[nodiscard]] AskWriters asksWriters(std::size_t index) const override;
    [[nodiscard]] tl::expected<std::unique_ptr<CopyLook>, StayedEntry> judge(
        std::size_t index) override;
    void settled(std::size_t index, const RemovalResult& result) override;

    [[nodiscard]] const std::vector<CleanRow>& rows() const { return m_rows; }

    // After turnHasCome(), any thread.
    [[nodiscard]] std::size_t rowOf(std::size_t index) const { return m_entries.at(index).row; }
    [[nodiscard]] std::size_t entriesOf(std::size_t row) const { return m_count.at(row); }

    // After the end of the removal.
    /// Whether nothing of the row is left that was to go.
    [[nodiscard]] bool isDone(std::size_t row) const { return m_left.at(row) == 0; }
    /// Whether a rule keeps the row as a whole by now.
    [[nodiscard]] bool isKept(std::size_t row) const { return m_isKept.at(row); }
    /// Whether anything stayed that no rule keeps. Rules keep also what changed or came since the
    /// scan.
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }
    /// Whether anything of the row went by us.
    [[nodiscard]] bool isBegun(std::size_t row) const { return m_isBegun.at(row); }
    /// Lengths of what went by us, each name of a file counted, as the rows count them.
    [[nodiscard]] std::uint64_t goneBytes() const;
    /// Of one row; also while the removal runs, once all entries of the row have been told.
    [[nodiscard]] std::uint64_t goneBytes(std::size_t row) const { return m_goneBytes.at(row); }

private:
    struct Entry {
        std::size_t row;
        std::string path;
        EntryIdentity identity;
        bool isRow;
        KeptBecause kept = KeptBecause::Nothing;  // when the turn had come: then it stays
        SeenEntries::Verdict verdict = SeenEntries::Verdict::AsSeen;
    };
    [[nodiscard]] std::string realOf(const CleanRow& row, const std::string& path) const;
    [[nodiscard]] KeptBecause askAboutFile(const CleanRow& row, const std::string& path,
                                           const EntryIdentity& entry) const;
    [[nodiscard]] KeptBecause ask(const CleanRow& row, std::vector<CleanWalk::File>* files);
    [[nodiscard]] std::optional<StayedEntry> objectionTo(const Entry& entry);
    void learnGround(const std::string& folder);
    void expand(std::size_t row);
    void askAnew();
    void removeTrashRecord(const std::string& path);

    const CleanParts m_parts;
    std::vector<CleanRow> m_rows;
    const std::shared_ptr<SpaceGain> m_gain;
    bool m_isPrepared = false;
    std::vector<Entry> m_entries;
    std::vector<std::size_t> m_count;  // entries of each row
    std::vector<std::size_t> m_left;   // entries of each row that are not gone
    std::vector<bool> m_isKept;        // rows
    std::vector<bool> m_isBegun;       // rows
    bool m_hasFailed = false;
    std::vector<std::uint64_t> m_goneBytes;  // of each row
    std::unique_ptr<CleanRules> m_rules;
    std::map<std::string, CleanGround, std::less<>> m_grounds;  // by the paths of the rows' folders
    std::map<std::string, std::string, std::less<>> m_objections;  // to these folders
    std::chrono::steady_clock::time_point m_asked;                 // when programs were asked
    HeldParents m_records;                                         // folders of trash records
};

/// A door that names nothing of what goes in the log. Owns what it stands before.
class QuietDoor final : public RemovalDoor {
public:
    explicit QuietDoor(std::unique_ptr<RemovalDoor> door) : m_door(std::move(door)) {}

    [[nodiscard]] bool setsAside() const override { return m_door->setsAside(); }
    void flush() override { m_door->flush(); }
    [[nodiscard]] RemovalResult remove(const LeavingEntry& entry,
                                       const std::atomic<bool>& stop) override;

private:
    const std::unique_ptr<RemovalDoor> m_door;
};

}  // namespace orrinvale
