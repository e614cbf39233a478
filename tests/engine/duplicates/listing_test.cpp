// The listing of a duplicate search: which files and bundles it finds, in which order, and what it
// survives.
#include <rapidcheck.h>
#include <sys/sysmacros.h>

#include "engine/duplicates/getFileList.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

struct Listing {
    bool listed = false;
    std::vector<std::pair<std::string, std::uint64_t>> files;
    Strings bundles;
    std::vector<Error> skipped;
    bool operator==(const Listing& other) const {
        return files == other.files && bundles == other.bundles;
    }
    [[nodiscard]] Strings paths(const std::string& below) const {
        Strings out;
        for (const auto& file : files) out.push_back(file.first.substr(below.size() + 1));
        std::sort(out.begin(), out.end());
        return out;
    }
};

struct Wanted {
    bool hidden = true;
    std::uint64_t limit = 0;
};

Listing parallel(const std::string& root, Wanted wanted, const FileSystem& system = realFiles) {
    Listing out;
    SkipList skipped;
    getFileList list(system, skipped);
    list.setSearchHiddenFile(wanted.hidden);
    FileArray array;
    out.listed = list.getListAtPath(root, array, out.bundles, wanted.limit);
    for (const fileAttrbItem* item : array.items()) {
        out.files.emplace_back(item->filePathName(), item->fileSize);
        EXPECT_EQ(item->md5, 0U);
        EXPECT_EQ(item->md5_1k, 0U);
    }
    out.skipped = skipped.entries();
    return out;
}

// One path after the other, by the single operations and the attributes alone.
Listing sequential(const std::string& root, Wanted wanted) {
    Listing out;
    SkipList skipped;
    getFileList list(realFiles, skipped);
    list.setSearchHiddenFile(wanted.hidden);
    Strings all;
    out.listed = list.getDirectoryAtPath(root, all);
    for (const std::string& path : all) {
        if (!wanted.hidden && getFileList::IsHiddenFile(path)) continue;
        if (list.getAppDirectory(path, out.bundles, wanted.limit)) continue;
        struct stat target, self;
        if (::stat(path.c_str(), &target) == 0 && S_ISDIR(target.st_mode)) continue;
        if (::lstat(path.c_str(), &self) != 0 ||
            static_cast<std::uint64_t>(self.st_size) <= wanted.limit)
            continue;
        out.files.emplace_back(path, self.st_size);
    }
    return out;
}

// Which of the tests hold for a path: hidden, system folder, application bundle, inside of one (or
// one itself).
TEST(PathTests, table) {
    const std::pair<std::string, std::vector<std::string_view>> cases[] = {
        {"",
         {"/", "", "/a.b/c.", "/a/b\n.c", "/home/Library", "/binx", "/usr/bin", "/x/A.apps",
          "/x/A.ap", "/x/Aapp"}},
        {"h", {"/a/.b/c", "/.a"}},
        {"s",
         {"/Library/x", "/LIBRARY", "/bin", "/sBin/x/y", "Volumes/x", "/developer", "/System"}},
        {"ai", {"/x/A.app", "/x/A.APP", "/x/A.b.app", "/x/\xff.App"}},
        {"i", {"/x/A.aPp/in", "/x/A.app/B.txt"}},
        {"hi", {"/x/.app"}},
    };
    for (const auto& [expected, paths] : cases)
        for (const std::string_view path : paths) {
            std::string found = getFileList::IsHiddenFile(path) ? "h" : "";
            if (getFileList::IsSystemDirectory(path)) found += 's';
            if (getFileList::IsAppDirectory(path)) found += 'a';
            if (getFileList::HasAppDirectory(path)) found += 'i';
            EXPECT_EQ(found, expected) << path;
        }
}

TEST(Listing, hiddenEntriesLimitsAndLinks) {
    TestTree tree;
    for (const char* name : {"five", ".dot", ".dots/x", "in/.dot", "in/bin/five", "Library/five"})
        tree.write(name, "12345");
    tree.write("four", "1234");
    tree.write("none", "");
    for (const auto& [target, name] : {std::pair{"five", "l"},
                                       {"in/bin/five", "linkToFile"},
                                       {"in", "linkToFolder"},
                                       {"../in", "in/linkDeeper"},
                                       {"nowhere", "dangling"},
                                       {"loop", "loop"}})
        tree.symlink(target, name);
    EXPECT_EQ(
        parallel(tree.path(), {false, 4}).paths(tree.path()),
        (Strings{"Library/five", "five", "in/bin/five", "linkToFile", "linkToFolder/bin/five"}));
    EXPECT_EQ(parallel(tree.path(), {true, 4}).paths(tree.path()),
              (Strings{".dot", ".dots/x", "Library/five", "five", "in/.dot", "in/bin/five",
                       "linkToFile", "linkToFolder/.dot", "linkToFolder/bin/five"}));
    // The size of a link is that of its text: "five" is four bytes.
    EXPECT_EQ(parallel(tree.path(), {false, 0}).paths(tree.path()),
              (Strings{"Library/five", "five", "four", "in/bin/five", "l", "linkToFile",
                       "linkToFolder/bin/five"}));
    EXPECT_TRUE(parallel(tree.path(), {true, ~std::uint64_t{0}}).files.empty());
}

TEST(Listing, bundleRules) {
    TestTree tree;
    for (const char* name : {"Top.app/a", "x/Lower.app/a", "x/UPPER.APP/in/Inner.app/a",
                             "Hidden.app/.a", "x.apps/a", "file.app"})
        tree.write(name, "12345");
    // The folder itself is larger than the limit on most file systems, one level down.
    for (const char* name : {"x/Small.app/a", "Small.app/a"}) tree.write(name, "1");
    tree.symlink("x.apps", "Linked.app");
    const auto found = parallel(tree.path(), {false, 4});
    Strings bundles;
    for (const std::string& bundle : found.bundles)
        bundles.push_back(bundle.substr(tree.path().size() + 1));
    std::sort(bundles.begin(), bundles.end());
    Strings expected{"Linked.app", "Top.app", "file.app", "x/Lower.app", "x/UPPER.APP"};
    if (attributesOf(tree.at("x/Small.app")).size > 4)
        expected.insert(expected.begin() + 4, "x/Small.app");
    EXPECT_EQ(bundles, expected);
    EXPECT_EQ(found.paths(tree.path()), Strings{"x.apps/a"});
    EXPECT_EQ(parallel(tree.at("x/UPPER.APP/in"), {false, 4}).bundles,
              Strings{tree.at("x/UPPER.APP")});
}

TEST(Listing, theRootDecides) {
    TestTree tree;
    tree.write(".below/in/file", "12345");
    tree.write("file", "12345");
    EXPECT_TRUE(parallel(tree.at(".below/in"), {false, 0}).listed);
    EXPECT_TRUE(parallel(tree.at(".below/in"), {false, 0}).files.empty());
    EXPECT_EQ(parallel(tree.at(".below/in"), {true, 0}).files.size(), 1U);
    for (const bool hidden : {true, false})
        for (const std::string& root :
             {std::string(), tree.at("missing"), tree.at(".missing"), tree.at("file")})
            EXPECT_FALSE(parallel(root, {hidden, 0}).listed) << root;
}

struct Entry {
    Strings components;
    int kind;
};

rc::Gen<std::vector<Entry>> someTree() {
    const auto name = rc::gen::elementOf(
        Strings{"a", "b", "c.d", "bin", ".h", "X.app", "y.APP", "z.apps", ".app"});
    const auto path = rc::gen::resize(4, rc::gen::nonEmpty(rc::gen::container<Strings>(name)));
    const auto entry = rc::gen::apply(
        [](Strings components, int kind) {
            return Entry{std::move(components), kind};
        },
        path, rc::gen::inRange(0, 14));
    return rc::gen::container<std::vector<Entry>>(entry);
}

void build(TestTree& tree, const std::vector<Entry>& entries) {
    constexpr std::size_t sizes[] = {0, 1, 10, 100, 4096, 5000};
    for (const Entry& entry : entries) {
        std::string path;
        for (const std::string& component : entry.components)
            path += (path.empty() ? "" : "/") + component;
        if (entry.kind < 6)
            tree.write(path,
                       std::string(sizes[entry.kind], 'x'));  // fails where something else stands
        else if (entry.kind == 6) tree.folder(path);
        else if (entry.kind == 7) tree.fifo(path);
        else if (entry.kind == 8) tree.symlink(tree.path(), path);
        else if (entry.kind == 9) tree.symlink(entry.components[0], "l-" + entry.components[0]);
        else if (entry.kind == 10) tree.symlink(path, entry.components[0] + "-l.app");
        else if (entry.kind == 11) tree.symlink("nowhere/" + path, path);
        else if (entry.kind == 12) tree.symlink("l2", "l1"), tree.symlink("l1", "l2");
        else tree.symlink("/dev/null", path);
    }
}

TEST(Listing, theParallelWalkEqualsTheSequentialOne) {
    EXPECT_TRUE(rc::check("same files and bundles in the same order", [] {
        const auto entries = *rc::gen::noShrink(rc::gen::resize(60, someTree()));
        // The two list in different orders, and give folders different sizes.
        TestTree tree(*rc::gen::element<std::string>("", "/dev/shm"));
        build(tree, entries);
        for (const std::uint64_t limit : {0U, 99U, 4096U})
            for (const bool hidden : {false, true})
                for (const std::string& root : {tree.path(), tree.at("a"), tree.at("X.app/a")}) {
                    const auto expected = sequential(root, {hidden, limit});
                    const auto found = parallel(root, {hidden, limit});
                    RC_ASSERT(found.listed == expected.listed);
                    RC_ASSERT(found.files == expected.files);
                    RC_ASSERT(found.bundles == expected.bundles);
                }
    }));
}

TEST(Listing, aHundredThousandEntriesInOneFolderKeepTheirOrder) {
    TestTree tree("/dev/shm");
    tree.folder("wide");
    const auto wide =
        realFiles.openFolder(FileSystem::noParent, tree.at("wide").c_str(), Links::Keep);
    for (int i = 0; i < 100'000; ++i) {
        const std::string name = std::to_string(i);
        if (i % 5000 == 0) tree.write("wide/f" + name + "/x", "abc");
        ASSERT_EQ(::mknodat(wide->get(), name.c_str(), S_IFREG | 0644, 0), 0);
        if (i % 3 != 0) continue;
        ASSERT_EQ(::truncate(tree.at("wide/" + name).c_str(), 1 + i), 0);
    }
    const auto found = parallel(tree.path(), {});
    EXPECT_EQ(found.files.size(), 33'334U + 20U);
    EXPECT_TRUE(found == sequential(tree.path(), {}));
}

// A chain needs a descriptor or two. The comb leaves a folder waiting on each level, more than
// there may be open descriptors.
TEST(Listing, depthAndWaitingFoldersNeedFewDescriptors) {
    struct Case {
        const char* name;
        int levels;
        bool sideFolders;
        std::size_t files;
    };
    TestTree tree("/dev/shm");
    for (const Case& one : {Case{"chain", 10'000, false, 1}, Case{"comb", 2'000, true, 2'001}}) {
        ASSERT_TRUE(tree.makeDeep(one.name, one.levels, "leaf", one.sideFolders));
        const std::string text = testing::runInChild({.descriptors = 256}, [&]() -> std::string {
            testing::WatchedFiles watched;
            watched.descriptors = 256;
            const auto start = std::chrono::steady_clock::now();
            const auto found = parallel(tree.at(one.name), {}, watched);
            const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
            if (!found.skipped.empty())
                return found.skipped[0].reason() + std::to_string(found.skipped.size());
            if (found.files.size() != one.files)
                return std::to_string(found.files.size()) + " files";
            return time.count() < 20 ? "" : std::to_string(time.count()) + " s";
        });
        EXPECT_EQ(text, "") << one.name;
    }
}

TEST(Listing, unreadableFoldersCostThemselvesAloneAndAreNamed) {
    TestTree tree;
    for (const char* name : {"a/1", "locked/2", "in/locked/3", "in/b/4", "noSearch/5", "z/6"})
        tree.write(name, "xyz");
    tree.setMode("locked", 0);
    tree.setMode("in/locked", 0);
    tree.setMode("noSearch", 0444);  // lists, but its entries can not be asked about
    const std::string text = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
        const auto found = parallel(tree.path(), {});
        if (!found.listed || found.paths(tree.path()) != Strings{"a/1", "in/b/4", "z/6"})
            return "other files";
        std::string named;
        for (const Error& error : found.skipped)
            named += error.path.substr(tree.path().size() + 1) +
                     (error.number == EACCES ? "" : "?") + ' ';
        if (named != "in/locked locked noSearch/5 ") return "named: " + named;
        const auto root = parallel(tree.at("locked"), {});
        return root.listed ? "an unreadable root was listed" : "";
    });
    EXPECT_EQ(text, "");
}

TEST(Listing, oddNamesAndKinds) {
    TestTree tree;
    const Strings names{"line\nbreak",
                        "\xff\xfe\x80",
                        std::string(255, 'n'),
                        " ",
                        "*",
                        "in\n/" + std::string(255, 'm'),
                        "-rf"};
    for (const std::string& name : names) ASSERT_TRUE(tree.write(name, "xyz"));
    tree.fifo("fifo");
    tree.fifo("Odd.app/fifo");
    tree.socket("socket");
    (void)::mknod(tree.at("device").c_str(), S_IFCHR | 0644, ::makedev(1, 3));
    tree.sparse("sparse", 1ULL << 40U);
    auto expected = names;
    expected.emplace_back("sparse");
    std::sort(expected.begin(), expected.end());
    const auto found = parallel(tree.path(), {});
    EXPECT_EQ(found.paths(tree.path()), expected);
    EXPECT_TRUE(found.bundles.empty());
    EXPECT_TRUE(found.skipped.empty());
}

TEST(Listing, kernelFileSystemsAreNotEnteredButMayBeTheRoot) {
    TestTree tree;
    tree.write("file", "xyz");
    tree.symlink("/proc", "kernel");
    tree.symlink("/sys/kernel", "deeper");
    tree.symlink("/sys/kernel", "Kernel.app");
    EXPECT_EQ(parallel(tree.path(), {}).paths(tree.path()), Strings{"file"});
    EXPECT_TRUE(parallel(tree.path(), {}).bundles.empty());
    EXPECT_FALSE(parallel("/sys/kernel/mm", {}).files.empty());
}

TEST(Listing, aStopEndsItSoonAndCountsAsListed) {
    TestTree tree;
    for (int i = 0; i < 300; ++i) tree.write("d" + std::to_string(i) + "/f", "xyz");
    testing::WatchedFiles watched;
    SkipList skipped;
    getFileList list(watched, skipped);
    std::atomic<int> calls{0};
    watched.onReadFolder = [&] {
        if (++calls == 20) list.stopSearch();
    };
    FileArray array;
    Strings bundles;
    EXPECT_TRUE(list.getListAtPath(tree.path(), array, bundles, 0));
    EXPECT_LT(calls, 100);
    EXPECT_LT(array.size(), 300U);
    watched.onReadFolder = {};
    EXPECT_TRUE(list.getListAtPath(tree.path(), array, bundles, 0))
        << "a stop holds for one listing";
    EXPECT_EQ(array.size(), 300U);
    list.stopSearch();
    Strings all;
    EXPECT_FALSE(list.getSubpathsOfDirectoryAtPath(all, tree.path()));
}

}  // namespace
}  // namespace orrinvale
