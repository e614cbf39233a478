// One copy on its way out: what lets it go, what keeps it, and that nothing is lost whatever
// happens between two steps.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/files/asideName.h"
#include "engine/removal/PairList.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalRun.h"
#include "engine/removal/stayReasons.h"
#include "support/OwnMounts.h"
#include "support/ServedFiles.h"
#include "support/TestTree.h"

namespace orrinvale {
namespace {

using testing::contentOf;
using testing::isThere;
using testing::PairList;
using testing::TestTree;
using testing::WatchedFiles;

struct Removed {
    RemovalOutcome outcome;
    [[nodiscard]] std::string reason() const {
        return outcome.stayed.empty() ? std::string() : outcome.stayed.front().reason;
    }
};

Removed run(const FileSystem& files, PairList& list, const std::string& state) {
    PlainDoor door(files, {});
    const std::atomic<bool> never{false};
    RemovalRun removal(files, state, list, door, never,
                       {.waiting = [](bool) {},
                        .begins = [](std::size_t, const std::string&, bool) {},
                        .settled = [](std::size_t, const RemovalResult&) {}});
    Removed out{removal.run()};
    removal.settleJournal();
    return out;
}

bool isAnythingAside(const std::string& folder) {
    bool found = false;
    DIR* const listing = ::opendir(folder.c_str());
    if (listing == nullptr) return false;
    while (const dirent* const entry = ::readdir(listing))
        found = found || isAsideName(entry->d_name);
    ::closedir(listing);
    return found;
}

// Two files of equal contents, "a" to go and "b" to stay; what happens before the removal, and what
// becomes of them.
TEST(CopyRemoval, GoesOnlyForACopyThatIsThere) {
    struct Case {
        const char* what;
        std::function<void(TestTree&)> before;  // since the scan
        bool goes;
        std::string_view reason;
    };
    const std::string bytes = testing::someBytes(300'000, 1);
    const auto keepTimes = [](TestTree& tree, const char* name, std::uint64_t offset) {
        struct stat seen {};
        (void)::stat(tree.at(name).c_str(), &seen);
        tree.patch(name, offset, "x");
        const timespec times[] = {seen.st_atim, seen.st_mtim};
        (void)::utimensat(AT_FDCWD, tree.at(name).c_str(), times, 0);
    };
    const std::vector<Case> cases{
        {"nothing", [](TestTree&) {}, true, {}},
        {"the copy is gone", [](TestTree& tree) { ::unlink(tree.at("b").c_str()); }, false,
         stay::noCopy},
        {"the copy was written to", [](TestTree& tree) { tree.patch("b", 299'999, "x"); }, false,
         stay::noCopy},
        {"the copy is a link now",
         [](TestTree& tree) {
             ::unlink(tree.at("b").c_str());
             tree.symlink("a", "b");
         },
         false, stay::noCopy},
        {"the one to go was written to and its time set back",
         [&](TestTree& tree) { keepTimes(tree, "a", 5); }, false, stay::changed},
        {"the one to go is another file",
         [&](TestTree& tree) {
             tree.write("c", bytes);
             ::rename(tree.at("c").c_str(), tree.at("a").c_str());
         },
         false, stay::changed},
    };
    for (const Case& c : cases) {
        TestTree tree;
        const LinuxFileSystem files;
        ASSERT_TRUE(tree.write("a", bytes) && tree.write("b", bytes));
        PairList list(files, tree.at("none"), {});
        list.add(tree.at("a"), tree.at("b"));
        c.before(tree);
        const Removed removed = run(files, list, tree.at("state"));
        EXPECT_EQ(isThere(tree.at("a")), !c.goes) << c.what;
        EXPECT_EQ(removed.outcome.removed, c.goes ? 1U : 0U) << c.what;
        EXPECT_EQ(removed.reason(), c.reason) << c.what;
        EXPECT_FALSE(isAnythingAside(tree.path())) << c.what;
    }
}

// Equal by sizes and times, and yet not by their contents: as a mapping that was dirty before the
// scan leaves them.
TEST(CopyRemoval, ContentsDecide) {
    for (const std::uint64_t at :
         {std::uint64_t{0}, std::uint64_t{262'144}, std::uint64_t{599'999}}) {
        TestTree tree;
        const LinuxFileSystem files;
        const std::string bytes = testing::someBytes(600'000, 1);
        ASSERT_TRUE(tree.write("a", bytes) && tree.write("b", bytes) &&
                    tree.patch("b", at, "\x01\x02\x03"));
        PairList list(files, tree.at("none"), {});
        list.add(tree.at("a"), tree.at("b"));
        EXPECT_EQ(run(files, list, tree.at("state")).reason(), stay::otherContents) << at;
        EXPECT_TRUE(isThere(tree.at("a")));
    }
}

TEST(CopyRemoval, WhatIsOpenOrMappedForWritingStays) {
    for (const bool isMapped : {false, true})
        for (const char* const name : {"a", "b"}) {
            TestTree tree;
            const LinuxFileSystem files;
            ASSERT_TRUE(tree.write("a", "the same") && tree.write("b", "the same"));
            PairList list(files, tree.at("none"), {});
            list.add(tree.at("a"), tree.at("b"));
            const int file = ::open(tree.at(name).c_str(), O_RDWR | O_CLOEXEC);
            ASSERT_GE(file, 0);
            void* const map = isMapped
                                  ? ::mmap(nullptr, 8, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                                  : MAP_FAILED;
            if (isMapped) ::close(file);
            EXPECT_EQ(run(files, list, tree.at("state")).reason(),
                      *name == 'a' ? stay::inUse : stay::copyInUse);
            if (isMapped) ::munmap(map, 8);
            else ::close(file);
            EXPECT_EQ(run(files, list, tree.at("state")).outcome.removed, 1U);
        }
}

// Between the steps of a removal somebody acts. Whatever becomes of the removal, the bytes of "a"
// and what came in its place are not lost.
TEST(CopyRemoval, NothingIsLostBetweenTheSteps) {
    struct Case {
        const char* what;
        const char* step;
        std::function<void(TestTree&)> act;
    };
    const auto findAside = [](TestTree& tree) {
        std::string found;
        DIR* const listing = ::opendir(tree.path().c_str());
        while (const dirent* const entry = ::readdir(listing))
            if (isAsideName(entry->d_name)) found = tree.at(entry->d_name);
        ::closedir(listing);
        return found;
    };
    const auto save = [](TestTree& tree) {
        tree.write("new", "saved anew");
        ::rename(tree.at("new").c_str(), tree.at("a").c_str());
    };
    const std::vector<Case> cases{
        {"a file is saved over it before it is set aside", "renameInside", save},
        {"a file is saved under its name while it is aside", "freshAttributes", save},
        {"a file is saved under its name before it goes", "removeEntry", save},
        {"the copy goes while it is aside", "freshAttributes",
         [](TestTree& tree) { ::unlink(tree.at("b").c_str()); }},
        {"the copy is exchanged while it is aside", "freshAttributes",
         [](TestTree& tree) { tree.write("b", "other"); }},
        {"it is written to while it is aside", "freshAttributes",
         [&](TestTree& tree) {
             const std::string aside = findAside(tree);
             if (!aside.empty()) (void)!::truncate(aside.c_str(), 3);
         }},
    };
    for (const Case& c : cases) {
        TestTree tree;
        WatchedFiles files;
        ASSERT_TRUE(tree.write("a", "the same") && tree.write("b", "the same"));
        PairList list(files, tree.at("none"), {});
        list.add(tree.at("a"), tree.at("b"));
        bool isDone = false;
        files.beforeRemoval = [&](const char* operation) {
            if (isDone || std::string_view(operation) != c.step) return;
            isDone = true;
            c.act(tree);
        };
        (void)run(files, list, tree.at("state"));
        ASSERT_TRUE(isDone) << c.what;
        files.beforeRemoval = nullptr;
        const std::string a = contentOf(tree.at("a"));
        const std::string b = contentOf(tree.at("b"));
        const std::string aside = findAside(tree);
        const bool isSaved = std::string_view(c.what).find("saved") != std::string_view::npos;
        if (isSaved) {
            EXPECT_EQ(a, "saved anew") << c.what;
        }
        const bool isOldThere = a == "the same" || b == "the same" ||
                                contentOf(aside) == "the same" || a == "the" ||
                                contentOf(aside) == "the";
        EXPECT_TRUE(isOldThere) << c.what;
    }
}

// Its own name was taken: it is told with its place, and the next start looks after it.
TEST(CopyRemoval, ATakenNameLeavesItAsideAndTold) {
    TestTree tree;
    WatchedFiles files;
    ASSERT_TRUE(tree.write("a", "the same") && tree.write("b", "the same"));
    PairList list(files, tree.at("none"), {});
    list.add(tree.at("a"), tree.at("b"));
    int looks = 0;
    files.beforeRemoval = [&](const char* operation) {
        if (std::string_view(operation) != "freshAttributes" || ++looks != 2) return;
        tree.write("a", "saved anew");
        ::unlink(tree.at("b").c_str());
    };
    const Removed removed = run(files, list, tree.at("state"));
    ASSERT_FALSE(removed.outcome.stayed.empty());
    EXPECT_EQ(removed.outcome.stayed.front().kind, StayReason::Aside);
    EXPECT_EQ(contentOf(removed.outcome.stayed.front().path), "the same");
    EXPECT_EQ(contentOf(tree.at("a")), "saved anew");
    EXPECT_EQ(bringBackAside(files, tree.at("state/removals")).stayed.size(), 1U);
}

// Another name of the same file has a new time of change by our own doing, and exactly that one is
// excused.
TEST(CopyRemoval, HardLinksAreCopiesOfEachOther) {
    TestTree tree;
    WatchedFiles files;
    ASSERT_TRUE(tree.write("a", "the same") && tree.hardLink("a", "b"));
    PairList list(files, tree.at("none"), {});
    list.add(tree.at("a"), tree.at("b"));
    EXPECT_EQ(run(files, list, tree.at("state")).outcome.removed, 1U);
    EXPECT_EQ(contentOf(tree.at("b")), "the same");
}

// As an ordinary user, in a folder of somebody else: told as a lack of rights, and nothing was
// moved.
TEST(CopyRemoval, ALackOfRightsIsTold) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make a folder of someone else";
    TestTree tree;
    ASSERT_TRUE(tree.write("theirs/a", "the same") && tree.write("b", "the same") &&
                tree.folder("state"));
    ASSERT_EQ(::chown(tree.at("state").c_str(), 65534, 65534), 0);
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true},
                                  [&]() -> std::string {
                                      const LinuxFileSystem files;
                                      PairList list(files, tree.at("none"), {});
                                      list.add(tree.at("theirs/a"), tree.at("b"));
                                      const Removed removed = run(files, list, tree.at("state"));
                                      if (!removed.outcome.lacksRights)
                                          return "no lack of rights: " + removed.reason();
                                      return isThere(tree.at("theirs/a")) ? "" : "it went";
                                  }),
              "");
}

// One file by two paths. The copy that "stays" is the one that goes, whatever the numbers say.
TEST(CopyRemoval, ASecondViewOfOneFileIsNoCopy) {
    testing::withOwnMounts([]() -> std::string {
        const auto make = [](const char* folder) { return ::mkdir(folder, 0755) == 0; };
        for (const char* const folder : {"/mnt/lower", "/mnt/upper", "/mnt/work", "/mnt/merged",
                                         "/mnt/real", "/mnt/bound", "/mnt/state"})
            if (!make(folder)) return std::string("mkdir ") + folder;
        const auto write = [](const std::string& path) {
            const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            const bool isGood = file >= 0 && ::write(file, "the same", 8) == 8;
            ::close(file);
            return isGood;
        };
        if (!write("/mnt/lower/l") || !write("/mnt/upper/u") || !write("/mnt/real/r"))
            return "write";
        if (::mount("/mnt/real", "/mnt/bound", nullptr, MS_BIND, nullptr) != 0)
            return "skip: no bind mounts";
        if (::mount("overlay", "/mnt/merged", "overlay", 0,
                    "lowerdir=/mnt/lower,upperdir=/mnt/upper,workdir=/mnt/work") != 0)
            return "skip: no overlay";
        const std::vector<std::pair<std::string, std::string>> pairs{
            {"/mnt/bound/r", "/mnt/real/r"},
            {"/mnt/real/r", "/mnt/bound/r"},
            {"/mnt/merged/u", "/mnt/upper/u"},
            {"/mnt/upper/u", "/mnt/merged/u"},
            {"/mnt/lower/l", "/mnt/merged/l"}};
        const LinuxFileSystem files;
        for (const auto& [leaving, staying] : pairs) {
            PairList list(files, "/mnt/none", {});
            list.add(leaving, staying);
            if (list.size() != 1) return leaving + " is not there any more";
            const Removed removed = run(files, list, "/mnt/state");
            if (!isThere(leaving) || !isThere(staying))
                return leaving + " went, with " + staying + " as its copy";
            if (removed.outcome.failed != 1) return leaving + " is told as removed";
        }
        return {};
    });
}

// A server whose answers are remembered for a minute still shows the file that goes, unless it is
// asked anew.
TEST(CopyRemoval, ASecondViewThatIsRememberedIsNoCopy) {
    testing::ServedFiles served({"cache"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    for (const bool isServedLeaving : {false, true}) {
        const LinuxFileSystem files;
        TestTree state;
        ASSERT_TRUE(served.source().write("a", "the same"));
        const std::string real = served.source().at("a");
        PairList list(files, state.at("none"), {});
        list.add(isServedLeaving ? served.at("a") : real, isServedLeaving ? real : served.at("a"));
        ASSERT_EQ(list.size(), 1U);
        EXPECT_EQ(run(files, list, state.at("state")).outcome.removed, 0U) << isServedLeaving;
        EXPECT_EQ(contentOf(real), "the same") << isServedLeaving;
    }
}

}  // namespace
}  // namespace orrinvale
