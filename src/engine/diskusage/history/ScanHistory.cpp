// A file's name is HASH-VOLUME-TIME.scan; the first hash is of the path and of whether other file
// systems count. Where the volume is not known it is HASH-TIME.scan.
#include "engine/diskusage/history/ScanHistory.h"

#include <dirent.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <ctime>
#include <limits>
#include <memory>
#include <ranges>
#include <string_view>
#include <utility>

#include "engine/duplicates/crc.h"
#include "engine/files/DurableFile.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::string_view scanExtension = ".scan", unfinishedExtension = ".new";
constexpr std::int64_t unfinishedSeconds = 86400;

std::uint64_t hashOfPlace(const ScanHistory::Place& place) {
    const std::string text = place.root + (place.allFileSystems ? std::string("\0+", 2) : "");
    return crc::crc64(text.data(), static_cast<std::uint32_t>(text.size()));
}

std::uint64_t hashOfVolume(const std::optional<VolumeName>& volume) {
    if (!volume) return 0;
    const std::uint64_t both[] = {volume->first, volume->second};
    return std::max<std::uint64_t>(crc::crc64(both, sizeof both), 1);
}

template <class Number> bool takeWhole(std::string_view text, Number& number, int base) {
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return fault == std::errc() && end == text.data() + text.size();
}

// The place in the list of the one whose loss makes the smallest gap for its age.
// One of the future is missed less than any.
template <class File>
std::size_t leastMissed(const std::vector<File>& files, std::int64_t now, const File& kept) {
    if (files.back().scan.time > now && !files.back().isSameAs(kept)) return files.size() - 1;
    std::size_t least = 0;
    double smallest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i + 1 < files.size(); ++i) {
        const auto gap = static_cast<double>(files[i + 1].scan.time - files[i - 1].scan.time);
        const auto age =
            static_cast<double>(std::max<std::int64_t>(now - files[i].scan.time, 0) + 1);
        if (gap / age < smallest && !files[i].isSameAs(kept)) least = i, smallest = gap / age;
    }
    return least;
}

// HASH-TIME or HASH-VOLUME-TIME, of a time that no clock of ours has before 1970.
template <class File> bool takeNames(std::string_view name, File& file) {
    constexpr std::size_t hashLength = 16;
    const auto takeHash = [&name](std::uint64_t& hash) {
        if (name.size() < hashLength + 2 || name[hashLength] != '-' ||
            !takeWhole(name.substr(0, hashLength), hash, 16))
            return false;
        name.remove_prefix(hashLength + 1);
        return true;
    };
    if (!takeHash(file.hash)) return false;
    static_cast<void>(takeHash(file.scan.volume));
    return takeWhole(name, file.scan.time, 10) && file.scan.time >= 0;
}

}  // namespace

struct ScanHistory::File {
    std::uint64_t hash = 0;
    KeptScan scan;
    bool isUnfinished = false;  // only what is being written, or was at a kill

    [[nodiscard]] bool isSameAs(const File& other) const {
        return hash == other.hash && scan.volume == other.scan.volume &&
               scan.time == other.scan.time;
    }
};

ScanHistory::ScanHistory(const std::string& stateFolder)
    : m_folder(joinPath(stateFolder, "scans")) {}

std::string ScanHistory::pathOf(const File& file) const {
    const std::string volume =
        file.scan.volume == 0 ? std::string() : fmt::format("{:016x}-", file.scan.volume);
    return joinPath(
        m_folder, fmt::format("{:016x}-{}{}{}", file.hash, volume, file.scan.time, scanExtension));
}

// The oldest first.
std::vector<ScanHistory::File> ScanHistory::filesWithUnfinished() const {
    std::vector<File> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(m_folder.c_str()), &::closedir);
    if (listing == nullptr) return found;
    while (const dirent* const entry = ::readdir(listing.get())) {
        std::string_view name = entry->d_name;
        File file;
        file.isUnfinished = name.ends_with(unfinishedExtension);
        if (file.isUnfinished) name.remove_suffix(unfinishedExtension.size());
        if (!name.ends_with(scanExtension)) continue;
        name.remove_suffix(scanExtension.size());
        if (!takeNames(name, file)) continue;
        struct stat seen {};
        const std::string path = joinPath(m_folder, entry->d_name);
        if (::lstat(path.c_str(), &seen) != 0 || !S_ISREG(seen.st_mode)) continue;
        file.scan.bytes = static_cast<std::uint64_t>(seen.st_size);
        if (file.isUnfinished && seen.st_mtim.tv_sec < std::time(nullptr) - unfinishedSeconds)
            static_cast<void>(DurableFile::remove(path));  // a kill has left it
        else found.push_back(file);
    }
    std::ranges::sort(found, {}, [](const File& file) { return file.scan.time; });
    return found;
}

std::vector<ScanHistory::File> ScanHistory::files() const {
    std::vector<File> found = filesWithUnfinished();
    std::erase_if(found, [](const File& file) { return file.isUnfinished; });
    return found;
}

std::vector<ScanHistory::File> ScanHistory::filesOf(const Place& place) const {
    std::vector<File> found = files();
    std::erase_if(found, [&, hash = hashOfPlace(place),
                          volume = hashOfVolume(place.volume)](const File& file) {
        return file.hash != hash ||
               (volume != 0 && file.scan.volume != 0 && file.scan.volume != volume);
    });
    return found;
}

std::vector<KeptScan> ScanHistory::list(const Place& place) const {
    std::vector<KeptScan> scans;
    for (const File& file : filesOf(place)) scans.push_back(file.scan);
    return scans;
}

Result<void> ScanHistory::keep(const StoredScan& scan) const {
    if (auto made = DurableFile::makeFolder(m_folder); !made) return made;
    const Place place{scan.facts.root, scan.facts.allFileSystems, scan.facts.volume};
    const File file{hashOfPlace(place),
                    {scan.facts.time, scan.bytes.size(), hashOfVolume(scan.facts.volume)}};
    if (scan.facts.time < 0) return tl::unexpected(systemError("write", pathOf(file), ERANGE));
    if (auto saved = DurableFile::save(pathOf(file), scan.bytes); !saved) return saved;
    thin(place, file);
    return {};
}

void ScanHistory::thin(const Place& place, const File& kept) const {
    const std::int64_t now = std::time(nullptr);
    for (auto scans = filesOf(place); scans.size() > mostOfFolder;) {
        const auto gone =
            scans.begin() + static_cast<std::ptrdiff_t>(leastMissed(scans, now, kept));
        static_cast<void>(DurableFile::remove(pathOf(*gone)));
        scans.erase(gone);
    }
    std::vector<File> all = files();
    std::stable_partition(all.begin(), all.end(),
                          [now](const File& each) { return each.scan.time > now; });
    std::uint64_t sum = 0;
    for (const File& each : all) sum += each.scan.bytes;
    for (const File& each : all) {
        if (sum <= mostBytes) break;
        if (each.isSameAs(kept)) continue;
        static_cast<void>(DurableFile::remove(pathOf(each)));
        sum -= each.scan.bytes;
    }
}

Result<StoredScan> ScanHistory::load(const Place& place, std::int64_t time) const {
    const std::vector<File> files = filesOf(place);
    const auto file =
        std::ranges::find(files, time, [](const File& each) { return each.scan.time; });
    if (file == files.end()) return tl::unexpected(systemError("open", m_folder, ENOENT));
    const std::string path = pathOf(*file);
    auto bytes = DurableFile::read(path, mostScanBytes);
    if (!bytes) return tl::unexpected(bytes.error());
    auto scan = parseScan(std::move(*bytes));
    if (scan && scan->facts.root == place.root && scan->facts.time == time &&
        scan->facts.allFileSystems == place.allFileSystems &&
        hashOfVolume(scan->facts.volume) == file->scan.volume && isWholeScan(*scan))
        return std::move(*scan);
    static_cast<void>(DurableFile::remove(path));
    return tl::unexpected(systemError("read", path, EBADMSG));
}

bool ScanHistory::forget(const std::string& root) const {
    const std::uint64_t hashes[] = {hashOfPlace({root, false}), hashOfPlace({root, true})};
    bool isForgotten = true;
    for (const File& file : filesWithUnfinished())
        if (file.hash == hashes[0] || file.hash == hashes[1])
            isForgotten = forgetFile(file) && isForgotten;
    return isForgotten;
}

// One that is being written comes to its end first, and what a kill left goes with its name.
bool ScanHistory::forgetFile(const File& file) const {
    const std::string path = pathOf(file);
    if (!file.isUnfinished) return DurableFile::remove(path).has_value();
    const auto turn = DurableFile::begin(path);
    return turn && DurableFile::remove(path);
}

bool ScanHistory::clear() const {
    bool isClear = true;
    for (const File& file : filesWithUnfinished()) isClear = forgetFile(file) && isClear;
    return isClear;
}

std::uint64_t ScanHistory::size() const {
    std::uint64_t sum = 0;
    for (const File& file : files()) sum += file.scan.bytes;
    return sum;
}

std::optional<KeptScan> scanBefore(const std::vector<KeptScan>& scans, std::int64_t moment) {
    if (scans.empty()) return std::nullopt;
    const auto later =
        std::ranges::find_if(scans, [moment](const KeptScan& scan) { return scan.time >= moment; });
    return later == scans.begin() ? scans.front() : *(later - 1);
}

std::optional<std::int64_t> momentOfWord(std::string_view word, std::int64_t now) {
    // A clock that was wrong may have left scans of the future.
    if (word == lastScanWord) return now + 1;
    const auto found = std::ranges::find(sinceWords, word, &SinceWord::word);
    if (found == sinceWords.end()) return std::nullopt;
    const std::time_t moment = now;
    std::tm day{};
    if (::localtime_r(&moment, &day) == nullptr) return std::nullopt;
    day.tm_mday += 1 - found->days;
    day.tm_hour = day.tm_min = day.tm_sec = 0;
    day.tm_isdst = -1;
    return std::int64_t{std::mktime(&day)};
}

std::string_view wordOfScan(const std::vector<KeptScan>& scans, const KeptScan& scan,
                            std::int64_t now) {
    if (!scans.empty() && scans.back().time == scan.time) return lastScanWord;
    for (auto each = std::rbegin(sinceWords); each != std::rend(sinceWords); ++each) {
        const auto moment = momentOfWord(each->word, now);
        if (moment && scan.time < *moment && scanBefore(scans, *moment)->time == scan.time)
            return each->word;
    }
    return {};
}

}  // namespace orrinvale
