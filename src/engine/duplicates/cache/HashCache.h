// HashCache: what earlier searches found out of the contents of files, so that a search reads only
// what changed since. HashRecord.h tells how it lies on the disk; duplicateFind asks.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "engine/duplicates/cache/HashFile.h"
#include "engine/duplicates/cache/saveHashes.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "platform/error.h"
#include "platform/fileTypes.h"
#include "platform/lastingVolume.h"

namespace orrinvale {

/// What the cache asks of the system, and how large it may become.
struct HashCacheParts {
    std::function<SysResult<VolumeName>(int folder)> volumeOf = &lastingVolume;
    std::function<std::int64_t()> now = &fileClock;
    std::uint64_t mostBytes = 256ULL << 20U;
};

/// Serves one search: begin(), learnVolumes(), recall() by any number of threads, keep(), finish().
///
/// A file is known again by its file system, inode, size, time of modification, of change and of
/// making. In doubt nothing is remembered and nothing recalled: of files that were changed less
/// than a minute before the search or in its future, whose time of change is in whole seconds,
/// whose inode number need not last; of file systems without a name that lasts; when the clock was
/// set back since.
///
/// Some changes leave no trace in these, and so removals compare what was recalled: those through a
/// mapping that is held for writing; of a system that crashed after it wrote data in place and
/// before the journal, or with lazytime the disk, had the new times; of the disk under the file
/// system.
class HashCache final {
public:
    /// Nothing is read or written yet.
    explicit HashCache(std::string path, HashCacheParts parts = {});
    ~HashCache();
    HashCache(const HashCache&) = delete;
    HashCache& operator=(const HashCache&) = delete;

    /// Before the listing: what changes from now on is told by its times.
    void begin();

    /// After the listing: which of the list's devices are told again.
    void learnVolumes(const FileSystem& files, const FileList& list);

    struct Recalled {
        std::uint8_t known = 0;  ///< KnownHashes
        std::uint64_t head = 0;
        std::uint64_t tail = 0;
        std::uint64_t whole = 0;
    };
    [[nodiscard]] Recalled recall(const fileAttrbItem& file) const;
    /// That it will be recalled soon by this thread, which spares waiting for the memory.
    void expect(const fileAttrbItem& file) const;

    /// After the search: begins to write what is worth it, on a thread of its own. The list and its
    /// files must live until finish(). What can not be written is lost, and told in the log; so is
    /// what another program keeps us from by writing for more than two seconds. Nothing is written
    /// when what begin() read has been forgotten since. On the disk the old file lies beside the
    /// new one until that is whole.
    void keep(const FileList& list, FreshHashes fresh);
    /// Waits for that; also before the first keep().
    void finish();

private:
    struct Volume {
        std::uint64_t device = 0;
        bool isKnown = false;  ///< else nothing of this device is remembered
        VolumeName name;
        std::uint8_t number = 0;  ///< in the file
        bool isInFile = false;
    };
    [[nodiscard]] const Volume* volumeOf(std::uint64_t device) const;
    [[nodiscard]] bool isCertain(const fileAttrbItem& file) const;
    void save(const FileList& list, FreshHashes fresh);
    [[nodiscard]] bool isWorthWriting(const FileList& list, FreshHashes& fresh) const;

    const std::string m_path;
    const HashCacheParts m_parts;
    std::int64_t m_began = 0;
    HashFile m_file;
    std::vector<Volume> m_volumes;
    mutable std::atomic<std::uint64_t> m_aged{0};  // recalled, and long not used before
    std::thread m_saving;
};

/// The user's own: where it lies.
[[nodiscard]] std::string hashCachePath();

/// How much is remembered, with the bytes of what is being written or was at a kill.
struct HashCacheSize {
    std::uint64_t bytes = 0;
    std::uint64_t files = 0;
};
[[nodiscard]] HashCacheSize hashCacheSize(const std::string& path);

/// Forgets everything, also what a killed writer left; waits for one that is at work, two seconds
/// at most. Success also where there was nothing.
[[nodiscard]] Result<void> clearHashCache(const std::string& path);

}  // namespace orrinvale
