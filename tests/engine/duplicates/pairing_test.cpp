// The search from a folder to groups of equal files, against a plain pairing loop, and what it
// survives on the way.
#include <rapidcheck.h>

#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/algorithm.h"
#include "engine/duplicates/getFileList.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

Strings pathsOf(const FileList& items) {
    Strings out;
    for (const fileAttrbItem* item : items) out.push_back(item->filePathName());
    return out;
}

Strings search(const std::string& root, const FileSystem& watched = realFiles,
               std::vector<Error>* skipped = nullptr) {
    duplicateFind find(watched);
    find.setSearchOption(true, true);
    find.searchDuplicateFileAtPath(root, 0);
    FileList found;
    EXPECT_TRUE(find.getAllDuplicateFile(&found));
    if (skipped != nullptr) *skipped = find.skipped().entries();
    return pathsOf(found);
}

// Each file against all that are left, by the single operations.
Strings pairOneByOne(const std::string& root) {
    SkipList skipped;
    getFileList list(realFiles, skipped);
    list.setSearchHiddenFile(true);
    FileArray array;
    Strings bundles;
    list.getListAtPath(root, array, bundles, 0);
    FileList left = array.items();
    FileList found;
    algorithm compare(realFiles, skipped);
    while (left.size() > 1) {
        fileAttrbItem* const item = left.front();
        left.erase(left.begin());
        FileList group;
        compare.getDuplicateFile(item, &left, &group);
        std::erase_if(left, [&](fileAttrbItem* one) {
            return std::count(group.begin(), group.end(), one) != 0;
        });
        found.insert(found.end(), group.begin(), group.end());
    }
    return pathsOf(found);
}

struct Content {
    std::size_t size;
    int change;  // where the content differs: 0 nowhere, 1 start, 2 middle, 3 end, 4 behind the
                 // first kilobyte
    int folder;
    bool hardLink;
};

std::string contentOf(const Content& wanted) {
    std::string bytes = testing::someBytes(wanted.size, 7);
    if (wanted.size == 0 || wanted.change == 0) return bytes;
    const std::size_t places[] = {0, 0, wanted.size / 2, wanted.size - 1,
                                  std::min<std::size_t>(1024, wanted.size - 1)};
    char& byte = bytes[places[wanted.change]];
    byte = static_cast<char>(byte ^ (1 << wanted.change));
    return bytes;
}

TEST(Pairing, equalsAPlainLoopOnRandomTrees) {
    EXPECT_TRUE(rc::check("same groups in the same order, with the same order of members", [] {
        const auto size = rc::gen::elementOf(std::vector<std::size_t>{
            0, 1, 100, 1023, 1024, 1025, 5000, 32'767, 32'768, 32'769, 36'864, 70'000, 200'000});
        const auto content = rc::gen::apply(
            [](std::size_t bytes, int change, int folder, int link) {
                return Content{bytes, change, folder, link == 0};
            },
            size, rc::gen::inRange(0, 5), rc::gen::inRange(0, 5), rc::gen::inRange(0, 8));
        const auto contents = *rc::gen::noShrink(
            rc::gen::resize(40, rc::gen::container<std::vector<Content>>(content)));
        TestTree tree;
        std::string before;
        for (std::size_t number = 0; number < contents.size(); ++number) {
            const std::string name =
                "d" + std::to_string(contents[number].folder) + "/f" + std::to_string(number);
            if (contents[number].hardLink && !before.empty()) tree.hardLink(before, name);
            else tree.write(name, contentOf(contents[number]));
            before = name;
        }
        RC_ASSERT(search(tree.path()) == pairOneByOne(tree.path()));
    }));
}

TEST(Pairing, largeFilesAcrossThePiecesInWhichTheyAreHashed) {
    constexpr std::uint64_t mega = 1ULL << 20U;
    // Holes are computed, not read: files that say they are larger than any disk are told apart at
    // once.
    for (const std::uint64_t size : {4 * mega, 128 * mega, 130 * mega, mega << 42U}) {
        TestTree tree(size > mega << 20U ? "/dev/shm" : "");
        for (const char* name : {"equal1", "equal2", "middle", "seam", "head"}) {
            if (!tree.sparse(name, size)) GTEST_SKIP() << "no file of 4 EiB can be made here";
            tree.patch(name, 100, "start");
            tree.patch(name, size - 100, "end");
        }
        tree.patch("middle", size / 2, "x");
        tree.patch("seam", std::min(64 * mega, size - 5000), "y");
        tree.patch("head", 5, "x");
        Strings found = search(tree.path());
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, (Strings{tree.at("equal1"), tree.at("equal2")})) << size;
    }
    // The hash over holes is that over the zeros that they stand for.
    TestTree tree;
    std::string bytes(9'000'001, '\0');
    ASSERT_TRUE(tree.sparse("holes", bytes.size()) && tree.patch("holes", 5'000'000, "middle"));
    ASSERT_TRUE(tree.write("zeros", bytes.replace(5'000'000, 6, "middle")));
    EXPECT_EQ(search(tree.path()).size(), 2U);
}

TEST(Pairing, oneEntryIsNotItsOwnCopy) {
    TestTree tree;
    const std::string bytes = testing::someBytes(3000, 8);
    tree.write("in/one", bytes);
    tree.write("in/empty", "");
    tree.symlink("in", "again");
    tree.symlink("in", "andAgain");
    EXPECT_EQ(search(tree.path()), Strings{});
    tree.hardLink("in/one", "in/two");  // two names are two entries, whichever way they are reached
    const Strings found = search(tree.path());
    ASSERT_EQ(found.size(), 2U);
    EXPECT_NE(found[0].substr(found[0].rfind('/')), found[1].substr(found[1].rfind('/')));
}

// A link is listed with the size of its text. It stands for the file that it leads to, but must not
// take its place among the files of that file's size, in whatever order the two are listed.
TEST(Pairing, linksToFilesDoNotHideThem) {
    TestTree tree;
    const std::string bytes = testing::someBytes(3000, 9);
    tree.write("copy/one", bytes);
    tree.write("copy/two", bytes);
    for (int i = 0; i < 20; ++i) {
        tree.symlink("copy/one", "l" + std::to_string(i));
        tree.symlink("copy/two", "m" + std::to_string(i));
    }
    const Strings found = search(tree.path());
    EXPECT_EQ(std::count(found.begin(), found.end(), tree.at("copy/one")), 1);
    EXPECT_EQ(std::count(found.begin(), found.end(), tree.at("copy/two")), 1);
}

TEST(Pairing, unreadableFilesAreNamedAndTheOthersStillPaired) {
    TestTree tree;
    for (const std::size_t size : {100U, 50'000U})
        for (const char* name : {"a", "b", "c", "locked"})
            tree.write(std::to_string(size) + name, testing::someBytes(size, 10));
    tree.setMode("100locked", 0);
    tree.setMode("50000locked", 0);
    const std::string text = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
        std::vector<Error> skipped;
        const Strings found = search(tree.path(), realFiles, &skipped);
        if (found.size() != 6) return std::to_string(found.size()) + " found";
        if (found != pairOneByOne(tree.path())) return "another order";
        if (skipped.size() != 2 || skipped[0].path != tree.at("100locked") ||
            skipped[0].number != EACCES)
            return "not named";
        return {};
    });
    EXPECT_EQ(text, "");
}

TEST(Pairing, filesThatVanishOrChangeBetweenListingAndReading) {
    TestTree tree;
    for (const char* size : {"small", "large"})
        for (const char* name : {"A", "B", "vanished", "changed", "grown", "fifo"})
            tree.write(std::string(size) + name,
                       testing::someBytes(size[0] == 's' ? 2000 : 60'000, 11));
    testing::WatchedFiles watched;
    std::once_flag once;
    watched.onOpenFile = [&](const char*) {
        std::call_once(once, [&] {
            for (const std::string size : {"small", "large"}) {
                for (const char* name : {"vanished", "fifo"})
                    ::unlink(tree.at(size + name).c_str());
                tree.fifo(size + "fifo");
                tree.patch(size + "changed", 1500, "other");
                tree.patch(size + "grown", 60'000, "more");
            }
        });
    };
    std::vector<Error> skipped;
    Strings found = search(tree.path(), watched, &skipped);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (Strings{tree.at("largeA"), tree.at("largeB"), tree.at("smallA"),
                              tree.at("smallB")}));
    for (const char* name : {"largevanished", "largefifo", "smallvanished", "smallfifo"})
        EXPECT_TRUE(std::any_of(skipped.begin(), skipped.end(), [&](const Error& error) {
            return error.path == tree.at(name);
        })) << name;
}

TEST(Pairing, filesRewrittenAllTheWhileHarmNothing) {
    TestTree tree;
    for (int i = 0; i < 40; ++i)
        tree.write("f" + std::to_string(i), testing::someBytes(i % 2 == 0 ? 40'000 : 90'000, 12));
    const std::jthread writer([&](const std::stop_token& end) {
        for (unsigned round = 0; !end.stop_requested(); ++round) {
            const std::string name = "f" + std::to_string(round % 10);
            if (round % 3 == 0) tree.write(name, testing::someBytes(40'000, round));
            else if (round % 3 == 1) ::unlink(tree.at(name).c_str());
            else tree.patch(name, round % 40'000, "rewritten");
        }
    });
    for (int round = 0; round < 5; ++round) {
        const Strings found = search(tree.path());
        // The thirty others stay as they are, fifteen of each size.
        EXPECT_EQ(
            std::count_if(found.begin(), found.end(),
                          [](const std::string& path) { return path[path.size() - 2] != 'f'; }),
            30);
    }
}

// Classes of equal files, far more than one batch holds.
TEST(Pairing, aStopDeliversTheGroupsFoundSoFar) {
    TestTree tree("/dev/shm");
    constexpr int pairs = 12'000;
    for (int i = 0; i < pairs; ++i)
        for (const std::string side : {"a", "b"})
            tree.sparse(side + std::to_string(i / 1000) + "/" + std::to_string(i),
                        1U + static_cast<std::uint64_t>(i));
    testing::WatchedFiles watched;
    duplicateFind find(watched);
    find.setSearchOption(true, true);
    std::atomic<int> opened{0};
    watched.onOpenFile = [&](const char*) {
        if (++opened == 20'000) find.stopSearch();
    };
    find.searchDuplicateFileAtPath(tree.path(), 0);
    FileList found;
    find.getAllDuplicateFile(&found);
    EXPECT_LT(opened, 2 * pairs) << "the stop was not seen";
    EXPECT_GT(found.size(), 0U);
    EXPECT_LT(found.size(), 2U * pairs);
    ASSERT_EQ(found.size() % 2, 0U);
    for (std::size_t at = 0; at < found.size(); at += 2)
        EXPECT_TRUE(fileAttrbItem::isEqual(found[at], found[at + 1]));
    FileList rest;
    EXPECT_TRUE(find.findNewDuplicateFile(&rest, found.size()));
    EXPECT_TRUE(rest.empty());
    EXPECT_FALSE(find.findNewDuplicateFile(&rest, found.size() + 1));
    EXPECT_TRUE(find.findNewDuplicateFile(&rest, found.size() - 2));
    EXPECT_EQ(rest.size(), 2U);
}

TEST(Pairing, aSearchStoppedBeforehandFindsNothing) {
    TestTree tree;
    for (const char* name : {"a", "b", "X.app/a", "Y.app/a"}) tree.write(name, "equal");
    duplicateFind find(realFiles);
    find.stopSearch();
    find.searchDuplicateFileAtPath(tree.path(), 0);
    FileList found;
    find.getAllDuplicateFile(&found);
    EXPECT_TRUE(found.empty());
}

TEST(DuplicateFilesOpt, leavesStandSecondToLastThenFirst) {
    TestTree tree;
    Strings listed;
    for (const char* name : {"a", "b", "c"}) tree.write(name + std::string(".txt"), "equal");
    tree.write("X.app/in", "bundle");
    tree.write("Y.app/in", "bundle");
    SkipList skipped;
    getFileList list(realFiles, skipped);
    FileArray array;
    Strings bundles;
    ASSERT_TRUE(list.getListAtPath(tree.path(), array, bundles, 0));
    for (const fileAttrbItem* item : array.items()) listed.push_back(item->filePathName());
    ASSERT_EQ(listed.size(), 3U);
    ASSERT_EQ(bundles.size(), 2U);

    DuplicateFilesOpt search(realFiles);
    std::shared_ptr<SimpleTreeNode> root;
    EXPECT_FALSE(search.getDuplicateFiles(&root));
    search.beginSearchAtPath(tree.path(), 0);
    ASSERT_TRUE(search.getDuplicateFiles(&root));
    const auto data = [](const TreeNode& node) {
        return std::static_pointer_cast<SimpleNodeData>(node.nodeData());
    };
    EXPECT_EQ(data(*root)->name(), "Root");
    ASSERT_EQ(root->numberOfChildren(), 2U);
    const auto& apps = *root->childAtIndex(0);
    EXPECT_EQ(data(apps)->name(), lastPathComponent(bundles[0]));
    EXPECT_EQ(data(apps)->extendName(), "APP");
    EXPECT_EQ(data(*apps.childAtIndex(0))->name(), bundles[1]);
    EXPECT_EQ(data(*apps.childAtIndex(1))->name(), bundles[0]);
    EXPECT_EQ(data(apps)->fileSize(), 12U);
    const auto& group = *root->childAtIndex(1);
    EXPECT_EQ(data(group)->extendName(), "txt");
    EXPECT_EQ(data(group)->fileSize(), 15U);
    EXPECT_EQ(data(group)->name(), lastPathComponent(listed[1])) << "named after the head";
    ASSERT_EQ(group.numberOfChildren(), 3U);
    for (std::size_t at = 0; at < 3; ++at)
        EXPECT_EQ(data(*group.childAtIndex(at))->name(), listed[(at + 2) % 3]) << at;

    // Those who print visit the same groups with the same leaves.
    std::size_t visited = 0;
    search.visitGroups([&](const DuplicateGroup& one) {
        const auto& node = *root->childAtIndex(visited++);
        EXPECT_EQ(one.name, data(node)->name());
        EXPECT_EQ(one.size, data(node)->fileSize());
        EXPECT_EQ(one.extension, data(node)->extendName());
        ASSERT_EQ(one.files.size() + one.bundles.size(), node.numberOfChildren());
        for (std::size_t at = 0; at < node.numberOfChildren(); ++at) {
            const auto leaf = data(*node.childAtIndex(at));
            EXPECT_EQ(
                one.bundle ? one.bundles[at]->DirectoryPathName : one.files[at]->filePathName(),
                leaf->name());
            EXPECT_EQ(leaf->ModificationDate().has_value(), !one.bundle);
        }
    });
    EXPECT_EQ(visited, 2U);
}

TEST(DuplicateFilesOpt, servesOneSearchAndFindsNothingWhereNothingIs) {
    TestTree tree;
    tree.write("a", "one");
    tree.write("b", "two");
    for (const std::string& root : {tree.path(), tree.at("a"), tree.at("missing")}) {
        DuplicateFilesOpt search(realFiles);
        EXPECT_EQ(search.getProgress(), 0U);
        search.stopSearch();  // with no search there is nothing to stop
        search.beginSearchAtPath(root, 0);
        std::shared_ptr<SimpleTreeNode> node;
        EXPECT_FALSE(search.getDuplicateFiles(&node));
        EXPECT_FALSE(node);
        tree.write("c", "two");
        {
            const testing::LogLines log;
            search.beginSearchAtPath(tree.path(), 0);
            ASSERT_EQ(log.lines.size(), 1U);
            EXPECT_TRUE(log.lines[0].ends_with(" error need reinit")) << log.lines[0];
        }
        EXPECT_FALSE(search.getDuplicateFiles(&node));
        ::unlink(tree.at("c").c_str());
    }
}

TEST(DuplicateFilesOpt, progressAndPathAreSaneFromAnotherThread) {
    TestTree tree;
    for (int i = 0; i < 3000; ++i)
        tree.write("d" + std::to_string(i % 50) + "/f" + std::to_string(i),
                   std::string(1 + static_cast<std::size_t>(i % 700) * 10, 'x'));
    for (int i = 0; i < 6; ++i) tree.write("B" + std::to_string(i) + ".app/in", "bundle");
    DuplicateFilesOpt search(realFiles);
    Strings strange;
    {
        const std::jthread watcher([&](const std::stop_token& end) {
            while (!end.stop_requested()) {
                const std::uint64_t percent = search.getProgress();
                const std::string path = search.getCurrentSearchFile();
                if (percent > 100) strange.push_back(std::to_string(percent));
                if (!path.empty() && !path.starts_with(tree.path())) strange.push_back(path);
            }
        });
        search.beginSearchAtPath(tree.path(), 0);
    }
    EXPECT_EQ(strange, Strings{});
    EXPECT_GE(search.getProgress(), 99U);
    EXPECT_TRUE(search.getCurrentSearchFile().starts_with(tree.path()));
    EXPECT_EQ(search.search()->counts().listedFiles, 3000U);
}

}  // namespace
}  // namespace orrinvale
