// hashBatch() names the stages in their order.
#include "engine/duplicates/HashAhead.h"

#include <algorithm>
#include <tuple>

#include "engine/duplicates/cache/HashCache.h"
#include "engine/duplicates/crc.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

// A batch is meant to take about half a second, so that progress moves on any disk. The first is
// tiny, since the speed of the disk is not known yet, and the next ones grow by steps, since the
// first may have come from memory.
constexpr std::uint64_t firstBatchFiles = 64;
constexpr std::uint64_t firstBatchBytes = 16ULL << 20;
constexpr double batchSeconds = 0.5;
constexpr double largestGrowth = 32;
constexpr double largestCut = 16;

// Large files are read by few threads: beyond two to four of them the disk gave nothing more (./dev
// bench disk), and each takes a buffer.
constexpr unsigned mostWholeReaders = 4;
constexpr unsigned mostReaders = 64;

// Files above twice this are hashed in stretches by several threads at a time. They are far apart:
// readers that are close behind each other in one file take each other's reading ahead, and get
// half of what one alone gets.
constexpr std::uint64_t stretchBytes = 64ULL << 20;
constexpr std::uint64_t mostStretches = 1024;

// So many files before a file is recalled the memory is told.
constexpr std::size_t recalledAhead = 6;

// The most that a batch grows to; far from where sums of sizes would overflow.
constexpr std::uint64_t mostBatch = 1ULL << 46;

}  // namespace

struct HashAhead::Large {
    std::uint32_t index = 0;
    std::uint32_t number = 0;  // of the class
    FileHasher::Ends ends;
    std::uint8_t recalled = 0;  // KnownHashes
    std::uint64_t whole = 0;    // where it was recalled
};

struct HashAhead::Stretch {
    std::uint32_t index = 0;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    std::uint64_t value = 0;
    bool hashed = false;
};

HashAhead::HashAhead(const FileSystem& files, const FileList& list, const std::atomic<bool>& stop,
                     SkipList& skipped, const HashCache* cache)
    : m_files(files),
      m_list(list),
      m_stop(stop),
      m_skipped(skipped),
      m_cache(cache),
      m_classes(list),
      m_next(list.size(), none),
      m_hashed(list.size(), 0),
      m_batchFiles(firstBatchFiles),
      m_batchBytes(firstBatchBytes),
      m_crew(
          mostReaders, [&files] { files.useOwnDescriptors(); },
          [this](unsigned worker) { leave(worker); }),
      m_wholeCrew(
          mostWholeReaders, [&files] { files.useOwnDescriptors(); },
          [this](unsigned worker) { leave(worker); }),
      m_workers(m_crew.most()) {
    if (m_cache != nullptr) m_fresh.known.resize(list.size(), 0);
}

std::uint32_t HashAhead::nextInGroup(std::size_t index) {
    const std::uint32_t number = m_classes.classOf(index);
    if (number == SizeClasses::alone) return none;
    if (number >= m_resolved) resolveMore(number);
    return m_next[index];
}

void HashAhead::resolveMore(std::uint32_t upTo) {
    while (m_resolved <= upTo && !m_stop) {
        const auto start = std::chrono::steady_clock::now();
        const std::uint32_t last = endOfBatch(m_resolved);
        hashBatch(m_resolved, last);
        m_resolved = last;
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        scaleBatches(
            std::clamp(batchSeconds / std::max(seconds, 1e-6), 1 / largestCut, largestGrowth));
    }
}

void HashAhead::scaleBatches(double factor) {
    for (std::uint64_t* const amount : {&m_batchFiles, &m_batchBytes})
        *amount = std::min(mostBatch,
                           static_cast<std::uint64_t>(static_cast<double>(*amount) * factor) + 1);
}

std::uint32_t HashAhead::endOfBatch(std::uint32_t first) const {
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
    std::uint32_t last = first;
    while (last < m_classes.count() && files < m_batchFiles && bytes < m_batchBytes) {
        const auto members = m_classes.members(last++);
        files += members.size();
        const std::uint64_t each = std::max<std::uint64_t>(1, m_list[members[0]]->fileSize);
        bytes += members.size() < m_batchBytes / each ? members.size() * each : m_batchBytes;
    }
    return last;
}

void HashAhead::hashBatch(std::uint32_t first, std::uint32_t last) {
    // In the order of the list, so that the files of one folder come together.
    std::vector<std::uint32_t> small;
    std::vector<Large> large;
    for (std::uint32_t index = 0; index < m_list.size(); ++index) {
        const std::uint32_t number = m_classes.classOf(index);
        if (number < first || number >= last) continue;
        if (m_list[index]->fileSize <= FileHasher::smallFile) small.push_back(index);
        else large.push_back({index, number, {}, 0, 0});
    }
    hashFirstVisits(small, large);
    noteEnds(large);
    hashTails(large);
    hashWholes(large);
    // After a stop too: what is hashed is not lost.
    const std::atomic<bool> never{false};
    m_crew.forEach(last - first, 256, never, [&](std::size_t at, unsigned) {
        groupClass(first + static_cast<std::uint32_t>(at));
    });
}

FileHasher& HashAhead::hasherFor(unsigned worker, const fileAttrbItem& item) {
    Worker& own = m_workers[worker];
    if (!own.hasher) own.hasher = std::make_unique<FileHasher>(m_files, m_skipped, &m_grace);
    own.item.store(&item, std::memory_order_relaxed);
    return *own.hasher;
}

const fileAttrbItem* HashAhead::itemInHand() const {
    for (const Worker& worker : m_workers)
        if (const fileAttrbItem* const item = worker.item.load(std::memory_order_relaxed))
            return item;
    return nullptr;
}

// A thread's descriptors are its own: what it holds open must be closed by itself.
void HashAhead::leave(unsigned worker) {
    if (m_workers[worker].hasher) m_workers[worker].hasher->closeFolder();
}

void HashAhead::count(unsigned worker, std::uint64_t files, std::uint64_t bytes) {
    Worker& own = m_workers[worker];  // nobody else writes there
    own.files.store(own.files.load(std::memory_order_relaxed) + files, std::memory_order_relaxed);
    own.bytes.store(own.bytes.load(std::memory_order_relaxed) + bytes, std::memory_order_relaxed);
}

std::uint64_t HashAhead::hashedFiles() const {
    std::uint64_t sum = 0;
    for (const Worker& worker : m_workers) sum += worker.files.load(std::memory_order_relaxed);
    return sum;
}

std::uint64_t HashAhead::hashedBytes() const {
    std::uint64_t sum = 0;
    for (const Worker& worker : m_workers) sum += worker.bytes.load(std::memory_order_relaxed);
    return sum;
}

// True when nothing of the file needs to be read.
bool HashAhead::recallSmall(std::uint32_t index) {
    if (m_cache == nullptr) return false;
    fileAttrbItem& item = *m_list[index];
    const auto recalled = m_cache->recall(item);
    constexpr std::uint8_t wanted = KnownHashes::head | KnownHashes::whole;
    if ((recalled.known & wanted) != wanted) return false;
    item.md5 = recalled.whole;
    item.md5_1k = recalled.head;
    item.isRecalled = true;
    m_fresh.known[index] = KnownHashes::recalled;
    m_hashed[index] = 1;
    return true;
}

// True when nothing needs to be read for the first visit.
bool HashAhead::recallLarge(Large& large) {
    if (m_cache == nullptr) return false;
    fileAttrbItem& item = *m_list[large.index];
    const auto recalled = m_cache->recall(item);
    if ((recalled.known & KnownHashes::head) == 0) return false;
    item.md5_1k = recalled.head;
    item.isRecalled = true;
    m_fresh.known[large.index] = KnownHashes::recalled;
    large.recalled = recalled.known;
    large.whole = recalled.whole;
    large.ends = {.hashed = true,
                  .regular = true,
                  .hasTail = (recalled.known & KnownHashes::tail) != 0,
                  .tail = recalled.tail};
    return true;
}

// What is not as listed must not be remembered under the times that were listed.
void HashAhead::noteFresh(std::uint32_t index, std::uint8_t known) {
    if (m_cache != nullptr) m_fresh.known[index] |= known;
}

// Of large files whose ends were read just now.
void HashAhead::noteEnds(const std::vector<Large>& large) {
    if (m_cache == nullptr) return;
    for (const Large& one : large) {
        if (!one.ends.regular) continue;
        std::uint8_t& known = m_fresh.known[one.index];
        const auto isNew = [&](std::uint8_t hash) { return ((one.recalled | known) & hash) == 0; };
        if (isNew(KnownHashes::head)) known |= KnownHashes::head;
        if (!one.ends.hasTail || !isNew(KnownHashes::tail)) continue;
        known |= KnownHashes::tail;
        m_fresh.tails.emplace_back(one.index, one.ends.tail);
    }
}

void HashAhead::hashFirstVisits(const std::vector<std::uint32_t>& small,
                                std::vector<Large>& large) {
    const std::size_t total = small.size() + large.size();
    const std::size_t grain = std::clamp<std::size_t>(total / 1024, 2, 128);
    m_crew.forEach(total, grain, m_stop, [&](std::size_t at, unsigned worker) {
        if (at < small.size()) {
            if (m_cache != nullptr && at + recalledAhead < small.size())
                m_cache->expect(*m_list[small[at + recalledAhead]]);
            if (recallSmall(small[at])) return count(worker, 1, 0);
            fileAttrbItem& item = *m_list[small[at]];
            const auto done = hasherFor(worker, item).hashSmall(item);
            m_hashed[small[at]] = done.bytes != 0;
            if (done.bytes != 0 && done.isListed)
                noteFresh(small[at], KnownHashes::head | KnownHashes::whole);
            count(worker, 1, done.bytes);
        } else {
            Large& one = large[at - small.size()];
            if (recallLarge(one)) return count(worker, 1, 0);
            fileAttrbItem& item = *m_list[one.index];
            one.ends = hasherFor(worker, item).hashEnds(item, false);
            count(worker, 1, FileHasher::headBytes);
        }
    });
}

// Puts candidates that still agree next to each other, in the order of the list, and leaves out
// those that stand alone.
template <class Key, class Large> static void keepEqual(std::vector<Large>& large, Key key) {
    std::stable_sort(large.begin(), large.end(),
                     [&](const Large& a, const Large& b) { return key(a) < key(b); });
    std::vector<Large> kept;
    for (std::size_t from = 0; from < large.size();) {
        std::size_t to = from + 1;
        while (to < large.size() && key(large[to]) == key(large[from])) ++to;
        if (to - from > 1)
            kept.insert(kept.end(), large.begin() + static_cast<std::ptrdiff_t>(from),
                        large.begin() + static_cast<std::ptrdiff_t>(to));
        from = to;
    }
    large.swap(kept);
}

void HashAhead::hashTails(std::vector<Large>& large) {
    std::erase_if(large, [](const Large& one) { return !one.ends.hashed; });
    keepEqual(large,
              [&](const Large& one) { return std::tuple(one.number, m_list[one.index]->md5_1k); });
    std::vector<Large*> wanted;
    for (Large& one : large)
        if (!one.ends.hasTail && one.ends.regular) wanted.push_back(&one);
    std::sort(wanted.begin(), wanted.end(),
              [](const Large* a, const Large* b) { return a->index < b->index; });
    m_crew.forEach(wanted.size(), 2, m_stop, [&](std::size_t at, unsigned worker) {
        fileAttrbItem& item = *m_list[wanted[at]->index];
        wanted[at]->ends = hasherFor(worker, item).hashEnds(item, true);
        count(worker, 0, FileHasher::tailBytes);
    });
    noteEnds(large);
    std::erase_if(large, [](const Large& one) { return !one.ends.hashed; });
    // A file that is not what the listing saw is compared by its whole alone, and so are those that
    // may equal it.
    for (std::size_t from = 0; from < large.size();) {
        std::size_t to = from;
        bool regular = true;
        for (; to < large.size() && large[to].number == large[from].number; ++to)
            regular &= large[to].ends.regular;
        for (; from < to; ++from)
            if (!regular) large[from].ends.tail = 0;
    }
    keepEqual(large, [&](const Large& one) {
        return std::tuple(one.number, m_list[one.index]->md5_1k, one.ends.tail);
    });
}

std::vector<HashAhead::Stretch> HashAhead::cutIntoStretches(
    const std::vector<Large*>& wanted) const {
    std::vector<Stretch> out;
    for (const Large* one : wanted) {
        const std::uint64_t size = m_list[one->index]->fileSize;
        // Never more than some thousand stretches, however large a sparse file says it is.
        const std::uint64_t share =
            (size / mostStretches + stretchBytes - 1) / stretchBytes * stretchBytes;
        const std::uint64_t piece = size > 2 * stretchBytes ? std::max(stretchBytes, share) : size;
        for (std::uint64_t at = 0; at < size; at += out.back().length)
            out.push_back({one->index, at, std::min(piece, size - at), 0, false});
    }
    return out;
}

void HashAhead::hashWholes(std::vector<Large>& large) {
    std::vector<Large*> wanted;
    for (Large& one : large) {
        const bool isRecalled = (one.recalled & KnownHashes::whole) != 0;
        if (isRecalled) m_list[one.index]->md5 = one.whole;
        if (one.ends.regular && !isRecalled) wanted.push_back(&one);
        else m_hashed[one.index] = 1;  // its first visit read all of it, or an earlier search
    }
    std::sort(wanted.begin(), wanted.end(),
              [](const Large* a, const Large* b) { return a->index < b->index; });
    std::vector<Stretch> stretches = cutIntoStretches(wanted);
    m_wholeCrew.forEach(stretches.size(), 1, m_stop, [&](std::size_t at, unsigned worker) {
        Stretch& one = stretches[at];
        fileAttrbItem& item = *m_list[one.index];
        one.hashed = hasherFor(worker, item).hashStretch(item, one.offset, one.length, one.value);
        count(worker, 0, one.length);
    });
    for (std::size_t at = 0; at < stretches.size();) {
        const std::uint32_t index = stretches[at].index;
        std::uint64_t value = stretches[at].value;
        bool hashed = stretches[at].hashed;
        for (++at; at < stretches.size() && stretches[at].index == index; ++at) {
            value = crc::combine(value, stretches[at].value, stretches[at].length);
            hashed = hashed && stretches[at].hashed;
        }
        if (!hashed) continue;
        m_list[index]->md5 = value;
        m_hashed[index] = 1;
        noteFresh(index, KnownHashes::whole);
    }
}

void HashAhead::groupClass(std::uint32_t number) {
    struct Key {
        std::uint64_t md5, md5_1k;
        std::uint32_t index;
        auto operator<=>(const Key&) const = default;
    };
    thread_local std::vector<Key> keys;
    keys.clear();
    for (const std::uint32_t index : m_classes.members(number))
        if (m_hashed[index] != 0)
            keys.push_back({m_list[index]->md5, m_list[index]->md5_1k, index});
    std::sort(keys.begin(), keys.end());
    for (std::size_t at = 1; at < keys.size(); ++at)
        if (keys[at].md5 == keys[at - 1].md5 && keys[at].md5_1k == keys[at - 1].md5_1k)
            m_next[keys[at - 1].index] = keys[at].index;
}

}  // namespace orrinvale
