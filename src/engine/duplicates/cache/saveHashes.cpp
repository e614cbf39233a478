// saveHashes() names the steps. Two rows in one order are merged as they are written; nothing of
// the new file lies in memory but a piece.
#include "engine/duplicates/cache/saveHashes.h"

#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <numeric>
#include <span>
#include <string_view>
#include <utility>

#include "engine/duplicates/cache/HashFile.h"
#include "engine/files/DurableFile.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t recordsAPiece = 4096;

struct HashPlace {
    std::uint64_t key;
    std::uint32_t index;  // in the list
    std::uint8_t volume;
    [[nodiscard]] std::pair<std::uint64_t, std::uint32_t> order() const { return {key, index}; }
};

class HashMerge {
public:
    HashMerge(const FileList& list, const FreshHashes& fresh, const HashLimits& limits)
        : m_list(list), m_fresh(fresh), m_limits(limits) {}

    // Takes what is to be trusted of the file as it is now.
    void begin(HashFile old) {
        m_old = std::move(old);
        m_header = m_old.isEmpty() ? HashHeader{} : m_old.header();
        if (m_old.isEmpty()) m_header.salt = newSalt();
    }

    void takePlaces(const std::vector<KnownVolume>& volumes) {
        if (!number(volumes)) {  // so many file systems that it is time to begin anew
            begin({});
            (void)number(volumes);
        }
        const std::uint8_t wanted =
            KnownHashes::all | (m_limits.stampsRecalled ? KnownHashes::recalled : 0);
        for (std::uint32_t index = 0; index < m_fresh.known.size(); ++index) {
            if ((m_fresh.known[index] & wanted) == 0) continue;
            const fileAttrbItem& file = *m_list[index];
            for (std::size_t at = 0; at < m_numbers.size(); ++at)
                if (volumes[at].device == file.device)
                    m_places.push_back(
                        {keyOf(m_header.salt, m_numbers[at], file.inode), index, m_numbers[at]});
        }
        std::ranges::sort(m_places, {}, &HashPlace::order);
    }

    // What goes where there is not room for all.
    void choose() {
        const std::uint64_t most = mostRecords(m_limits.mostBytes);
        std::vector<std::uint64_t> byDay;
        std::uint64_t count = 0;
        forEach([&](const HashRecord& record) {
            if (byDay.empty()) byDay.resize(std::size_t{1} << 16U);
            ++byDay[record.used];
            ++count;
        });
        for (; count > most && count - most >= byDay[m_firstDay]; ++m_firstDay)
            count -= byDay[m_firstDay];
        m_goingOfFirstDay = count > most ? count - most : 0;
        m_header.count = count - m_goingOfFirstDay;
        m_header.stretchBits = stretchBitsFor(m_header.count);
    }

    Result<void> write(DurableFile& file) {
        m_header.written = m_limits.now;
        m_header.check = sumOf(m_header);
        if (auto done = file.append(bytesOf(&m_header, 1)); !done) return done;
        std::vector<HashRecord> piece;
        piece.reserve(recordsAPiece);
        Result<void> result;
        const auto flush = [&] {
            if (result) result = file.append(bytesOf(piece.data(), piece.size()));
            piece.clear();
        };
        std::uint64_t going = m_goingOfFirstDay;
        std::vector<std::uint32_t> starts((std::size_t{1} << m_header.stretchBits) + 1);
        forEach([&](const HashRecord& record) {
            if (record.used < m_firstDay) return;
            if (record.used == m_firstDay && going > 0) {
                --going;
                return;
            }
            ++starts[(keyOfRecord(record) >> (64 - m_header.stretchBits)) + 1];
            piece.push_back(record);
            if (record.check == 0) piece.back().check = record.sum(m_header.salt);
            if (piece.size() == recordsAPiece) flush();
        });
        flush();
        if (!result) return result;
        std::partial_sum(starts.begin(), starts.end(), starts.begin());
        if (auto done = file.append(bytesOf(starts.data(), starts.size())); !done) return done;
        DurableFile::Replacing how;
        how.givesWayOfAnybody = true;
        return file.finish(how);
    }

private:
    template <class T> static std::string_view bytesOf(const T* first, std::size_t count) {
        return {reinterpret_cast<const char*>(first), count * sizeof(T)};
    }

    static std::uint64_t newSalt() {
        std::uint64_t salt = 0;
        while (::getrandom(&salt, sizeof salt, 0) < 0 && errno == EINTR) {}
        return salt | 1U;
    }

    // False when there are more file systems than numbers for them.
    bool number(const std::vector<KnownVolume>& volumes) {
        m_numbers.clear();
        for (const KnownVolume& each : volumes) {
            const auto end = m_header.volumes.begin() + std::ptrdiff_t(m_header.volumeCount);
            const auto found = std::find(m_header.volumes.begin(), end, each.name);
            if (found == end) {
                if (m_header.volumeCount == HashHeader::mostVolumes) return false;
                m_header.volumes[m_header.volumeCount++] = each.name;
            }
            m_numbers.push_back(static_cast<std::uint8_t>(found - m_header.volumes.begin()));
        }
        return true;
    }

    [[nodiscard]] std::uint64_t keyOfRecord(const HashRecord& record) const {
        return keyOf(m_header.salt, record.volume, record.inode);
    }

    [[nodiscard]] static std::uint64_t mostRecords(std::uint64_t bytes) {
        std::uint64_t count = bytes / sizeof(HashRecord);
        while (count > 0 && hashFileSize(count, stretchBitsFor(count)) > bytes) --count;
        return count;
    }

    // Of all records that there will be, in their order, new ones without their sum. What is not in
    // order in the old file is left out.
    template <class Visit> void forEach(Visit visit) const {
        const FileView::Look look = m_old.look();
        const auto old = m_old.records();
        std::size_t next = 0;
        const HashRecord* last = nullptr;
        const auto passOld = [&](const HashRecord& record) {
            if (record.isWhole(m_header.salt) &&
                (last == nullptr || keyOfRecord(*last) < keyOfRecord(record)))
                visit(record);
            last = &record;
        };
        for (std::size_t at = 0; at < m_places.size();) {
            const HashPlace& place = m_places[at];
            const std::uint64_t inode = m_list[place.index]->inode;
            const auto isIt = [&](const HashRecord& each) {
                return each.isOf(place.volume, inode);
            };
            while (next < old.size() && keyOfRecord(old[next]) <= place.key && !isIt(old[next]))
                passOld(old[next++]);
            HashRecord record;
            if (next < old.size() && isIt(old[next])) {
                last = &old[next++];
                if (last->isWhole(m_header.salt)) record = *last;
            }
            // Of several names of one file each may have had another piece read.
            for (; at < m_places.size() && m_places[at].volume == place.volume &&
                   m_list[m_places[at].index]->inode == inode;
                 ++at)
                add(record, m_places[at]);
            if (record.known == 0) continue;
            record.used = dayOf(m_limits.now);
            record.check = 0;
            visit(record);
        }
        while (next < old.size()) passOld(old[next++]);
    }

    void add(HashRecord& record, const HashPlace& place) const {
        const fileAttrbItem& file = *m_list[place.index];
        const std::uint64_t print = printOf(m_header.salt, file.fileSize, file.modified, file.born);
        const std::uint8_t known = m_fresh.known[place.index] & KnownHashes::all;
        if (record.known == 0 || record.changed != file.changed || record.print != print) {
            if (known == 0) return;
            record = {};
            record.inode = file.inode;
            record.changed = file.changed;
            record.print = print;
            record.volume = place.volume;
        }
        if ((known & KnownHashes::head) != 0) record.head = file.md5_1k;
        if ((known & KnownHashes::whole) != 0) record.whole = file.md5;
        if ((known & KnownHashes::tail) != 0)
            record.tail =
                std::ranges::lower_bound(m_fresh.tails, place.index, {}, [](const auto& each) {
                    return each.first;
                })->second;
        record.known |= known;
    }

    const FileList& m_list;
    const FreshHashes& m_fresh;  // its tails in order of places
    const HashLimits m_limits;
    HashFile m_old;
    HashHeader m_header;
    std::vector<std::uint8_t> m_numbers;  // of the volumes that are given
    std::vector<HashPlace> m_places;
    std::size_t m_firstDay = 0;           // what was last used before that goes,
    std::uint64_t m_goingOfFirstDay = 0;  // and so many of that day
};

Result<void> makeOwnFolder(const std::string& folder) {
    if (auto made = DurableFile::makeFolder(folder); !made) return made;
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0 || status.st_uid != ::geteuid())
        return tl::unexpected(systemError("open", folder, EPERM));
    return {};
}

}  // namespace

Result<void> saveHashes(const std::string& path, const FileList& list, const FreshHashes& fresh,
                        const std::vector<KnownVolume>& volumes, const HashLimits& limits) {
    if (auto made = makeOwnFolder(folderOf(path)); !made) return made;
    auto file = DurableFile::begin(path);
    if (!file) return tl::unexpected(file.error());
    struct stat status {};
    if (limits.mustStand && ::lstat(path.c_str(), &status) != 0 && errno == ENOENT) return {};
    HashMerge merge(list, fresh, limits);
    merge.begin(HashFile::open(path, limits.now));
    merge.takePlaces(volumes);
    merge.choose();
    return merge.write(*file);
}

}  // namespace orrinvale
