// Copies that share their space: what each file system lets them, what keeps its own, and that
// neither a race nor a kill takes a byte.
#include "engine/duplicates/share/ShareList.h"

#include "engine/duplicates/ShareRun.h"
#include "platform/sharing.h"
#include "support/DiskImage.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>

namespace orrinvale {
namespace {

using testing::mostNames;
using testing::otherBelongings;
using testing::otherSystem;
using testing::promisedAndDone;
using testing::sharedIn;
using testing::sharePlan;
using testing::ShareRun;
using testing::withImage;

/// Does something once a number of pieces were shared.
class HookedPieces final : public ForwardingFiles {
public:
    HookedPieces(int piece, std::function<void()> then)
        : ForwardingFiles(files), m_left(piece * 2), m_then(std::move(then)) {}
    SysResult<DataStretch> nextData(int file, std::uint64_t offset) const override {
        if (m_left-- == 0) m_then();
        return ForwardingFiles::nextData(file, offset);
    }

private:
    mutable int m_left;
    std::function<void()> m_then;
};

// All of it on each file system that can.
std::string checkExtents(TestTree& tree) {
    constexpr std::size_t large = (std::size_t{20} << 20U) + 777;
    const std::string bytes = testing::someBytes(large, 1);
    std::string other = bytes;
    other[5] ^= 1;
    for (const char* const name : {"a", "b", "written", "grown", "swapped"})
        if (!tree.write(name, bytes)) return "no file";
    if (!tree.write("other", other) || !tree.sparse("hole", 1ULL << 40U) ||
        !tree.sparse("hole2", 1ULL << 40U) || !tree.patch("hole", 1ULL << 39U, "x") ||
        !tree.patch("hole2", 1ULL << 39U, "x") || !tree.hardLink("b", "b2"))
        return "no file";
    const auto free = freeSpaceBehind({tree.path()});
    const FileAttributes before = attributesOf(tree.at("b"));
    ShareRun looks{.mayLink = true, .onlyLooks = true};
    const DuplicatePlan plan =
        sharePlan({tree.at("a"), tree.at("b"), tree.at("b2"), tree.at("other")});
    std::string said = looks.run(files, plan) + "| ";
    ShareRun run;
    said += run.run(files, plan) + "| ";
    said += run.run(files, plan) + "| ";
    const FileAttributes after = attributesOf(tree.at("b"));
    if (after.inode != before.inode || after.changed != before.changed ||
        after.modified != before.modified || contentOf(tree.at("b")) != bytes ||
        contentOf(tree.at("other")) != other)
        return "the files are others";
    ShareRun once;
    (void)once.run(files, sharePlan({tree.at("a"), tree.at("grown")}));
    if (once.promised < large || once.promised > large + 65536) return "promised too much";
    const double gained = double(*freeSpaceBehind({tree.path()}) - *free);
    if (gained < 1.9 * large || gained > 2.2 * large) return "gained " + std::to_string(gained);

    said += sharedIn({tree.at("hole"), tree.at("hole2")});
    const HookedPieces written(1, [&] { tree.patch("written", 18U << 20U, "ours"); });
    said += sharedIn({tree.at("a"), tree.at("written")}, {}, written);
    if (contentOf(tree.at("written")).substr(18U << 20U, 4) != "ours") return "a write was lost";
    const HookedPieces cut(1, [&] { (void)!::truncate(tree.at("grown").c_str(), 100); });
    if (!tree.write("grown", bytes)) return "no file";
    said += sharedIn({tree.at("a"), tree.at("grown")}, {}, cut);
    const HookedPieces swapped(
        1, [&] { ::rename(tree.at("other").c_str(), tree.at("swapped").c_str()); });
    said += sharedIn({tree.at("a"), tree.at("swapped")}, {}, swapped);
    if (contentOf(tree.at("swapped")) != other) return "what was swapped in is another";
    DuplicatePlan guarded = sharePlan({tree.at("a"), tree.at("b")});
    guarded.protectedFolders = {tree.path()};
    said += ShareRun().run(files, guarded) + "| ";

    if (!tree.folder("theirs") || !tree.write("theirs/r", bytes) ||
        !tree.setMode("theirs/r", 0444) || !tree.giveAway({"theirs"}))
        return "no folder of another";
    const Strings pair{tree.at("a"), tree.at("theirs/r")};
    said += runInChild({.ordinaryUser = true}, [&] { return sharedIn(pair, {.mayLink = true}); });
    if (::mount(nullptr, "/mnt", nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) return "no mount";
    said += sharedIn(pair, {.mayLink = true});
    (void)::mount(nullptr, "/mnt", nullptr, MS_REMOUNT, nullptr);
    TestTree elsewhere("/tmp");
    if (!elsewhere.write("b", bytes)) return "no file";
    said += sharedIn({tree.at("a"), elsewhere.at("b")});
    return said + sharedIn({elsewhere.at("b"), tree.at("a")}, {.mayLink = true});
}

constexpr const char* extentsTold =
    // Only looked at, done, and again
    "extents; extents; extents; | "
    "extents; already; its contents are not those of the copy that stays; | "
    "already; already; its contents are not those of the copy that stays; | "
    // A terabyte of holes, written, cut and swapped meanwhile, protected
    "extents; changed since the scan; changed since the scan; changed since the scan; "
    "in a protected folder; | "
    // Another user's, read-only, over two file systems
    "Operation not permitted; Read-only file system; "
    "the copy that stays is on another file system; "
    "the copy that stays is on another file system; ";

bool setFlag(const std::string& path, int flag, bool isOn) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    int flags = 0;
    if (::ioctl(file.get(), FS_IOC_GETFLAGS, &flags) != 0) return false;
    flags = isOn ? flags | flag : flags & ~flag;
    return ::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

std::vector<Descriptor>& heldForWriting() {
    static std::vector<Descriptor> held;
    return held;
}

// As a program that writes to it does.
bool holdForWriting(const std::string& path) {
    heldForWriting().emplace_back(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return heldForWriting().back().isOpen();
}

// Files that are written in place share with their like alone.
std::string checkInPlace(TestTree& tree) {
    Strings paths;
    for (const char* const name : {"cow", "place/1", "place/2", "place/3"}) {
        const bool isFirst = paths.size() == 1;
        if (isFirst && (!tree.folder("place") || !setFlag(tree.at("place"), FS_NOCOW_FL, true)))
            return "no folder for it";
        if (!tree.write(name, testing::someBytes(200'000, 8))) return "no file";
        paths.push_back(tree.at(name));
    }
    const std::string told = promisedAndDone(sharePlan(paths), tree.at("state"));
    const std::string wanted = std::string(otherBelongings) + "extents; extents; ";
    return told == wanted ? "" : "written in place: " + told;
}

TEST(ShareExtents, OnBtrfs) {
    withImage("mkfs.btrfs -q", "btrfs", [](TestTree& tree) -> std::string {
        if (const std::string told = checkExtents(tree); told != extentsTold) return told;
        const std::string sub = "/mnt/sub";
        if (std::system(("btrfs -q subvolume create " + sub).c_str()) != 0)
            return "skip: no subvolume";
        if (!tree.write("small", "x") || !tree.write("small2", "x")) return "no file";
        const std::string small = sharedIn({tree.at("small"), tree.at("small2")});
        if (small != "already; ") return "where nothing has a place of its own: " + small;
        if (auto wrong = checkInPlace(tree); !wrong.empty()) return wrong;
        const std::string copy = testing::someBytes(300'000, 3);
        if (!tree.write("s", copy) || !tree.write("../sub/s", copy)) return "no file";
        // Of one file system, under two device numbers; that somebody may write is the system's
        // matter, which compares.
        if (!holdForWriting(sub + "/s")) return "no descriptor";
        const std::string across = sharedIn({tree.at("s"), sub + "/s"});
        heldForWriting().clear();
        if (across != "extents; ") return across;
        // The near copy that stays is written otherwise, the far one of the other part is not.
        if (!tree.folder("../sub/place") || !setFlag(sub + "/place", FS_NOCOW_FL, true) ||
            !tree.write("k", copy) || !tree.write("../sub/place/k", copy) ||
            !tree.write("place/d", copy) || !tree.write("../sub/d", copy))
            return "no file";
        DuplicatePlan crossed =
            sharePlan({tree.at("k"), sub + "/place/k", tree.at("place/d"), sub + "/d"});
        crossed.groups[0].members[1].goes = false;
        const std::string told = promisedAndDone(crossed, tree.at("state"));
        return told == "extents; extents; " ? "" : "crossed: " + told;
    });
}

TEST(ShareExtents, OnXfs) {
    withImage("mkfs.xfs -q", "xfs", [](TestTree& tree) -> std::string {
        const std::string told = checkExtents(tree);
        return told == extentsTold ? "" : told;
    });
}

TEST(ShareExtents, OnAFullDiskNothingIsLost) {
    withImage("mkfs.btrfs -q", "btrfs", [](TestTree& tree) -> std::string {
        const std::string bytes = testing::someBytes(8U << 20U, 4);
        if (!tree.write("a", bytes) || !tree.write("b", bytes)) return "no file";
        (void)!std::system("dd if=/dev/urandom of=/mnt/fill bs=1M 2>/dev/null; sync");
        for (int i = 0; i < 4000 && tree.write(fmt::format("small/{}", i), bytes.substr(0, 900));)
            ++i;
        const std::string told = sharedIn({tree.at("a"), tree.at("b")});
        if (contentOf(tree.at("b")) != bytes || contentOf(tree.at("a")) != bytes) return "lost";
        const bool isWell = told == "extents; " || told == "No space left on device; ";
        return isWell ? "" : told;
    });
}

// A case of two files that are no one file afterwards, or are.
struct LinkCase {
    const char* name;
    std::function<bool(TestTree& tree)> make;  // of "NAME/a" and "NAME/b", which are there
    const char* told;
};

bool setXattr(const std::string& path, const char* value) {
    return ::setxattr(path.c_str(), "user.tag", value, std::strlen(value), 0) == 0;
}

bool linkMany(TestTree& tree, std::string_view of, int count) {
    if (!tree.folder("names")) return false;
    for (int i = 1; i < count; ++i)
        if (::link(tree.at(of).c_str(), tree.at("names/" + std::to_string(i)).c_str()) != 0)
            return false;
    return true;
}

const std::vector<LinkCase>& linkCases() {
    static const std::vector<LinkCase> cases{
        {"plain", [](TestTree&) { return true; }, "link; "},
        {"same attribute",
         [](TestTree& tree) {
             return setXattr(tree.at("same attribute/a"), "1") &&
                    setXattr(tree.at("same attribute/b"), "1");
         },
         "link; "},
        {"linked",
         [](TestTree& tree) {
             return ::unlink(tree.at("linked/b").c_str()) == 0 &&
                    tree.hardLink("linked/a", "linked/b");
         },
         "already; "},
        {"owner", [](TestTree& tree) { return ::chown(tree.at("owner/b").c_str(), 65534, 0) == 0; },
         otherBelongings},
        {"mode", [](TestTree& tree) { return tree.setMode("mode/b", 0600); }, otherBelongings},
        {"attribute", [](TestTree& tree) { return setXattr(tree.at("attribute/b"), "2"); },
         otherBelongings},
        {"flag", [](TestTree& tree) { return setFlag(tree.at("flag/b"), FS_NODUMP_FL, true); },
         otherBelongings},
        {"sticky",
         [](TestTree& tree) { return tree.setMode("sticky", 01777) && tree.giveAway({"sticky"}); },
         "anybody may put files into the folder that it is in; "},
        {"immutable",
         [](TestTree& tree) { return setFlag(tree.at("immutable/b"), FS_IMMUTABLE_FL, true); },
         "it is marked as not to be changed; "},
        {"written to", [](TestTree& tree) { return holdForWriting(tree.at("written to/b")); },
         "a program has it open for writing; "},
        {"copy written to",
         [](TestTree& tree) { return holdForWriting(tree.at("copy written to/a")); },
         "a program has the copy that stays open for writing; "},
        {"differs", [](TestTree& tree) { return tree.write("differs/b", "the same lengtH"); },
         "its contents are not those of the copy that stays; "},
        {"limit", [](TestTree& tree) { return linkMany(tree, "limit/a", 65000); }, mostNames},
    };
    return cases;
}

std::string checkLinkCase(TestTree& tree, const LinkCase& each) {
    const std::string folder = each.name;
    const std::string a = tree.at(folder + "/a");
    const std::string b = tree.at(folder + "/b");
    if (!tree.write(folder + "/a", "the same length") ||
        !tree.write(folder + "/b", "the same length") || !each.make(tree))
        return "no scene for " + folder;
    const std::string own = contentOf(b);
    const auto isOne = [&] { return attributesOf(a).inode == attributesOf(b).inode; };
    const bool wasOne = isOne();
    const std::string without = sharedIn({a, b}, {.state = tree.at("state")});
    const std::string plain = "its file system can not let files have their space in common; ";
    if (without != (wasOne ? "already; " : plain)) return folder + " without links: " + without;
    const std::string told = sharedIn({a, b}, {.mayLink = true, .state = tree.at("state")});
    heldForWriting().clear();
    if (told != each.told) return folder + ": " + told;
    if (isOne() != (wasOne || told == "link; ")) return folder + ": one file or two?";
    if (contentOf(b) != own || namesIn(tree.at(folder)) != Strings{"a", "b"})
        return folder + ": not as it was";
    if (folder == "immutable") setFlag(b, FS_IMMUTABLE_FL, false);
    return {};
}

// Where the copy that stays is full up the next one becomes the one that gives its bytes.
std::string checkManyNames(TestTree& tree) {
    Strings paths{tree.at("limit/a")};
    if (::unlink(tree.at("names/1").c_str()) != 0) return "no name less";
    for (const char* const name : {"limit/p", "limit/q", "limit/r"}) {
        if (!tree.write(name, "the same length")) return "no file";
        paths.push_back(tree.at(name));
    }
    const std::string told = promisedAndDone(sharePlan(paths), tree.at("state"));
    return told == std::string("link; ") + mostNames + "link; " ? "" : "the last name: " + told;
}

TEST(ShareLinks, OnlyWhereNothingElseDiffersAndNeverOverAnything) {
    withImage("mkfs.ext4 -q -m 0", "ext4", [](TestTree& tree) -> std::string {
        for (const LinkCase& each : linkCases())
            if (auto wrong = checkLinkCase(tree, each); !wrong.empty()) return wrong;
        if (auto wrong = checkManyNames(tree); !wrong.empty()) return wrong;
        if (!tree.write("s/a", "x") || !tree.symlink("a", "s/b")) return "no link";
        const std::string link = sharedIn({tree.at("s/a"), tree.at("s/b")}, {.mayLink = true});
        if (link != "only files can have their space in common; ") return "over a link: " + link;
        const auto twoSystems = [&](const char* there) {
            TestTree other(there);
            if (!other.write("b", "x")) return std::string("no file");
            return sharedIn({tree.at("s/a"), other.at("b")}, {.mayLink = true});
        };
        const std::string two = twoSystems("/dev/shm");
        if (two != otherSystem) return two;
        // A disk and its copy: all is in the same places.
        TestTree place("/dev/shm");
        const std::string copied =
            "sync; cp --sparse=always $(awk '$2 == \"/mnt\" {{ disk = $1 }} END {{ print disk }}' "
            "/proc/self/mounts) {0}/image && mkdir {0}/m && mount -o loop {0}/image {0}/m";
        if (!tree.write("copied", testing::someBytes(90'000, 6)) ||
            std::system(fmt::format(fmt::runtime(copied), place.path()).c_str()) != 0)
            return "skip: no second disk";
        const std::string there = place.at("m") + tree.at("copied").substr(4);
        const std::string clone = sharedIn({tree.at("copied"), there}, {.mayLink = true});
        (void)!std::system(("umount " + place.at("m")).c_str());
        return clone == otherSystem ? "" : "a copied disk: " + clone;
    });
}

// A later change to the one would reach what is protected, by whatever name.
TEST(ShareLinks, NeverWithWhatIsProtected) {
    TestTree tree("/dev/shm");
    for (const char* const name : {"kept/a", "b", "c"}) ASSERT_TRUE(tree.write(name, "same"));
    ASSERT_TRUE(tree.hardLink("kept/a", "a2"));
    const std::string isKept =
        "the copy that stays is protected, and a hard link would let it change; ";
    for (const char* const staying : {"kept/a", "a2"}) {
        DuplicatePlan plan = sharePlan({tree.at(staying), tree.at("b")});
        plan.protectedFolders = {tree.at("kept")};
        plan.groups[0].members[0].isProtected = staying == std::string("kept/a");
        if (staying == std::string("a2")) {
            PlanMember other = sharePlan({tree.at("kept/a")}).groups[0].members[0];
            other.isProtected = true;
            plan.groups[0].members.insert(plan.groups[0].members.begin(), other);
        }
        ShareRun run{.mayLink = true, .state = tree.at("state")};
        EXPECT_EQ(run.run(files, plan), isKept) << staying;
    }
    EXPECT_NE(attributesOf(tree.at("b")).inode, attributesOf(tree.at("a2")).inode);

    // A name that the plan does not know may be protected; those that it makes are none of these.
    const auto told = [&](const char* staying) {
        DuplicatePlan plan = sharePlan({tree.at(staying), tree.at("b"), tree.at("c")});
        plan.protectedFolders = {tree.at("kept")};
        return ShareRun{.mayLink = true, .state = tree.at("state")}.run(files, plan);
    };
    const std::string hasNames = "the copy that stays has further names, which may be protected; ";
    EXPECT_EQ(told("a2"), hasNames + "link; ") << "the first gives its bytes to the second";
    EXPECT_EQ(attributesOf(tree.at("a2")).links, 2U);
    ASSERT_TRUE(tree.write("d", "same"));
    EXPECT_EQ(told("d"), "link; link; ");
}

// Of several that stay the one that lets it share: on its own disk, and not protected.
TEST(ShareLinks, WithTheNearestThatStays) {
    TestTree tree("/dev/shm");
    TestTree elsewhere("/tmp");
    for (const char* const name : {"a", "b", "kept/a"}) ASSERT_TRUE(tree.write(name, "same"));
    for (const char* const name : {"a", "b"}) ASSERT_TRUE(elsewhere.write(name, "same"));
    if (attributesOf(tree.at("a")).device == attributesOf(elsewhere.at("a")).device)
        GTEST_SKIP() << "one disk";
    DuplicatePlan plan = sharePlan(
        {tree.at("a"), tree.at("kept/a"), elsewhere.at("a"), tree.at("b"), elsewhere.at("b")});
    for (const std::size_t i : {1U, 2U}) plan.groups[0].members[i].goes = false;
    plan.groups[0].members[1].isProtected = true;
    plan.protectedFolders = {tree.at("kept")};
    ShareRun run{.mayLink = true, .state = tree.at("state")};
    EXPECT_EQ(run.run(files, plan), "link; link; ");
    EXPECT_EQ(attributesOf(tree.at("b")).inode, attributesOf(tree.at("a")).inode);
}

// A group of many, some of which are one file: each name follows, and each is counted once.
TEST(ShareLinks, AWholeGroupBecomesOneFile) {
    TestTree tree("/dev/shm");
    Strings paths;
    for (int i = 0; i < 300; ++i) {
        const std::string name = fmt::format("{:03}", i);
        ASSERT_TRUE(i % 3 == 2 ? tree.hardLink(fmt::format("{:03}", i - 1), name)
                               : tree.write(name, std::string(5000, 'x')));
        paths.push_back(tree.at(name));
    }
    const FileAttributes kept = attributesOf(paths[0]);
    ShareRun looks{.mayLink = true, .onlyLooks = true, .state = tree.at("state")};
    (void)looks.run(files, sharePlan(paths));
    ShareRun run{.mayLink = true, .state = tree.at("state")};
    const std::string told = run.run(files, sharePlan(paths));
    for (const std::string& path : paths) ASSERT_EQ(attributesOf(path).inode, kept.inode) << told;
    EXPECT_EQ(attributesOf(paths[0]).links, 300U);
    EXPECT_EQ(attributesOf(paths[0]).modified, kept.modified);
    EXPECT_EQ(run.promised, 199 * kept.onDisk);
    EXPECT_EQ(looks.promised, run.promised);
    EXPECT_EQ(namesIn(tree.path()).size(), 301U);
    // Where no journal can be kept nothing is touched.
    ASSERT_TRUE(tree.write("one", "y") && tree.write("two", "y") && tree.write("file", ""));
    EXPECT_EQ(sharedIn({tree.at("one"), tree.at("two")},
                       {.mayLink = true, .state = tree.at("file/state")}),
              "nothing can be set aside in the folder that it is in; ");
}

// Killed before each step, and each time brought back: the old file or the new one has the name.
TEST(ShareLinks, AKillAtAnyStepLeavesTheOldFileOrTheNew) {
    bool isEnded = false;
    int asideTimes = 0;
    for (int step = 1; !isEnded && step < 200; ++step) {
        TestTree tree("/dev/shm");
        ASSERT_TRUE(tree.write("data/a", "the same") && tree.write("data/b", "the same"));
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            WatchedFiles watched;
            int left = step;
            watched.beforeRemoval = [&](const char*) {
                if (--left == 0) ::kill(::getpid(), SIGKILL);
            };
            ShareRun run{.mayLink = true, .state = tree.at("state")};
            const DuplicatePlan plan = sharePlan({tree.at("data/a"), tree.at("data/b")});
            ::_exit(run.run(watched, plan) == "link; " ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        isEnded = WIFEXITED(status);
        if (isEnded) {
            ASSERT_EQ(WEXITSTATUS(status), 0);
        }
        asideTimes += namesIn(tree.at("data")).size() == 2 && isThere(tree.at("data/b")) ? 0 : 1;
        const auto recovery = bringBackAside(files, asideJournalFolder(tree.at("state")));
        EXPECT_EQ(recovery.stayed.size(), 0U) << "step " << step;
        EXPECT_EQ(namesIn(tree.at("data")), (Strings{"a", "b"})) << "step " << step;
        EXPECT_EQ(contentOf(tree.at("data/a")), "the same") << "step " << step;
        EXPECT_EQ(contentOf(tree.at("data/b")), "the same") << "step " << step;
    }
    EXPECT_TRUE(isEnded);
    EXPECT_GE(asideTimes, 3);  // else the kills missed what they are for
}

// Before each step somebody writes to one of the two: neither that nor what was there is lost.
TEST(ShareLinks, AWriteAtAnyStepIsNotLost) {
    for (const char* const target : {"data/a", "data/b"}) {
        bool isReached = true;
        for (int step = 1; isReached && step < 200; ++step) {
            TestTree tree("/dev/shm");
            ASSERT_TRUE(tree.write("data/a", "the same") && tree.write("data/b", "the same"));
            WatchedFiles watched;
            int left = step;
            const DuplicatePlan plan = sharePlan({tree.at("data/a"), tree.at("data/b")});
            bool isWritten = false;
            watched.beforeRemoval = [&](const char*) {
                if (--left == 0) isWritten = isThere(tree.at(target)) && tree.write(target, "ours");
            };
            ShareRun run{.mayLink = true, .state = tree.at("state")};
            const std::string told = run.run(watched, plan);
            isReached = left <= 0;
            // What is written to the name while it is the other file's is in that one.
            const Strings both{contentOf(tree.at("data/a")), contentOf(tree.at("data/b"))};
            const bool isOne = told == "link; ";
            if (isWritten) {
                EXPECT_THAT(both, Contains("ours")) << target << step << told;
            }
            if (!isWritten || !isOne) {
                EXPECT_THAT(both, Contains("the same")) << target << step << told;
            }
            EXPECT_EQ(isOne, both[0] == both[1]) << target << step << told;
            EXPECT_EQ(namesIn(tree.at("data")), (Strings{"a", "b"})) << target << step << told;
        }
    }
}

}  // namespace
}  // namespace orrinvale
