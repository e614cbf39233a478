// What searches remember: the same groups as without it after whatever happens to files, clocks
// and the file that keeps it, and nothing read that is known.
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/MadeUpTimes.h"
#include "engine/duplicates/cache/HashCache.h"
#include "engine/duplicates/cache/HashFile.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "engine/removal/PairList.h"
#include "engine/removal/stayReasons.h"
#include "support/realFiles.h"

namespace orrinvale {
namespace {

using testing::MadeUpTimes;
using Groups = std::vector<Strings>;

constexpr std::int64_t second = MadeUpTimes::second;

class Remembered : public ::testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<HashCache> newCache(const MadeUpTimes& of,
                                                      const std::string& where) const {
        HashCacheParts parts;
        parts.now = [&of] { return of.now; };
        parts.mostBytes = mostBytes;
        parts.volumeOf = [&of](int) -> SysResult<VolumeName> {
            if (!of.volume) return tl::unexpected(ENOTSUP);
            return *of.volume;
        };
        return std::make_shared<HashCache>(where, parts);
    }

    Groups search(bool remembers = true) {
        SearchRequest request;
        request.roots = {files.tree.path()};
        if (remembers) request.cache = newCache(files, path);
        DuplicateFilesOpt search(files);
        files.opened = 0;
        search.beginSearch(request);
        Groups groups;
        search.visitGroups([&](const DuplicateGroup& group) {
            Strings& names = groups.emplace_back();
            for (const auto* file : group.files) names.push_back(file->filePathName());
        });
        search.getDuplicateFiles(&tree);
        hashedBytes = search.search()->counts().hashedBytes;
        return groups;  // what was read is kept when this returns
    }

    // A little of all that a search tells apart.
    void makeFiles() {
        std::string large(40'000, 'l');
        files.write("a/small", "the same"), files.write("b/small", "the same");
        files.write("a/other", "not same");
        files.write("a/large", large), files.write("b/large", large);
        large[20'000] = '-', files.write("b/middle", large);
        large.back() = '-', files.write("b/tail", large);
        large.front() = '-', files.write("b/head", large);
        files.write("alone", "of its size alone");
        files.now += 61 * second;
    }

    // In memory where there is a folder for that: a search writes and flushes.
    TestTree cacheTree{isThere("/dev/shm") ? "/dev/shm" : ""};
    const std::string path = cacheTree.at("own/file-hashes");
    MadeUpTimes files;
    std::uint64_t mostBytes = 1 << 20U;
    std::uint64_t hashedBytes = 0;
    std::shared_ptr<SimpleTreeNode> tree;
};

TEST_F(Remembered, ASecondSearchReadsNothingAndAThirdWhatChanged) {
    makeFiles();
    const Groups first = search();
    EXPECT_EQ(first.size(), 2U);
    EXPECT_GT(files.opened, 0);
    EXPECT_EQ(search(), first);
    EXPECT_EQ(files.opened, 0);
    EXPECT_EQ(hashedBytes, 0U);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_EQ(hashCacheSize(path).files, 8U);

    files.write("b/small", "by now other"), files.write("a/other", "the same");
    files.now += 61 * second;
    const Groups third = search();
    EXPECT_EQ(files.opened, 1);  // the other one's size is its own
    EXPECT_EQ(third, search(false));
    EXPECT_NE(third, first);
    ASSERT_TRUE(clearHashCache(path));
    (void)search();
    EXPECT_GT(files.opened, 1);
}

TEST_F(Remembered, InDoubtAFileIsRead) {
    const struct {
        const char* what;
        std::function<void()> doubt;    // before the first search
        std::function<void()> between;  // before the second
    } cases[] = {
        {"changed a moment before",
         [this] { files.setModified("a/small", 1), files.now += 60 * second - 1; },
         {}},
        {"written a moment before",
         [this] { files.of("a/small").modified = files.now - 60 * second + 1; },
         {}},
        {"from the future", [this] { files.of("a/small").modified = files.now + 9 * second; }, {}},
        {"a clock of whole seconds", [this] { files.of("a/small").changed = 7 * second; }, {}},
        {"numbers that do not last", [this] { files.numbersPass = true; }, {}},
        {"a file system without a name", [this] { files.volume.reset(); }, {}},
        {"another file system",
         {},
         [this] {
             files.volume = VolumeName{3, 4};
         }},
        {"another inode", {}, [this] { files.of("a/small").inode += 1000; }},
        {"another time of modification", {}, [this] { ++files.of("a/small").modified; }},
        {"another time of change", {}, [this] { ++files.of("a/small").changed; }},
        {"another time of making", {}, [this] { ++files.of("a/small").born; }},
        {"another size, and all times as before",
         {},
         [this] { files.tree.write("a/small", "of its size alone"); }},
        {"the clock was set back", {}, [this] { files.now -= 1; }},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        files.volume = VolumeName{1, 2}, files.numbersPass = false;
        for (const char* name : {"a", "b", "alone"})
            std::filesystem::remove_all(files.tree.at(name));
        (void)clearHashCache(path);
        makeFiles();
        if (each.doubt) each.doubt();
        (void)search();
        if (each.between) each.between();
        const Groups groups = search();
        EXPECT_GT(files.opened, 0);
        EXPECT_EQ(groups, search(false));
    }
}

// What people, programs and machines do to files between two searches.
void someChange(MadeUpTimes& disk, std::mt19937& chance) {
    const auto below = [&](unsigned count) { return static_cast<int>(chance() % count); };
    const auto name = [&] { return fmt::format("{}/{}", "ab"[below(2)], below(5)); };
    const auto bytes = [&] {
        std::string text(below(3) == 0 ? 33'000 : 700, 'x');
        text[std::array<std::size_t, 3>{0, text.size() / 2, text.size() - 1}[chance() % 3]] =
            "xy"[below(2)];
        return text;
    };
    const std::string one = name();
    const bool isOne = isThere(disk.tree.at(one));
    switch (below(10)) {
        case 0:
        case 1: disk.write(one, bytes()); break;
        case 2:  // written, and the times set back
            if (!isOne) break;
            {
                const std::int64_t before = disk.of(one).modified;
                disk.write(one, bytes());
                disk.setModified(one, before);
            }
            break;
        case 3:  // replaced by another file of the same times
            if (!isOne) break;
            disk.write("new", bytes());
            disk.setModified("new", disk.of(one).modified);
            disk.rename("new", one);
            break;
        case 4:
            if (const std::string other = name(); isOne && other != one) disk.rename(one, other);
            break;
        case 5:
            if (isOne) disk.link(one, name());
            break;
        case 6: disk.remove(one); break;
        case 7:  // mounted anew
            disk.device = 0x800 + unsigned(below(3));
            disk.volume = below(4) == 0 ? std::nullopt : std::optional(VolumeName{1, 2});
            disk.numbersPass = below(4) == 0;
            if (disk.numbersPass) disk.renumber(chance);
            break;
        case 8:  // somebody sets the clock
            disk.now += (chance() % 2 == 0 ? 1 : -1) * std::int64_t(chance() % 4'000'000'000);
            break;
        default: break;
    }
    constexpr std::array<std::int64_t, 5> steps{0, 4'000'000, second, 61 * second, 86'400 * second};
    disk.now += steps[chance() % steps.size()];
}

TEST_F(Remembered, AThousandHistoriesEndInTheGroupsOfASearchWithoutIt) {
    int opened = 0;
    int openedWithout = 0;
    for (unsigned history = 0; history < 1000; ++history) {
        std::mt19937 chance(history);
        for (int step = 0; step < 12; ++step) {
            someChange(files, chance);
            if (chance() % 3 != 0) continue;
            const Groups found = search();
            opened += files.opened;
            const Groups expected = search(false);
            openedWithout += files.opened;
            ASSERT_EQ(found, expected) << "history " << history << ", step " << step;
        }
    }
    EXPECT_LT(opened * 3, openedWithout * 2) << "little was remembered";
}

TEST_F(Remembered, AForgedFileIsAMissAndIsReplaced) {
    makeFiles();
    const Groups groups = search();
    const std::string sound = contentOf(path);
    std::mt19937 chance(5);
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        std::string bytes = sound;
        for (auto spots = 1 + chance() % 3; spots > 0; --spots)
            bytes[chance() % bytes.size()] = static_cast<char>(chance());
        if (round % 4 == 1) bytes.resize(chance() % bytes.size());
        if (round % 4 == 2) bytes = testing::someBytes(chance() % 9000, unsigned(round));
        if (round % 4 == 3)  // records in another order
            std::swap_ranges(bytes.begin() + 4096, bytes.begin() + 4096 + 56,
                             bytes.begin() + 4096 + std::ptrdiff_t(56 * (1 + chance() % 7)));
        cacheTree.write("own/file-hashes", bytes);
        ASSERT_EQ(search(), groups);
    }
    // Of another version, of another machine, or false with a right sum.
    const struct {
        const char* what;
        std::function<void(HashHeader&)> change;
    } headers[] = {
        {"version", [](HashHeader& header) { ++header.version; }},
        {"order", [](HashHeader& header) { header.order = 0x04030201; }},
        {"count", [](HashHeader& header) { ++header.count; }},
        {"volumes", [](HashHeader& header) { header.volumeCount = HashHeader::mostVolumes + 1; }},
        {"stretches", [](HashHeader& header) { ++header.stretchBits; }}};
    for (const auto& [what, change] : headers) {
        HashHeader header;
        std::memcpy(&header, sound.data(), sizeof header);
        change(header);
        header.check = sumOf(header);
        std::string bytes = sound;
        std::memcpy(bytes.data(), &header, sizeof header);
        cacheTree.write("own/file-hashes", bytes);
        EXPECT_EQ(search(), groups) << what;
        EXPECT_GT(files.opened, 0) << what;
    }
    cacheTree.write("own/file-hashes", "cut short");
    EXPECT_EQ(search(), groups);
    EXPECT_EQ(search(), groups);
    EXPECT_EQ(files.opened, 0) << "it was not replaced";
    ASSERT_TRUE(cacheTree.setMode("own/file-hashes", 0620));
    EXPECT_EQ(search(), groups);
    EXPECT_GT(files.opened, 0) << "others may have written it";
    if (::geteuid() != 0) return;
    ASSERT_TRUE(cacheTree.giveAway({"own/file-hashes"}));
    EXPECT_EQ(search(), groups);
    EXPECT_GT(files.opened, 0) << "it was another's";
    EXPECT_EQ(search(), groups);
    EXPECT_EQ(files.opened, 0);
}

TEST_F(Remembered, WhatWasForgottenWhileASearchRanStaysForgotten) {
    makeFiles();
    (void)search();
    files.write("a/new", "the same"), files.write("b/new", std::string(100'000, 'n'));
    files.write("b/newer", std::string(100'000, 'n'));
    files.now += 61 * second;
    int asked = 0;
    HashCacheParts parts;
    parts.volumeOf = [this](int) -> SysResult<VolumeName> { return *files.volume; };
    parts.now = [&] {
        // Between its begin() and its keep().
        if (++asked == 2) {
            EXPECT_TRUE(clearHashCache(path));
        }
        return files.now;
    };
    SearchRequest request;
    request.roots = {files.tree.path()};
    request.cache = std::make_shared<HashCache>(path, parts);
    DuplicateFilesOpt(files).beginSearch(request);
    EXPECT_GE(asked, 2);
    EXPECT_FALSE(isThere(path));

    // What a kill left counts, and goes too.
    ASSERT_TRUE(cacheTree.write("own/file-hashes.new", "unfinished"));
    EXPECT_EQ(hashCacheSize(path).bytes, 10U);
    ASSERT_TRUE(clearHashCache(path));
    EXPECT_TRUE(namesIn(cacheTree.at("own")).empty());
}

TEST_F(Remembered, WhatWasNotUsedForLongestGoesFirst) {
    mostBytes = hashFileSize(9, stretchBitsFor(9));
    files.reusesNumbers = false;
    for (const char* folder : {"old", "later", "new"}) {
        for (int at = 0; at < 4; ++at) files.write(fmt::format("{}/{}", folder, at), folder);
        files.now += 30 * 86'400 * second;
        (void)search();
        for (int at = 0; at < 2; ++at) files.remove(fmt::format("{}/{}", folder, at));
    }
    // Of four that are gone three had to go: two of the one day, and one of the other.
    EXPECT_EQ(hashCacheSize(path).files, 9U);
    EXPECT_EQ(std::filesystem::file_size(path), mostBytes);
    (void)search();
    EXPECT_EQ(files.opened, 0) << "what is there still was used last";
}

TEST_F(Remembered, TwoWritersKeepWhatTheOtherFoundOut) {
    MadeUpTimes others;
    others.now = files.now, others.device = 0x900, others.volume = VolumeName{5, 6};
    for (int round = 0; round < 10; ++round) {
        for (MadeUpTimes* each : {&files, &others}) {
            for (int at = 0; at < 40; ++at)
                each->write(fmt::format("{}/{}", round, at), fmt::format("{}", round));
            each->now += 61 * second;
        }
        const auto run = [this](MadeUpTimes& system) {
            SearchRequest request;
            request.roots = {system.tree.path()};
            request.cache = newCache(system, path);
            DuplicateFilesOpt(system).beginSearch(request);
        };
        std::thread beside([&] { run(others); });
        run(files);
        beside.join();
    }
    (void)search();
    EXPECT_EQ(files.opened, 0);
}

TEST_F(Remembered, AFullDiskCostsWhatIsRememberedAlone) {
    withOwnMounts([this] {
        if (::mount("small", "/mnt", "tmpfs", 0, "size=8k") != 0)
            return std::string("skip: no tmpfs");
        for (int at = 0; at < 200; ++at) files.write(fmt::format("{}", at), "same");
        files.now += 61 * second;
        SearchRequest request;
        request.roots = {files.tree.path()};
        request.cache = newCache(files, "/mnt/file-hashes");
        const LogLines log;
        int groups = 0;
        {
            DuplicateFilesOpt search(files);
            search.beginSearch(request);
            search.visitGroups([&](const DuplicateGroup&) { ++groups; });
        }
        if (groups != 1) return fmt::format("{} groups", groups);
        if (!namesIn("/mnt").empty()) return std::string("something was left there");
        for (const std::string& line : log.lines)
            if (line.find("is not remembered: /mnt/file-hashes") != std::string::npos)
                return std::string();
        return std::string("nothing told");
    });
}

// A program that writes through a mapping leaves no trace in the times for a while.
TEST_F(Remembered, WhatRestsOnItIsComparedBeforeItGoes) {
    makeFiles();
    (void)search();
    files.tree.write("a/small", "the Same");
    const Groups groups = search();
    ASSERT_EQ(groups.size(), 2U) << "times told of a change that was to be without a trace";
    std::shared_ptr<TreeNode> group;
    for (std::size_t at = 0; at < tree->numberOfChildren(); ++at)
        if (simpleData(*tree->childAtIndex(at)->childAtIndex(0))->fileSize() == 8)
            group = tree->childAtIndex(at);
    ASSERT_NE(group, nullptr);
    simpleData(*group)->setSelectNum(2);
    simpleData(*group->childAtIndex(0))->setSelectNum(1);
    const auto remove = [&] {
        RemovalPlan plan(files, {group->childAtIndex(0)}, RemovalPlan::Comparing::Never);
        auto telling = testing::nobodyTold();
        std::string told;
        telling.settled = [&](std::size_t, const RemovalResult& result) {
            told = result.gone ? "gone" : result.failures.front().reason;
        };
        (void)testing::removeAll(files, cacheTree.at("state"), plan, telling);
        return told;
    };
    EXPECT_EQ(remove(), stay::otherContents);
    // The files of a search that read them go by its word, as the setting says.
    for (std::size_t at = 0; at < 2; ++at) simpleData(*group->childAtIndex(at))->setRecalled(false);
    EXPECT_EQ(remove(), "gone");
}

}  // namespace
}  // namespace orrinvale
