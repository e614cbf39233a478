// The search on disks that fail, forget and dawdle, and under a stop: what is found stays right,
// and what is not read is said.
#include <new>

#include "engine/duplicates/SearchRun.h"
#include "engine/duplicates/crc.h"
#include "engine/files/TreeSize.h"
#include "engine/files/asideName.h"
#include "support/ServedFiles.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::Found;
using testing::searched;
using testing::ServedFiles;

// Two equal files, and a third that would be equal if it could be read.
TEST(SearchFaults, ReadErrorsAreToldAsWhatTheyAreWhereverTheyCome) {
    struct Case {
        const char* what;
        std::size_t size;
        std::size_t from;
        bool bundle;
    };
    for (const Case& one :
         {Case{"the start of a small file", 20'000, 0, false},
          Case{"its middle", 20'000, 8192, false}, Case{"a whole page of it", 8192, 4096, false},
          Case{"the last bytes of a large one", 100'000, 99'000, false},
          Case{"its middle", 1'000'000, 500'000, false},
          Case{"behind 64 MiB", 160'000'000, 90'000'000, false},
          Case{"a file of a bundle", 100'000, 50'000, true}}) {
        ServedFiles served({"eio=bad:" + std::to_string(one.from)});
        if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
        const std::string inside = one.bundle ? ".app/" : "/";
        const std::string bytes = testing::someBytes(one.size, 31);
        for (const std::string& name :
             {"x" + inside + "good", "y" + inside + "good", "z" + inside + "bad"})
            ASSERT_TRUE(served.source().write(name, bytes));
        const testing::LogLines log;
        const Found found = searched(served.path());
        EXPECT_EQ(found.leaves, one.bundle ? (Strings{served.at("x.app"), served.at("y.app")})
                                           : (Strings{served.at("x/good"), served.at("y/good")}))
            << one.what;
        ASSERT_EQ(found.skipped.size(), 1U) << one.what;
        EXPECT_EQ(found.skipped[0].path, served.at("z" + inside + "bad"));
        EXPECT_EQ(found.skipped[0].number, EIO) << one.what << ": " << found.skipped[0].reason();
        EXPECT_TRUE(std::any_of(log.lines.begin(), log.lines.end(), [&](const std::string& line) {
            return line.starts_with("[qrt]fun:") && line.find(" failed") != line.npos &&
                   line.find(found.skipped[0].path) != line.npos;
        })) << one.what;
    }
}

TEST(SearchFaults, FilesAreFoundWhereInodeNumbersDoNotLast) {
    ServedFiles served({"renumber"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    constexpr int pairs = 100;
    for (int i = 0; i < pairs; ++i)
        for (const std::string side : {"a", "b"})
            ASSERT_TRUE(served.source().write(
                "d" + std::to_string(i % 7) + "/" + side + std::to_string(i),
                testing::someBytes(i % 3 == 0 ? 50'000 : 100, static_cast<unsigned>(i))));
    for (const char* name : {"x.app/in/f", "y.app/in/f"})
        ASSERT_TRUE(served.source().write(name, "a bundle's"));
    ASSERT_TRUE(served.source().symlink("d0", "again"));

    DuplicateFilesOpt opt(realFiles);
    {
        const testing::LogLines log;
        opt.beginSearchAtPath(served.path(), 0);
        EXPECT_EQ(std::count_if(log.lines.begin(), log.lines.end(),
                                [](const std::string& line) {
                                    return line.find("inode numbers") != line.npos;
                                }),
                  1)
            << "said once";
    }
    EXPECT_EQ(opt.search()->rootsOfPassingInodes().size(), 1U);
    EXPECT_TRUE(opt.search()->skipped().entries().empty());
    std::shared_ptr<SimpleTreeNode> root;
    ASSERT_TRUE(opt.getDuplicateFiles(&root));
    EXPECT_EQ(root->numberOfChildren(), pairs + 1U);
    for (const auto& group : root->children()) {
        EXPECT_EQ(group->numberOfChildren(), 2U) << simpleData(*group)->name();
        for (const auto& leaf : group->children()) {
            const auto now = realFiles.attributes(FileSystem::noParent,
                                                  simpleData(*leaf)->name().c_str(), Links::Keep);
            ASSERT_TRUE(now);
            EXPECT_NE(now->inode, simpleData(*leaf)->identity()->inode);
            EXPECT_TRUE(simpleData(*leaf)->identity()->isStill(*now)) << simpleData(*leaf)->name();
        }
    }
    // Its size and its times still tell a file from what is put in its place.
    const auto leaf = root->childAtIndex(1)->childAtIndex(0);
    ASSERT_TRUE(testing::contentOf(simpleData(*leaf)->name()).size() > 1);
    ASSERT_TRUE(
        served.source().patch(simpleData(*leaf)->name().substr(served.path().size() + 1), 0, "?"));
    const auto now =
        realFiles.attributes(FileSystem::noParent, simpleData(*leaf)->name().c_str(), Links::Keep);
    EXPECT_FALSE(simpleData(*leaf)->identity()->isStill(*now));
}

TEST(SearchFaults, ANameThatIsListedTwiceIsNotItsOwnCopy) {
    ServedFiles served({"twice=one"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    for (const char* name : {"a/one", "b/other", "x.app/one", "y.app/one"})
        ASSERT_TRUE(served.source().write(name, "12345"));
    EXPECT_EQ(searched(served.at("a")).leaves, Strings{});
    EXPECT_EQ(searched(served.path()).leaves, (Strings{served.at("a/one"), served.at("b/other"),
                                                       served.at("x.app"), served.at("y.app")}));
}

// The same with inode numbers that last, and a file that is renamed while the folder is listed: it
// comes under both names.
class Repeating final : public ForwardingFiles {
public:
    using ForwardingFiles::ForwardingFiles;
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override {
        auto more = ForwardingFiles::readFolder(folder, batch);
        const std::vector<CatalogEntry> again = batch.entries;
        for (const CatalogEntry& entry : again)
            if (entry.type == FileType::Regular) batch.entries.push_back(entry);
        return more;
    }
    void readAttributes(int folder, std::span<CatalogEntry> entries) const override {
        for (CatalogEntry& entry : entries) {
            const bool isOld = std::string_view(entry.name) == "old";
            CatalogEntry one = entry;
            if (isOld) one.name = "new";
            ForwardingFiles::readAttributes(folder, {&one, 1});
            entry.attributes = one.attributes;
            entry.error = one.error;
        }
    }
    SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                   ReadState& state) const override {
        return ForwardingFiles::openFile(parent, std::string_view(name) == "old" ? "new" : name,
                                         links, state);
    }
};

TEST(SearchFaults, OneFileUnderTwoNamesIsNotItsOwnCopy) {
    TestTree tree;
    const Repeating watched(realFiles);
    ASSERT_TRUE(tree.write("a/one", "12345") && tree.write("b/new", "67890") &&
                tree.write("c/old", "x"));
    ASSERT_EQ(::rename(tree.at("c/old").c_str(), tree.at("b/old").c_str()), 0);
    EXPECT_EQ(searched(tree.path(), watched).leaves, Strings{});
    ASSERT_TRUE(tree.hardLink("a/one", "a/two"));
    EXPECT_EQ(searched(tree.path(), watched).leaves, (Strings{tree.at("a/one"), tree.at("a/two")}));
}

// Every look takes a third of a second, and a listing gives hundreds of entries at a time.
TEST(SearchFaults, AStopOnASlowFileSystemTakesAMoment) {
    ServedFiles served({"look=300"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    for (int i = 0; i < 400; ++i) {
        served.source().write("d/f" + std::to_string(i), "12345");
        served.source().write("B.app/f" + std::to_string(i), "12345");
    }
    const auto secondsAfterStop = [](const std::function<void()>& work,
                                     const std::function<void()>& stop) {
        std::chrono::steady_clock::time_point stopped;
        {
            const std::jthread stopper([&] {
                std::this_thread::sleep_for(1500ms);
                stopped = std::chrono::steady_clock::now();
                stop();
            });
            work();
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - stopped).count();
    };
    for (const char* folder : {"d", "B.app", ""}) {
        DuplicateFilesOpt opt(realFiles);
        EXPECT_LT(secondsAfterStop([&] { opt.beginSearchAtPath(served.at(folder), 0); },
                                   [&] { opt.stopSearch(); }),
                  1.0)
            << folder;
    }
    std::atomic<bool> stop{false};
    const TreeSize size(realFiles, {.stop = &stop});
    EXPECT_LT(secondsAfterStop([&] { (void)size.ofPath(served.path()); }, [&] { stop = true; }),
              1.0);
}

// One class of sizes, which is hashed as a whole: what was hashed when the stop came stands in the
// result.
TEST(SearchFaults, AStopGroupsWhatIsHashed) {
    TestTree tree("/dev/shm");
    for (int i = 0; i < 900; ++i) ASSERT_TRUE(tree.write("f" + std::to_string(i), "12345"));
    testing::WatchedFiles watched;
    duplicateFind find(watched);
    find.setSearchOption(true, true);
    std::atomic<int> opened{0};
    std::mutex mutex;
    std::set<std::string> shown;
    watched.onOpenFile = [&](const char*) {
        if (++opened == 574) find.stopSearch();
        if (opened % 50 != 0) return;
        const std::string path = find.getCurrentSearchPath();
        const std::lock_guard lock(mutex);
        shown.insert(path);
    };
    find.searchDuplicateFileAtPath(tree.path(), 0);
    FileList found;
    find.getAllDuplicateFile(&found);
    EXPECT_GE(found.size(), 560U);
    EXPECT_LT(found.size(), 900U);
    EXPECT_GT(shown.size(), 2U) << "the path that is shown stood still";
}

TEST(SearchFaults, OutOfMemoryEndsLikeAStop) {
    TestTree tree("/dev/shm");
    for (int i = 0; i < 600; ++i)
        for (const char* side : {"a", "b"})
            tree.write(side + std::to_string(i), std::string(static_cast<std::size_t>(1 + i), 'x'));
    for (const bool whileListing : {false, true}) {
        testing::WatchedFiles watched;
        std::atomic<int> calls{0};
        const auto run = [&] {
            if (++calls == (whileListing ? 2 : 1000)) throw std::bad_alloc();
        };
        if (whileListing) watched.onReadFolder = run;
        else watched.onOpenFile = [&](const char*) { run(); };
        duplicateFind find(watched);
        find.setSearchOption(true, true);
        find.searchDuplicateFileAtPath(tree.path(), 0);
        EXPECT_TRUE(find.ranOutOfMemory());
        FileList found;
        find.getAllDuplicateFile(&found);
        EXPECT_EQ(found.empty(), whileListing) << "what was found before is there";
        EXPECT_LT(found.size(), 1200U);
    }
}

TEST(SearchFaults, NothingButFilesIsOpened) {
    TestTree tree;
    for (const char* bundle : {"a.app/", "b.app/"}) {
        ASSERT_TRUE(tree.write(std::string(bundle) + "file", "12345") &&
                    tree.fifo(std::string(bundle) + "pipe"));
        ASSERT_TRUE(tree.symlink("pipe", std::string(bundle) + "toPipe") &&
                    tree.symlink("file", std::string(bundle) + "toFile"));
    }
    ASSERT_TRUE(tree.symlink("a.app/pipe", "link1") && tree.symlink("b.app/pipe", "link2"));
    testing::WatchedFiles watched;
    std::mutex mutex;
    std::set<std::string> opened;
    watched.onOpenFile = [&](const char* name) {
        const std::lock_guard lock(mutex);
        opened.insert(name);
    };
    EXPECT_EQ(searched(tree.path(), watched).leaves, (Strings{tree.at("a.app"), tree.at("b.app")}));
    EXPECT_EQ(opened, (std::set<std::string>{"file", "toFile"}));
}

TEST(SearchFaults, WhatARemovalHasSetAsideIsNotOffered) {
    TestTree tree;
    const std::string aside = asideName("0123456789abcdef", "file.txt");
    for (const std::string& name :
         {std::string("file.txt"), aside, "in/" + aside, aside + "x/in", std::string("copy")})
        ASSERT_TRUE(tree.write(name, "12345"));
    for (const std::string& name : {std::string("A.app"), asideName("0123456789abcdef", "A.app"),
                                    "in/" + asideName("0123456789abcdef", "A.app")})
        ASSERT_TRUE(tree.write(name + "/in", "67890"));
    EXPECT_EQ(searched(tree.path()).leaves, (Strings{tree.at("copy"), tree.at("file.txt")}));
}

// Folders that only hold links say nothing of what they are.
TEST(SearchFaults, BundlesWithoutContentsAreNoCopies) {
    TestTree tree;
    for (const char* bundle : {"a.app/", "b.app/"}) {
        tree.folder(std::string(bundle) + "in");
        tree.symlink("in", std::string(bundle) + "toFolder");
        tree.symlink("nowhere", std::string(bundle) + "dangling");
        tree.write(std::string(bundle) + "empty", "");
    }
    EXPECT_EQ(searched(tree.path()).leaves, Strings{});
    for (const char* name : {"a.app/in/f", "b.app/in/f"}) tree.write(name, "1");
    EXPECT_EQ(searched(tree.path()).leaves, (Strings{tree.at("a.app"), tree.at("b.app")}));
}

// The hash is linear: eight bytes more bring it to any value, so files of two sizes can be given
// one hash.
std::string bytesThatLead(std::uint64_t from, std::uint64_t to) {
    constexpr std::uint64_t polynomial = 0x95AC9329AC4BC9B5;
    constexpr std::uint64_t top = std::uint64_t{1} << 63U;
    for (int bit = 0; bit < 64; ++bit)
        to = (to & top) != 0 ? ((to ^ polynomial) << 1U) | 1U : to << 1U;
    std::string bytes;
    for (std::uint64_t difference = from ^ to; bytes.size() < 8; difference >>= 8U)
        bytes += static_cast<char>(difference & 0xFFU);
    return bytes;
}

TEST(SearchFaults, GroupsOfTwoSizesWithOneHashStayTwo) {
    TestTree tree;
    const std::string brief = testing::someBytes(2000, 40);
    const std::string other = testing::someBytes(3000, 41);
    const auto hash = [](const std::string& bytes) {
        return crc::crc64(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    };
    const std::string longer = other + bytesThatLead(hash(other), hash(brief));
    ASSERT_EQ(hash(longer), hash(brief));
    for (const char* name : {"a", "b"}) tree.write(name, brief);
    for (const char* name : {"c", "d"}) tree.write(name, longer);
    EXPECT_EQ(searched(tree.path()).groups, 2U);
    DuplicateFilesOpt opt(realFiles);
    opt.beginSearchAtPath(tree.path(), 0);
    std::shared_ptr<SimpleTreeNode> root;
    ASSERT_TRUE(opt.getDuplicateFiles(&root));
    EXPECT_EQ(root->numberOfChildren(), 2U);
}

}  // namespace
}  // namespace orrinvale
