// Hashing at full speed, ahead of the pairing loop: size classes first, then the pieces of files
// that can still matter.
//
// Files of a size that stands alone are never opened. The others are hashed class by class in
// rising order of their first member, many classes at a time: small files whole, in the order of
// their folders; large ones by their first kilobyte, then by their last 4 KiB, then whole, each
// stage only where the stage before left at least two that agree. HashAhead.cpp has the stages.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/duplicates/FileHasher.h"
#include "engine/duplicates/SizeClasses.h"
#include "engine/duplicates/cache/saveHashes.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "engine/files/SkipList.h"
#include "engine/files/StopGrace.h"
#include "engine/files/WorkCrew.h"

namespace orrinvale {

class HashCache;

/// Resolves size classes into groups of equal files. Driven by one thread; the counters may be read
/// by any.
class HashAhead final {
public:
    static constexpr std::uint32_t none = ~std::uint32_t{0};

    /// All references must outlive the object, and `cache`, which may be null: what it knows is
    /// not read. When `stop` is set, no further file is begun.
    HashAhead(const FileSystem& files, const FileList& list, const std::atomic<bool>& stop,
              SkipList& skipped, const HashCache* cache = nullptr);

    /// The next member of the group of a file, in the order of the list; `none` at the last one and
    /// for a file that has no duplicate. Hashes what is needed for the answer, and, to keep all
    /// threads busy, classes that come later. After a stop the answer is `none` for what was not
    /// hashed yet, and nothing more is hashed.
    [[nodiscard]] std::uint32_t nextInGroup(std::size_t index);

    /// A file that is being hashed, or was lately; null before the first.
    [[nodiscard]] const fileAttrbItem* itemInHand() const;
    [[nodiscard]] std::uint64_t hashedFiles() const;
    [[nodiscard]] std::uint64_t hashedBytes() const;

    /// At the end: what was read of files that are as listed. Empty without a cache.
    [[nodiscard]] FreshHashes takeFresh() { return std::move(m_fresh); }

private:
    struct Large;
    struct Stretch;

    struct alignas(64) Worker {
        std::unique_ptr<FileHasher> hasher;  // made when the worker first comes
        std::atomic<std::uint64_t> files{0};
        std::atomic<std::uint64_t> bytes{0};
        std::atomic<const fileAttrbItem*> item{nullptr};
    };

    void resolveMore(std::uint32_t upTo);
    void scaleBatches(double factor);
    std::uint32_t endOfBatch(std::uint32_t first) const;
    void hashBatch(std::uint32_t first, std::uint32_t last);
    bool recallSmall(std::uint32_t index);
    bool recallLarge(Large& large);
    void noteFresh(std::uint32_t index, std::uint8_t known);
    void noteEnds(const std::vector<Large>& large);
    void hashFirstVisits(const std::vector<std::uint32_t>& small, std::vector<Large>& large);
    void hashTails(std::vector<Large>& large);
    void hashWholes(std::vector<Large>& large);
    std::vector<Stretch> cutIntoStretches(const std::vector<Large*>& wanted) const;
    void groupClass(std::uint32_t number);
    FileHasher& hasherFor(unsigned worker, const fileAttrbItem& item);
    void leave(unsigned worker);
    void count(unsigned worker, std::uint64_t files, std::uint64_t bytes);

    const FileSystem& m_files;
    const FileList& m_list;
    const std::atomic<bool>& m_stop;
    const StopGrace m_grace{m_stop};
    SkipList& m_skipped;
    const HashCache* const m_cache;
    SizeClasses m_classes;
    std::vector<std::uint32_t> m_next;   // group links, by place in the list
    std::vector<std::uint8_t> m_hashed;  // both hashes are good, by place in the list
    FreshHashes m_fresh;
    std::uint32_t m_resolved = 0;  // classes below are done
    std::uint64_t m_batchFiles;
    std::uint64_t m_batchBytes;

    WorkCrew m_crew;
    WorkCrew m_wholeCrew;
    std::vector<Worker> m_workers;
};

}  // namespace orrinvale
