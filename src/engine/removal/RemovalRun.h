// RemovalRun: the loop of a removal, without its threads. RemovalJob.h runs it.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/removal/AsideJournal.h"
#include "engine/removal/RemovalDoor.h"
#include "engine/removal/RemovalList.h"

namespace orrinvale {

/// What a removal came to.
struct RemovalOutcome {
    std::size_t chosen = 0;
    std::size_t removed = 0;   ///< chosen entries that went, by us
    std::size_t folders = 0;   ///< of these; each went as one, whatever was in it
    std::size_t byOthers = 0;  ///< that somebody else had removed when we came to them
    std::size_t kept = 0;      ///< that a rule kept, which is no failure
    std::size_t shared = 0;    ///< that have their bytes in common with the copy that stays
    std::size_t failed = 0;    ///< all others that are still there, in whole or in part
    std::uint64_t failedEntries =
        0;  ///< entries that could not be removed, those within folders among them
    std::uint64_t bytes = 0;  ///< of what went; a file with several names counts once
    bool stopped = false;
    bool lacksRights =
        false;  ///< at least one failed for a lack of rights, so that the padlock is worth a hint
    std::vector<StayedEntry> stayed;  ///< the first `mostStayed` of them
    static constexpr std::size_t mostStayed = 10000;
};

/// One removal on the thread that calls run(). What it is made of outlives it.
class RemovalRun final {
public:
    struct Telling {
        std::function<void(bool isWaiting)> waiting;
        std::function<void(std::size_t index, const std::string& path, bool isFolder)> begins;
        std::function<void(std::size_t index, const RemovalResult& result)> settled;
    };

    /// `stateFolder`: where journal and lock are; empty: without both, and nothing is set aside.
    RemovalRun(const FileSystem& files, const std::string& stateFolder, RemovalList& list,
               RemovalDoor& door, const std::atomic<bool>& stop, Telling telling);

    [[nodiscard]] RemovalOutcome run();

    /// After run(): makes what went durable, which may wait for a slow disk, and lets go of the
    /// journal. Without it the next start looks through the journal, and finds nothing to bring
    /// back.
    void settleJournal();

private:
    void runBatch(std::size_t from, std::size_t to);
    [[nodiscard]] bool nameInJournal(std::size_t from, std::size_t to);
    [[nodiscard]] RemovalResult removeOne(std::size_t index, const std::string& path,
                                          const std::string& token);
    void count(std::size_t index, const RemovalResult& result);
    void countBytes(std::size_t index, const RemovalResult& result);
    [[nodiscard]] std::optional<AsideRecord> recordFor(std::size_t index);
    [[nodiscard]] Result<void> write(const std::vector<AsideRecord>& records);

    const FileSystem& m_files;
    const std::string m_folder;  // of journal and lock
    RemovalList& m_list;
    RemovalDoor& m_door;
    const std::atomic<bool>& m_stop;
    const Telling m_telling;
    RemovalOutcome m_outcome;
    std::optional<AsideJournal> m_journal;
    bool m_isWithoutJournal = false;  // it could not be written, and nothing is set aside
    bool m_isAside = false;           // something stays aside, so that the journal is kept
    AsideTokens m_tokenSource;
    std::vector<std::string> m_tokens;  // of the batch, empty for what is not set aside
    std::string m_lastFolder;           // of the last record, and its device
    std::uint64_t m_lastDevice = 0;
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_counted;  // files whose bytes are counted
};

}  // namespace orrinvale
