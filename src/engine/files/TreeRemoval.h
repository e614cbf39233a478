// TreeRemoval: the walk by which SafeRemoval empties a folder and removes it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/files/OwnChanges.h"
#include "engine/files/RemovalResult.h"
#include "engine/files/SecondHand.h"
#include "engine/files/SeenEntries.h"
#include "engine/files/writers.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Removes one folder, contents first, for one call of run(). Names only, each from its held
/// parent. A list of levels stands in for the call stack; the descriptors of the deepest levels are
/// held, further up the parent is opened again through ".." and must be the folder that was left.
class TreeRemoval final {
public:
    struct Rules {
        const SeenEntries* seen = nullptr;  ///< only what is in it goes
        OwnChanges* own = nullptr;          ///< which are no changes
        AskWriters ask = AskWriters::OfNone;
        SecondHand* second = nullptr;  ///< lends a hand where `seen` is given; calls to the file
                                       ///< system then come from two threads
    };
    /// `path` is for reports alone. All that is pointed to must outlive the removal; what happens
    /// is added to `result`.
    TreeRemoval(const FileSystem& files, const std::string& path, const std::atomic<bool>* stop,
                RemovalResult& result, const Rules& rules)
        : m_files(files),
          m_path(path),
          m_stop(stop),
          m_seen(rules.seen),
          m_own(rules.own != nullptr ? *rules.own : m_ofThisOne),
          m_ask(rules.ask),
          m_second(rules.second),
          m_result(result) {}
    TreeRemoval(const TreeRemoval&) = delete;
    TreeRemoval& operator=(const TreeRemoval&) = delete;

    /// Removes the folder of that name in `parent`, which has to be the one described.
    void run(int parent, const std::string& name, const FileAttributes& folder);

    /// After run(): the folder itself went by our own hand.
    [[nodiscard]] bool isOurs() const { return m_isOurs; }

private:
    struct Level {
        std::string name;
        Descriptor folder;
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        SeenEntries::Key key = SeenEntries::chosenFolder;
        std::vector<std::string> folders;  // inner ones, still to be removed
        unsigned pass = 0;   // how often the folder was emptied before and was not empty then
        bool stays = false;  // something in it could not be removed
    };

    [[nodiscard]] bool isStopped();
    [[nodiscard]] int here() const {
        return m_levels.empty() ? m_parent : m_levels.back().folder.get();
    }
    void enter(std::string name, const Level* former);
    void withoutEntering(const std::string& name, int error);
    [[nodiscard]] SeenEntries::Key keyOf(std::string_view name, std::uint64_t inode) const;
    [[nodiscard]] bool isAsSeen(std::string_view name, const FileAttributes& now,
                                SeenEntries::Key key);
    void push(Level level);
    void removeFiles();
    void removeFile(const CatalogEntry& entry);
    void removeSeen(CatalogEntry& entry);
    void removePlainOnes();
    [[nodiscard]] bool removePlain(CatalogEntry& entry, RemovalResult& result);
    void leave();
    void removeEmptied(const Level& done);
    [[nodiscard]] int returnTo(Level& above, const Level& from);
    [[nodiscard]] bool went(const SysResult<void>& removal);
    void fail(std::string_view name, StayReason kind, std::string reason,
              const std::optional<EntryIdentity>& identity = std::nullopt);
    void failWith(std::string_view name, int error,
                  const std::optional<EntryIdentity>& identity = std::nullopt);

    const FileSystem& m_files;
    const std::string& m_path;
    const std::atomic<bool>* const m_stop;
    const SeenEntries* const m_seen;
    OwnChanges m_ofThisOne;
    OwnChanges& m_own;
    const AskWriters m_ask;
    SecondHand* const m_second;
    RemovalResult& m_result;
    int m_parent = -1;
    FileAttributes m_start;
    bool m_isOurs = false;
    std::vector<Level> m_levels;
    CatalogBatch m_batch;
};

}  // namespace orrinvale
