// SafeRemoval on real files: what goes, what stays and why, links and mounts, depth and width,
// faults and the stop.
#include "engine/files/SafeRemoval.h"

#include <linux/fs.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

RemovalResult removeAt(const std::string& path,
                       const std::optional<EntryIdentity>& expected = std::nullopt,
                       const FileSystem& system = files) {
    return SafeRemoval(system, nothingProtected).remove(path, expected);
}

EntryIdentity scanned(const std::string& path) { return EntryIdentity::of(attributesOf(path)); }

// "path below the tree: reason" of each failure.
std::string failuresOf(const TestTree& tree, const RemovalResult& result) {
    std::string text;
    for (const auto& failure : result.failures)
        text += failure.path.substr(std::min(failure.path.size(), tree.path().size() + 1)) + ": " +
                failure.reason + '\n';
    return text;
}

// A file tree of every kind of entry, with a victim that two links of it lead to.
void fill(TestTree& tree) {
    ASSERT_TRUE(tree.write("victim/precious", "x"));
    for (const std::string& name :
         {std::string("t/a/1"), "t/a/b/c/" + std::string(255, 'n'), std::string("t/line\nbreak"),
          std::string("t/\xff\xfe/\x80"), std::string("t/-rf")})
        ASSERT_TRUE(tree.write(name, "x"));
    ASSERT_TRUE(tree.folder("t/empty") && tree.fifo("t/fifo") && tree.socket("t/socket"));
    ASSERT_TRUE(tree.symlink(tree.at("victim"), "t/link") &&
                tree.symlink("../../victim/precious", "t/a/link"));
    ASSERT_TRUE(tree.symlink("nowhere", "t/a/b/dangling") &&
                tree.hardLink("victim/precious", "t/hard"));
}
constexpr std::uint64_t entriesOfFill = 17;

// Runs with openat2 answering ENOSYS, as a kernel before 5.6 does.
bool forgetOpenat2() {
    return testing::failSystemCall(SYS_openat2, ENOSYS) &&
           ::syscall(SYS_openat2, -1, "", 0, 0) == -1 && errno == ENOSYS;
}

std::string removeEveryKind(TestTree& tree) {
    fill(tree);
    const auto result = removeAt(tree.at("t"));
    if (!result.gone || isThere(tree.at("t")))
        return "it is there still\n" + failuresOf(tree, result);
    if (result.removed != entriesOfFill) return "removed " + std::to_string(result.removed);
    return isThere(tree.at("victim/precious")) ? "" : "a link was followed";
}

TEST(SafeRemoval, everyKindOfEntryGoesAndNoLinkIsFollowed) {
    TestTree tree;
    EXPECT_EQ(removeEveryKind(tree), "");
    TestTree other;
    EXPECT_EQ(
        runInChild({}, [&] { return forgetOpenat2() ? removeEveryKind(other) : "no filter"; }), "");
}

// What a kernel refuses by itself, our own walk through the path has to refuse as well.
std::string heldFolders(const TestTree& tree) {
    std::string told;
    const auto tell = [&](const std::string& path, Links links) {
        const auto held = files.holdFolder(FileSystem::noParent, path.c_str(), links);
        told += held ? "held " : std::to_string(held.error()) + ' ';
        const auto place = held ? files.placeOf(held->get()) : SysResult<std::string>("");
        if (held && *place != tree.at("real/inner")) told += "at " + *place + ' ';
    };
    for (const Links links : {Links::Follow, Links::Keep})
        for (const char* name : {"real/inner", "real//inner/", "link/inner", "relative/inner",
                                 "real/file", "missing", "loop"})
            tell(tree.at(name), links);
    for (const std::string magic : {"/proc/self/cwd", "/proc/self/root/tmp"})
        tell(magic, Links::Follow);
    return told;
}

TEST(SafeRemoval, parentsAreHeldAlikeWithAndWithoutTheNewSystemCall) {
    TestTree tree;
    tree.write("real/inner/x", "x");
    tree.write("real/file", "x");
    tree.symlink(tree.at("real"), "link");
    tree.symlink("link/../real", "relative");
    tree.symlink("loop", "loop");
    const std::string known = "held held held held 20 2 40 held held 40 40 20 2 40 40 40 ";
    EXPECT_EQ(heldFolders(tree), known);
    EXPECT_EQ(runInChild({}, [&] { return forgetOpenat2() ? heldFolders(tree) : "no filter"; }),
              known);
}

TEST(SafeRemoval, whatChangedSinceTheScanStays) {
    struct Case {
        const char* what;
        std::function<void(TestTree&)> change;
        bool goes;
    };
    const Case cases[]{
        {"untouched", [](TestTree&) {}, true},
        {"grown", [](TestTree& tree) { tree.write("x", "longer"); }, false},
        {"rewritten, size and mtime put back",
         [](TestTree& tree) { keepTimes(tree.at("x"), [&] { tree.patch("x", 0, "y"); }); }, false},
        {"another file",
         [](TestTree& tree) {
             tree.write("other", "x");
             ::rename(tree.at("other").c_str(), tree.at("x").c_str());
         },
         false},
        {"a link to it",
         [](TestTree& tree) {
             ::rename(tree.at("x").c_str(), tree.at("y").c_str());
             tree.symlink("y", "x");
         },
         false},
        {"a folder",
         [](TestTree& tree) {
             ::unlink(tree.at("x").c_str());
             tree.folder("x");
         },
         false},
    };
    for (const auto& [what, change, goes] : cases) {
        TestTree tree;
        tree.write("x", "x");
        const auto expected = scanned(tree.at("x"));
        change(tree);
        const testing::LogLines log;
        const auto result = removeAt(tree.at("x"), expected);
        EXPECT_EQ(result.gone, goes) << what;
        EXPECT_EQ(isThere(tree.at("x")), !goes) << what;
        EXPECT_EQ(failuresOf(tree, result), goes ? "" : "x: changed since the scan\n") << what;
        ASSERT_EQ(log.lines.size(), 1U) << what;
        EXPECT_THAT(log.lines[0], AllOf(HasSubstr(tree.at("x")),
                                        HasSubstr(goes ? "Removed" : "changed since the scan")));
    }
    TestTree tree;  // a folder's times change with what goes from it
    tree.write("f/1", "x");
    const auto expected = scanned(tree.at("f"));
    tree.write("f/2", "x");
    EXPECT_TRUE(removeAt(tree.at("f"), expected).gone);
}

TEST(SafeRemoval, goneIsOnlyWhatIsSurelyGone) {
    TestTree tree;
    tree.write("f/x", "x");
    const auto expected = scanned(tree.at("f/x"));
    ASSERT_TRUE(removeAt(tree.at("f")).gone);
    EXPECT_TRUE(removeAt(tree.at("f/x"), expected).gone);
    EXPECT_TRUE(removeAt(tree.at("f"), std::nullopt).gone);
    auto elsewhere = expected;  // on a disk that is not mounted now
    ++elsewhere.device;
    EXPECT_EQ(failuresOf(tree, removeAt(tree.at("f/x"), elsewhere)),
              "f/x: No such file or directory\n");
    tree.symlink("nowhere", "f");
    EXPECT_FALSE(removeAt(tree.at("f/x"), expected).gone);
    EXPECT_EQ(failuresOf(tree, removeAt(tree.at("f/../f"))), "f/../f: not a plain absolute path\n");
    EXPECT_TRUE(removeAt(tree.path() + "//./f/").gone);
    EXPECT_FALSE(isThere(tree.at("f")));
}

TEST(SafeRemoval, whatMayNotGoStaysWithItsReasonAndItsSiblingsGo) {
    TestTree tree;
    for (const char* name : {"t/locked/a", "t/locked/deep/b", "t/unread/c", "t/free/d",
                             "t/unsearched/e", "t/emptyUnread/x"})
        tree.write(name, "x");
    ::unlink(tree.at("t/emptyUnread/x").c_str());
    if (!tree.giveAway({"t", "t/locked", "t/locked/deep", "t/unread", "t/free", "t/unsearched",
                        "t/emptyUnread", "."}))
        GTEST_SKIP() << "files of another user need root";
    tree.setMode("t/locked", 0555);
    tree.setMode("t/unread", 0);
    tree.setMode("t/unsearched", 0600);
    tree.setMode("t/emptyUnread", 0);
    const std::string told = runInChild({.ordinaryUser = true}, [&] {
        const auto result = removeAt(tree.at("t"));
        return failuresOf(tree, result) + std::to_string(result.removed) +
               (result.gone ? " gone" : " there");
    });
    for (const char* line :
         {"t/locked/a: Permission denied\n", "t/locked/deep: Permission denied\n",
          "t/unread: Permission denied\n", "t/unsearched/e: Permission denied\n"})
        EXPECT_THAT(told, HasSubstr(line));
    EXPECT_THAT(told, HasSubstr("4 there"));  // d, free, deep/b, emptyUnread
    EXPECT_FALSE(isThere(tree.at("t/free")));
    EXPECT_TRUE(isThere(tree.at("t/unread/c")));
}

TEST(SafeRemoval, anImmutableFileStays) {
    TestTree tree;
    tree.write("t/fixed", "x");
    tree.write("t/free", "x");
    const Descriptor file(::open(tree.at("t/fixed").c_str(), O_RDONLY | O_CLOEXEC));
    int flags = FS_IMMUTABLE_FL;
    if (::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) != 0)
        GTEST_SKIP() << "no immutable files: " << std::strerror(errno);
    const auto result = removeAt(tree.at("t"));
    flags = 0;
    EXPECT_EQ(::ioctl(file.get(), FS_IOC_SETFLAGS, &flags), 0);
    EXPECT_EQ(failuresOf(tree, result), "t/fixed: Operation not permitted\n");
    EXPECT_FALSE(result.gone);
    EXPECT_EQ(result.removed, 1U);
    EXPECT_TRUE(isThere(tree.at("t/fixed")));
}

// In a table of mounts of the child's own; the machine's stays as it is.
TEST(SafeRemoval, mountsInTheTreeAreNeitherEnteredNorRemoved) {
    TestTree tree;
    for (const char* name : {"victim/x", "t/a/1", "t/bound/2", "t/late/3", "t/file", "t/z/4"})
        tree.write(name, "x");
    tree.folder("t/tmp");
    const std::string told = runInChild({}, [&]() -> std::string {
        const std::string victim = tree.at("victim");
        if (!unshareMounts() || !testing::mountRam(tree.at("t/tmp").c_str()) ||
            !bindMount(victim, tree.at("t/bound")) || !bindMount(victim + "/x", tree.at("t/file")))
            return "skipped: no mounts of our own";
        tree.write("t/tmp/kept", "x");
        WatchedFiles watched;  // and one that comes while the removal runs
        bool mounted = false;
        watched.beforeRemoval = [&](const char* operation) {
            if (!mounted && std::strcmp(operation, "removeEntry") == 0)
                mounted = bindMount(victim, tree.at("t/late"));
        };
        const auto result = removeAt(tree.at("t"), std::nullopt, watched);
        if (!mounted || !isThere(tree.at("t/tmp/kept"))) return "a mounted file is gone";
        for (const char* name : {"t/bound", "t/tmp", "t/late", "t/file"}) {
            const auto direct = removeAt(tree.at(name));
            if (direct.gone || direct.failures.at(0).reason != "a mount point")
                return std::string("removed ") + name;
        }
        return failuresOf(tree, result);
    });
    if (told.starts_with("skipped")) GTEST_SKIP() << told;
    for (const char* line : {"t/bound: a mount point\n", "t/tmp: a mount point\n",
                             "t/late: a mount point\n", "t/file: "})
        EXPECT_THAT(told, HasSubstr(line));
    EXPECT_TRUE(isThere(tree.at("victim/x")));
    EXPECT_TRUE(isThere(tree.at("t/bound/2")) && isThere(tree.at("t/late/3")));
    EXPECT_FALSE(isThere(tree.at("t/a")) || isThere(tree.at("t/z")));
}

void* removeOnSmallStack(void* argument) {
    auto* const told = static_cast<std::pair<std::string, RemovalResult>*>(argument);
    told->second = removeAt(told->first);
    return nullptr;
}

TEST(SafeRemoval, depthTakesNeitherStackNorDescriptors) {
    constexpr int levels = 10'000;
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("t", levels, "x", true));
    const std::string told = runInChild({.descriptors = 256}, [&]() -> std::string {
        pthread_attr_t small;
        pthread_attr_init(&small);
        pthread_attr_setstacksize(&small, 256 * 1024);
        std::pair<std::string, RemovalResult> work{tree.at("t"), {}};
        pthread_t thread{};
        if (pthread_create(&thread, &small, &removeOnSmallStack, &work) != 0) return "no thread";
        pthread_join(thread, nullptr);
        if (!work.second.gone) return failuresOf(tree, work.second);
        return std::to_string(work.second.removed);
    });
    EXPECT_EQ(told, std::to_string(levels * 3 + 2));
    // An entry behind a path that is longer than the limit.
    ASSERT_TRUE(tree.makeDeep("t", 3000, "x"));
    std::string path = tree.at("t");
    for (int level = 0; level < 3000; ++level) path += "/d";
    for (const auto& [name, removed] : {std::pair{"/leaf", 1U}, {"/leaf", 0U}, {"", 1U}})
        EXPECT_EQ(removeAt(path + name).removed, removed) << name;
}

TEST(SafeRemoval, twoHundredThousandEntriesInOneFolderGo) {
    TestTree tree("/dev/shm");
    constexpr unsigned count = 200'000;
    ASSERT_TRUE(tree.folder("t"));
    const Descriptor folder(::open(tree.at("t").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (unsigned i = 0; i < count; ++i)
        ASSERT_EQ(::mknodat(folder.get(), std::to_string(i).c_str(), S_IFREG | 0644, 0), 0);
    const auto result = removeAt(tree.at("t"));
    EXPECT_TRUE(result.gone);
    EXPECT_EQ(result.removed, count + 1);
}

TEST(SafeRemoval, theStopEndsItBetweenTwoEntries) {
    TestTree tree;
    for (int i = 0; i < 50; ++i)
        tree.write("t/" + std::to_string(i % 5) + '/' + std::to_string(i), "x");
    std::atomic<bool> stop{false};
    WatchedFiles watched;
    int removals = 0;
    watched.beforeRemoval = [&](const char* operation) {
        if (std::strcmp(operation, "removeEntry") == 0 && ++removals == 20) stop = true;
    };
    const auto result =
        SafeRemoval(watched, nothingProtected).remove(tree.at("t"), std::nullopt, &stop);
    EXPECT_TRUE(result.stopped && !result.gone);
    EXPECT_EQ(removals, 20);
    EXPECT_EQ(result.removed, 20U);
    EXPECT_EQ(result.failed, 0U);
    const auto again =
        SafeRemoval(watched, nothingProtected).remove(tree.at("t"), std::nullopt, &stop);
    EXPECT_TRUE(again.stopped && again.removed == 0 && isThere(tree.at("t")));
}

// A program goes on writing into the folder that it is losing.
TEST(SafeRemoval, whatIsWrittenMeanwhileGoesTooUnlessItNeverEnds) {
    for (const bool endless : {false, true}) {
        TestTree tree;
        tree.write("t/a/first", "x");
        WatchedFiles watched;
        int steps = 0;
        watched.beforeRemoval = [&](const char* operation) {
            if (std::strcmp(operation, "removeEntry") != 0 || (!endless && steps > 2)) return;
            tree.write("t/a/more" + std::to_string(steps++), "x");
        };
        const auto result = removeAt(tree.at("t"), std::nullopt, watched);
        EXPECT_EQ(result.gone, !endless) << failuresOf(tree, result);
        if (endless) {
            EXPECT_EQ(failuresOf(tree, result), "t/a: Directory not empty\n");
        }
    }
}

}  // namespace
}  // namespace orrinvale
