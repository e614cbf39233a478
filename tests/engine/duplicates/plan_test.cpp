// Plans: what is read back, what is refused, and that no plan, however it was forged, takes what
// has no copy, is protected, or was not named.
#include "engine/duplicates/plan/DuplicatePlan.h"

#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/duplicates/plan/PlanRemoval.h"
#include "engine/removal/PairList.h"
#include "engine/removal/TrashDoor.h"
#include "engine/removal/stayReasons.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

const std::atomic<bool> neverStopped{false};

PlanMember memberAt(const std::string& path, bool goes) {
    PlanMember member;
    member.path = path;
    member.goes = goes;
    const auto seen = files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    if (seen) member.identity = EntryIdentity::of(*seen);
    member.size = member.identity.size;
    member.identity.born = 0;  // no search tells
    if (member.identity.type != FileType::Folder) return member;
    const auto listing = listBundle(files, path, {{}, false}, neverStopped);
    if (listing) member.listing = listing->digest;
    return member;
}

DuplicatePlan planOf(std::vector<PlanGroup> groups) {
    DuplicatePlan plan;
    plan.owner = ::geteuid();
    plan.made = "2026-11-22T15:00:00+00:00";
    plan.roots = {"/data"};
    plan.groups = std::move(groups);
    return plan;
}

DuplicatePlan samplePlan() {
    const auto file = [](std::string path, bool goes) {
        PlanMember member;
        member.path = std::move(path);
        member.goes = goes;
        member.size = member.identity.size = 12;
        member.identity.type = FileType::Regular;
        member.identity.device = ~std::uint64_t{0};
        member.identity.modified = -7;
        return member;
    };
    DuplicatePlan plan = planOf({{{file("/data/\"b\\\n\x7f", true), file("/data/\xff\xfe", false),
                                   file("/data/gr\xc3\xbc\xc3\x9f", true)}}});
    plan.groups[0].members[1].contents = 0xFEDC'BA98'7654'3210;
    plan.groups[0].members[1].isProtected = true;
    plan.protectedFolders = {"/data/kept\x80"};
    plan.rules = {"newest"};
    return plan;
}

TEST(DuplicatePlan, ComesBackAsItWasHoweverItIsSpaced) {
    const DuplicatePlan plan = samplePlan();
    std::string text = writePlan(plan);
    const auto back = parsePlan(text);
    ASSERT_TRUE(back) << back.error();
    EXPECT_EQ(writePlan(*back), text);
    EXPECT_EQ(back->groups[0].members[1].path, "/data/\xff\xfe");
    EXPECT_EQ(back->groups[0].members[0].identity.modified, -7);
    EXPECT_EQ(sumsOf(*back).bytes, 24U);
    for (std::size_t at = 0; (at = text.find(", ", at)) != std::string::npos; at += 3)
        text.replace(at, 2, " ,\n");
    EXPECT_TRUE(parsePlan(text));
}

TEST(DuplicatePlan, WhatIsNotWhatWasWrittenIsRefused) {
    const std::string text = writePlan(samplePlan());
    const struct {
        std::string from, to, says;
    } edits[] = {
        {"\"orrinvalePlan\": 1", "\"orrinvalePlan\": 2", "version 2"},
        {"\"orrinvalePlan\": 1", "\"another\": 1", "no plan"},
        {"\"goes\": false", "\"goes\": true", "changed since it was written"},
        {"\"size\": 12", "\"size\": 13", "changed since it was written"},
        {"\"size\": 12", "\"size\": 1e1", "damaged"},
        {"\"size\": 12", "\"weight\": 12", "damaged"},
        {"\"size\": 12,", "", "changed since it was written"},
        {"\"digest\"", "\"digests\"", "damaged"},
        {"\"newest\"", "\"newest", "damaged"},
        // What is shown and what is meant must be one.
        {"/data/\xEF\xBF\xBD", "/data/x", "damaged"},
        {"pathHex\": \"2f6461", "pathHex\": \"2F6461", "damaged"},
        {"]\n}\n", "]\n}\n{}", "damaged"},
        // What is read is what counts: nothing stands twice, and nothing says nothing.
        {"{\"path\": \"/data/g", "{\"path\": \"/x\", \"path\": \"/data/g", "damaged"},
        {"\"owner\"", "\"owner\": 1, \"owner\"", "damaged"},
        {"{\"path\": \"/data\"", "{\"path\": \"/x\", \"path\": \"/data\"", "damaged"},
        {"\"groups\": [", "\"groups\": [[],", "damaged"},
        {"]\n}\n", "", "damaged"},
    };
    for (const auto& [from, to, says] : edits) {
        std::string edited = text;
        const std::size_t at = edited.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        const auto parsed = parsePlan(edited.replace(at, from.size(), to));
        ASSERT_FALSE(parsed) << from << " -> " << to;
        EXPECT_THAT(parsed.error(), HasSubstr(says)) << from << " -> " << to;
    }
    for (std::size_t length = 0; length + 1 < text.size(); ++length)
        EXPECT_FALSE(parsePlan(std::string_view(text).substr(0, length))) << length;
}

TEST(DuplicatePlan, WhatNoRuleAllowsIsRefused) {
    const struct {
        std::function<void(PlanGroup&)> forge;
        std::string says;
    } cases[] = {
        {[](PlanGroup& group) { group.members[2].path = "data/a"; }, "no plain absolute path"},
        {[](PlanGroup& group) { group.members[2].path = "/data/../etc/a"; }, "no plain absolute"},
        {[](PlanGroup& group) { group.members[2].path = "/data//a"; }, "no plain absolute path"},
        {[](PlanGroup& group) { group.members[2].path = "/"; }, "no plain absolute path"},
        {[](PlanGroup& group) { group.members[2].path = group.members[0].path; }, "twice"},
        {[](PlanGroup& group) { group.members[1].path = group.members[2].path; }, "twice"},
        {[](PlanGroup& group) { group.members.erase(group.members.begin() + 1); },
         "no copy of it would stay"},
        {[](PlanGroup& group) { group.members[0].isProtected = true; }, "protected"},
        {[](PlanGroup& group) { group.members[0].size = 0; }, "empty file"},
        {[](PlanGroup& group) { group.members[0].identity.type = FileType::SymbolicLink; },
         "a link is no copy"},
        // A file is not compared with a folder, and would go without a look at its bytes.
        {[](PlanGroup& group) {
             group.members[1].identity.type = FileType::Folder;
             group.members[1].path = "/data/b.app";
             group.members[1].listing = 1;
         },
         "a bundle is no copy of a file"},
        {[](PlanGroup& group) {
             for (PlanMember& each : group.members) each.identity.type = FileType::Folder;
         },
         "a folder that nobody listed"},
    };
    for (const auto& [forge, says] : cases) {
        DuplicatePlan plan = samplePlan();
        forge(plan.groups[0]);
        const auto parsed = parsePlan(writePlan(plan));
        ASSERT_FALSE(parsed) << says;
        EXPECT_THAT(parsed.error(), HasSubstr(says));
    }
}

TEST(PlanFile, ReplacesNothingButAPlanAndReadsItsOwnersAlone) {
    TestTree tree;
    const std::string path = tree.at("plan");
    EXPECT_EQ(savePlan(path, samplePlan()), std::nullopt);
    EXPECT_EQ(savePlan(path, samplePlan()), std::nullopt);
    struct stat seen {};
    ASSERT_EQ(::stat(path.c_str(), &seen), 0);
    EXPECT_EQ(seen.st_mode & 07777U, 0600U);
    EXPECT_TRUE(loadPlan(path));

    for (const char* const taken : {"text", "empty", "link", "folder", "beside"}) {
        const std::string name = tree.at(taken);
        if (taken == std::string_view("text")) tree.write(taken, "{\"orrinvalePlan\": 1}");
        else if (taken == std::string_view("empty")) tree.write(taken, "");
        else if (taken == std::string_view("link")) tree.symlink("plan", taken);
        else if (taken == std::string_view("folder")) tree.folder(taken);
        else tree.write("beside.new", "mine");
        EXPECT_NE(savePlan(name, samplePlan()), std::nullopt) << taken;
    }
    EXPECT_EQ(contentOf(tree.at("text")), "{\"orrinvalePlan\": 1}");
    EXPECT_EQ(contentOf(tree.at("beside.new")), "mine");

    ASSERT_TRUE(tree.setMode("plan", 0666));
    EXPECT_EQ(loadPlan(path).error(), "other users may write to it");
    DuplicatePlan other = samplePlan();
    ++other.owner;
    EXPECT_EQ(savePlan(tree.at("other"), other), std::nullopt);
    EXPECT_EQ(loadPlan(tree.at("other")).error(), "it was made by another user");
    ASSERT_TRUE(tree.sparse("long", std::uint64_t{1} << 30U));
    EXPECT_EQ(loadPlan(tree.at("long")).error(), "it is too long for a plan");
    EXPECT_EQ(loadPlan(tree.at("none")).error(), "No such file or directory");
    if (::geteuid() != 0) return;
    ASSERT_TRUE(tree.setMode("plan", 0644) && tree.giveAway({"plan"}));
    EXPECT_EQ(loadPlan(path).error(), "it is another user's");
}

/// A small disk that is made whole again after each plan.
struct ForgersWorld {
    TestTree tree{"/dev/shm"};
    std::map<std::string, std::string> contents;  // of all regular files, by name
    Strings pool;                                 // what plans may name

    ForgersWorld() {
        contents = {{"a/1", "one"},       {"a/2", "one"},       {"b/1", "one"},
                    {"b/2", "one"},       {"a/x", "two"},       {"b/x", "two"},
                    {"c/lone", "three"},  {"c/other", "thrEE"}, {"c/empty", ""},
                    {"a/empty", ""},      {"p/A.app/f", "one"}, {"p/A.app/g", "two"},
                    {"p/B.app/f", "one"}, {"p/B.app/g", "two"}, {"p/C.app/f", "one"},
                    {"p/C.app/g", "twO"}, {"p/A/f", "one"},     {"p/B/f", "one"}};
        mend();
        tree.symlink("a", "way");
        tree.symlink("a/1", "s1");
        tree.symlink("b/1", "s2");
        for (const auto& [name, bytes] : contents) pool.push_back(name);
        for (const char* const name : {"a/hard", "way/1", "way/2", "way/x", "s1", "s2", "p/A.app",
                                       "p/B.app", "p/C.app", "p/A", "p/B", "a", "way", "none"})
            pool.emplace_back(name);
    }
    void mend() {
        for (const auto& [name, bytes] : contents)
            if (!isThere(tree.at(name))) tree.write(name, bytes);
        if (!isThere(tree.at("a/hard")) ||
            attributesOf(tree.at("a/hard")).inode != attributesOf(tree.at("a/1")).inode) {
            (void)::unlink(tree.at("a/hard").c_str());
            tree.hardLink("a/1", "a/hard");
        }
    }
};

DuplicatePlan forged(const ForgersWorld& world, std::mt19937& chance) {
    const auto oneOf = [&](std::size_t of) { return chance() % of == 0; };
    std::vector<PlanGroup> groups(1 + chance() % 3);
    Strings names = world.pool;
    std::shuffle(names.begin(), names.end(), chance);
    const auto bytesOf = [&](const std::string& name) { return contentOf(world.tree.at(name)); };
    for (PlanGroup& group : groups)
        for (std::size_t count = 2 + chance() % 3; count > 0; --count) {
            // Mostly what a search would have put together.
            auto next = std::prev(names.end());
            if (!group.members.empty() && !oneOf(4))
                next = std::find_if(names.begin(), next, [&](const std::string& name) {
                    return bytesOf(name) == contentOf(group.members.front().path);
                });
            PlanMember member = memberAt(world.tree.at(*next), oneOf(2));
            if (!oneOf(40)) names.erase(next);
            if (oneOf(60)) member.identity.type = FileType(1 + chance() % 3);
            if (oneOf(60)) member.identity.inode += chance() % 3;
            if (oneOf(60)) member.size = member.identity.size = chance() % 6;
            if (oneOf(60)) ++member.identity.changed;
            if (oneOf(20)) member.listing = 5;
            group.members.push_back(std::move(member));
        }
    DuplicatePlan plan = planOf(std::move(groups));
    if (oneOf(3)) plan.protectedFolders = {world.tree.at(oneOf(2) ? "b" : "way")};
    if (oneOf(5)) plan.protectedFolders.push_back(world.tree.at("p/B.app"));
    return plan;
}

// What is wrong with what a removal left, by the letter of the rules.
std::string wrongAfter(const ForgersWorld& world, const DuplicatePlan& plan) {
    std::set<std::string> left;
    std::set<std::string> gone;
    for (const auto& [name, bytes] : world.contents) {
        const std::string path = world.tree.at(name);
        if (!isThere(path)) gone.insert(name);
        else if (contentOf(path) == bytes) left.insert(bytes);
        else return name + " has other bytes";
    }
    for (const std::string& name : gone) {
        if (!left.contains(world.contents.at(name))) return "no copy of " + name + " is left";
        const std::string real = world.tree.at(name);
        bool isNamed = false;
        for (const PlanGroup& group : plan.groups)
            for (const PlanMember& member : group.members) {
                std::string path = member.path;
                if (path.starts_with(world.tree.at("way/")))
                    path.replace(0, world.tree.at("way/").size(), world.tree.at("a/"));
                isNamed = isNamed || (member.goes && path == real) ||
                          (member.goes && member.identity.type == FileType::Folder &&
                           real.starts_with(path + '/'));
                if (!member.goes && member.identity.type == FileType::Folder &&
                    real.starts_with(path + '/'))
                    return name + " was a part of what stays";
                if (!member.goes && path == real) return name + " was to stay";
            }
        if (!isNamed) return name + " was not named";
        for (std::string folder : plan.protectedFolders) {
            if (folder == world.tree.at("way")) folder = world.tree.at("a");
            if (real.starts_with(folder + '/')) return name + " was protected";
        }
    }
    for (const char* const link : {"s1", "s2", "way"})
        if (!isThere(world.tree.at(link))) return std::string(link) + " went";
    return {};
}

// Half of them by the plain door, half to the trash.
TEST(PlanRemoval, NoForgedPlanTakesWhatTheRulesForbid) {
    std::mt19937 chance(21);
    ForgersWorld world;
    const FolderVariables variables{.home = world.tree.at("home"), .user = ::geteuid()};
    int refused = 0;
    int removed = 0;
    int kept = 0;
    for (int round = 0; round < 10'000; ++round) {
        const auto plan = parsePlan(writePlan(forged(world, chance)));
        if (!plan) {
            ++refused;
            continue;
        }
        PlanRemoval list(files, *plan);
        PlainDoor plain(files, {});
        TrashDoor trash(files, {}, variables);
        RemovalDoor& door = round % 2 == 0 ? static_cast<RemovalDoor&>(plain) : trash;
        RemovalRun run(files, world.tree.at("state"), list, door, neverStopped,
                       testing::nobodyTold());
        const RemovalOutcome outcome = run.run();
        run.settleJournal();
        removed += static_cast<int>(outcome.removed);
        kept += static_cast<int>(outcome.failed);
        ASSERT_EQ(wrongAfter(world, *plan), "") << round << '\n' << writePlan(*plan);
        world.mend();
    }
    EXPECT_GT(refused, 1000);
    EXPECT_GT(removed, 1000);
    EXPECT_GT(kept, 1000);
    RecordProperty("removed", removed);
}

// A bundle holds what is protected, or stays, and is seen through a second mount.
TEST(PlanRemoval, ASecondMountHidesNothingThatABundleHolds) {
    const auto check = [](bool isProtected, bool showsPart) {
        return [=]() -> std::string {
            for (const char* const bundle : {"A.app", "Z.app"}) {
                std::filesystem::create_directories(fmt::format("/mnt/one/{}/in", bundle));
                std::ofstream(fmt::format("/mnt/one/{}/in/f", bundle)) << "the same";
            }
            std::ofstream("/mnt/other") << "the same";
            std::filesystem::create_directory("/mnt/two");
            const std::string shown = showsPart ? "/mnt/one/Z.app/in" : "/mnt/one";
            if (!bindMount(shown, "/mnt/two")) return "skip: no bind mounts";
            const std::string way = showsPart ? "/mnt/one" : "/mnt/two";
            std::vector<PlanGroup> groups(2);
            groups[0].members = {memberAt(way + "/A.app", false), memberAt(way + "/Z.app", true)};
            groups[1].members = {memberAt(showsPart ? "/mnt/two/f" : "/mnt/one/Z.app/in/f", false),
                                 memberAt("/mnt/other", true)};
            DuplicatePlan plan = planOf(std::move(groups));
            if (isProtected) plan.protectedFolders = {showsPart ? "/mnt/two" : shown + "/Z.app/in"};
            if (isProtected) plan.groups.pop_back();
            PlanRemoval list(files, plan);
            (void)testing::removeAll(files, "/mnt/state", list);
            if (!isThere("/mnt/one/Z.app/in/f"))
                return isProtected ? "what is protected went" : "what stays went";
            return {};
        };
    };
    for (const bool isProtected : {true, false})
        for (const bool showsPart : {true, false}) withOwnMounts(check(isProtected, showsPart));
}

/// The real files, that look as a test wants it.
class ShowingFiles final : public ForwardingFiles {
public:
    explicit ShowingFiles(std::function<void(FileAttributes&)> change)
        : ForwardingFiles(files), m_change(std::move(change)) {}
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        return changed(ForwardingFiles::attributes(parent, name, links));
    }
    SysResult<FileAttributes> attributes(int descriptor) const override {
        return changed(ForwardingFiles::attributes(descriptor));
    }

private:
    SysResult<FileAttributes> changed(SysResult<FileAttributes> seen) const {
        if (seen) m_change(*seen);
        return seen;
    }
    const std::function<void(FileAttributes&)> m_change;
};

// A served file system may show no length for what has bytes.
TEST(PlanRemoval, WhatLooksEmptyIsReadAllTheSame) {
    const ShowingFiles lengthless([](FileAttributes& seen) {
        if (seen.type == FileType::Regular) seen.size = 0;
    });
    for (const auto& [ours, theirs] : {std::pair{"one", "two"}, {"", "two"}, {"", ""}}) {
        TestTree tree;
        ASSERT_TRUE(tree.write("a/f", ours) && tree.write("b/f", theirs));
        PlanGroup group;
        group.members = {memberAt(tree.at("b"), false), memberAt(tree.at("a"), true)};
        for (PlanMember& member : group.members)
            member.listing = listBundle(lengthless, member.path, {}, neverStopped)->digest;
        PlanRemoval list(lengthless, planOf({group}));
        (void)testing::removeAll(files, tree.at("state"), list);
        EXPECT_EQ(isThere(tree.at("a/f")), *theirs != 0) << ours;
    }
}

// What is mounted in the folder that stays is no copy: it may be what goes.
TEST(PlanRemoval, AMountInWhatStaysIsNoCopy) {
    const struct {
        const char* from;
        const char* to;
        bool hasNumbers;
    } cases[] = {{"a/in/f", "b/in/f", true},
                 {"a/in", "b/in", true},
                 {"away/in", "b/in", true},
                 {"a/in/f", "b/in/f", false}};
    withOwnMounts([&]() -> std::string {
        const ShowingFiles old([](FileAttributes& seen) { seen.mount = 0; });
        for (const auto& [from, to, hasNumbers] : cases) {
            TestTree tree("/mnt");
            for (const char* const folder : {"a", "b", "away"})
                if (!tree.write(std::string(folder) + "/in/f", "the same")) return "no tree";
            if (!bindMount(tree.at(from), tree.at(to))) return "skip: no bind mounts";
            PlanGroup group;
            group.members = {memberAt(tree.at("b"), false), memberAt(tree.at("a"), true)};
            PlanRemoval list(hasNumbers ? files : static_cast<const FileSystem&>(old),
                             planOf({group}));
            (void)testing::removeAll(files, "/mnt/state", list);
            const std::string why = list.account()[0].reason;
            const bool isThereStill = isThere(tree.at("a/in/f"));
            (void)::umount2(tree.at(to).c_str(), MNT_DETACH);
            if (!isThereStill) return fmt::format("{} on {} was the copy", from, to);
            if (why.empty()) return "nothing is told";
        }
        return {};
    });
}

// Ended in the middle of a bundle, it is not told as one that nothing happened to.
TEST(PlanRemoval, APartThatWentIsTold) {
    TestTree tree;
    for (const char* const name : {"A.app/f", "Z.app/f"}) ASSERT_TRUE(tree.write(name, "the same"));
    for (int i = 0; i < 50; ++i)
        for (const char* const bundle : {"A.app", "Z.app"})
            ASSERT_TRUE(tree.write(fmt::format("{}/{}", bundle, i), "x"));
    PlanGroup group;
    group.members = {memberAt(tree.at("A.app"), false), memberAt(tree.at("Z.app"), true)};
    const DuplicatePlan plan = planOf({group});
    WatchedFiles watched;
    std::atomic<bool> stop{false};
    int removals = 0;
    watched.beforeRemoval = [&](const char* operation) {
        if (std::string_view(operation) == "removeEntry" && ++removals == 5) stop = true;
    };
    PlanRemoval list(watched, plan);
    PlainDoor door(watched, {});
    RemovalRun run(watched, tree.at("state"), list, door, stop, testing::nobodyTold());
    EXPECT_TRUE(run.run().stopped);
    EXPECT_LT(namesIn(tree.at("Z.app")).size(), 51U);
    EXPECT_EQ(list.account()[0].as, PlanRemoval::Settled::As::Partly);
    EXPECT_EQ(list.gained(), 51U - namesIn(tree.at("Z.app")).size());
}

// Each entry is told; what was done once is not there for a second time.
TEST(PlanRemoval, TellsWhatBecameOfEachEntry) {
    using As = PlanRemoval::Settled::As;
    TestTree tree;
    for (const char* const name : {"keep", "goes", "changes", "leaves", "guarded/x", "late"})
        ASSERT_TRUE(tree.write(name, "the same"));
    ASSERT_TRUE(tree.write("second keep", "other") && tree.write("second", "other"));
    std::vector<PlanGroup> groups(2);
    groups[0].members.push_back(memberAt(tree.at("keep"), false));
    for (const char* const name : {"goes", "changes", "leaves", "guarded/x"})
        groups[0].members.push_back(memberAt(tree.at(name), true));
    groups[1].members = {memberAt(tree.at("second keep"), false),
                         memberAt(tree.at("second"), true)};
    DuplicatePlan plan = planOf(std::move(groups));
    plan.protectedFolders = {tree.at("guarded")};
    ASSERT_TRUE(tree.write("changes", "THE SAME") && tree.write("second keep", "OTHER"));
    ASSERT_EQ(::unlink(tree.at("leaves").c_str()), 0);
    const auto run = [&] {
        PlanRemoval list(files, plan);
        (void)testing::removeAll(files, tree.at("state"), list);
        std::vector<std::pair<As, std::string>> told;
        for (const auto& each : list.account()) told.emplace_back(each.as, each.reason);
        return told;
    };
    using Told = std::pair<As, std::string>;
    std::vector<Told> expected{{As::Gone, ""},
                               {As::Stayed, "changed since the scan"},
                               {As::GoneByOthers, ""},
                               {As::Stayed, "in a protected folder"},
                               {As::Stayed, "no other verified copy is left"}};
    EXPECT_EQ(run(), expected);
    expected[0].first = As::GoneByOthers;
    EXPECT_EQ(run(), expected);
}

// Of files with several names those alone whose last names went along.
TEST(PlanRemoval, TellsWhatAFolderGaveToTheDisk) {
    for (const bool isToTrash : {false, true}) {
        TestTree tree{"/dev/shm"};
        for (const char* const name : {"a/own", "b/own", "a/both", "a/twice", "a/again", "b/twice"})
            ASSERT_TRUE(tree.write(name, "the same"));
        ASSERT_TRUE(tree.hardLink("a/both", "b/both") && tree.hardLink("b/twice", "b/again"));
        PlanGroup group;
        group.members = {memberAt(tree.at("a"), false), memberAt(tree.at("b"), true)};
        group.members[1].size = 32;
        PlanRemoval list(files, planOf({group}));
        PlainDoor plain(files, {});
        TrashDoor trash(files, {}, {.home = tree.at("home"), .user = ::geteuid()});
        RemovalDoor& door = isToTrash ? static_cast<RemovalDoor&>(trash) : plain;
        RemovalRun run(files, tree.at("state"), list, door, neverStopped, testing::nobodyTold());
        EXPECT_EQ(run.run().removed, 1U);
        EXPECT_EQ(list.gained(), isToTrash ? 32U : 16U);
    }
}

// What goes as well is no copy to go for: the disk of what stays may be out of reach for a while.
TEST(PlanRemoval, NothingGoesForWhatGoesItself) {
    TestTree tree;
    PlanGroup group;
    for (const char* const name : {"stays", "goes", "goes too"}) {
        ASSERT_TRUE(tree.write(name, "the same"));
        group.members.push_back(memberAt(tree.at(name), *name == 'g'));
    }
    ASSERT_EQ(::unlink(tree.at("stays").c_str()), 0);
    PlanRemoval list(files, planOf({group}));
    EXPECT_EQ(testing::removeAll(files, tree.at("state"), list).removed, 0U);
    for (const auto& each : list.account()) EXPECT_EQ(each.reason, stay::noCopy);
}

}  // namespace
}  // namespace orrinvale
