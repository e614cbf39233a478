// Folders that are equal as wholes, against a plain comparison of whole trees, and folders that are
// for the most part in others.
#include <filesystem>
#include <map>

#include "engine/duplicates/RandomTree.h"
#include "engine/duplicates/SearchRun.h"
#include "engine/duplicates/folders/FolderFates.h"
#include "support/OwnMounts.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

namespace fs = std::filesystem;
using testing::RandomTree;
using testing::someBytes;

struct FolderSearch {
    SearchRequest request;
    SearchOption option = {true, true};
    FolderFindings found;
    std::vector<Error> skipped;

    explicit FolderSearch(const Strings& roots) {
        request.roots = roots;
        request.findsFolders = true;
    }
    FolderSearch& run(const FileSystem& disk = realFiles) {
        DuplicateFilesOpt search(disk);
        search.setSearchOption(&option);
        search.beginSearch(request);
        found = search.search()->folders();
        skipped = search.search()->skipped().entries();
        return *this;
    }
};

/// A line a group: the paths below the tree, sorted, and what is told of them.
Strings groupsIn(const FolderFindings& found, const std::string& tree) {
    Strings lines;
    for (const FolderGroup& group : found.groups) {
        std::set<std::string> members;
        for (const FolderMember& member : group.members)
            members.insert(member.path.substr(tree.size() + 1) + (member.isProtected ? "!" : ""));
        lines.push_back(fmt::format("{} {}f {}e {}b +{}", fmt::join(members, " "), group.files,
                                    group.entries, group.bytes, group.gain));
    }
    std::ranges::sort(lines);
    return lines;
}

// --- against whole texts of trees ---

/// All that a folder holds, written out. What equals nothing has its own path in it.
std::string wholeTextOf(const fs::path& folder) {
    std::map<std::string, std::string> entries;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_symlink()) entries[name] = "l " + fs::read_symlink(entry).string();
        else if (entry.is_directory()) entries[name] = "d {" + wholeTextOf(entry) + "}";
        else if (entry.is_regular_file()) entries[name] = "f " + testing::contentOf(entry.path());
        else entries[name] = "odd " + entry.path().string();
    }
    std::string text;
    for (const auto& [name, value] : entries) text += name + '\0' + value + '\0';
    return text;
}

struct PlainModel {
    const SearchRequest& request;
    bool hidden;
    std::map<std::string, Strings> byText;
    std::map<std::string, std::string> texts;  // of folders that the search comes to

    /// True when a file that the search lists lies in it.
    bool walk(const fs::path& folder) {
        bool isListed = false;
        for (const auto& entry : fs::directory_iterator(folder)) {
            const std::string name = entry.path().filename().string();
            if ((!hidden && name.front() == '.') || entry.is_symlink() || name == "left") continue;
            if (entry.is_directory()) isListed |= walk(entry);
            else if (entry.is_regular_file())
                isListed |= entry.file_size() > request.limit && request.filter.takesKindOf(name);
        }
        if (isListed) byText[wholeTextOf(folder)].push_back(folder);
        if (isListed) texts[folder] = wholeTextOf(folder);
        return isListed;
    }

    std::set<std::set<std::string>> groups() const {
        std::set<std::set<std::string>> told;
        for (const auto& [text, members] : byText) {
            if (members.size() < 2) continue;
            std::set<std::string> parents, parentTexts;
            for (const std::string& member : members) {
                const std::string parent = fs::path(member).parent_path();
                parents.insert(parent);
                parentTexts.insert(texts.contains(parent) ? texts.at(parent) : parent);
            }
            const bool isCovered = parents.size() == members.size() && parentTexts.size() == 1 &&
                                   byText.contains(*parentTexts.begin());
            if (!isCovered) told.emplace(members.begin(), members.end());
        }
        return told;
    }
};

TEST(EqualFolders, AreThoseOfAPlainComparison) {
    std::size_t groups = 0;
    for (unsigned seed = 0; seed < 120; ++seed) {
        TestTree tree;
        RandomTree(tree, seed).fill("r", 3);
        for (unsigned asked = 0; asked < 8; ++asked) {
            FolderSearch search({tree.at("r")});
            search.option.searchHidden = (asked & 1U) != 0;
            search.request.limit = (asked & 2U) != 0 ? 4 : 0;
            if ((asked & 4U) != 0) search.request.filter.kinds = {FileKind::Pictures};
            search.request.filter.exclusions.push_back(*PathPattern::parse("left"));
            search.run();
            PlainModel model{search.request, search.option.searchHidden, {}, {}};
            // The search follows links directly in its folder, the comparison does not.
            (void)model.walk(tree.at("r"));
            std::set<std::set<std::string>> found;
            for (const FolderGroup& group : search.found.groups) {
                std::set<std::string> members;
                for (const FolderMember& member : group.members) members.insert(member.path);
                found.insert(members);
            }
            ASSERT_EQ(found, model.groups()) << "seed " << seed << ", asked " << asked;
            groups += found.size();
        }
    }
    EXPECT_GT(groups, 50U) << "there was something to find";
}

// --- one by one ---

struct FolderCase {
    const char* what;
    std::function<void(TestTree&)> make;
    Strings expected;
    bool hidden = true;
};

void inBoth(TestTree& tree, const std::string& name, std::string_view bytes = "12345") {
    for (const char* folder : {"a/", "b/"}) ASSERT_TRUE(tree.write(folder + name, bytes));
}

TEST(EqualFolders, OneByOne) {
    const Strings none;
    const FolderCase cases[] = {
        {"an empty folder", [](TestTree& t) { t.folder("a/more"); }, none},
        {"an empty file", [](TestTree& t) { t.write("a/more", ""); }, none},
        {"a hidden file", [](TestTree& t) { t.write("a/.more", "x"); }, none, false},
        {"a hidden file's bytes", [](TestTree& t) { t.write("a/.h", "x"), t.write("b/.h", "y"); },
         none, false},
        {"a byte of a name",
         [](TestTree& t) { t.write("a/\xC3\xA9", "x"), t.write("b/e\xCC\x81", "x"); }, none},
        {"a link's text", [](TestTree& t) { t.symlink("x", "a/l"), t.symlink("y", "b/l"); }, none},
        {"a folder for an empty file", [](TestTree& t) { t.folder("a/x"), t.write("b/x", ""); },
         none},
        {"pipes", [](TestTree& t) { t.fifo("a/p"), t.fifo("b/p"); }, none},
        {"hidden and empty, all the same",
         [](TestTree& t) {
             inBoth(t, ".git/config", "[x]"), inBoth(t, "e", ""), inBoth(t, ".git/e/f", "");
             t.symlink("x", "a/l"), t.symlink("x", "b/l"), t.folder("a/d"), t.folder("b/d");
         },
         {"a b 4f 8e 8b +8"},
         false},
        {"what is inside of equals is theirs",
         [](TestTree& t) { inBoth(t, "s/t/g", "77"); },
         {"a b 2f 4e 7b +7"}},
        {"unless it has further equals",
         [](TestTree& t) { inBoth(t, "s/g", "77"), t.write("c/g", "77"); },
         {"a b 2f 3e 7b +7", "a/s b/s c 1f 1e 2b +4"}},
        {"also in itself",
         [](TestTree& t) { inBoth(t, "s/g", "77"), inBoth(t, "u/g", "77"); },
         {"a b 3f 5e 9b +9", "a/s a/u b/s b/u 1f 1e 2b +6"}},
        {"a folder in what looks like it",
         [](TestTree& t) { inBoth(t, "a/f"), t.write("a/a/a/f", "12345"); },
         {"a/a b 2f 3e 10b +10"}},
        {"names of one file give nothing",
         [](TestTree& t) { t.write("a/h", "123"), t.hardLink("a/h", "b/h"); },
         {"a b 2f 2e 8b +5"}},
        {"bundles in them", [](TestTree& t) { inBoth(t, "X.app/in", "777"); }, {"a b 2f 3e 8b +8"}},
    };
    for (const FolderCase& each : cases) {
        TestTree tree;
        inBoth(tree, "f");
        each.make(tree);
        FolderSearch search({tree.path()});
        search.option.searchHidden = each.hidden;
        EXPECT_EQ(groupsIn(search.run().found, tree.path()), each.expected) << each.what;
        EXPECT_TRUE(search.skipped.empty()) << each.what;
    }
}

TEST(EqualFolders, NothingIsToldOfTreesWithoutAByte) {
    TestTree tree;
    for (const char* path : {"a/x/e", "b/x/e", "c/e"}) ASSERT_TRUE(tree.write(path, ""));
    EXPECT_EQ(groupsIn(FolderSearch({tree.path()}).run().found, tree.path()), Strings{});
}

TEST(EqualFolders, SeveralRootsOfWhichOneIsProtected) {
    TestTree tree;
    for (const char* root : {"one", "two/in", "three"})
        ASSERT_TRUE(tree.write(std::string(root) + "/f", "12345"));
    ASSERT_TRUE(tree.write("three/sub/f", "12345") && tree.symlink(tree.at("three"), "one/link") &&
                tree.symlink(tree.at("three"), "two/in/link"));
    FolderSearch search({tree.at("one"), tree.at("two"), tree.at("three")});
    search.request.protectedFolders = {tree.at("two/in")};
    // A link in a folder that is searched is a link there, and what it leads to is told once.
    EXPECT_EQ(groupsIn(search.run().found, tree.path()), Strings({"one two/in! 1f 2e 5b +5"}));
}

TEST(EqualFolders, AnUnreadableEntryMakesAFolderEqualToNone) {
    for (const char* closed : {".h", ".d"}) {
        const std::string text = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
            TestTree tree;
            inBoth(tree, "f");
            inBoth(tree, ".h", "secret");
            inBoth(tree, ".d/x", "y");
            FolderSearch search({tree.path()});
            search.option.searchHidden = false;
            if (search.run().found.groups.size() != 1) return "not equal while all can be read";
            if (!tree.setMode(std::string("b/") + closed, 0)) return "no mode";
            search.run();
            (void)tree.setMode(std::string("b/") + closed, 0700);
            if (!search.found.groups.empty()) return "equal, unread";
            return search.skipped.size() == 1 && search.skipped[0].path == tree.at("b/") + closed
                       ? ""
                       : "not told";
        });
        EXPECT_EQ(text, "") << closed;
    }
}

TEST(EqualFolders, AMountIsAnotherTree) {
    testing::withOwnMounts([]() -> std::string {
        TestTree tree("/mnt");
        for (const char* path : {"a/f", "a/m/g", "b/f", "b/m/g", "c/g"})
            if (!tree.write(path, "12345")) return "no tree";
        if (!tree.folder("d")) return "no tree";
        const auto found = [&] {
            std::string text;
            for (const auto& line : groupsIn(FolderSearch({tree.path()}).run().found, tree.path()))
                text += line + "; ";
            return text;
        };
        // The same folder, seen by two paths, counts once; one in which something is mounted is no
        // whole.
        if (!bindMount(tree.at("c"), tree.at("d")) || !bindMount(tree.at("c"), tree.at("b/m")))
            return "skip: no bind mounts";
        const std::string mounted = found();
        (void)::umount2(tree.at("b/m").c_str(), MNT_DETACH);
        const std::string plain = found();
        (void)::umount2(tree.at("d").c_str(), MNT_DETACH);
        const std::string all = " 1f 1e 5b +";
        const bool isOne = mounted == "a/m b/m" + all + "5; " || mounted == "a/m c" + all + "5; " ||
                           mounted == "a/m d" + all + "5; ";
        if (!isOne) return mounted;
        const std::string whole = "a b 2f 3e 10b +10; ";
        return plain == whole + "a/m b/m c" + all + "10; " ||
                       plain == whole + "a/m b/m d" + all + "10; "
                   ? ""
                   : plain;
    });
}

// A file may be mounted too, whether it is the other's own or not.
TEST(EqualFolders, OneWithAMountedFileHasNoEqual) {
    testing::withOwnMounts([]() -> std::string {
        for (const char* const name : {"g", ".g"})
            for (const char* const from : {"r/a/", "away/"}) {
                TestTree tree("/mnt");
                for (const char* folder : {"r/a/", "r/b/", "away/"})
                    if (!tree.write(std::string(folder) + name, "12345") ||
                        !tree.write(std::string(folder) + "f", "67890"))
                        return "no tree";
                const std::string mount = tree.at("r/b/") + name;
                if (!bindMount(tree.at(from) + name, mount)) return "skip: no bind mounts";
                FolderSearch search({tree.at("r")});
                search.option.searchHidden = false;
                const bool isEqual = !search.run().found.groups.empty();
                (void)::umount2(mount.c_str(), MNT_DETACH);
                if (isEqual) return std::string(name) + " of " + from;
                if (search.run().found.groups.size() != 1) return "not equal without the mount";
            }
        return {};
    });
}

// A mount shows a part of one of them alone, and that mount is protected.
TEST(EqualFolders, AProtectedPartIsKnownByAnyPath) {
    testing::withOwnMounts([]() -> std::string {
        for (const std::string part : {"part/in", ".part/in"}) {
            TestTree tree("/mnt");
            for (const char* folder : {"r/a/", "r/b/"})
                if (!tree.write(folder + part + "/f", "12345") ||
                    !tree.write(folder + std::string("g"), "67890"))
                    return "no tree";
            if (!tree.folder("shown") || !bindMount(tree.at("r/a/" + part), tree.at("shown")))
                return "skip: no bind mounts";
            FolderSearch search({tree.at("r")});
            search.option.searchHidden = false;
            search.request.protectedFolders = {tree.at("shown")};
            const Strings found = groupsIn(search.run().found, tree.path());
            (void)::umount2(tree.at("shown").c_str(), MNT_DETACH);
            if (found != Strings{"r/a! r/b 2f 4e 10b +10"})
                return part + fmt::format("{}", fmt::join(found, "; "));
        }
        return {};
    });
}

// Rules name folders without links; what is searched may be named by one.
TEST(EqualFolders, ARuleFindsThemBehindTheLinkThatIsSearched) {
    TestTree tree;
    for (const char* name : {"data/a/f", "data/b/f", "data/c/in/f"})
        ASSERT_TRUE(tree.write(name, "12345"));
    ASSERT_TRUE(tree.symlink("data", "way"));
    const FolderFindings found = FolderSearch({tree.at("way")}).run().found;
    for (const char* const kept : {"a", "b", "c"}) {
        const KeepRules rules{{KeepRule::By::BestPlace, {tree.at("data/") + kept}}};
        const FolderFates fates(found, rules);
        for (const char* const folder : {"a", "b", "c/in"})
            EXPECT_EQ(fates.of(tree.at("way/") + folder),
                      *folder == *kept ? FolderFate::Stays : FolderFate::Goes)
                << kept << ' ' << folder;
    }
}

// A folder that changes after the walk is no part of a group, and a stop tells nothing.
TEST(EqualFolders, WhatChangesMeanwhileIsNotTold) {
    TestTree tree;
    inBoth(tree, "f");
    inBoth(tree, ".h", "x");
    testing::WatchedFiles watched;
    std::atomic<int> opened{0};
    watched.onOpenFile = [&](const char*) { ++opened; };
    watched.onReadFolder = [&] {
        if (opened == 2) ::unlink(tree.at("b/f").c_str());  // both were hashed
    };
    FolderSearch search({tree.path()});
    search.option.searchHidden = false;
    EXPECT_TRUE(search.run(watched).found.groups.empty());

    DuplicateFilesOpt stopped(realFiles);
    stopped.stopSearch();
    stopped.beginSearch(search.request);
    EXPECT_TRUE(stopped.search()->folders().groups.empty());
}

TEST(EqualFolders, CopiesOfFilesAreTheirs) {
    TestTree tree;
    inBoth(tree, "f");
    inBoth(tree, "g", "77");
    ASSERT_TRUE(tree.write("c", "77"));
    DuplicateFilesOpt search(realFiles);
    FolderSearch asked({tree.path()});
    search.beginSearch(asked.request);
    std::map<std::string, bool> covered;
    search.visitGroups([&](const DuplicateGroup& group) {
        covered[std::to_string(group.files.size())] = search.search()->folders().cover(group.files);
    });
    EXPECT_EQ(covered, (std::map<std::string, bool>{{"2", true}, {"3", false}}));
}

// --- parts ---

Strings partsIn(const FolderFindings& found, const std::string& tree) {
    Strings lines;
    for (const PartlyEqual& part : found.partly)
        lines.push_back(fmt::format("{} % of {} in {}: {} of {}, {} files", part.percent(),
                                    part.folder.substr(tree.size() + 1),
                                    part.other.substr(tree.size() + 1), part.shared, part.bytes,
                                    part.files));
    return lines;
}

TEST(PartlyEqualFolders, AreToldFromTheTop) {
    TestTree tree;
    for (unsigned i = 0; i < 23; ++i) {
        const std::string name = fmt::format("{}/{}", i % 3 == 0 ? "x" : "y/z", i);
        ASSERT_TRUE(tree.write("new/" + name, someBytes(100, i)));
        // Some lie elsewhere in the other one.
        ASSERT_TRUE(
            tree.write("old/" + (i % 5 == 0 ? "w/" + std::to_string(i) : name), someBytes(100, i)));
    }
    ASSERT_TRUE(tree.write("new/twice", someBytes(100, 1)));  // a copy of what is there already
    ASSERT_TRUE(tree.write("new/own", someBytes(100, 999)) &&
                tree.write("old/own", someBytes(600, 998)));
    for (unsigned i = 0; i < 2; ++i)  // too few
        for (const char* folder : {"p", "q"})
            ASSERT_TRUE(tree.write(fmt::format("{}/{}", folder, i), someBytes(5000, 70 + i)));
    ASSERT_TRUE(tree.write("q/own", "x"));
    const auto found = FolderSearch({tree.path()}).run().found;
    EXPECT_EQ(partsIn(found, tree.path()), Strings({"96 % of new in old: 2400 of 2500, 24 files"}));
}

TEST(PartlyEqualFolders, AreNeitherEqualNorWithinEachOther) {
    TestTree tree;
    for (unsigned i = 0; i < 4; ++i)
        for (const char* folder : {"a/", "b/", "c/", "c/in/"})
            ASSERT_TRUE(tree.write(folder + std::to_string(i), someBytes(50, i)));
    ASSERT_TRUE(tree.write("c/more", "1234"));
    const Strings found = partsIn(FolderSearch({tree.path()}).run().found, tree.path());
    EXPECT_EQ(found, Strings({"100 % of a in c: 200 of 200, 4 files",
                              "100 % of b in c: 200 of 200, 4 files"}));
}

// A group of many versions is not held each against each: what is told stays bounded.
TEST(PartlyEqualFolders, ManyVersionsAreNotSquare) {
    TestTree tree;
    constexpr unsigned versions = 60;
    for (unsigned v = 0; v < versions; ++v) {
        for (unsigned i = 0; i < 5; ++i)
            ASSERT_TRUE(tree.write(fmt::format("{:02}/{}", v, i), someBytes(40, i)));
        ASSERT_TRUE(tree.write(fmt::format("{:02}/own", v), someBytes(41, 100 + v)));
    }
    const auto parts = FolderSearch({tree.path()}).run().found.partly;
    EXPECT_EQ(parts.size(), 3 * versions - 6);
    for (const PartlyEqual& part : parts) EXPECT_EQ(part.percent(), 82U);
}

}  // namespace
}  // namespace orrinvale
