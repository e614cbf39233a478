// Scans that are kept: what changed between two of them against the history that made them, their
// size, and files that are damaged, forged or too many.
#include <ctime>
#include <deque>
#include <limits>

#include "engine/diskusage/UsageRun.h"
#include "engine/diskusage/history/ScanDifference.h"
#include "engine/diskusage/history/ScanHistory.h"
#include "engine/duplicates/crc.h"

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
                ASSERT_GE(all[difference->children(folder)[i - 1]].weight,
                          all[difference->children(folder)[i]].weight);
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

/// A scan written by hand, with the right checksum: of a version, a tree as bytes.
std::string forgedScan(char version, std::string_view tree) {
    std::string rest = std::string("\2/p\2\0\0\0\0\0\0\0", 11);
    if (version != '1') rest.append("\5\6", 2);
    rest += tree;
    std::string bytes = std::string("orrinvale scan ") + version + '\n';
    const std::uint64_t sum = crc::crc64(rest.data(), std::uint32_t(rest.size()));
    for (unsigned i = 0; i < 8; ++i) bytes += char(sum >> (8 * i));
    return bytes + rest;
}

/// Entries of a folder, whose names have 4,093 bytes and share all but three.
std::string treeOfLongNames(unsigned count) {
    const std::string start(4090, 'a');
    std::string tree;
    for (unsigned i = 0; i < count; ++i) {
        const auto digit = [i](unsigned shift) { return char('A' + (i >> shift) % 64); };
        // Length 4,093, nothing shared; or three bytes behind 4,090 shared ones. No flags.
        tree += i == 0 ? std::string("\xFD\x1F\0", 3) + start : std::string("\3\xD0\xFF\1");
        tree += {digit(12), digit(6), digit(0), 1};
    }
    return tree + '\0';
}

TEST(ScanDifference, takesNoMoreMemoryThanItsBoundForForgedNames) {
    const auto none = parseScan(forgedScan('2', std::string_view("\0", 1)));
    ASSERT_TRUE(none && none->facts.volume == (VolumeName{5, 6}));
    EXPECT_FALSE(parseScan(forgedScan('1', std::string_view("\0", 1)))->facts.volume);
    for (const auto& [count, isCompared] : {std::pair{1000U, true}, std::pair{66'000U, false}}) {
        const auto many = parseScan(forgedScan('2', treeOfLongNames(count)));
        ASSERT_TRUE(many && isWholeScan(*many)) << count;
        EXPECT_EQ(ScanDifference::of(*none, *many).has_value(), isCompared) << count;
    }
}

/// A scan made up: a path that ends in a slash is a folder's, and stands before what is in it.
struct MadeEntry {
    std::string path;
    std::uint64_t size;
    std::uint8_t marks = 0;
};

StoredScan madeScan(const std::vector<MadeEntry>& list) {
    std::deque<RecordedEntry> entries;
    std::map<std::string, RecordedEntry*> folders;
    std::deque<std::string> names;
    ScanRecord record;
    record.facts = {.root = "/p", .entries = 100};
    for (const MadeEntry& made : list) {
        RecordedEntry& entry = entries.emplace_back();
        entry.isFolder = made.path.ends_with('/');
        const std::string path = made.path.substr(0, made.path.size() - (entry.isFolder ? 1 : 0));
        const auto slash = path.rfind('/');
        entry.name = names.emplace_back(path.substr(slash + 1)).c_str();
        entry.size = entry.onDisk = made.size;
        entry.marks = made.marks;
        const bool isTop = slash == std::string::npos;
        if (isTop) record.facts.size += made.size;
        RecordedEntry*& above = isTop ? record.first : folders.at(path.substr(0, slash))->first;
        entry.next = std::exchange(above, &entry);
        if (entry.isFolder) folders[path] = &entry;
    }
    return *parseScan(encodeScan(record));
}

// By weight at each level: what it is, its change, and what is said of it.
std::string changesInOrder(const ScanDifference& difference, const ScanChange& folder) {
    std::string out;
    for (const std::uint32_t each : difference.children(folder)) {
        const ScanChange& change = difference.all()[each];
        const char* const kinds[] = {"", "came ", "went "};
        out += fmt::format("{}{} {:+}", kinds[std::size_t(change.kind)], difference.name(change),
                           change.change());
        if (change.weight != std::uint64_t(std::abs(change.change())))
            out += fmt::format(" of {}", change.weight);
        if (const auto under = difference.hiddenUnder(change)) out += fmt::format(" <{}", under);
        out += change.isUnseen ? " unseen" : change.isPartial ? " partial" : "";
        out += change.isCovered ? " covered" : "";
        out += " {" + changesInOrder(difference, change) + "} ";
    }
    return out;
}

TEST(ScanDifference, tellsNoMoreThanBothScansKnow) {
    constexpr std::uint8_t unread = FSNode::Unread | FSNode::UnreadWithin;
    constexpr std::uint8_t foreign = FSNode::Foreign | FSNode::ForeignWithin;
    constexpr std::uint64_t mega = 1'000'000;
    const std::vector<MadeEntry> deep{{"d/", 3 * mega}, {"d/e/", 3 * mega}, {"d/e/f", 3 * mega}};
    const struct {
        const char* what;
        std::vector<MadeEntry> before, after;
        const char* there;
        const char* back;
    } cases[] = {
        {"a folder that could not be read",
         deep,
         {{"d/", 0, unread}},
         "d -3000000 unseen {} ",
         "d +3000000 unseen {} "},
        {"a file system over a folder",
         deep,
         {{"d/", 0, foreign}},
         "d -3000000 unseen covered {} ",
         "d +3000000 unseen covered {} "},
        {"a file that could not be looked at",
         {{"a", 3 * mega}},
         {{"a", 0, unread}},
         "a -3000000 unseen {} ",
         "a +3000000 unseen {} "},
        {"a folder likewise",
         deep,
         {{"d", 0, unread}},
         "d -3000000 unseen {} ",
         "d +3000000 unseen {} "},
        {"one that may have been small", {}, {{"a", 0, unread}}, "", ""},
        {"a file that grew over the bound",
         {{"d/", mega - 1}},
         {{"d/", mega}, {"d/a", mega}},
         "d +1 of 1000000 {came a +1000000 <1000000 {} } ",
         "d -1 of 1000000 {went a -1000000 <1000000 {} } "},
        {"a folder that came", {}, deep, "came d +3000000 {} ", "went d -3000000 {} "},
        {"a file in the place of a folder",
         deep,
         {{"d", 5 * mega}},
         "came d +5000000 {} went d -3000000 {} ",
         "went d -5000000 {} came d +3000000 {} "},
        {"as much lost as won, beside a smaller change",
         {{"x/", 9 * mega}, {"x/a", 9 * mega}, {"y", mega}},
         {{"x/", 9 * mega}, {"x/b", 9 * mega}, {"y", 2 * mega}},
         "x +0 of 9000000 {went a -9000000 <1000000 {} came b +9000000 <1000000 {} } y +1000000 "
         "{} ",
         "x +0 of 9000000 {came a +9000000 <1000000 {} went b -9000000 <1000000 {} } y -1000000 "
         "{} "},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        const StoredScan before = madeScan(each.before);
        const StoredScan after = madeScan(each.after);
        const auto there = ScanDifference::of(before, after);
        const auto back = ScanDifference::of(after, before);
        ASSERT_TRUE(there && back);
        EXPECT_EQ(changesInOrder(*there, there->root()), each.there);
        EXPECT_EQ(changesInOrder(*back, back->root()), each.back);
    }
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(restOfChange(-2, most), -most - 1);
    EXPECT_EQ(restOfChange(most, -1), most);
}

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
    void keep(std::int64_t time, bool allFileSystems = false,
              std::optional<VolumeName> volume = {}) {
        ScanRecord record;
        record.facts.root = tree.at("place");
        record.facts.time = time;
        record.facts.allFileSystems = allFileSystems;
        record.facts.volume = volume;
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
    // One of a clock that was wrong goes first, and never the one that is being kept.
    for (const std::int64_t time : {now + 99 * day, now - day - 1, now - 99 * day}) {
        kept.keep(time);
        const auto all = kept.times();
        EXPECT_EQ(all.size(), ScanHistory::mostOfFolder);
        EXPECT_TRUE(std::ranges::find(all, time) != all.end()) << time - now;
        EXPECT_EQ(all.back(), std::max(time, now));
        EXPECT_EQ(scanBefore(kept.history.list(kept.place), *momentOfWord("last", now))->time, now);
    }
    // A writer that was killed.
    const std::string name = namesIn(kept.tree.at("state/scans")).front();
    ASSERT_TRUE(kept.tree.write("state/scans/" + name + ".new", "names"));
    EXPECT_TRUE(kept.history.forget(kept.place.root));
    EXPECT_TRUE(namesIn(kept.tree.at("state/scans")).empty());
}

TEST(ScanHistory, tellsTheDisksThatLayAtAPathApart) {
    KeptScans kept;
    const VolumeName one{1, 2}, other{3, 4};
    kept.keep(1000);  // of a version that did not note it
    kept.keep(2000, false, one);
    kept.keep(3000, false, other);
    using Times = std::vector<std::int64_t>;
    EXPECT_EQ(kept.times(), (Times{1000, 2000, 3000})) << "whichever";
    kept.place.volume = one;
    EXPECT_EQ(kept.times(), (Times{1000, 2000}));
    EXPECT_EQ(kept.history.load(kept.place, 3000).error().number, ENOENT);
    const auto before = kept.history.load(kept.place, 2000);
    kept.place.volume = other;
    EXPECT_EQ(kept.times(), (Times{1000, 3000}));
    const auto after = kept.history.load(kept.place, 3000);
    ASSERT_TRUE(before && after);
    EXPECT_TRUE(ScanDifference::of(*before, *after)->isOfTwoVolumes());
    EXPECT_FALSE(ScanDifference::of(*after, *after)->isOfTwoVolumes());
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
                kept.tree.folder("state/scans/" + names[0].substr(0, 17) + "7.scan") &&
                kept.tree.write(
                    "state/scans/" + names[0].substr(0, 17) + "-9223372036854775808.scan", "x"));
    ASSERT_EQ(kept.times(), (std::vector<std::int64_t>{1000, 2000, 3000}));
    for (const std::int64_t time : {1000, 3000})
        EXPECT_EQ(kept.history.load(kept.place, time).error().number, EBADMSG) << time;
    EXPECT_TRUE(kept.history.load(kept.place, 2000));
    EXPECT_EQ(kept.times(), std::vector<std::int64_t>{2000});
    EXPECT_EQ(kept.history.load(kept.place, 4000).error().number, ENOENT);
    // A right checksum over a tree that ends too early.
    const auto cut = parseScan(forgedScan('2', std::string_view("\1\1a\2", 4)));
    ASSERT_TRUE(cut && kept.history.keep(*cut));
    const ScanHistory::Place place{"/p", false};
    EXPECT_EQ(kept.history.load(place, cut->facts.time).error().number, EBADMSG);
    EXPECT_TRUE(kept.history.list(place).empty());
    EXPECT_TRUE(kept.history.clear());
    EXPECT_TRUE(kept.times().empty());
    EXPECT_TRUE(isThere(folder + "/x.scan"));
}

}  // namespace
}  // namespace orrinvale
