// Undo: what a plan moved to the trash comes back as it was, or is told with its place; and the
// history that undo stands on.
#include <sys/time.h>

#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/plan/PlanHistory.h"
#include "engine/duplicates/plan/PlanRemoval.h"
#include "engine/removal/PairList.h"
#include "engine/removal/TrashDoor.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

const std::atomic<bool> neverStoppedUndo{false};

/// A folder whose entries are moved to the trash by a plan, and brought back.
struct TrashedTree {
    TestTree tree;
    FolderVariables variables{.home = tree.at("home"), .user = ::geteuid()};
    DuplicatePlan plan;
    std::vector<UndoFolder> folders;
    std::uint64_t inTrash = 0;  // bytes, as the removal told them

    explicit TrashedTree(const Strings& names, const std::string& bytes = "the same") {
        plan.owner = ::geteuid();
        plan.made = "2026-11-22T15:00:00+00:00";
        tree.write("stays", bytes);
        for (const std::string& name : names)
            if (!isThere(tree.at(name))) tree.write(name, bytes);
    }
    void move(const Strings& names) {
        PlanGroup group;
        Strings all = names;
        all.emplace_back("stays");
        for (const std::string& name : all) {
            PlanMember member;
            member.path = tree.at(name);
            member.goes = name != "stays";
            member.identity = EntryIdentity::of(attributesOf(member.path));
            member.identity.born = 0;
            member.size = member.identity.size;
            group.members.push_back(std::move(member));
        }
        plan.groups = {std::move(group)};
        folders = foldersOf(files, plan);
        PlanRemoval list(files, plan);
        TrashDoor door(files, {}, variables);
        RemovalRun run(files, {}, list, door, neverStoppedUndo, testing::nobodyTold());
        EXPECT_EQ(run.run().removed, names.size());
        inTrash = list.gained();
    }
    UndoOutcome undo() const { return undoPlan(files, variables, plan, folders, neverStoppedUndo); }
    std::string trash(const std::string& name) const {
        return tree.at("home/.local/share/Trash/" + name);
    }
};

struct PassingFiles final : ForwardingFiles {
    PassingFiles() : ForwardingFiles(realFiles) {}
    std::vector<std::uint64_t> devicesOfPassingInodes() const override { return devices; }
    std::vector<std::uint64_t> devices;
};

struct Seen {
    std::uint64_t inode;
    std::int64_t modified;
    std::uint32_t links;
    mode_t mode;
    friend bool operator==(const Seen&, const Seen&) = default;
};

Seen seenAt(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    const auto attributes = attributesOf(path);
    return {attributes.inode, attributes.modified, attributes.links, status.st_mode};
}

TEST(TrashUndo, BringsAllBackWithTimesModesLinksAndNames) {
    Strings names{"a/line\nbreak", "a/\xff\xfe", "a/" + std::string(255, 'n'), "b/x", "a/x",
                  "c/x",           "b/-rf"};
    for (int i = 0; i < 300; ++i) names.push_back(fmt::format("many/{}.txt", i % 100 * 1000 + i));
    TrashedTree trashed(names);
    auto& tree = trashed.tree;
    ASSERT_TRUE(tree.hardLink("b/x", "b/second") && tree.setMode("a/x", 0640));
    names.emplace_back("b/second");
    const timeval times[2] = {{1'000'000'000, 0}, {1'000'000'001, 5}};
    ASSERT_EQ(::lutimes(tree.at("c/x").c_str(), times), 0);
    std::map<std::string, Seen> before;
    for (const std::string& name : names) before.emplace(name, seenAt(tree.at(name)));
    trashed.move(names);
    for (const std::string& name : names) ASSERT_FALSE(isThere(tree.at(name))) << name;
    const UndoOutcome outcome = trashed.undo();
    EXPECT_EQ(outcome.restored.size(), names.size());
    EXPECT_TRUE(outcome.left.empty()) << outcome.left.front().reason;
    for (const std::string& name : names) EXPECT_EQ(seenAt(tree.at(name)), before.at(name)) << name;
    EXPECT_TRUE(namesIn(trashed.trash("files")).empty());
    EXPECT_TRUE(namesIn(trashed.trash("info")).empty());
    EXPECT_EQ(trashed.undo().inPlace, names.size());
}

TEST(TrashUndo, WhatCanNotComeBackIsToldAndStaysWhereItIs) {
    const struct {
        const char* what;
        std::function<void(TrashedTree&)> between;
        std::string reason;
        bool isInTrash;
    } cases[] = {
        {"the trash was emptied",
         [](TrashedTree& t) { std::filesystem::remove_all(t.trash("files")); },
         "it is not in the trash any more", false},
        {"the whole trash is gone",
         [](TrashedTree& t) { std::filesystem::remove_all(t.trash("")); },
         "it is not in the trash any more", false},
        {"the folder is gone", [](TrashedTree& t) { ::rmdir(t.tree.at("a").c_str()); },
         "the folder that it was in is gone", true},
        {"another folder has its name",
         [](TrashedTree& t) {
             ::rename(t.tree.at("a").c_str(), t.tree.at("b").c_str());
             t.tree.folder("a");
         },
         "another folder is where it was", true},
        {"a link has its name",
         [](TrashedTree& t) {
             ::rename(t.tree.at("a").c_str(), t.tree.at("b").c_str());
             t.tree.folder("other");
             t.tree.symlink("other", "a");
         },
         "another folder is where it was", true},
        {"the name is taken", [](TrashedTree& t) { t.tree.write("a/x", "came since"); },
         "its name is taken by now", true},
        {"a link took it", [](TrashedTree& t) { t.tree.symlink("nowhere", "a/x"); },
         "its name is taken by now", true},
        {"somebody dropped the record",
         [](TrashedTree& t) { ::unlink(t.trash("info/x.trashinfo").c_str()); },
         "the trash has no record of it any more", true},
        {"the record is of another place",
         [](TrashedTree& t) {
             t.tree.write("home/.local/share/Trash/info/x.trashinfo",
                          "[Trash Info]\nPath=" + t.tree.at("b/x") + "\n");
         },
         "by the trash's record it was elsewhere", true},
        {"the record is a pipe",
         [](TrashedTree& t) {
             ::unlink(t.trash("info/x.trashinfo").c_str());
             t.tree.fifo("home/.local/share/Trash/info/x.trashinfo");
         },
         "the trash has no record of it any more", true},
        {"the record is a link to one",
         [](TrashedTree& t) {
             const auto record = t.trash("info/x.trashinfo");
             ::rename(record.c_str(), t.tree.at("record").c_str());
             t.tree.symlink(t.tree.at("record"), "home/.local/share/Trash/info/x.trashinfo");
         },
         "the trash has no record of it any more", true},
        {"the record is too long for one",
         [](TrashedTree& t) {
             std::ofstream(t.trash("info/x.trashinfo"), std::ios::app) << std::string(70'000, '\n');
         },
         "the trash has no record of it any more", true},
        {"it was written to in the trash",
         [](TrashedTree& t) { std::ofstream(t.trash("files/x"), std::ios::app) << "more"; },
         "it was written to since", true},
    };
    for (const auto& [what, between, reason, isInTrash] : cases) {
        TrashedTree trashed({"a/x"});
        trashed.move({"a/x"});
        between(trashed);
        const std::string taken = contentOf(trashed.tree.at("a/x"));
        const UndoOutcome outcome = trashed.undo();
        EXPECT_TRUE(outcome.restored.empty()) << what;
        ASSERT_EQ(outcome.left.size(), 1U) << what;
        EXPECT_EQ(outcome.left[0].reason, reason) << what;
        EXPECT_EQ(isThere(trashed.trash("files/x")), isInTrash) << what;
        EXPECT_EQ(contentOf(trashed.tree.at("a/x")), taken) << what;
    }
    // A way that leads to the very folder by another path is no other folder.
    TrashedTree moved({"a/x"});
    moved.move({"a/x"});
    ASSERT_EQ(::rename(moved.tree.at("a").c_str(), moved.tree.at("b").c_str()), 0);
    ASSERT_TRUE(moved.tree.symlink("b", "a"));
    EXPECT_EQ(moved.undo().restored.size(), 1U);
    EXPECT_EQ(contentOf(moved.tree.at("b/x")), "the same");
}

TEST(TrashUndo, AFileWithTwoNamesIsCountedOnce) {
    TrashedTree trashed({"a/x", "a/z"});
    ASSERT_TRUE(trashed.tree.hardLink("a/x", "a/y"));
    trashed.move({"a/x", "a/y", "a/z"});
    EXPECT_EQ(trashed.inTrash, 16U);
    EXPECT_EQ(sumsOf(trashed.plan).bytes, 16U);
    EXPECT_EQ(sumsOf(trashed.plan).files, 3U);
}

TEST(TrashUndo, AnotherUndoOrTheEmptyingOfTheTrashMayBeQuicker) {
    for (const bool isUndo : {true, false}) {
        TrashedTree trashed({"a/x", "a/y"});
        trashed.move({"a/x", "a/y"});
        WatchedFiles watched;
        watched.beforeRemoval = [&, isDone = false](const char* operation) mutable {
            if (std::string_view(operation) != "moveEntry" || std::exchange(isDone, true)) return;
            if (!isUndo) std::filesystem::remove_all(trashed.trash("files/x"));
            else EXPECT_EQ(trashed.undo().restored.size(), 2U);
        };
        const auto outcome =
            undoPlan(watched, trashed.variables, trashed.plan, trashed.folders, neverStoppedUndo);
        EXPECT_EQ(outcome.inPlace, isUndo ? 2U : 0U);
        EXPECT_EQ(outcome.restored.size(), isUndo ? 0U : 1U);
        ASSERT_EQ(outcome.left.size(), isUndo ? 0U : 1U);
        if (isUndo) continue;
        EXPECT_EQ(outcome.left[0].reason, "it is not in the trash any more");
        EXPECT_EQ(outcome.left[0].place, "");
    }
}

// The power went before the record was on the disk: the plan knows where the entry was.
TEST(TrashUndo, AnEntryWithAnEmptyRecordComesBack) {
    TrashedTree trashed({"a/x"});
    trashed.move({"a/x"});
    ASSERT_EQ(::truncate(trashed.trash("info/x.trashinfo").c_str(), 0), 0);
    EXPECT_EQ(trashed.undo().restored.size(), 1U);
}

// By its number it can not be known, and by no record: the name that the trash gave it is left.
TEST(TrashUndo, WhereNumbersDoNotLastAnEmptyRecordIsEnough) {
    PassingFiles watched;
    for (const std::string what : {"empty", "gone", "written", "other name"}) {
        SCOPED_TRACE(what);
        TrashedTree trashed({"a/x 2.txt"});
        ASSERT_TRUE(trashed.tree.write("home/.local/share/Trash/files/x 2.txt", "older"));
        trashed.move({"a/x 2.txt"});
        watched.devices = {trashed.folders[0].device};
        trashed.plan.groups[0].members[0].identity.inode += 1000;
        const std::string record = trashed.trash("info/x 2 2.txt.trashinfo");
        const std::string moved = trashed.trash("files/x 2 2.txt");
        ASSERT_EQ(what == "gone" ? ::unlink(record.c_str()) : ::truncate(record.c_str(), 0), 0);
        if (what == "written") std::ofstream(moved) << "more";
        if (what == "other name") std::filesystem::rename(moved, trashed.trash("files/x 2 x.txt"));
        const auto outcome =
            undoPlan(watched, trashed.variables, trashed.plan, trashed.folders, neverStoppedUndo);
        EXPECT_EQ(outcome.restored.size(), what == "empty" ? 1U : 0U);
        EXPECT_EQ(!outcome.left.empty() && !outcome.left[0].place.empty(), what == "gone");
        EXPECT_EQ(contentOf(trashed.trash("files/x 2.txt")), "older");
    }
}

// With a restart a volume gets another number, and on some its files get others too. What is known
// by its record alone still has to have the size and time that it had.
TEST(TrashUndo, AVolumeMayHaveAnotherNumberByNow) {
    for (const std::string what : {"volume", "numbers", "other volume", "other file"}) {
        SCOPED_TRACE(what);
        TrashedTree trashed({"a/x", "a/y"});
        trashed.move({"a/x", "a/y"});
        PassingFiles watched;
        const bool isEverything = what == "numbers" || what == "other file";
        if (isEverything) watched.devices = {trashed.folders[0].device};
        trashed.folders[0].device += 1000;
        trashed.folders[0].inode += isEverything || what == "other volume" ? 1000U : 0U;
        for (PlanMember& member : trashed.plan.groups[0].members) {
            member.identity.device += 1000;
            member.identity.inode += isEverything ? 1000U : 0U;
            if (what == "other file") member.identity.modified += 1;
        }
        const auto outcome =
            undoPlan(watched, trashed.variables, trashed.plan, trashed.folders, neverStoppedUndo);
        const bool isBack = what == "volume" || what == "numbers";
        EXPECT_EQ(outcome.restored.size(), isBack ? 2U : 0U);
        EXPECT_EQ(isThere(trashed.tree.at("a/y")), isBack);
        if (what == "other volume") {
            ASSERT_EQ(outcome.left.size(), 2U);
            EXPECT_EQ(outcome.left[0].reason, "another folder is where it was");
            EXPECT_EQ(outcome.left[0].place, trashed.trash("files/x"));
        }
        EXPECT_EQ(
            undoPlan(watched, trashed.variables, trashed.plan, trashed.folders, neverStoppedUndo)
                .inPlace,
            isBack ? 2U : 0U);
    }
    // The stick is out, and its folder was never on the volume above it.
    TrashedTree out({"a/x"});
    out.move({"a/x"});
    ASSERT_EQ(::rename(out.tree.at("a").c_str(), out.tree.at("b").c_str()), 0);
    std::filesystem::remove_all(out.trash("files"));
    out.folders[0].device += 1000;
    EXPECT_EQ(out.undo().left.at(0).reason, "the volume that it was on is not there");
}

// The number of a bundle that was deleted from the trash is another folder's by now.
TEST(TrashUndo, AFolderWithTheNumberOfABundleStaysInTheTrash) {
    TrashedTree trashed({"a/x", "b/X.app/bin"});
    trashed.move({"a/x"});
    const std::string record = "[Trash Info]\nPath=" + trashed.tree.at("b/X.app") + "\n";
    ASSERT_TRUE(trashed.tree.write("home/.local/share/Trash/files/private/s", "secret") &&
                trashed.tree.write("home/.local/share/Trash/info/private.trashinfo", record) &&
                trashed.tree.write("home/.local/share/Trash/info/X.app.trashinfo", record));
    PlanMember bundle;
    bundle.path = trashed.tree.at("b/X.app");
    bundle.goes = true;
    bundle.identity = EntryIdentity::of(attributesOf(bundle.path));
    bundle.listing = listBundle(files, bundle.path, {{}, false}, neverStoppedUndo)->digest;
    trashed.plan.groups[0].members[0] = bundle;
    trashed.folders = foldersOf(files, trashed.plan);
    const PlanMember real = bundle;
    trashed.plan.groups[0].members[0].identity =
        EntryIdentity::of(attributesOf(trashed.trash("files/private")));
    ASSERT_EQ(::rename(bundle.path.c_str(), trashed.trash("files/X.app").c_str()), 0);
    EXPECT_TRUE(trashed.undo().restored.empty());
    EXPECT_TRUE(isThere(trashed.trash("files/private/s")));
    trashed.plan.groups[0].members[0] = real;
    EXPECT_EQ(trashed.undo().restored.size(), 1U);
    EXPECT_EQ(contentOf(trashed.tree.at("b/X.app/bin")), "the same");
}

// Writes three equal files, of which those in the folders a and b go.
DuplicatePlan planOfTwoMounts() {
    DuplicatePlan plan;
    plan.groups.resize(1);
    for (const char* const path : {"/mnt/a/x", "/mnt/b/y", "/mnt/stays"}) {
        std::ofstream(path) << "the same";
        PlanMember member;
        member.path = path;
        member.goes = path != std::string_view("/mnt/stays");
        member.identity = EntryIdentity::of(attributesOf(path));
        member.size = member.identity.size;
        plan.groups[0].members.push_back(std::move(member));
    }
    return plan;
}

// On a volume of its own, whose trash is found by what stands of the way to the folder.
TEST(TrashUndo, AFolderThatIsGoneCostsNoOther) {
    withOwnMounts([]() -> std::string {
        for (const char* const folder : {"/mnt/a", "/mnt/b"})
            std::filesystem::create_directory(folder);
        if (!testing::mountRam("/mnt/home")) return "skip: no tmpfs";
        const DuplicatePlan plan = planOfTwoMounts();
        const FolderVariables variables{.home = "/mnt/home", .user = ::geteuid()};
        const auto folders = foldersOf(files, plan);
        PlanRemoval list(files, plan);
        TrashDoor door(files, {}, variables);
        RemovalRun run(files, {}, list, door, neverStoppedUndo, testing::nobodyTold());
        if (run.run().removed != 2) return "they were not moved";
        if (::rmdir("/mnt/a") != 0) return "a is not empty";
        const auto outcome = undoPlan(files, variables, plan, folders, neverStoppedUndo);
        if (contentOf("/mnt/b/y") != "the same") return "y did not come back";
        return outcome.left.size() == 1 && !outcome.left[0].place.empty() ? "" : "x is not told";
    });
}

// Two places show parts of one volume, or all of it; each has a trash where it is mounted.
TEST(TrashUndo, EachMountOfAVolumeIsAsked) {
    for (const std::string part : {"", "/part"})
        withOwnMounts([part]() -> std::string {
            for (const char* const folder : {"/mnt/a", "/mnt/b"})
                std::filesystem::create_directory(folder);
            if (!testing::mountRam("/mnt/home") || !testing::mountRam("/mnt/disk"))
                return "skip: no tmpfs";
            std::filesystem::create_directory("/mnt/disk/part");
            if (!testing::bindMount("/mnt/disk", "/mnt/a") ||
                !testing::bindMount("/mnt/disk" + part, "/mnt/b"))
                return "skip: no mounts here";
            const DuplicatePlan plan = planOfTwoMounts();
            const FolderVariables variables{.home = "/mnt/home", .user = ::geteuid()};
            const auto folders = foldersOf(files, plan);
            PlanRemoval list(files, plan);
            TrashDoor door(files, {}, variables);
            RemovalRun run(files, {}, list, door, neverStoppedUndo, testing::nobodyTold());
            if (run.run().removed != 2) return "they were not moved";
            if (countInTrash(files, variables, plan, folders, neverStoppedUndo) != 2)
                return "not both are counted " + part;
            const auto outcome = undoPlan(files, variables, plan, folders, neverStoppedUndo);
            return outcome.left.empty() ? "" : part + outcome.left[0].path + outcome.left[0].reason;
        });
}

// After the trash was emptied another entry has the name there.
TEST(TrashUndo, AnotherEntryStaysInTheTrashOrIsToldOf) {
    TrashedTree trashed({"a/x", "a/y"});
    trashed.move({"a/x", "a/y"});
    const auto replace = [&](const std::string& name) {
        ::rename(trashed.trash("files/" + name).c_str(), trashed.tree.at(name).c_str());
        trashed.tree.write("home/.local/share/Trash/files/" + name, "another");
    };
    WatchedFiles watched;
    int moves = 0;
    watched.beforeRemoval = [&](const char* operation) {
        if (std::string_view(operation) != "moveEntry") return;
        if (++moves == 1) replace("x");
        if (moves == 1) replace("y");
        if (moves == 2) trashed.tree.write("home/.local/share/Trash/files/x", "third");
    };
    const auto outcome =
        undoPlan(watched, trashed.variables, trashed.plan, trashed.folders, neverStoppedUndo);
    EXPECT_EQ(moves, 2) << "y was not touched";
    ASSERT_EQ(outcome.left.size(), 2U);
    EXPECT_EQ(contentOf(trashed.tree.at("a/x")), "another");
    EXPECT_EQ(outcome.left[0].place, "");
    EXPECT_TRUE(outcome.left[0].reason.ends_with(trashed.tree.at("a/x"))) << outcome.left[0].reason;
    EXPECT_EQ(outcome.left[1].place, trashed.trash("files/y"));
}

// Where contents are not compared, too.
TEST(TrashUndo, WhatIsOpenForWritingDoesNotGoToTheTrash) {
    for (const char* const name : {"a/x", "stays"}) {
        TrashedTree trashed({"a/x"});
        testing::PairList list(files, {}, {}, false);
        list.add(trashed.tree.at("a/x"), trashed.tree.at("stays"));
        const Descriptor file(::open(trashed.tree.at(name).c_str(), O_RDWR | O_CLOEXEC));
        TrashDoor door(files, {}, trashed.variables);
        RemovalRun run(files, {}, list, door, neverStoppedUndo, testing::nobodyTold());
        EXPECT_EQ(run.run().failed, 1U) << name;
        EXPECT_TRUE(isThere(trashed.tree.at("a/x"))) << name;
    }
}

// In the moment in which the one is moved the copy that stays vanishes, or the one is written to:
// it comes back. Where its name is taken it is told with its place.
TEST(TrashUndo, NothingIsLeftInTheTrashWithoutACopyThatStays) {
    for (const std::string what : {"gone", "written", "both", "replaced"}) {
        SCOPED_TRACE(what);
        TrashedTree trashed({"a/x"});
        WatchedFiles watched;
        bool isDone = false;
        int moves = 0;
        watched.beforeRemoval = [&](const char* operation) {
            if (std::string_view(operation) != "moveEntry") return;
            if (++moves == 2 && (what == "both" || what == "replaced"))
                trashed.tree.write("a/x", "came since");
            if (std::exchange(isDone, true)) return;
            if (what == "gone") ::unlink(trashed.tree.at("stays").c_str());
            if (what == "replaced")
                ::rename(trashed.tree.at("a/x").c_str(), trashed.tree.at("old").c_str());
            if (what != "gone") std::ofstream(trashed.tree.at("a/x"), std::ios::app) << " and more";
        };
        PlanGroup group;
        for (const char* const name : {"a/x", "stays"}) {
            PlanMember member;
            member.path = trashed.tree.at(name);
            member.goes = name != std::string_view("stays");
            member.identity = EntryIdentity::of(attributesOf(member.path));
            member.identity.born = 0;
            member.size = member.identity.size;
            group.members.push_back(std::move(member));
        }
        trashed.plan.groups = {group};
        PlanRemoval list(watched, trashed.plan);
        TrashDoor door(watched, {}, trashed.variables);
        RemovalRun run(watched, {}, list, door, neverStoppedUndo, testing::nobodyTold());
        const auto outcome = run.run();
        EXPECT_EQ(outcome.failed, 1U);
        EXPECT_TRUE(isDone);
        const bool isAside = what == "both" || what == "replaced";
        ASSERT_EQ(outcome.stayed.size(), 1U);
        EXPECT_EQ(outcome.stayed[0].kind == StayReason::Aside, isAside) << outcome.stayed[0].reason;
        EXPECT_EQ(contentOf(isAside ? trashed.trash("files/x") : trashed.tree.at("a/x")),
                  what == "gone"       ? "the same"
                  : what == "replaced" ? " and more"
                                       : "the same and more");
        EXPECT_EQ(namesIn(trashed.trash("info")).empty(), !isAside);
    }
}

TEST(PlanHistory, GarbageCostsOneRemovalAlone) {
    TrashedTree trashed({"a/\xff"});
    trashed.move({"a/\xff"});
    const PlanHistory history(trashed.tree.at("state"));
    EXPECT_TRUE(history.ids().empty());
    const auto first = history.note(files, trashed.plan);
    const auto second = history.note(files, trashed.plan);
    ASSERT_TRUE(first && second);
    const std::string path = trashed.tree.at("state/removed/" + *first + ".json");
    EXPECT_EQ(seenAt(path).mode & 07777U, 0600U);
    std::ofstream(path, std::ios::app) << "garbage";
    EXPECT_FALSE(history.load(*first));
    EXPECT_FALSE(history.summaryOf(*first));
    const auto summary = history.summaryOf(*second);
    ASSERT_TRUE(summary) << summary.error();
    EXPECT_EQ(summary->entries, sumsOf(trashed.plan).entries());
    EXPECT_EQ(summary->bytes, sumsOf(trashed.plan).bytes);
    EXPECT_NE(summary->bytes, 0U);
    // In whichever byte, and cut after it.
    const std::string sound = contentOf(trashed.tree.at("state/removed/" + *second + ".json"));
    for (std::size_t i = 0; i < sound.size(); ++i) {
        std::string damaged = sound;
        damaged[i] = static_cast<char>(damaged[i] ^ 1);
        for (const std::string& each : {damaged, sound.substr(0, i)}) {
            std::ofstream(path) << each;
            ASSERT_FALSE(history.summaryOf(*first) || history.load(*first)) << i << ": " << each;
        }
    }
    // Notes of before had no seal, and have their sums from their plan.
    const std::string older = sound.substr(sound.find('\n') + 1);
    std::ofstream(path) << older;
    EXPECT_TRUE(history.summaryOf(*first) && history.summaryOf(*first)->bytes == summary->bytes);
    EXPECT_TRUE(history.load(*first));
    std::ofstream(path, std::ios::app) << "garbage";
    EXPECT_FALSE(history.summaryOf(*first) || history.load(*first));
    const auto loaded = history.load(*second);
    ASSERT_TRUE(loaded) << loaded.error();
    ASSERT_EQ(loaded->folders.size(), 1U);
    EXPECT_EQ(loaded->folders[0].path, trashed.tree.at("a"));
    EXPECT_EQ(loaded->folders[0].place, trashed.tree.at("a"));
    EXPECT_EQ(undoPlan(files, trashed.variables, loaded->plan, loaded->folders, neverStoppedUndo)
                  .restored.size(),
              1U);
    EXPECT_FALSE(history.load("../../etc/passwd"));
    // The plan may be of any day; the removal is of now.
    const auto noted = PlanHistory::timeOf(*second);
    ASSERT_TRUE(noted);
    EXPECT_LT(std::abs(noted->nanoseconds / 1'000'000'000 - std::time(nullptr)), 60);
    for (const char* id : {"", "1-2", "20261322100000-000000001-1", "../../etc/passwd"})
        EXPECT_FALSE(PlanHistory::timeOf(id)) << id;

    const timeval old[2] = {{1, 0}, {1, 0}};
    ASSERT_EQ(::utimes(path.c_str(), old), 0);
    EXPECT_EQ(history.ids(), Strings{*second});
    const auto third = history.note(files, trashed.plan);
    ASSERT_TRUE(third);
    EXPECT_EQ(history.ids(), (Strings{*second, *third}));
    EXPECT_FALSE(isThere(path));
    Descriptor held = history.hold(*third);  // as a removal that runs does
    EXPECT_TRUE(history.clear());
    EXPECT_EQ(history.ids(), Strings{*third});
    held.reset();
    EXPECT_TRUE(history.clear());
    EXPECT_TRUE(history.ids().empty());
}

// As large as no test would write one, so that it could not be read in that time.
TEST(PlanHistory, OfALargeNoteOnlyWhatItsSealIsOfIsRead) {
    TestTree tree;
    const std::string path = tree.at("note");
    const auto write = [&](std::uint64_t size) {
        constexpr std::uint64_t piece = NoteSeal::piece;
        std::string ends(2 * piece, '\0');
        NoteSeal seal = NoteSeal::of({.entries = 3, .bytes = 4}, ends);
        seal.rest = size;
        std::ofstream(path) << seal.line();
        std::filesystem::resize_file(path, seal.line().size() + size);
    };
    constexpr std::uint64_t size = std::uint64_t{200} << 30U;
    write(size);
    EXPECT_EQ(lookAtNote(path).state, SealedNote::State::Whole);
    EXPECT_EQ(lookAtNote(path).sums.entries, 3U);
    const auto whole = std::filesystem::file_size(path);
    for (const std::uint64_t place : {whole - 1, whole - NoteSeal::piece, whole - size + 5}) {
        write(size);
        std::fstream(path).seekp(static_cast<std::streamoff>(place)) << 'x';
        EXPECT_EQ(lookAtNote(path).state, SealedNote::State::Damaged) << place;
    }
    std::filesystem::resize_file(path, whole - 1);
    EXPECT_EQ(lookAtNote(path).state, SealedNote::State::Damaged);
    // Nor where the damage is to the seal: zeros are what a power cut leaves.
    for (const std::string& beginning :
         {std::string("{\"orrinvalfNote\": 1"), std::string(300, '\0')}) {
        write(size);
        std::fstream(path) << beginning;
        EXPECT_EQ(lookAtNote(path).state, SealedNote::State::Damaged) << beginning;
    }
    EXPECT_EQ(lookAtNote(tree.at("none")).error, ENOENT);
}

// Where it can not be noted nothing is there to undo by, and the caller hears of it.
TEST(PlanHistory, AFullDiskIsTold) {
    withOwnMounts([] {
        if (::mkdir("/mnt/state", 0700) != 0 ||
            ::mount("none", "/mnt/state", "tmpfs", 0, "size=64k") != 0)
            return std::string("skip: no tmpfs");
        TrashedTree trashed({"a/x"});
        trashed.plan.rules.assign(2000, std::string(100, 'r'));
        const PlanHistory history("/mnt/state");
        const auto noted = history.note(files, trashed.plan);
        if (noted) return std::string("it was noted");
        if (!history.ids().empty()) return std::string("a part of it is left");
        return noted.error() == "No space left on device" ? std::string() : noted.error();
    });
}

}  // namespace
}  // namespace orrinvale
