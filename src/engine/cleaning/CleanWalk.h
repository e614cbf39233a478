// CleanWalk: one walk through a folder of a category that sizes all its rows and judges what is in
// them. CategoryScan lists with it; a removal asks it again about each row. Read take() first.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/cleaning/CleanRow.h"
#include "engine/cleaning/KeepList.h"
#include "engine/files/FolderWalk.h"
#include "platform/openFiles.h"

namespace orrinvale {

/// What holds for all rows of one folder. Nothing is owned.
struct CleanGround {
    std::string folder;  ///< as rows show it
    std::string real;    ///< the same without links
    CleanCategory rules = CleanCategory::UserCaches;
    const CleanablePlaces* places = nullptr;
    const KeepList* keep = nullptr;
    const OpenFiles* open = nullptr;
    std::vector<std::string> mounts;  ///< places below `real` where something is mounted, no links
    bool inodesPass = false;          ///< FileSystem::devicesOfPassingInodes()
    std::int64_t now = 0;             ///< nanoseconds since 1970-01-01 UTC
};

/// Why running programs keep a row by its name in the folder, or Nothing. `real` is the row or an
/// entry of it, without links on the way.
[[nodiscard]] KeptBecause keptByPrograms(const CleanGround& ground, CleanCategory rules,
                                         std::string_view row, const std::string& real,
                                         const EntryIdentity& entry);

/// What changed a moment ago belongs to something that is going on.
inline constexpr std::int64_t freshFor = 10LL * 60 * 1'000'000'000;

/// Why a journal beside the file keeps it, or Nothing: it is a database that a program has open, or
/// left in the middle of a change. `folder` is open and `path` a name in it, or it is
/// FileSystem::noParent and `path` absolute.
[[nodiscard]] KeptBecause keptByJournal(const FileSystem& files, CleanCategory rules, int folder,
                                        const std::string& path, std::uint64_t size);

/// One walk; used once. What it is made of outlives it.
class CleanWalk final : FolderWalk {
public:
    struct Watch {
        const std::atomic<bool>* stop = nullptr;
        SkipList* skipped = nullptr;
        std::atomic<std::uint64_t>* entries = nullptr;  ///< counts those that were looked at
        /// Called for each row that is complete, by any thread, one at a time.
        std::function<void(const CleanRow&)> complete;
    };
    /// A file of a row that goes file by file.
    struct File {
        std::string path;
        EntryIdentity identity;
        SeenEntries::Verdict verdict = SeenEntries::Verdict::AsSeen;  ///< by what the scan saw
    };

    CleanWalk(const FileSystem& files, const CleanGround& ground, const Watch& watch);
    ~CleanWalk() override;

    /// All rows of the open folder in the order of its listing, those that stay included.
    [[nodiscard]] std::vector<CleanRow> rows(Descriptor folder);

    /// The row of one entry of it alone, by its name in the open folder.
    [[nodiscard]] CleanRow one(int parent, const std::string& name, const FileAttributes& entry);

    /// Asks again about a row whose entry stands still: why it stays now, or Nothing. A cache of
    /// the user's stays whole where anything in it came or was written to since; of other rows
    /// files are not looked at one by one, since the removal itself does that. With `going` it gets
    /// each file of the row that may go by the rules.
    [[nodiscard]] KeptBecause askAgain(const CleanRow& row, int parent, std::vector<File>* going);

private:
    struct RowState;
    struct Here;
    struct Tally;

    void take(Worker& worker, WalkedFolder& folder, std::uint32_t first) override;
    void takeDeep(Worker& worker, WalkedFolder& folder) override;
    void listed(WalkedFolder& folder) override;
    void takeRow(Worker& worker, Here& here, CatalogEntry& entry, std::uint32_t place);
    void takeEntry(Worker& worker, Here& here, CatalogEntry& entry, Tally& tally);
    void takeFolder(Worker& worker, Here& here, const CatalogEntry& entry, Tally& tally);
    void takeFile(const Here& here, const CatalogEntry& entry, Tally& tally);
    [[nodiscard]] SeenEntries::Verdict verdictOn(SeenEntries::Key key,
                                                 const FileAttributes& now) const;
    void compare(SeenEntries::Key key, const FileAttributes& now, Tally& tally) const;
    [[nodiscard]] bool isOpen(std::uint64_t device, std::uint64_t inode) const;
    [[nodiscard]] bool needsNoLook(const RowState& row, const CatalogEntry& entry) const;
    [[nodiscard]] bool isOfToday(const CatalogEntry& entry) const;
    [[nodiscard]] bool staysByItself(const Here& here, const CatalogEntry& entry, Tally& tally);
    void judgeRow(RowState& state) const;
    void startRow(RowState& state, const FileAttributes& entry, const std::string& name) const;
    void walkRow(RowState& state, Descriptor folder);
    void finish(RowState& state);
    void fold(RowState& state, Tally& tally);
    void noteUnread(RowState& state);
    void creditLinked();
    [[nodiscard]] std::string realPathOf(const Here& here, const char* name) const;

    const CleanGround& m_ground;
    const Watch m_watch;
    const bool m_isOfTheSystem;
    const bool m_isUserCache;
    const bool m_minds;                  // what programs have open
    const CleanRow* m_former = nullptr;  // that is asked about again, as the scan saw it
    std::vector<File>* m_going = nullptr;

    std::mutex m_mutex;  // guards what follows
    std::vector<std::unique_ptr<RowState>> m_rows;
    struct Linked {
        std::uint64_t links, met, onDisk;
        std::vector<RowState*> rows;  // that met a name of it
    };
    std::map<std::pair<std::uint64_t, std::uint64_t>, Linked> m_linked;  // by device and inode
};

}  // namespace orrinvale
