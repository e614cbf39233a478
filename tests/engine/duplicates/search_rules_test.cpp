// Rules of a search that only show where two of its parts meet: the options, links and mounts,
// progress, and what changes under it.
#include "engine/duplicates/SearchRun.h"
#include "support/DiskImage.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::searched;

std::string joined(const Strings& texts) {
    std::string out;
    for (const std::string& text : texts) out += text + ' ';
    return out;
}

// The system's folders are those of "/" alone, so the tree becomes that for a while.
TEST(SearchRules, EachOptionOpensWhatItSays) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may change its root";
    TestTree tree;
    for (const char* copy : {"1", "2"})
        for (const char* folder : {"", ".hidden/", "bin/", "Library/", "home/bin/"})
            ASSERT_TRUE(tree.write(std::string(folder) + copy, "same"));
    const std::string text = testing::runInChild({}, [&]() -> std::string {
        if (::chroot(tree.path().c_str()) != 0 || ::chdir("/") != 0) return "no root of its own";
        std::string found;
        for (const SearchOption& option :
             {SearchOption{false, false}, {true, false}, {false, true}, {true, true}})
            found += joined(searched("/", realFiles, option).leaves) + "| ";
        return found + joined(searched("/home", realFiles, {false, false}).leaves);
    });
    const std::string plain = "/1 /2 ";
    const std::string system = "/Library/1 /Library/2 /bin/1 /bin/2 ";
    const std::string hidden = "/.hidden/1 /.hidden/2 ";
    const std::string home = "/home/bin/1 /home/bin/2 ";
    EXPECT_EQ(text, plain + home + "| " + hidden + plain + home + "| " + plain + system + home +
                        "| " + hidden + plain + system + home + "| " + home);
}

TEST(SearchRules, AnEntryThatAMountShowsAgainIsNotItsOwnCopy) {
    testing::withOwnMounts([]() -> std::string {
        TestTree tree("/mnt");
        if (!tree.write("a/in/one", "12345") || !tree.folder("b") ||
            !tree.write("A.app/x", "67890") || !tree.folder("c") || !tree.write("alone", "abc") ||
            !tree.write("place", ""))
            return "no tree";
        for (const auto& [what, where] : {std::pair{"a", "b"}, {"A.app", "c"}, {"alone", "place"}})
            if (!bindMount(tree.at(what), tree.at(where))) return "skip: no bind mounts";
        if (const Strings found = searched(tree.path()).leaves; !found.empty())
            return joined(found);
        if (!tree.hardLink("a/in/one", "a/in/two")) return "no link";
        const Strings found = searched(tree.path()).leaves;
        for (const char* path : {"b", "c", "place"})
            (void)::umount2(tree.at(path).c_str(), MNT_DETACH);
        return found.size() == 2 ? "" : "with two names: " + joined(found);
    });
}

// The link count of a file changes between the two listings of it: by its folder, and through a
// link to that.
TEST(SearchRules, AChangingLinkCountMakesNoCopies) {
    class Counting final : public ForwardingFiles {
    public:
        using ForwardingFiles::ForwardingFiles;
        void readAttributes(int folder, std::span<CatalogEntry> entries) const override {
            ForwardingFiles::readAttributes(folder, entries);
            for (CatalogEntry& entry : entries) entry.attributes.links = ++m_looks;
        }

    private:
        mutable std::atomic<std::uint32_t> m_looks{0};
    };
    TestTree tree;
    ASSERT_TRUE(tree.write("in/one", "12345") && tree.symlink("in", "again") &&
                tree.symlink("in", "andAgain"));
    EXPECT_EQ(searched(tree.path(), Counting(realFiles)).leaves, Strings{});
}

TEST(SearchRules, LeavesTellWhereTheyLieAndHowManyNamesTheyHave) {
    TestTree tree;
    TestTree elsewhere;
    for (const char* name : {"root/plain", "root/in/twice", "other/far"})
        ASSERT_TRUE(tree.write(name, "12345"));
    ASSERT_TRUE(tree.hardLink("root/in/twice", "root/in/name") &&
                elsewhere.write("A.app/x", "67890"));
    ASSERT_TRUE(tree.write("root/B.app/x", "67890") && tree.symlink("../other", "root/link"));
    ASSERT_TRUE(tree.symlink(elsewhere.at("A.app"), "root/A.app"));
    // The text of a link counts: both are of one length, and lead to files of one content.
    ASSERT_TRUE(tree.symlink("in/twice", "root/toIn") &&
                tree.symlink("../other/far", "root/toFar"));
    ASSERT_TRUE(tree.symlink("in/../plain/", "root/broken") &&
                tree.symlink("./././plain", "root/toPlain1"));
    ASSERT_TRUE(tree.symlink("././in/name", "root/toName12"));
    const timespec times[] = {{.tv_sec = 1, .tv_nsec = 0},
                              {.tv_sec = 1'000'000'000, .tv_nsec = 123'456'789}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.at("root/plain").c_str(), times, 0), 0);
    DuplicateFilesOpt opt(realFiles);
    opt.beginSearchAtPath(tree.at("root"), 0);
    std::shared_ptr<SimpleTreeNode> root;
    ASSERT_TRUE(opt.getDuplicateFiles(&root));
    std::map<std::string, std::string> told;
    for (const auto& group : root->children())
        for (const auto& node : group->children()) {
            const auto leaf = simpleData(*node);
            std::string& text = told[leaf->name().substr(tree.at("root/").size())];
            text = std::to_string(leaf->hardLinks());
            if (leaf->isLink())
                text += (leaf->liesOutside() ? " out " : " in ") + leaf->linkTarget();
            EXPECT_EQ(leaf->ModificationDate() == Date{1'000'000'000'123'456'789},
                      leaf->name() == tree.at("root/plain"))
                << leaf->name();
            EXPECT_EQ(leaf->bundleDigest().has_value(), leaf->name().ends_with(".app"))
                << leaf->name();
        }
    const std::map<std::string, std::string> expected{
        {"plain", "1"},
        {"in/twice", "2"},
        {"in/name", "2"},
        {"link/far", "1 out " + tree.at("other/far")},
        {"B.app", "1"},
        {"A.app", "1 out " + elsewhere.at("A.app")},
        {"toPlain1", "1 in " + tree.at("root/plain")},
        {"toName12", "1 in " + tree.at("root/in/name")},
    };
    EXPECT_EQ(told, expected);
}

// Bundles are the first half and files the second. The first batches of files are small, so that
// both classes are seen apart.
TEST(SearchRules, ProgressIsTheMeanOfBothHalves) {
    TestTree tree("/dev/shm");
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(tree.write("x/" + std::to_string(i), "12345"));
        ASSERT_TRUE(tree.write("y/" + std::to_string(i), "123456"));
    }
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(tree.write("B" + std::to_string(i) + ".app/bundled",
                               std::string(static_cast<std::size_t>(1 + i / 2), 'x')));
    testing::WatchedFiles watched;
    DuplicateFilesOpt opt(watched);
    std::mutex mutex;
    std::set<std::uint64_t> whileBundles, whileFiles;
    watched.onOpenFile = [&](const char* name) {
        const std::uint64_t percent = opt.getProgress();
        const std::lock_guard lock(mutex);
        (std::string_view(name) == "bundled" ? whileBundles : whileFiles).insert(percent);
    };
    opt.beginSearchAtPath(tree.path(), 0);
    // Of four bundles two pairs are left, then one, each half of half a hundred.
    EXPECT_EQ(whileBundles, (std::set<std::uint64_t>{0, 25}));
    EXPECT_EQ(whileFiles, (std::set<std::uint64_t>{50, 75}));
    EXPECT_EQ(opt.getProgress(), 100U);
}

// A folder whose listing fails after its first thousand entries: none of them counts, and its
// neighbours do.
class Failing final : public ForwardingFiles {
public:
    using ForwardingFiles::ForwardingFiles;
    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override {
        auto opened = ForwardingFiles::openFolder(parent, name, links);
        if (opened && std::string_view(name) == "half") m_half = opened->get();
        return opened;
    }
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override {
        if (folder == m_half && ++m_reads > 1) return tl::unexpected(EIO);
        return ForwardingFiles::readFolder(folder, batch);
    }

private:
    mutable std::atomic<int> m_half{-1};
    mutable std::atomic<int> m_reads{0};
};

TEST(SearchRules, AFolderThatFailsHalfWayDoesNotCount) {
    TestTree tree;
    for (int i = 0; i < 3000; ++i)
        ASSERT_TRUE(tree.write("in/half/f" + std::to_string(i), "12345"));
    for (const char* name : {"in/a", "in/b"}) ASSERT_TRUE(tree.write(name, "12345"));
    const auto [leaves, skipped, groups] = searched(tree.path(), Failing(realFiles));
    EXPECT_EQ(leaves, (Strings{tree.at("in/a"), tree.at("in/b")}));
    ASSERT_EQ(skipped.size(), 1U);
    EXPECT_EQ(skipped[0].path, tree.at("in/half"));
    EXPECT_EQ(skipped[0].number, EIO);
}

// Each file is written to in the middle of its being read.
class Changing final : public ForwardingFiles {
public:
    Changing(const FileSystem& base, TestTree& tree) : ForwardingFiles(base), m_tree(tree) {}
    SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                   ReadState& state) const override {
        auto opened = ForwardingFiles::openFile(parent, name, links, state);
        const std::lock_guard lock(m_mutex);
        if (opened && std::string_view(name).starts_with("changed")) m_open[opened->get()] = name;
        else if (opened) m_open.erase(opened->get());
        return opened;
    }
    SysResult<std::size_t> read(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                ReadState& state) const override {
        auto count = ForwardingFiles::read(file, buffer, offset, state);
        const std::lock_guard lock(m_mutex);
        if (const auto open = m_open.find(file); open != m_open.end() && count)
            m_tree.patch(open->second, ++m_at, "?");
        return count;
    }
    void useOwnDescriptors() const override {}  // one table, so that numbers are unique

private:
    TestTree& m_tree;
    mutable std::mutex m_mutex;
    mutable std::map<int, std::string> m_open;
    mutable std::uint64_t m_at = 0;
};

TEST(SearchRules, AFileThatChangesWhileItIsReadIsNoCopy) {
    for (const std::size_t size : {40'000U, 200'000'000U}) {
        TestTree tree("/dev/shm");
        for (const char* name : {"a", "b", "changed"}) {
            ASSERT_TRUE(tree.sparse(name, size));
            tree.patch(name, size / 2, "middle");
        }
        const auto [leaves, skipped, groups] = searched(tree.path(), Changing(realFiles, tree));
        EXPECT_EQ(leaves, (Strings{tree.at("a"), tree.at("b")})) << size;
        ASSERT_EQ(skipped.size(), 1U) << size;
        EXPECT_EQ(skipped[0].path, tree.at("changed"));
        EXPECT_EQ(skipped[0].kind, ErrorKind::Changed);
    }
}

// On a disk image of the kind that shows it: while a folder is listed, files in it go away under
// another name and come back. The system then lists some of them twice.
TEST(SearchRules, FilesRenamedAwayAndBackDuringTheListing) {
    testing::withImage("mkfs.xfs -q", "xfs", [](TestTree& tree) -> std::string {
        constexpr int count = 40'000;
        for (int i = 0; i < count; ++i)
            if (!tree.write("wide/file" + std::to_string(i), "content " + std::to_string(i)))
                return "no file";
        if (!tree.folder("away")) return "no folder";
        testing::WatchedFiles watched;
        std::atomic<int> reads{0};
        watched.onReadFolder = [&] {
            if (++reads != 6) return;
            for (int i = 0; i < 400; ++i)
                ::rename(tree.at("wide/file" + std::to_string(i)).c_str(),
                         tree.at("away/" + std::to_string(i)).c_str());
            for (int i = 399; i >= 0; --i)
                ::rename(tree.at("away/" + std::to_string(i)).c_str(),
                         tree.at("wide/file" + std::to_string(i)).c_str());
        };
        DuplicateFilesOpt opt(watched);
        opt.beginSearchAtPath(tree.path(), 0);
        if (opt.search()->counts().listedFiles <= count) return "skip: no name was listed twice";
        const Strings found = testing::foundBy(opt).leaves;
        return found.empty() ? "" : std::to_string(found.size()) + " files are their own copies";
    });
}

TEST(SearchRules, FilesOnADiskWithoutInodeNumbers) {
    testing::withImage("mkfs.vfat", "vfat", [](TestTree& tree) -> std::string {
        for (int i = 0; i < 200; ++i)
            for (const char* side : {"a/", "b/"})
                if (!tree.write(side + std::to_string(i), "content " + std::to_string(i)))
                    return "no file";
        testing::WatchedFiles watched;
        std::once_flag once;
        watched.onOpenFile = [&](const char*) {  // the system forgets the numbers that it gave out
            std::call_once(once,
                           [] { (void)!std::system("sync; echo 2 > /proc/sys/vm/drop_caches"); });
        };
        const Strings found = searched(tree.path(), watched).leaves;
        return found.size() == 400 ? "" : std::to_string(found.size()) + " of 400 found";
    });
}

}  // namespace
}  // namespace orrinvale
