// One copy on its way out: what lets it go, what keeps it, and that nothing is lost whatever
// happens between two steps.
#include <sys/mman.h>

#include "engine/files/asideName.h"
#include "engine/removal/PairList.h"
#include "engine/removal/stayReasons.h"
#include "support/ServedFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::PairList;

/// Two files of equal contents, "a" to go and "b" to stay, as a scan saw them.
struct Copies {
    explicit Copies(const std::string& bytes = "the same") {
        EXPECT_TRUE(tree.write("a", bytes) && tree.write("b", bytes));
        list.add(tree.at("a"), tree.at("b"));
    }
    RemovalOutcome remove() { return testing::removeAll(files, tree.at("state"), list); }

    TestTree tree;
    WatchedFiles files;
    PairList list{files, {}, {}};
};

std::string reasonOf(const RemovalOutcome& outcome) {
    return outcome.stayed.empty() ? std::string() : outcome.stayed.front().reason;
}

/// The path of what stands aside; empty where nothing does.
std::string asideIn(const TestTree& tree) {
    for (const std::string& name : namesIn(tree.path()))
        if (isAsideName(name)) return tree.at(name);
    return {};
}

// What happens between the scan and the removal, and what becomes of them.
TEST(CopyRemoval, GoesOnlyForACopyThatIsThere) {
    struct Case {
        const char* what;
        std::function<void(TestTree&)> before;  // since the scan
        bool goes;
        std::string_view reason;
    };
    const std::string bytes = testing::someBytes(300'000, 1);
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
         [](TestTree& tree) { keepTimes(tree.at("a"), [&] { tree.patch("a", 5, "x"); }); }, false,
         stay::changed},
        {"the one to go is another file",
         [&](TestTree& tree) {
             tree.write("c", bytes);
             ::rename(tree.at("c").c_str(), tree.at("a").c_str());
         },
         false, stay::changed},
    };
    for (const Case& c : cases) {
        Copies copies(bytes);
        c.before(copies.tree);
        const RemovalOutcome outcome = copies.remove();
        EXPECT_EQ(isThere(copies.tree.at("a")), !c.goes) << c.what;
        EXPECT_EQ(outcome.removed, c.goes ? 1U : 0U) << c.what;
        EXPECT_EQ(reasonOf(outcome), c.reason) << c.what;
        EXPECT_EQ(asideIn(copies.tree), "") << c.what;
    }
}

/// One look fails, as with too many open files.
class OneLookFails final : public ForwardingFiles {
public:
    explicit OneLookFails(const FileSystem& of) : ForwardingFiles(of) {}
    using ForwardingFiles::attributes;
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        if (--left == 0) return tl::unexpected(EMFILE);
        return ForwardingFiles::attributes(parent, name, links);
    }
    SysResult<Descriptor> holdFolder(int parent, const char* path, Links onTheWay) const override {
        if (--left == 0) return tl::unexpected(EMFILE);
        return ForwardingFiles::holdFolder(parent, path, onTheWay);
    }
    mutable int left = 0;
};

TEST(CopyRemoval, ALookThatFailsIsNoWayAroundTheComparison) {
    int stayedForIt = 0;
    for (int look = 1; look < 20; ++look) {
        TestTree tree;
        const LinuxFileSystem real;
        const OneLookFails files(real);
        ASSERT_TRUE(tree.write("a", "the same") && tree.write("b", "the Same"));
        PairList list(files, {}, {});
        list.add(tree.at("a"), tree.at("b"));
        files.left = look;
        const RemovalOutcome outcome = testing::removeAll(files, tree.at("state"), list);
        EXPECT_EQ(contentOf(tree.at("a")), "the same") << look;
        stayedForIt += reasonOf(outcome) == stay::otherContents ? 0 : 1;
    }
    EXPECT_GT(stayedForIt, 1) << "no look failed that matters";
}

// Equal by sizes and times, and yet not by their contents: as a mapping that was dirty before the
// scan leaves them.
TEST(CopyRemoval, ContentsDecide) {
    for (const std::uint64_t at :
         {std::uint64_t{0}, std::uint64_t{262'144}, std::uint64_t{599'999}}) {
        Copies copies(testing::someBytes(600'000, 1));
        ASSERT_TRUE(copies.tree.patch("b", at, "\x01\x02\x03"));
        PairList list(copies.files, {}, {});
        list.add(copies.tree.at("a"), copies.tree.at("b"));
        EXPECT_EQ(reasonOf(testing::removeAll(copies.files, copies.tree.at("state"), list)),
                  stay::otherContents)
            << at;
        EXPECT_TRUE(isThere(copies.tree.at("a")));
    }
}

TEST(CopyRemoval, WhatIsOpenOrMappedForWritingStays) {
    for (const bool isMapped : {false, true})
        for (const char* const name : {"a", "b"}) {
            Copies copies;
            Descriptor file(::open(copies.tree.at(name).c_str(), O_RDWR | O_CLOEXEC));
            void* const map = ::mmap(nullptr, 8, isMapped ? PROT_READ | PROT_WRITE : PROT_READ,
                                     MAP_SHARED, file.get(), 0);
            ASSERT_NE(map, MAP_FAILED);
            if (isMapped) file.reset();
            EXPECT_EQ(reasonOf(copies.remove()), *name == 'a' ? stay::inUse : stay::copyInUse);
            ::munmap(map, 8);
            file.reset();
            EXPECT_EQ(copies.remove().removed, 1U);
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
         [](TestTree& tree) {
             const std::string aside = asideIn(tree);
             if (!aside.empty()) (void)!::truncate(aside.c_str(), 3);
         }},
    };
    for (const Case& c : cases) {
        Copies copies;
        bool isDone = false;
        copies.files.beforeRemoval = [&](const char* operation) {
            if (isDone || std::string_view(operation) != c.step) return;
            isDone = true;
            c.act(copies.tree);
        };
        (void)copies.remove();
        ASSERT_TRUE(isDone) << c.what;
        const std::set<std::string> left{contentOf(copies.tree.at("a")),
                                         contentOf(copies.tree.at("b")),
                                         contentOf(asideIn(copies.tree))};
        const bool isSaved = std::strstr(c.what, "saved") != nullptr;
        EXPECT_EQ(contentOf(copies.tree.at("a")) == "saved anew", isSaved) << c.what;
        EXPECT_TRUE(left.contains("the same") || left.contains("the")) << c.what;
    }
}

// Its own name was taken: it is told with its place, and the next start looks after it.
TEST(CopyRemoval, ATakenNameLeavesItAsideAndTold) {
    Copies copies;
    int looks = 0;
    copies.files.beforeRemoval = [&](const char* operation) {
        if (std::string_view(operation) != "freshAttributes" || ++looks != 2) return;
        copies.tree.write("a", "saved anew");
        ::unlink(copies.tree.at("b").c_str());
    };
    const RemovalOutcome outcome = copies.remove();
    ASSERT_FALSE(outcome.stayed.empty());
    EXPECT_EQ(outcome.stayed.front().kind, StayReason::Aside);
    EXPECT_EQ(contentOf(outcome.stayed.front().path), "the same");
    EXPECT_EQ(contentOf(copies.tree.at("a")), "saved anew");
    EXPECT_EQ(bringBackAside(copies.files, copies.tree.at("state/removals")).stayed.size(), 1U);
}

// Another name of the same file has a new time of change by our own doing, and exactly that one is
// excused.
TEST(CopyRemoval, HardLinksAreCopiesOfEachOther) {
    Copies copies;
    ASSERT_TRUE(copies.tree.hardLink("a", "c"));
    PairList list(copies.files, {}, {});
    list.add(copies.tree.at("a"), copies.tree.at("c"));
    EXPECT_EQ(testing::removeAll(copies.files, copies.tree.at("state"), list).removed, 1U);
    EXPECT_EQ(contentOf(copies.tree.at("c")), "the same");
}

// As an ordinary user, in a folder of somebody else: told as a lack of rights, and nothing was
// moved.
TEST(CopyRemoval, ALackOfRightsIsTold) {
    TestTree tree;
    ASSERT_TRUE(tree.write("theirs/a", "the same") && tree.write("b", "the same") &&
                tree.folder("state"));
    if (!tree.giveAway({"state"})) GTEST_SKIP() << "only root can make a folder of someone else";
    const auto check = [&]() -> std::string {
        const LinuxFileSystem files;
        PairList list(files, {}, {});
        list.add(tree.at("theirs/a"), tree.at("b"));
        const RemovalOutcome outcome = testing::removeAll(files, tree.at("state"), list);
        if (!outcome.lacksRights) return "no lack of rights: " + reasonOf(outcome);
        return isThere(tree.at("theirs/a")) ? "" : "it went";
    };
    EXPECT_EQ(runInChild({.ordinaryUser = true}, check), "");
}

// One file by two paths. The copy that "stays" is the one that goes, whatever the numbers say.
TEST(CopyRemoval, ASecondViewOfOneFileIsNoCopy) {
    testing::withOwnMounts([]() -> std::string {
        for (const char* const folder : {"lower", "upper", "work", "merged", "real", "bound"})
            std::filesystem::create_directory(std::string("/mnt/") + folder);
        for (const char* const name : {"/mnt/lower/l", "/mnt/upper/u", "/mnt/real/r"})
            std::ofstream(name) << "the same";
        if (!bindMount("/mnt/real", "/mnt/bound")) return "skip: no bind mounts";
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
            PairList list(files, {}, {});
            list.add(leaving, staying);
            if (list.size() != 1) return leaving + " is not there any more";
            const RemovalOutcome outcome = testing::removeAll(files, "/mnt/state", list);
            if (!isThere(leaving) || !isThere(staying))
                return leaving + " went, with " + staying + " as its copy";
            if (outcome.failed != 1) return leaving + " is told as removed";
        }
        return {};
    });
}

/// One file by two paths, the second through what is served: it does not go, and has its own name.
void expectNoCopyInSecondView(testing::ServedFiles& served, bool isServedLeaving,
                              const std::string& what) {
    const LinuxFileSystem files;
    TestTree state;
    ASSERT_TRUE(served.source().write("a", "the same"));
    const std::string real = served.source().at("a");
    PairList list(files, {}, {});
    list.add(isServedLeaving ? served.at("a") : real, isServedLeaving ? real : served.at("a"));
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(testing::removeAll(files, state.at("state"), list).removed, 0U) << what;
    EXPECT_EQ(contentOf(real), "the same") << what << isServedLeaving;
}

// A server whose answers are remembered for a minute still shows the file that goes, unless it is
// asked anew.
TEST(CopyRemoval, ASecondViewThatIsRememberedIsNoCopy) {
    testing::ServedFiles served({"cache"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    for (const bool isServedLeaving : {false, true})
        expectNoCopyInSecondView(served, isServedLeaving, "cache");
}

// Neither are two views of a place that can not promise to spare what has a name, has no second
// names, or lets nothing be renamed. Where it can be told a real copy goes all the same.
TEST(CopyRemoval, ASecondViewWithoutTheUsualRenameIsNoCopy) {
    const struct {
        Strings faults;
        bool goes;
    } cases[] = {
        {{"oldrename"}, true}, {{"oldrename", "nolinks"}, true}, {{"norename", "nolinks"}, false}};
    for (const auto& [faults, goes] : cases) {
        testing::ServedFiles served(faults);
        if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
        expectNoCopyInSecondView(served, true, faults.front());
        ASSERT_TRUE(served.source().write("b", "the same"));
        const LinuxFileSystem files;
        PairList list(files, {}, {});
        list.add(served.at("a"), served.at("b"));
        TestTree state;
        EXPECT_EQ(testing::removeAll(files, state.at("state"), list).removed, goes ? 1U : 0U)
            << faults.front();
        EXPECT_EQ(isThere(served.at("a")), !goes) << faults.front();
        EXPECT_EQ(contentOf(served.at("b")), "the same");
    }
}

// Where case is ignored a file has two spellings in its folder, and one name.
TEST(CopyRemoval, ASecondSpellingIsNoCopy) {
    Copies copies;
    ASSERT_TRUE(copies.tree.hardLink("a", "c"));
    const auto objects = [&](const std::string& name, const std::string& spelling) {
        const auto seen = attributesOf(copies.tree.at(name));
        auto parent = HeldEntry::holdParentOf(copies.files, copies.tree.at(name));
        const HeldEntry held{SharedFolder(std::move(*parent)), copies.tree.at(spelling), spelling,
                             seen};
        return objectionToCopyInPlace(copies.files, held,
                                      {copies.tree.at(name), EntryIdentity::of(seen)})
            .has_value();
    };
    EXPECT_TRUE(objects("b", "B"));
    EXPECT_FALSE(objects("a", "c"));
    EXPECT_TRUE(objects("a", "a"));
}

}  // namespace
}  // namespace orrinvale
