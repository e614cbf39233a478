// What is certain enough to be remembered is decided in isCertain(), what is worth writing in
// isWorthWriting().
#include "engine/duplicates/cache/HashCache.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>

#include "engine/base/Log.h"
#include "engine/files/DurableFile.h"
#include "engine/settings/UserFolders.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::int64_t oneSecond = 1'000'000'000;
// What is written through a mapping gets its time when it is written out, half a minute and more
// later. Longer than that, and than the coarsest clock of a file system.
constexpr std::int64_t settlingTime = 60 * oneSecond;

// What a small file costs to be looked at again, in bytes that could be read meanwhile.
constexpr std::uint64_t costOfLook = 16 * 1024;
constexpr std::uint64_t costOfEnds = 5 * 1024;

// A use is noted by the day, and a week late: most searches that find nothing new write nothing.
constexpr unsigned daysOfAge = 7;

}  // namespace

HashCache::HashCache(std::string path, HashCacheParts parts)
    : m_path(std::move(path)), m_parts(std::move(parts)) {}

HashCache::~HashCache() { finish(); }

void HashCache::begin() {
    m_began = m_parts.now();
    m_file = HashFile::open(m_path, m_began);
}

// By the first file of each device that lies in a folder of that very device.
void HashCache::learnVolumes(const FileSystem& files, const FileList& list) {
    m_volumes.clear();
    for (const fileAttrbItem* file : list) {
        if (file->inodePasses || file->folder->device != file->device ||
            volumeOf(file->device) != nullptr)
            continue;
        Volume volume;
        volume.device = file->device;
        const auto folder = reopenFolder(files, *file->folder);
        const auto seen = folder ? files.attributes(folder->get()) : tl::unexpected(folder.error());
        const auto name = seen && seen->device == file->device ? m_parts.volumeOf(folder->get())
                                                               : tl::unexpected(ENOTSUP);
        if (name) {
            const auto number = m_file.numberOf(*name);
            volume.isKnown = true;
            volume.name = *name;
            volume.isInFile = number.has_value();
            volume.number = number.value_or(0);
        }
        // The last one seen stands first: nearly all files are of one device.
        m_volumes.insert(m_volumes.begin(), volume);
    }
}

const HashCache::Volume* HashCache::volumeOf(std::uint64_t device) const {
    const auto found = std::ranges::find(m_volumes, device, &Volume::device);
    return found == m_volumes.end() ? nullptr : &*found;
}

bool HashCache::isCertain(const fileAttrbItem& file) const {
    const std::int64_t settled = m_began - settlingTime;
    return file.type == FileType::Regular && !file.inodePasses && file.changed <= settled &&
           file.modified <= settled && file.changed % oneSecond != 0;
}

HashCache::Recalled HashCache::recall(const fileAttrbItem& file) const {
    if (m_file.isEmpty() || !isCertain(file)) return {};
    const Volume* const volume = volumeOf(file.device);
    if (volume == nullptr || !volume->isInFile) return {};
    const FileView::Look look = m_file.look();
    const auto record = m_file.find(volume->number, file.inode);
    if (!record || record->changed != file.changed ||
        record->print != printOf(m_file.header().salt, file.fileSize, file.modified, file.born))
        return {};
    if (record->used + daysOfAge < dayOf(m_began)) m_aged.fetch_add(1, std::memory_order_relaxed);
    return {static_cast<std::uint8_t>(record->known & KnownHashes::all), record->head, record->tail,
            record->whole};
}

void HashCache::expect(const fileAttrbItem& file) const {
    if (m_file.isEmpty()) return;
    const Volume* const volume = volumeOf(file.device);
    if (volume == nullptr || !volume->isInFile) return;
    const FileView::Look look = m_file.look();
    m_file.expect(volume->number, file.inode);
}

// What writing the file anew takes must be less than what it spares, so that a few new files do not
// have a large cache written each time; they come along with the next ones.
bool HashCache::isWorthWriting(const FileList& list, FreshHashes& fresh) const {
    std::uint64_t worth = m_aged * costOfLook;
    for (std::size_t index = 0; index < fresh.known.size(); ++index) {
        std::uint8_t& known = fresh.known[index];
        if (known == 0) continue;
        const fileAttrbItem& file = *list[index];
        const Volume* const volume = isCertain(file) ? volumeOf(file.device) : nullptr;
        if (volume == nullptr || !volume->isKnown) known = 0;
        if ((known & KnownHashes::all) == 0) continue;
        worth += costOfLook + ((known & KnownHashes::whole) != 0 ? file.fileSize : costOfEnds);
    }
    return worth != 0 && worth >= m_file.size();
}

void HashCache::keep(const FileList& list, FreshHashes fresh) {
    finish();
    // The clock was set back while files were read: nobody knows which times came when.
    if (m_parts.now() < m_began) return;
    try {
        m_saving = std::thread([this, &list, fresh = std::move(fresh)]() mutable {
            try {
                save(list, std::move(fresh));
            } catch (const std::bad_alloc&) {
                Log::line("What was found out of files is not remembered: memory ran out.");
            }
        });
    } catch (const std::system_error&) {
        Log::line("What was found out of files is not remembered: no thread is to be had.");
    }
}

void HashCache::save(const FileList& list, FreshHashes fresh) {
    const bool isWorth = isWorthWriting(list, fresh);
    const bool hasRead = m_file.size() != 0;
    m_file = {};
    if (!isWorth) return;
    std::ranges::sort(fresh.tails);
    std::vector<KnownVolume> volumes;
    for (const Volume& each : m_volumes)
        if (each.isKnown) volumes.push_back({each.device, each.name});
    const auto saved = saveHashes(m_path, list, fresh, volumes,
                                  {.now = m_parts.now(),
                                   .mostBytes = m_parts.mostBytes,
                                   .stampsRecalled = m_aged != 0,
                                   .mustStand = hasRead});
    if (!saved)
        Log::line(fmt::format("What was found out of files is not remembered: {}: {}",
                              saved.error().path, saved.error().reason()));
}

void HashCache::finish() {
    if (m_saving.joinable()) m_saving.join();
}

std::string hashCachePath() { return joinPath(userCacheFolder(), "file-hashes"); }

HashCacheSize hashCacheSize(const std::string& path) {
    const auto bytesOf = [](const std::string& file) -> std::uint64_t {
        struct stat status {};
        const bool isThere = ::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
        return isThere ? static_cast<std::uint64_t>(status.st_size) : 0;
    };
    const HashFile file = HashFile::open(path, fileClock());
    const std::uint64_t unfinished = bytesOf(path + ".new");
    if (file.size() != 0) return {file.size() + unfinished, file.header().count};
    return {bytesOf(path) + unfinished, 0};
}

// In a writer's turn, so that none puts the file back that had begun before. Where no turn is to be
// had but for another reason, as on a full disk, nobody writes.
Result<void> clearHashCache(const std::string& path) {
    const auto turn = DurableFile::begin(path);
    if (auto removed = DurableFile::remove(path); !removed) return removed;
    if (!turn && turn.error().number == EWOULDBLOCK) return tl::unexpected(turn.error());
    return {};
}

}  // namespace orrinvale
