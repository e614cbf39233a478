// UsageWalk: the walk behind disk usage. A folder is added up when the last of what is in it is
// done with; what passes the limit becomes a node then, and everything else adds to a sum.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/diskusage/FSNodeTree.h"
#include "engine/diskusage/LinkedFiles.h"
#include "engine/diskusage/UsageCounts.h"
#include "engine/diskusage/history/RecordedEntry.h"
#include "engine/files/Arena.h"
#include "engine/files/FolderWalk.h"
#include "engine/files/SeenEntries.h"

namespace orrinvale {

/// Where nodes, names and lists of a tree lie. Any thread.
class UsageStorage final {
public:
    /// Held while something is made in it.
    class Room final {
    public:
        [[nodiscard]] Arena& operator*() const { return *m_arena; }
        [[nodiscard]] Arena* operator->() const { return m_arena; }

    private:
        friend class UsageStorage;
        Room(std::mutex& mutex, Arena& arena) : m_lock(mutex), m_arena(&arena) {}
        std::unique_lock<std::mutex> m_lock;
        Arena* m_arena;
    };
    /// One that threads at work at the same time rarely share.
    [[nodiscard]] Room room();

private:
    struct alignas(64) Part {
        std::mutex mutex;
        Arena arena;
    };
    std::array<Part, 8> m_parts;
};

/// A folder directly in the chosen one while it is being counted.
struct CountedTop {
    FSNode* node = nullptr;
    std::atomic<std::uint64_t> size{0};
    std::atomic<bool> isDirty{false};  ///< told since the last look
};

/// Whoever shows the first level while it is counted. Called by walking threads, several at once.
class UsageSink {
public:
    virtual ~UsageSink() = default;
    /// The whole of it, by name, once. Some of it may be told as grown or finished before.
    virtual void levelStands(std::span<FSNode*> level) = 0;
    /// The size of one has grown.
    virtual void grew(CountedTop& top) = 0;
    /// One is counted; `stays` false: it is under the limit, or was gone.
    virtual void finished(FSNode& node, const UsageResult& found, bool stays) = 0;

protected:
    UsageSink() = default;
    UsageSink(const UsageSink&) = default;
    UsageSink& operator=(const UsageSink&) = default;
};

/// How a walk is to be made; nothing is owned, and what may be null says so.
struct UsageErrand {
    const FileSystem* files = nullptr;
    FSNodeTree* tree = nullptr;  ///< null: no nodes are made
    UsageStorage* storage = nullptr;
    UsageCounts* counts = nullptr;
    SkipList* skipped = nullptr;
    UsageSink* sink = nullptr;    ///< null: the first level is not told
    SeenEntries* seen = nullptr;  ///< null; or gets every entry that a removal of the folder would
                                  ///< take, and what counts on the disk is what that gives back:
                                  ///< files are opened and asked which of their extents are shared
    const OwnChanges* own = nullptr;  ///< null, or what our removals changed since the first scan,
                                      ///< which is remembered as it was then
    UsageStorage* records = nullptr;  ///< null; or where what can be kept of the scan lies: every
                                      ///< folder, and files from recordedFilesFrom on
    std::uint64_t limit = 0;
    bool allFileSystems = false;
};

struct UsageFolder;

/// One walk; used once. What it is made of outlives it.
class UsageWalk final : FolderWalk {
public:
    explicit UsageWalk(const UsageErrand& errand);

    /// Walks what lies at the path, below this node of the tree, and returns when it is counted or
    /// counts->stop was set. With a sink the first level is none of the result.
    [[nodiscard]] UsageResult run(FSNode* start, const std::string& path, Links last);

    // After run().
    [[nodiscard]] LinkedFiles takeLinked() { return std::move(m_linked); }
    /// What lies directly in the folder, of an errand with records; null for nothing.
    [[nodiscard]] RecordedEntry* recorded() const { return m_recorded; }
    /// What the folder lies on, of an errand with records.
    [[nodiscard]] std::optional<VolumeName> volume() const { return m_volume; }
    /// What the sink was told of; to be kept as long as it looks at them.
    [[nodiscard]] std::vector<std::unique_ptr<CountedTop>> takeTops() { return std::move(m_tops); }
    /// Less may come back than counts on the disk.
    [[nodiscard]] bool isUpTo() const { return m_isUpTo; }
    /// Of a walk for a removal: met a volume within the mounted one, which that would not enter.
    [[nodiscard]] bool hasVolumes() const { return m_hasVolumes; }

private:
    friend struct UsageFolder;
    struct Piece;
    struct DeepLevels;

    SysResult<Descriptor> open(const WalkedFolder& folder) override;
    bool mayList(WalkedFolder& folder) override;
    void take(Worker& worker, WalkedFolder& walked, std::uint32_t first) override;
    void takeDeep(Worker& worker, WalkedFolder& walked) override;
    void listed(WalkedFolder& walked) override;
    void fail(WalkedFolder& walked, std::string_view operation, int number) override;

    UsageFolder* takeEntry(UsageFolder& folder, int handle, CatalogEntry& entry, Piece& piece);
    UsageFolder* makeFolder(UsageFolder& above, const CatalogEntry& entry, std::uint8_t marks,
                            Piece& piece);
    void takeFile(const UsageFolder& folder, const CatalogEntry& entry, std::uint8_t marks,
                  Piece& piece);
    void askShared(int handle, CatalogEntry& entry);
    [[nodiscard]] FileAttributes asScanned(const FileAttributes& now) const {
        return m_errand.own != nullptr ? m_errand.own->withoutOurs(now) : now;
    }
    [[nodiscard]] bool isForeign(const FileAttributes& entry);
    [[nodiscard]] bool passes(std::uint64_t size, std::uint8_t marks, bool isFirstLevel) const;
    static FSNode* makeNode(Arena& arena, std::uint16_t device, const FileAttributes& seen,
                            std::string_view name, std::uint8_t marks);
    FSNode* makeFolderNode(const FileAttributes& seen, std::string_view name, std::uint8_t marks);
    std::vector<FSNode*> makeNodes(const Piece& piece);
    void fold(UsageFolder& folder, Piece& piece);
    [[nodiscard]] RecordedEntry* record(const FileAttributes& seen, std::string_view name) const;
    void recordFiles(Piece& piece) const;
    void complete(UsageFolder& folder);
    void settle(UsageFolder& folder, UsageFolder& above, const UsageResult& found);
    [[nodiscard]] UsageResult resultOf(UsageFolder& folder);
    void tookOfLevel(std::uint64_t entries);
    void tellLevel();
    [[nodiscard]] std::mutex& mutexOf(const UsageFolder& folder);

    const UsageErrand m_errand;
    FSNode* m_start = nullptr;
    std::uint64_t m_startMount = 0;
    std::uint64_t m_startDevice = 0;
    UsageResult m_result;
    LinkedFiles m_linked;
    RecordedEntry* m_recorded = nullptr;
    std::optional<VolumeName> m_volume;
    bool m_isUpTo = false;  // fixed before the walk
    std::atomic<bool> m_hasVolumes{false};

    std::array<std::mutex, 64> m_folderMutexes;  // each guards the sums of some folders
    std::mutex m_seenMutex;                      // guards the set of the errand

    std::mutex m_levelMutex;  // guards what follows
    std::vector<FSNode*> m_level;
    std::vector<std::unique_ptr<CountedTop>> m_tops;
    std::uint64_t m_levelTaken = 0;
    bool m_isLevelTold = false;
};

}  // namespace orrinvale
