// The list of largest files: over random trees against the plainest way to the same list, ages as
// they are typed, and the times that a scan finds on the disk.
#include <rapidcheck.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

#include "engine/files/Arena.h"
#include "engine/files/bundleName.h"
#include "engine/largefiles/FileAge.h"
#include "engine/largefiles/LargestFiles.h"
#include "engine/largefiles/OpeningInquiry.h"
#include "engine/largefiles/ScanRun.h"
#include "platform/accessTimes.h"
#include "platform/paths.h"
#include "support/OwnMounts.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::int64_t wholeSecond = 1'000'000'000;

using Order = FileWish::Order;

// A tree of folders with files of few names, sizes and times, so that most are equal in something.
struct FilesAtRandom {
    FilesAtRandom() {
        std::vector<FileNode*> folders{&tree.root()};
        for (const auto& [where, name, size, time] :
             *rc::gen::container<std::vector<std::tuple<std::size_t, int, int, int>>>(
                 rc::gen::tuple(rc::gen::inRange<std::size_t>(0, 1000), rc::gen::inRange(0, 60),
                                rc::gen::inRange(0, 3), rc::gen::inRange(0, 5))))
            add(*folders[where % folders.size()], name, size, time, folders);
    }

    void add(FileNode& folder, int name, int size, int time, std::vector<FileNode*>& folders) {
        static constexpr std::array words{"a",
                                          "longer name of 22 by",
                                          "longer name of 22 bYtes",
                                          "Longer Name of 22 bytes",
                                          "12345678",
                                          "1234567\xff"};
        static constexpr std::array endings{
            "", ".mp4", ".MP4", ".txt", ".zip", ".app", ".a long extension"};
        const auto at = static_cast<std::size_t>(name);
        const std::string full = std::string(words.at(at % words.size())) +
                                 endings.at(at / words.size() % endings.size());
        if (!m_taken.insert({&folder, full}).second) return;
        const bool isFolder = name % 5 == 4;
        FoundEntry entry{.name = m_names.copy(full),
                         .isDirectory = isFolder,
                         .type = isFolder ? FileType::Folder : FileType::Regular,
                         .size = isFolder ? 0 : 1000ULL * static_cast<unsigned>(size),
                         .device = time % 2 == 0 ? 1U : 2U,
                         .modified = (time - 1) * 100 * wholeSecond};
        if (time != 3) entry.accessed = (time * 13 % 7 - 1) * 100 * wholeSecond;
        FileNode* const node = tree.add(folder, {&entry, 1}).front();
        if (isFolder) folders.push_back(node);
    }

    FileNodeTree tree{"/r"};

private:
    Arena m_names;
    std::set<std::pair<const FileNode*, std::string>> m_taken;
};

std::string inSmall(std::string_view name) {
    std::string out(name);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c += 'a' - 'A';
    return out;
}

// The components of a path: texts alone would put "a b/x" before "a/x".
std::vector<std::string> partsOf(const std::string& path) {
    std::vector<std::string> parts;
    std::string_view rest = path;
    while (!rest.empty()) parts.emplace_back(nextComponent(rest));
    return parts;
}

// All files, filtered and sorted the plain way.
std::vector<FileNode*> plainList(FileNode& folder, const FileWish& wish) {
    std::vector<FileNode*> listed;
    for (FileNode* const child : folder.childrenInAnyOrder()) {
        if (child->isDirectory() && !isClosedAmongLargeFiles(child->name())) {
            const auto below = plainList(*child, wish);
            listed.insert(listed.end(), below.begin(), below.end());
            continue;
        }
        const FileKind kind = kindOfExtension(pathExtension(child->name()));
        const bool isOfKind = wish.kinds.empty() || std::ranges::count(wish.kinds, kind) > 0;
        const auto isBy = [](std::optional<std::int64_t> time, std::optional<std::int64_t> last) {
            return !last || (time && *time <= *last);
        };
        const bool isOld = isBy(child->lastWritten(), wish.writtenBy);
        const bool isUnopened = isBy(wish.lastOpened(*child), wish.openedBy);
        if (isOfKind && isOld && isUnopened) listed.push_back(child);
    }
    std::ranges::sort(listed, [&](FileNode* a, FileNode* b) {
        const auto by = [&](const FileNode* node) {
            constexpr std::int64_t unknown = INT64_MAX;
            const std::int64_t sign = wish.isReversed ? -1 : 1;
            const auto size = static_cast<std::int64_t>(node->size());
            const auto byTime = [&](std::optional<std::int64_t> time) {
                return std::pair(time ? sign * *time : unknown, -(size / 1024));
            };
            switch (wish.order) {
                case Order::Size: return std::pair(-sign * size, std::int64_t{0});
                case Order::Written: return byTime(node->lastWritten());
                case Order::Opened: return byTime(wish.lastOpened(*node));
                case Order::Name: break;
            }
            return std::pair(std::int64_t{0}, std::int64_t{0});
        };
        if (by(a) != by(b)) return by(a) < by(b);
        auto namesA = std::pair(inSmall(a->name()), std::string(a->name()));
        auto namesB = std::pair(inSmall(b->name()), std::string(b->name()));
        if (wish.order == Order::Name && wish.isReversed) std::swap(namesA, namesB);
        return namesA != namesB ? namesA < namesB : partsOf(a->path()) < partsOf(b->path());
    });
    return listed;
}

FileWish wishAtRandom() {
    using enum OpeningNotes;
    using Last = std::optional<std::int64_t>;
    using Notes = std::vector<OpeningNotes>;
    FileWish wish;
    if (*rc::gen::arbitrary<bool>()) wish.kinds = {FileKind::Videos, FileKind::Others};
    wish.writtenBy = *rc::gen::element(Last(), Last(), Last(-1), Last(0), Last(200));
    wish.openedBy = *rc::gen::element(Last(), Last(), Last(0), Last(300));
    wish.order = *rc::gen::element(Order::Size, Order::Written, Order::Opened, Order::Name);
    wish.isReversed = *rc::gen::arbitrary<bool>();
    wish.openings = *rc::gen::element(Notes{}, Notes{Kept, NotKept}, Notes{Unanswered, Kept},
                                      Notes{Kept, Kept});
    return wish;
}

TEST(LargestFiles, AreThoseOfAPlainList) {
    EXPECT_TRUE(rc::check([] {
        FilesAtRandom random;
        const FileWish wish = wishAtRandom();
        const std::vector<FileNode*> plain = plainList(random.tree.root(), wish);
        FileWish whenever = wish;
        whenever.openedBy.reset();
        std::uint64_t unknown = 0;
        std::uint64_t unanswered = 0;
        std::uint64_t bytes = 0;
        for (const FileNode* const file : plainList(random.tree.root(), whenever)) {
            if (file->isDirectory() || wish.lastOpened(*file) || !wish.openedBy) continue;
            const bool isSilent = wish.openingsAt(*file) == OpeningNotes::Unanswered;
            ++(isSilent && file->lastOpened() ? unanswered : unknown);
        }
        for (const FileNode* const file : plain) bytes += file->size();

        LargestFiles list(random.tree, wish);
        const auto pace = *rc::gen::inRange<std::size_t>(1, 50);
        while (!list.step(pace)) {}
        RC_ASSERT(list.count() == plain.size());
        RC_ASSERT(list.bytes() == bytes);
        RC_ASSERT(list.unknownCount() == unknown && list.unansweredCount() == unanswered);
        // As far as somebody looks, and further.
        for (std::size_t wanted = 0; wanted < plain.size();
             wanted += *rc::gen::inRange<std::size_t>(1, 40)) {
            const auto rows = list.first(wanted);
            for (std::size_t i = 0; i < wanted; ++i) RC_ASSERT(rows[i].node == plain[i]);
        }
        RC_ASSERT(list.isCurrent());
    }));
}

// Nodes leave the tree before a list of the rest is made and while it is, and somebody looks
// further down the list before meanwhile.
TEST(LargestFiles, OfTheRestAreThoseOfANewList) {
    EXPECT_TRUE(rc::check([] {
        FilesAtRandom random;
        const FileWish wish = wishAtRandom();
        auto list = std::make_shared<LargestFiles>(random.tree, wish);
        list->finish();
        const auto lookAt = [](LargestFiles& at) {
            static_cast<void>(at.first(*rc::gen::inRange<std::size_t>(0, 60)));
        };
        std::size_t left = *rc::gen::inRange<std::size_t>(0, 6);
        const auto takeOne = [&] {
            FileNode* folder = &random.tree.root();
            for (;;) {
                const auto children = folder->childrenInAnyOrder();
                if (children.empty()) return;
                FileNode* const child =
                    children[*rc::gen::inRange<std::size_t>(0, children.size())];
                if (child->childCount() == 0 || *rc::gen::inRange(0, 4) == 0)
                    return folder->removeChild(*child);
                folder = child;
            }
        };
        while (!list->isCurrent() || left > 0) {
            lookAt(*list);
            if (left > 0) takeOne();
            const auto rest = std::make_shared<LargestFiles>(list);
            while (!rest->step(*rc::gen::inRange<std::size_t>(1, 30))) {
                if (left > 0 && --left % 2 == 0) takeOne();
                lookAt(*list);
            }
            left -= left > 0 ? 1U : 0U;
            RC_ASSERT(rest->isOnlyLess());
            list = rest;
        }
        const std::vector<FileNode*> plain = plainList(random.tree.root(), wish);
        std::uint64_t bytes = 0;
        std::uint64_t biggest = 0;
        for (const FileNode* const file : plain) {
            bytes += file->size();
            biggest = std::max(biggest, file->size());
        }
        RC_ASSERT(list->count() == plain.size());
        RC_ASSERT(list->bytes() == bytes && list->biggest() == biggest);
        const auto rows = list->first(plain.size());
        for (std::size_t i = 0; i < plain.size(); ++i) RC_ASSERT(rows[i].node == plain[i]);
        const FoundEntry entry{.name = "more", .type = FileType::Regular};
        static_cast<void>(random.tree.add(random.tree.root(), {&entry, 1}));
        RC_ASSERT_FALSE(list->isOnlyLess());
    }));
}

TEST(LargestFiles, OneDiskThatHangsKeepsNothingOfTheOthers) {
    struct Gate {
        std::mutex mutex;
        std::condition_variable opened;
        bool isOpen = false;
    };
    const auto gate = std::make_shared<Gate>();
    std::vector<std::string> places{"kept", "hangs", "silent", "fails once"};
    std::atomic<int> failures{0};
    places.resize(40, "kept");
    const OpeningInquiry inquiry(
        places, [&, gate](const std::string& place) -> std::optional<bool> {
            if (place == "fails once" && failures++ == 0) return std::nullopt;
            std::unique_lock lock(gate->mutex);
            gate->opened.wait(lock, [&] { return place != "hangs" || gate->isOpen; });
            return place != "silent" && place != "hangs";
        });
    using enum OpeningNotes;
    std::vector<OpeningNotes> wanted(40, Kept);
    wanted[1] = Unanswered;
    wanted[2] = NotKept;
    std::vector<OpeningNotes> told;
    for (int tries = 0; tries < 1000 && told != wanted; ++tries)
        told = inquiry.wait(std::chrono::milliseconds(10));
    EXPECT_EQ(told, wanted);
    {
        const std::lock_guard lock(gate->mutex);
        gate->isOpen = true;
    }
    gate->opened.notify_all();
    wanted[1] = NotKept;
    EXPECT_EQ(inquiry.wait(std::chrono::minutes(1)), wanted) << "and it is told when it comes";
}

// More of one size than are compared one by one, with names that differ late.
TEST(LargestFiles, OfOneSizeStandByNameHowMuchIsLookedAt) {
    constexpr std::size_t count = 50'000;
    FileNodeTree tree("/r");
    Arena names;
    std::vector<FoundEntry> entries(count);
    for (std::size_t i = 0; i < count; ++i)
        entries[i].name = names.copy(fmt::format("the same beginning {:05}", i * 7'919 % count));
    tree.add(tree.root(), entries);
    LargestFiles list(tree, {});
    list.finish();
    for (const std::size_t wanted : {std::size_t{10}, std::size_t{3'000}, count}) {
        const auto rows = list.first(wanted);
        for (std::size_t i = 0; i < wanted; ++i)
            ASSERT_EQ(rows[i].node->name(), fmt::format("the same beginning {:05}", i));
    }
}

TEST(LargestFiles, AgesAreReadAsTheyAreTyped) {
    constexpr std::uint64_t day = 86'400;
    const struct {
        const char* text;
        std::optional<std::uint64_t> seconds;
    } cases[] = {{"10d", 10 * day}, {"2 W", 14 * day}, {"6m", 180 * day},   {"1y", 365 * day},
                 {"0d", 0},         {"d", {}},         {"1", {}},           {"", {}},
                 {"-1d", {}},       {"1.5y", {}},      {"9999999999y", {}}, {"1h", {}}};
    for (const auto& [text, seconds] : cases) EXPECT_EQ(parseAge(text), seconds) << text;
    EXPECT_EQ(lastSecondOf(day, 10 * day), 9 * day);
    EXPECT_EQ(lastSecondOf(100 * day, 10 * day), FileNode::before1970);
}

// Before 1970, right then, in the future, after 2106; read before and after it was written; on a
// disk that tells no time of opening.
TEST(LargestFiles, TimesAreThoseOfTheDisk) {
    const struct {
        const char* name;
        std::int64_t accessed, modified;
        std::optional<std::int64_t> opened, written;
    } cases[] = {{"usual", 3'000, 2'000, 3'000, 2'000},
                 {"written", 2'000, 3'000, 3'000, 3'000},
                 {"early", -5, -5, FileNode::before1970, FileNode::before1970},
                 {"first", 0, 0, 0, 0},
                 {"none", 0, 4'000, {}, 4'000},
                 {"late", 5'000'000'000, 5'000'000'000, FileNode::from2106, FileNode::from2106}};
    TestTree disk("/dev/shm");
    for (const auto& each : cases) {
        ASSERT_TRUE(disk.write(each.name, "x"));
        const timespec times[]{{.tv_sec = each.accessed, .tv_nsec = 0},
                               {.tv_sec = each.modified, .tv_nsec = 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, disk.at(each.name).c_str(), times, 0), 0);
    }
    ASSERT_TRUE(disk.folder("folder"));
    testing::ScanRun run(files, disk.path());
    for (const auto& each : cases) {
        const FileNode& node = *testing::nodeAt(*run.tree, each.name);
        EXPECT_EQ(node.lastOpened(), each.opened) << each.name;
        EXPECT_EQ(node.lastWritten(), each.written) << each.name;
    }
    EXPECT_FALSE(testing::nodeAt(*run.tree, "folder")->lastWritten());
    FileNodeTree tree("/r");
    const FoundEntry entry{.name = "could not be looked at"};
    EXPECT_FALSE(tree.add(tree.root(), {&entry, 1}).front()->lastWritten());
}

// A mount within the folder that keeps no times of opening, whatever the folder around it does.
TEST(LargestFiles, KnowWhereOpeningLeavesNoTime) {
    testing::withOwnMounts([]() -> std::string {
        using testing::mountRam;
        for (const char* const folder : {"/mnt/plain", "/mnt/silent", "/mnt/fixed"})
            if (!mountRam(folder)) return "skip: no tmpfs";
        for (const char* const file : {"/mnt/plain/f", "/mnt/silent/f", "/mnt/fixed/f"})
            std::ofstream(file) << 'x';
        if (::mount(nullptr, "/mnt/silent", nullptr, MS_REMOUNT | MS_NOATIME, nullptr) != 0 ||
            ::mount(nullptr, "/mnt/fixed", nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
            return "skip: no remount";
        testing::ScanRun run(files, "/mnt");
        LargestFiles list(*run.tree,
                          {.openedBy = UINT32_MAX,
                           .openings = OpeningInquiry(*run.tree).wait(std::chrono::minutes(1))});
        list.finish();
        std::string listed;
        for (const auto& row : list.first(list.count())) listed += row.node->path() + ' ';
        return listed == "/mnt/plain/f " && list.unknownCount() == 2
                   ? ""
                   : fmt::format("{}and {} unknown", listed, list.unknownCount());
    });
}

}  // namespace
}  // namespace orrinvale
