// CategoryScan: what may go of one category. CleanWalk.h walks, CleanFolders.h knows the folders.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/cleaning/CleanFolders.h"
#include "engine/cleaning/CleanRow.h"
#include "engine/cleaning/CleanWalk.h"
#include "engine/cleaning/KeepList.h"

namespace orrinvale {

/// What cleaning stands on; nothing is owned, and all outlives the last scan and the last removal.
struct CleanParts {
    const FileSystem* files = nullptr;
    const Folders* folders = nullptr;
    const FolderUtilities* utilities = nullptr;
    std::string settingsFolder;                ///< where the list of what is always kept lies
    std::function<std::int64_t()> clock = {};  ///< nanoseconds since 1970-01-01 UTC; empty for the
                                               ///< machine's
    std::string otherSettings = {};  ///< such a folder of the person behind root; empty for none
    std::shared_ptr<FoldersOfRun> run = {};  ///< of the scans that look at the folders together;
                                             ///< null: each looks by itself
};

/// The result of one scan.
struct CategoryListing {
    struct Closed {
        std::string path, reason;
    };
    std::vector<CleanRow>
        rows;  ///< what is offered, in the order of the folders and their listings
    std::vector<CleanRow> kept;  ///< what stays, in whole or in part; the latter are rows as well
    std::vector<Closed> closed;  ///< folders in which nothing is touched
    std::vector<Error> skipped;
    std::uint64_t bytes = 0;   ///< of the rows
    std::uint64_t onDisk = 0;  ///< what the disk gets back when all rows go
};

/// The rules of this moment, shared by the rows of a scan or of a removal. Any thread; asks the
/// disk and the running programs when it is made.
class CleanRules final {
public:
    explicit CleanRules(const CleanParts& parts);

    /// Why nothing may go, with the path: the list of what is always kept can not be read. Empty
    /// when it can.
    [[nodiscard]] std::string objection() const;
    [[nodiscard]] const CleanFolders& folders() const { return m_folders; }

    /// What holds for the rows of a folder. Programs are asked anew what they have open there.
    [[nodiscard]] CleanGround groundOf(const CleanFolders::Folder& folder);
    /// The same, with what is known to be open from the last time.
    [[nodiscard]] CleanGround groundAsBefore(const CleanFolders::Folder& folder) const;
    /// Nanoseconds since 1970-01-01 UTC.
    [[nodiscard]] std::int64_t now() const { return m_clock(); }
    void askPrograms(const std::vector<std::string>& realFolders);
    /// Asks programs, the list of what is kept and the table of mounts anew; grounds made before
    /// get their mounts by learnMounts().
    void askAnew(const std::vector<std::string>& realFolders);
    void learnMounts(CleanGround& ground) const;

private:
    void loadKeepList();

    const FileSystem& m_files;
    const std::vector<std::string> m_settings;
    const std::function<std::int64_t()> m_clock;
    const std::shared_ptr<FoldersOfRun> m_run;
    const CleanFolders& m_folders;  // m_run's
    CleanablePlaces m_places;
    KeepList m_keep;
    std::optional<Error> m_fault;
    OpenFiles m_open;
    std::vector<std::uint64_t> m_passing;
    std::vector<std::string> m_mounts;
};

/// How somebody looks on; nothing is owned, and each may be null.
struct CleanWatch {
    const std::atomic<bool>* stop = nullptr;        ///< leaves out the rows that are not complete
    std::atomic<std::uint64_t>* total = nullptr;    ///< bytes of the rows that are complete
    std::atomic<std::uint64_t>* entries = nullptr;  ///< that were looked at
};

/// Used once, on any thread.
class CategoryScan final {
public:
    CategoryScan(const CleanParts& parts, const CleanWatch& watch);

    /// All folders of a category or of any list of them, one after another. A folder that is not
    /// there gives nothing.
    [[nodiscard]] CategoryListing run(const std::vector<std::string>& folders);

    /// One entry by its absolute path, as if it stood alone in its folder; nothing when it is not
    /// there, nobody knows what may go, or it is no entry to clean but a folder of a category, or
    /// one that holds such.
    [[nodiscard]] std::optional<CleanRow> rowAt(const std::string& path);

private:
    [[nodiscard]] CleanWalk::Watch walkWatch();
    void scan(const CleanFolders::Folder& folder, CategoryListing& listing);
    void sort(std::vector<CleanRow> rows, CategoryListing& listing) const;

    const CleanParts m_parts;
    const CleanWatch m_watch;
    CleanRules m_rules;
    SkipList m_skipped;
};

}  // namespace orrinvale
