// A file's name is HASH-TIME.scan; the hash is of the path and of whether other file systems count.
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

template <class Number> bool takeWhole(std::string_view text, Number& number, int base) {
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return fault == std::errc() && end == text.data() + text.size();
}

// The place in the list of the one whose loss makes the smallest gap for its age.
std::size_t leastMissed(const std::vector<KeptScan>& scans, std::int64_t now) {
    std::size_t least = 1;
    double smallest = 0;
    for (std::size_t i = 1; i + 1 < scans.size(); ++i) {
        const auto gap = static_cast<double>(scans[i + 1].time - scans[i - 1].time);
        const auto age = static_cast<double>(std::max<std::int64_t>(now - scans[i].time, 0) + 1);
        if (i == 1 || gap / age < smallest) least = i, smallest = gap / age;
    }
    return least;
}

}  // namespace

struct ScanHistory::File {
    std::uint64_t hash = 0;
    KeptScan scan;
};

ScanHistory::ScanHistory(const std::string& stateFolder)
    : m_folder(joinPath(stateFolder, "scans")) {}

std::string ScanHistory::pathOf(const File& file) const {
    return joinPath(m_folder,
                    fmt::format("{:016x}-{}{}", file.hash, file.scan.time, scanExtension));
}

// Takes away what a kill has left of one that was being written.
std::vector<ScanHistory::File> ScanHistory::files() const {
    std::vector<File> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(m_folder.c_str()), &::closedir);
    if (listing == nullptr) return found;
    while (const dirent* const entry = ::readdir(listing.get())) {
        std::string_view name = entry->d_name;
        const bool isUnfinished = name.ends_with(unfinishedExtension);
        if (isUnfinished) name.remove_suffix(unfinishedExtension.size());
        File file;
        constexpr std::size_t hashLength = 16;
        if (!name.ends_with(scanExtension) || name.size() < hashLength + 1) continue;
        name.remove_suffix(scanExtension.size());
        if (name.size() < hashLength + 2 || name[hashLength] != '-' ||
            !takeWhole(name.substr(0, hashLength), file.hash, 16) ||
            !takeWhole(name.substr(hashLength + 1), file.scan.time, 10))
            continue;
        struct stat seen {};
        const std::string path = joinPath(m_folder, entry->d_name);
        if (::lstat(path.c_str(), &seen) != 0 || !S_ISREG(seen.st_mode)) continue;
        file.scan.bytes = static_cast<std::uint64_t>(seen.st_size);
        if (!isUnfinished) found.push_back(file);
        else if (seen.st_mtim.tv_sec < std::time(nullptr) - unfinishedSeconds)
            static_cast<void>(DurableFile::remove(path));
    }
    std::ranges::sort(found, {}, [](const File& file) { return file.scan.time; });
    return found;
}

std::vector<KeptScan> ScanHistory::list(const Place& place) const {
    std::vector<KeptScan> scans;
    const std::uint64_t hash = hashOfPlace(place);
    for (const File& file : files())
        if (file.hash == hash) scans.push_back(file.scan);
    return scans;
}

Result<void> ScanHistory::keep(const StoredScan& scan) const {
    if (auto made = DurableFile::makeFolder(m_folder); !made) return made;
    const Place place{scan.facts.root, scan.facts.allFileSystems};
    const File file{hashOfPlace(place), {scan.facts.time, scan.bytes.size()}};
    if (auto saved = DurableFile::save(pathOf(file), scan.bytes); !saved) return saved;
    thin(place);
    return {};
}

void ScanHistory::thin(const Place& place) const {
    const std::uint64_t hash = hashOfPlace(place);
    const std::int64_t now = std::time(nullptr);
    for (auto scans = list(place); scans.size() > mostOfFolder;) {
        const auto gone = scans.begin() + static_cast<std::ptrdiff_t>(leastMissed(scans, now));
        static_cast<void>(DurableFile::remove(pathOf({hash, *gone})));
        scans.erase(gone);
    }
    const std::vector<File> all = files();
    std::uint64_t sum = 0;
    for (const File& each : all) sum += each.scan.bytes;
    for (std::size_t i = 0; i + 1 < all.size() && sum > mostBytes; ++i) {
        static_cast<void>(DurableFile::remove(pathOf(all[i])));
        sum -= all[i].scan.bytes;
    }
}

Result<StoredScan> ScanHistory::load(const Place& place, std::int64_t time) const {
    const std::string path = pathOf({hashOfPlace(place), {time, 0}});
    auto bytes = DurableFile::read(path, mostScanBytes);
    if (!bytes) return tl::unexpected(bytes.error());
    auto scan = parseScan(std::move(*bytes));
    if (scan && scan->facts.root == place.root && scan->facts.time == time &&
        scan->facts.allFileSystems == place.allFileSystems)
        return std::move(*scan);
    static_cast<void>(DurableFile::remove(path));
    return tl::unexpected(systemError("read", path, EBADMSG));
}

bool ScanHistory::forget(const std::string& root) const {
    const std::uint64_t hashes[] = {hashOfPlace({root, false}), hashOfPlace({root, true})};
    bool isForgotten = true;
    for (const File& file : files())
        if (file.hash == hashes[0] || file.hash == hashes[1])
            isForgotten = DurableFile::remove(pathOf(file)) && isForgotten;
    return isForgotten;
}

bool ScanHistory::clear() const {
    bool isClear = true;
    for (const File& file : files()) isClear = DurableFile::remove(pathOf(file)) && isClear;
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
    if (word == lastScanWord) return std::numeric_limits<std::int64_t>::max();
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
    for (const SinceWord& each : std::views::reverse(sinceWords)) {
        const auto moment = momentOfWord(each.word, now);
        if (moment && scan.time < *moment && scanBefore(scans, *moment)->time == scan.time)
            return each.word;
    }
    return {};
}

}  // namespace orrinvale
