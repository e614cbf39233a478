// listTree: the order of what it tells, the way back up, failures, and the stop.
#include "engine/files/TreeLister.h"

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Paths = std::vector<std::string>;

struct Told {
    Paths entries;
    std::map<std::string, int> failures;
    Paths entered;
    SysResult<void> result;
};

Told list(const TestTree& tree, bool foldersFirst,
          const std::function<void(const TreeEntry&)>& also = {},
          std::atomic<bool>* stopFlag = nullptr) {
    Told told;
    const auto start = files.openFolder(FileSystem::noParent, tree.path().c_str(), Links::Keep);
    TreeListing listing;
    listing.order = TreeListing::Order::SortedByBytes;
    listing.foldersFirst = foldersFirst;
    listing.entry = [&](const TreeEntry& entry) {
        told.entries.emplace_back(entry.relative);
        if (also) also(entry);
    };
    listing.failed = [&](std::string_view relative, int error) {
        told.failures[std::string(relative)] = error;
    };
    listing.enter = [&](std::string_view relative) { told.entered.emplace_back(relative); };
    std::atomic<bool> never{false};
    told.result = listTree(files, start->get(), listing, stopFlag != nullptr ? *stopFlag : never);
    return told;
}

TEST(TreeLister, sortedByBytesWithFoldersBeforeOrBehindTheirContents) {
    TestTree tree;
    for (const char* name : {"b/2", "b/1", "a", "B", "b/c/x", "\xff", "z/.h"})
        tree.write(name, "x");
    tree.folder("empty");
    tree.symlink("b", "link");
    EXPECT_EQ(list(tree, true).entries, (Paths{"B", "a", "b", "b/1", "b/2", "b/c", "b/c/x", "empty",
                                               "link", "z", "z/.h", "\xff"}));
    EXPECT_EQ(list(tree, false).entries, (Paths{"B", "a", "b/1", "b/2", "b/c/x", "b/c", "b",
                                                "empty", "link", "z/.h", "z", "\xff"}));
    EXPECT_EQ(list(tree, true).entered, (Paths{"", "b", "b/c", "empty", "z"}));
}

TEST(TreeLister, eachEntryIsToldWithTheFolderThatHoldsIt) {
    TestTree tree;
    for (const char* name : {"a/b/c/1", "a/b/2", "a/3", "4", "b/5"}) tree.write(name, name);
    for (const bool foldersFirst : {true, false}) {
        const auto told = list(tree, foldersFirst, [&](const TreeEntry& entry) {
            const auto here = files.attributes(entry.folder, entry.name.data(), Links::Keep);
            const auto known = files.attributes(FileSystem::noParent,
                                                tree.at(entry.relative).c_str(), Links::Keep);
            ASSERT_TRUE(here && known) << entry.relative;
            EXPECT_EQ(here->inode, known->inode) << entry.relative;
            EXPECT_EQ(entry.type, known->type);
        });
        EXPECT_EQ(told.entries.size(), 9U);
    }
}

// While the lister is inside, the folder is moved away: its ".." is another folder then, where
// nothing must be told.
TEST(TreeLister, aFolderMovedMeanwhileDoesNotLeadElsewhere) {
    TestTree tree;
    for (const char* name : {"in/a/sub/x", "in/a/y", "in/b/z", "in/c", "other/secret"})
        tree.write(name, "x");
    const auto told = list(tree, true, [&](const TreeEntry& entry) {
        if (entry.relative != "in/a/sub/x") return;
        ASSERT_EQ(::rename(tree.at("in/a/sub").c_str(), tree.at("other/sub").c_str()), 0);
    });
    EXPECT_EQ(std::count(told.entries.begin(), told.entries.end(), "in/a/secret"), 0);
    EXPECT_TRUE(told.failures.contains("in/a"));
    EXPECT_EQ(told.failures.begin()->second, ESTALE);
}

TEST(TreeLister, unreadableFoldersAreNamedAndTheirSiblingsSurvive) {
    TestTree tree;
    for (const char* name : {"a/1", "locked/2", "z/3"}) tree.write(name, "x");
    tree.setMode("locked", 0);
    const std::string text = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
        for (const bool foldersFirst : {true, false}) {
            const auto told = list(tree, foldersFirst);
            const Paths expected = foldersFirst ? Paths{"a", "a/1", "locked", "z", "z/3"}
                                                : Paths{"a/1", "a", "z/3", "z"};
            if (told.entries != expected) return "other entries";
            if (told.failures != std::map<std::string, int>{{"locked", EACCES}})
                return "other failures";
        }
        return {};
    });
    EXPECT_EQ(text, "");
}

TEST(TreeLister, aStopEndsItWithWhatWasTold) {
    TestTree tree;
    for (const char* name : {"a/1", "a/2", "b/1", "c"}) tree.write(name, "x");
    std::atomic<bool> stop{false};
    const auto told = list(
        tree, false, [&](const TreeEntry& entry) { stop = entry.relative == "a/1"; }, &stop);
    EXPECT_TRUE(told.result);
    EXPECT_EQ(told.entries, Paths{"a/1"});
}

TEST(TreeLister, neitherDepthNorDescriptorsLimitIt) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("deep", 10'000, "leaf"));
    const std::string text = testing::runInChild({.descriptors = 32}, [&]() -> std::string {
        std::size_t count = 0;
        const auto told = list(tree, false, [&](const TreeEntry&) { ++count; });
        return told.failures.empty() && count == 10'002 ? "" : "told " + std::to_string(count);
    });
    EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace orrinvale
