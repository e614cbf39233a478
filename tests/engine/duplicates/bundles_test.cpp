// The search for equal application bundles: what makes two of them equal, and what does not.
#include "engine/duplicates/FindDuplicateApp.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

class Bundles : public ::testing::Test {
protected:
    // The groups by the names of their members.
    std::vector<Strings> find(const Strings& names) {
        Strings paths;
        for (const std::string& name : names) paths.push_back(m_tree.at(name));
        SkipList skipped;
        FindDuplicateApp search(realFiles, skipped);
        std::vector<AppGroup> groups;
        EXPECT_TRUE(search.FindAppInArray(&paths, groups));
        EXPECT_EQ(search.Progress(), 0U);
        m_skipped = skipped.entries();
        std::vector<Strings> out;
        for (const AppGroup& group : groups) {
            auto& members = out.emplace_back();
            for (const auto& member : group)
                members.push_back(member->DirectoryPathName.substr(m_tree.path().size() + 1));
        }
        return out;
    }
    void fill(const std::string& bundle,
              const std::vector<std::pair<std::string, std::string>>& contents) {
        ASSERT_TRUE(m_tree.folder(bundle));
        for (const auto& [name, bytes] : contents)
            ASSERT_TRUE(m_tree.write(bundle + '/' + name, bytes));
    }

    TestTree m_tree;
    std::vector<Error> m_skipped;
};

const std::string large = testing::someBytes(70'000, 20);
const std::string otherLarge = testing::someBytes(70'000, 21);
const std::string kilobyte = testing::someBytes(1024, 22);
using Groups = std::vector<Strings>;

TEST_F(Bundles, namesAndPlacesPlayNoPartButContentsDo) {
    fill("One.app", {{"bin/main", large}, {"data/k", kilobyte}});
    fill("x/Copy of one.app", {{"bin/main", large}, {"data/k", kilobyte}});
    fill("Renamed.app", {{"z/other name", large}, {"a", kilobyte}});
    fill("SameSums.app", {{"bin/main", otherLarge}, {"data/k", kilobyte}});
    fill("SameSumOnly.app", {{"a", large + kilobyte}});
    fill("SameSumTwo.app", {{"a", large.substr(1)}, {"b", kilobyte + "x"}});
    EXPECT_EQ(find({"One.app", "SameSums.app", "x/Copy of one.app", "SameSumOnly.app",
                    "Renamed.app", "SameSumTwo.app"}),
              (Groups{{"x/Copy of one.app", "Renamed.app", "One.app"}}));
    EXPECT_TRUE(m_skipped.empty());
}

TEST_F(Bundles, groupsComeInOrderTheOpenerLast) {
    for (const char* name : {"a.app", "b.app", "c.app"}) fill(name, {{"in", large}});
    for (const char* name : {"x.app", "y.app"}) fill(name, {{"in", kilobyte}});
    EXPECT_EQ(find({"x.app", "a.app", "b.app", "y.app", "c.app"}),
              (Groups{{"y.app", "x.app"}, {"b.app", "c.app", "a.app"}}));
}

// The hash of a short file takes in what was read before it; copies that list alike must not depend
// on that.
TEST_F(Bundles, copiesThatBeginWithShortFilesAreEqual) {
    const std::vector<std::pair<std::string, std::string>> contents{
        {"0", "brief"}, {"1", testing::someBytes(1023, 23)},
        {"2", large},   {"3", ""},
        {"4", "b"},     {"5/6", kilobyte},
        {"7", "end"}};
    for (const char* name : {"a.app", "b.app", "c.app"}) fill(name, contents);
    auto changed = contents;
    changed[0].second = "brieF";
    fill("d.app", changed);
    fill("e.app", {{"0", "first"}, {"1", "x"}});
    fill("f.app", {{"0", "first"}, {"1", "x"}});
    EXPECT_EQ(find({"a.app", "d.app", "b.app", "c.app", "e.app", "f.app"}),
              (Groups{{"b.app", "c.app", "a.app"}, {"f.app", "e.app"}}));
}

TEST_F(Bundles, allKindsOfEntriesCountButFolders) {
    for (const char* name : {"a.app", "b.app", "moreLinks.app"}) {
        fill(name, {{"in", large}, {".hidden", "h"}});
        m_tree.symlink("nowhere", std::string(name) + "/dangling");
        m_tree.symlink("in", std::string(name) + "/link");
        m_tree.fifo(std::string(name) + "/fifo");
    }
    m_tree.folder("b.app/empty");
    m_tree.symlink("empty", "b.app/toFolder");
    m_tree.write("moreLinks.app/nothing", "");
    EXPECT_EQ(find({"a.app", "b.app", "moreLinks.app"}), (Groups{{"b.app", "a.app"}}));
    AppAttrbItem item;
    SkipList skipped;
    FindDuplicateApp search(realFiles, skipped);
    ASSERT_TRUE(search.getAllFilePathName(m_tree.at("b.app"), &item));
    EXPECT_EQ(item.AllFileInDirectory.size(), 5U);
    EXPECT_EQ(item.DirectorySize, large.size() + 1 + 7 + 2);
    EXPECT_FALSE(search.getAllFilePathName({}, &item));
    EXPECT_FALSE(search.getAllFilePathName(m_tree.path(), nullptr));
    EXPECT_FALSE(search.CompareDir(&item, nullptr));
    EXPECT_FALSE(search.InitInputAppDirectory(nullptr));
}

TEST_F(Bundles, oneFolderReachedTwiceIsNotItsOwnCopy) {
    fill("real/a.app", {{"in", large}});
    m_tree.symlink("real", "link");
    m_tree.symlink("real/a.app", "linked.app");
    EXPECT_EQ(find({"real/a.app", "link/a.app", "linked.app"}), Groups{});
    fill("b.app", {{"in", large}});
    EXPECT_EQ(find({"link/a.app", "real/a.app", "b.app"}), (Groups{{"b.app", "link/a.app"}}));
}

TEST_F(Bundles, whatCanNotBeListedIsLeftOut) {
    for (const char* name : {"a.app", "locked.app", "inside.app", "b.app"})
        fill(name, {{"in/x", large}});
    m_tree.setMode("locked.app", 0);
    m_tree.setMode("inside.app/in", 0);
    const std::string text = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
        if (!find({"locked.app"}).empty()) return "a group of one";
        if (find({"a.app", "locked.app", "missing.app", "inside.app", "b.app"}) !=
            Groups{{"b.app", "a.app"}})
            return "other groups";
        std::string named;
        for (const Error& error : m_skipped)
            named += error.path.substr(m_tree.path().size() + 1) + ' ';
        return named == "inside.app/in locked.app missing.app " ? "" : named;
    });
    EXPECT_EQ(text, "");
}

// Whoever removes one of two copies relies on their having been read.
TEST_F(Bundles, filesThatCanNotBeReadMakeNoCopies) {
    for (const char* name : {"a.app", "b.app"}) fill(name, {{"x", kilobyte}});
    fill("a.app/in", {{"locked", large}});
    fill("b.app/in", {{"locked", otherLarge}});
    m_tree.setMode("a.app/in/locked", 0);
    m_tree.setMode("b.app/in/locked", 0);
    const std::string text = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
        return find({"a.app", "b.app"}).empty() ? "" : "called equal, though neither could be read";
    });
    EXPECT_EQ(text, "");
}

TEST_F(Bundles, aStopKeepsTheGroupsFoundSoFar) {
    Strings paths;
    for (int pair = 0; pair < 5; ++pair)
        for (const char* side : {"a", "b"}) {
            const std::string name = side + std::to_string(pair) + ".app";
            fill(name, {{"in", std::string(2000 + static_cast<std::size_t>(pair), 'x')}});
            paths.push_back(m_tree.at(name));
        }
    testing::WatchedFiles watched;
    SkipList skipped;
    FindDuplicateApp search(watched, skipped);
    std::atomic<bool> asked{false};
    watched.onOpenFile = [&](const char*) {
        if (search.CurrentSearchFile() != m_tree.at("a1.app")) return;
        EXPECT_EQ(search.Progress(), 80U);
        asked = true;
        search.setStopSearch(true);
    };
    std::vector<AppGroup> groups;
    EXPECT_TRUE(search.FindAppInArray(&paths, groups));
    EXPECT_TRUE(asked);
    EXPECT_EQ(groups.size(), 2U) << "the comparison in hand is finished, the next is not begun";
}

}  // namespace
}  // namespace orrinvale
