// Scans that are kept: what changed between two of them against the history that made them, their
// size, and files that are damaged, forged or too many.
#include <ctime>
#include <deque>

#include "engine/diskusage/UsageRun.h"
#include "engine/diskusage/history/ScanDifference.h"
#include "engine/diskusage/history/ScanHistory.h"

namespace orrinvale {
namespace {

using testing::UsageRun;

StoredScan storedScanOf(const std::string& path) {
    const UsageRun run(files, path, {.limit = std::uint64_t{1} << 63U, .records = true});
    const auto record = run.scan.record();
    if (record == nullptr) throw std::runtime_error("no record");
    auto scan = parseScan(encodeScan(*record));
    if (!scan) throw std::runtime_error("no scan");
    return std::move(*scan);
}

/// What lies in a folder by a walk of its own: of each folder and large file its size, and its
/// blocks with every file counted once.
struct PlainSizes {
    using Blocks = std::map<std::pair<dev_t, ino_t>, std::uint64_t>;
    struct Entry {
        bool isFolder;
        std::uint64_t size, onDisk;
        bool operator==(const Entry&) const = default;
    };
    std::map<std::string, Entry> entries;  // by the path below the folder

    explicit PlainSizes(const std::string& root) : m_root(root) {
        Blocks blocks;
        take("", blocks);
    }

private:
    std::uint64_t take(const std::string& path, Blocks& above) {
        struct stat seen {};
        EXPECT_EQ(::lstat((m_root + path).c_str(), &seen), 0) << path;
        Blocks blocks{{{seen.st_dev, seen.st_ino}, std::uint64_t(seen.st_blocks) * 512}};
        const bool isFolder = S_ISDIR(seen.st_mode);
        std::uint64_t size = isFolder ? 0 : std::uint64_t(seen.st_size);
        if (isFolder)
            for (const std::string& name : namesIn(m_root + path))
                size += take(path + "/" + name, blocks);
        std::uint64_t onDisk = 0;
        for (const auto& [file, bytes] : blocks) onDisk += bytes;
        if (isFolder || size >= recordedFilesFrom) entries[path] = {isFolder, size, onDisk};
        above.insert(blocks.begin(), blocks.end());
        return size;
    }
    std::string m_root;
};

using ChangeLines = std::set<std::string>;

std::string lineOfChange(const std::string& path, const char* kind, const PlainSizes::Entry& before,
                         const PlainSizes::Entry& after) {
    return fmt::format("{} {} {}+{} to {}+{}", path, kind, before.size, before.onDisk, after.size,
                       after.onDisk);
}

// Read literally: whatever differs, but of what came or went the topmost alone.
ChangeLines expectedChanges(const PlainSizes& before, const PlainSizes& after) {
    ChangeLines lines;
    const auto isWhole = [](const std::string& path, const PlainSizes& in,
                            const PlainSizes& other) {
        const std::string above = path.substr(0, path.rfind('/'));
        const auto up = other.entries.find(above);
        return path.empty() ||
               (up != other.entries.end() && up->second.isFolder && in.entries.contains(above));
    };
    const PlainSizes::Entry none{};
    const auto only = [&](const PlainSizes& in, const PlainSizes& other, const char* kind,
                          bool isAfter) {
        for (const auto& [path, entry] : in.entries) {
            const auto found = other.entries.find(path);
            if (found != other.entries.end() && found->second.isFolder == entry.isFolder) continue;
            if (isWhole(path, in, other))
                lines.insert(
                    lineOfChange(path, kind, isAfter ? none : entry, isAfter ? entry : none));
        }
    };
    only(before, after, "went", false);
    only(after, before, "came", true);
    for (const auto& [path, entry] : after.entries) {
        const auto was = before.entries.find(path);
        if (was != before.entries.end() && was->second.isFolder == entry.isFolder &&
            was->second != entry)
            lines.insert(lineOfChange(path, "changed", was->second, entry));
    }
    return lines;
}

// Without folders that stand there only for what is in them.
ChangeLines foundChanges(const ScanDifference& difference) {
    ChangeLines lines;
    for (std::uint32_t i = 0; i < difference.all().size(); ++i) {
        const ScanChange& each = difference.all()[i];
        const char* const kinds[] = {"changed", "came", "went"};
        const PlainSizes::Entry before{each.isFolder, each.sizeBefore, each.onDiskBefore};
        const PlainSizes::Entry after{each.isFolder, each.sizeAfter, each.onDiskAfter};
        if (each.kind == ScanChange::Kind::Changed && before == after) continue;
        const std::string path = difference.path(i).substr(difference.after().root.size());
        EXPECT_TRUE(
            lines.insert(lineOfChange(path, kinds[std::size_t(each.kind)], before, after)).second)
            << path;
    }
    return lines;
}

/// Changes a tree as people do, by chance.
class ChangingTree {
public:
    explicit ChangingTree(unsigned seed) : m_random(seed) {}

    void change() {
        const std::string path = somePath();
        std::error_code ignored;
        switch (below(7)) {
            case 0: std::filesystem::remove_all(tree.at(path), ignored); break;
            case 1: tree.folder(path); break;
            case 2:
                if (!isThere(tree.at(path))) tree.hardLink(somePath(), path);
                break;
            case 3:
                if (const std::string to = somePath(); !isThere(tree.at(to)))
                    ::rename(tree.at(path).c_str(), tree.at(to).c_str());
                break;
            case 4: tree.write(path, std::string(below(9000), 'x')); break;
            default: tree.sparse(path, 400'000 + below(5'000'000));
        }
    }

    TestTree tree;

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }
    std::string somePath() {
        const char* const names[] = {"a", "b", "ab", "abc", "z\xFF", "b\n"};
        std::string path = names[below(6)];
        for (std::size_t depth = below(4); depth > 0; --depth)
            path += std::string("/") + names[below(6)];
        return path;
    }
    std::mt19937 m_random;
};

TEST(ScanDifference, tellsWhatTheHistoryDid) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        ChangingTree changing(seed);
        for (int i = 0; i < 60; ++i) changing.change();
        const PlainSizes sizesBefore(changing.tree.path());
        const StoredScan before = storedScanOf(changing.tree.path());
        for (unsigned i = 0; i < seed; ++i) changing.change();
        const PlainSizes sizesAfter(changing.tree.path());
        const StoredScan after = storedScanOf(changing.tree.path());
        const auto difference = ScanDifference::of(before, after);
        ASSERT_TRUE(difference) << seed;
        ASSERT_EQ(foundChanges(*difference), expectedChanges(sizesBefore, sizesAfter)) << seed;
        const auto& all = difference->all();
        for (const ScanChange& folder : all)
            for (std::size_t i = 1; i < folder.childCount; ++i)
                ASSERT_GE(std::abs(all[difference->children(folder)[i - 1]].change()),
                          std::abs(all[difference->children(folder)[i]].change()));
        const auto same = ScanDifference::of(after, after);
        ASSERT_TRUE(same && same->all().size() == 1) << seed;
    }
}

TEST(ScanDifference, namesTheEntryFarBelowThatIsTheReason) {
    TestTree tree;
    ASSERT_TRUE(tree.sparse("home/me/old.iso", 9'000'000) && tree.sparse("home/me/x/small", 100));
    const StoredScan before = storedScanOf(tree.path());
    ASSERT_TRUE(tree.sparse("home/me/x/y/new.iso", 80'000'000) &&
                tree.sparse("home/me/z", 10'000'000) && tree.sparse("home/you", 5'000'000));
    const auto difference = ScanDifference::of(before, storedScanOf(tree.path()));
    ASSERT_TRUE(difference);
    EXPECT_EQ(difference->path(difference->mostly(0)), tree.at("home/me/x/y"));
    const std::uint32_t home = difference->children(difference->root()).front();
    EXPECT_EQ(difference->all()[home].change(), 95'000'000);
    EXPECT_EQ(difference->path(difference->children(difference->all()[home]).back()),
              tree.at("home/you"));
}

TEST(StoredScan, staysWithinItsBoundWhateverTheNames) {
    TestTree tree;
    for (int i = 0; i < 400; ++i) {
        const std::string folder =
            std::string(200, char('a' + i % 26)) + fmt::format("{:08x}", unsigned(i) * 2654435761U);
        ASSERT_TRUE(tree.sparse(folder + "/f" + std::string(200, 'y') +
                                    fmt::format("{:08x}", unsigned(i) * 2654435761U),
                                std::uint64_t(i) * 100'000));
    }
    const StoredScan scan = storedScanOf(tree.path());
    EXPECT_EQ(scan.facts.entries, 800);
    EXPECT_LE(scan.bytes.size(), 800 * scanBytesPerEntry + scanBytesBesides);
    EXPECT_GT(scan.facts.filesFrom, recordedFilesFrom);
    const auto difference = ScanDifference::of(scan, scan);
    EXPECT_TRUE(difference && difference->all().size() == 1);
}

/// A made-up scan of a million entries, none of them too small to be kept.
struct ManyEntries {
    explicit ManyEntries(unsigned seed) {
        std::mt19937_64 random(seed);
        constexpr std::size_t folders = 20'000, filesEach = 49;
        record.facts = {.root = "/home/anna", .time = seed, .entries = folders * (filesEach + 1)};
        for (std::size_t i = 0; i < folders; ++i) {
            RecordedEntry& folder =
                add(record.first, fmt::format("project-{:06}", i * 7919 % folders));
            folder.isFolder = true;
            for (std::size_t k = 0; k < filesEach; ++k) {
                RecordedEntry& file = add(
                    folder.first, fmt::format("IMG_{:08}_{:06}.jpg", i * 31, k * 7919 + i % 1000));
                file.size = recordedFilesFrom + (i * 49 + k) * 6151 % 90'000'000;
                if (random() % 10 == 0) file.size += random() % 1'000'000'000;
                folder.size += file.size;
            }
            record.facts.size += folder.size;
        }
    }
    RecordedEntry& add(RecordedEntry*& list, std::string name) {
        RecordedEntry& entry = entries.emplace_back();
        entry.name = names.emplace_back(std::move(name)).c_str();
        entry.next = std::exchange(list, &entry);
        return entry;
    }
    std::deque<RecordedEntry> entries;
    std::deque<std::string> names;
    ScanRecord record;
};

double processorSeconds() { return double(std::clock()) / CLOCKS_PER_SEC; }

TEST(ScanDifference, ofAMillionEntriesTakesLessThanASecond) {
    ManyEntries old(1);
    ManyEntries now(2);
    const double start = processorSeconds();
    std::string oldBytes = encodeScan(old.record);
    const double encoded = processorSeconds();
    const auto before = parseScan(std::move(oldBytes));
    const auto after = parseScan(encodeScan(now.record));
    ASSERT_TRUE(before && after);
    const double parsed = processorSeconds();
    const auto difference = ScanDifference::of(*before, *after);
    const double compared = processorSeconds();
    ASSERT_TRUE(difference);
    fmt::print("{:.1f} bytes an entry, written in {:.2f} s, compared in {:.2f} s, {} differ\n",
               double(before->bytes.size()) / 1e6, encoded - start, compared - parsed,
               difference->all().size());
    EXPECT_EQ(before->facts.filesFrom, recordedFilesFrom) << "nothing had to be left out";
    EXPECT_LE(before->bytes.size(), before->facts.entries * scanBytesPerEntry + scanBytesBesides);
    EXPECT_GT(difference->all().size(), 150'000);
#if defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(compared - parsed, 1.0);
#endif
}

TEST(StoredScan, isNoneOnceAByteIsAnother) {
    TestTree tree;
    ASSERT_TRUE(tree.sparse("a/b/c", 2'000'000) && tree.write("a/d", "x"));
    const StoredScan scan = storedScanOf(tree.path());
    for (std::size_t i = 0; i < scan.bytes.size(); ++i) {
        std::string changed = scan.bytes;
        changed[i] = char(changed[i] ^ 1);
        EXPECT_FALSE(parseScan(changed)) << i;
        EXPECT_FALSE(parseScan(scan.bytes.substr(0, i))) << i;
    }
    EXPECT_FALSE(parseScan(scan.bytes + '\0'));
}

TEST(StoredScan, isNotMadeOfAScanThatWasStopped) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a/b", "x"));
    WatchedFiles watched;
    DiskUsageScan scan({.files = &watched, .mainQueue = nullptr, .news = {}});
    watched.onReadIdentities = [&] { scan.stopScan(); };
    scan.start(std::make_shared<FSNodeTree>(tree.path()), {.records = true});
    scan.waitForEnd();
    EXPECT_EQ(scan.record(), nullptr);
}

struct KeptScans {
    KeptScans() { EXPECT_TRUE(tree.write("place/a/b", "x")); }
    void keep(std::int64_t time, bool allFileSystems = false) {
        ScanRecord record;
        record.facts.root = tree.at("place");
        record.facts.time = time;
        record.facts.allFileSystems = allFileSystems;
        const auto scan = parseScan(encodeScan(record));
        EXPECT_TRUE(scan && history.keep(*scan));
    }
    std::vector<std::int64_t> times() {
        std::vector<std::int64_t> all;
        for (const KeptScan& each : history.list(place)) all.push_back(each.time);
        return all;
    }
    TestTree tree;
    ScanHistory history{tree.at("state")};
    ScanHistory::Place place{tree.at("place"), false};
};

TEST(ScanHistory, keepsTheOldestAndTheNewestAndFewBetween) {
    KeptScans kept;
    const std::int64_t now = std::time(nullptr), day = 86400;
    for (int i = 60; i >= 0; --i) kept.keep(now - i * day);
    const auto times = kept.times();
    ASSERT_EQ(times.size(), ScanHistory::mostOfFolder);
    EXPECT_EQ(times.front(), now - 60 * day);
    EXPECT_EQ(times.back(), now);
    EXPECT_GE(times[times.size() - 3], now - 3 * day) << "young ones stand close together";
    EXPECT_LE(times[3], now - 15 * day) << "and old ones far apart";
    kept.keep(now, true);
    EXPECT_EQ(kept.times(), times) << "with other file systems it is another place";
    for (const std::string& name : namesIn(kept.tree.at("state/scans")))
        EXPECT_EQ(std::filesystem::status(kept.tree.at("state/scans/" + name)).permissions(),
                  std::filesystem::perms(0600));
    EXPECT_EQ(scanBefore(kept.history.list(kept.place), now)->time, times[times.size() - 2]);
    EXPECT_EQ(scanBefore(kept.history.list(kept.place), 0)->time, times.front());
    EXPECT_TRUE(kept.history.forget(kept.place.root));
    EXPECT_TRUE(namesIn(kept.tree.at("state/scans")).empty());
}

TEST(ScanHistory, wordsMeanTheScanOfThatDayOrTheLastOneBeforeIt) {
    constexpr std::int64_t day = 86400, now = 1'795'384'000;
    const auto today = *momentOfWord("yesterday", now);
    EXPECT_LE(today, now);
    const std::vector<KeptScan> scans{{today - 40 * day}, {today - 20 * day}, {today - 6 * day - 1},
                                      {today - 5 * day},  {today - 1},        {today + 1}};
    const std::pair<const char*, std::size_t> cases[] = {
        {"last", 5}, {"yesterday", 4}, {"last-week", 2}, {"last-month", 0}};
    std::size_t named = 0;
    for (const auto& [word, number] : cases) {
        const auto meant = scanBefore(scans, *momentOfWord(word, now));
        EXPECT_EQ(meant->time, scans[number].time) << word;
        EXPECT_EQ(wordOfScan(scans, *meant, now), word);
    }
    for (const KeptScan& each : scans) named += wordOfScan(scans, each, now).empty() ? 0U : 1U;
    EXPECT_EQ(named, std::size(cases));
    const std::vector<KeptScan> young{{now - 10}, {now - 5}};
    EXPECT_EQ(wordOfScan(young, young.front(), now), "") << "no scan is as old as a week";
    EXPECT_FALSE(momentOfWord("tomorrow", now));
}

TEST(ScanHistory, losesABadFileAlone) {
    KeptScans kept;
    for (const std::int64_t time : {1000, 2000, 3000}) kept.keep(time);
    const std::string folder = kept.tree.at("state/scans");
    const Strings names = namesIn(folder);
    ASSERT_EQ(names.size(), 3);
    // Bytes of another time, garbage, and what is no file of ours.
    ASSERT_TRUE(kept.tree.write("state/scans/" + names[0], contentOf(folder + "/" + names[1])));
    ASSERT_TRUE(kept.tree.write("state/scans/" + names[2], "orrinvale scan 1\n........"));
    ASSERT_TRUE(kept.tree.write("state/scans/x.scan", "x") &&
                kept.tree.folder("state/scans/" + names[0].substr(0, 17) + "7.scan"));
    ASSERT_EQ(kept.times(), (std::vector<std::int64_t>{1000, 2000, 3000}));
    for (const std::int64_t time : {1000, 3000})
        EXPECT_EQ(kept.history.load(kept.place, time).error().number, EBADMSG) << time;
    EXPECT_TRUE(kept.history.load(kept.place, 2000));
    EXPECT_EQ(kept.times(), std::vector<std::int64_t>{2000});
    EXPECT_EQ(kept.history.load(kept.place, 4000).error().number, ENOENT);
    EXPECT_TRUE(kept.history.clear());
    EXPECT_TRUE(kept.times().empty());
    EXPECT_TRUE(isThere(folder + "/x.scan"));
}

}  // namespace
}  // namespace orrinvale
