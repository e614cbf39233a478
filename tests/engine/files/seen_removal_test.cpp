// SafeRemoval with what a scan saw in a folder: this goes, and whatever came or changed since
// stays. Seen are the real attributes of real files; what comes later does so before the removal,
// in the middle of it, and from a thread that does nothing else.
#include "engine/files/SafeRemoval.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

// Longer than the clock tick by which file systems tell two changes apart.
constexpr std::chrono::milliseconds timesDiffer{20};

// By descriptors and names, as a scan does it.
void look(SeenEntries& seen, int folder, SeenEntries::Key key) {
    CatalogBatch batch;
    while (files.readFolder(folder, batch).value_or(false)) {
        files.readIdentities(folder, batch.entries);
        for (const CatalogEntry& entry : batch.entries) {
            const auto own = seen.keyOf(key, entry.name, entry.attributes.inode);
            seen.add(own, SeenState::of(entry.attributes));
            if (entry.attributes.type != FileType::Folder) continue;
            const auto inner = files.openFolder(folder, entry.name, Links::Keep);
            if (inner) look(seen, inner->get(), own);
        }
    }
}

SeenEntries seenIn(const std::string& path, bool inodesPass = false) {
    SeenEntries seen(inodesPass);
    const auto folder = files.openFolder(FileSystem::noParent, path.c_str(), Links::Keep);
    if (folder) look(seen, folder->get(), SeenEntries::chosenFolder);
    return seen;
}

RemovalResult removeSeen(const std::string& path, const SeenEntries& seen,
                         const FileSystem& system = files) {
    return SafeRemoval(system, nothingProtected).remove(path, std::nullopt, nullptr, &seen);
}

std::string failureLines(const TestTree& tree, const RemovalResult& result) {
    std::vector<std::string> lines;
    for (const auto& [path, reason, kind, seen] : result.failures)
        lines.push_back(fmt::format("{}: {}", path.substr(tree.path().size() + 1),
                                    kind == StayReason::CameLater ? "later"
                                    : kind == StayReason::Changed ? "changed"
                                                                  : reason));
    std::sort(lines.begin(), lines.end());
    return fmt::format("{}", fmt::join(lines, ", "));
}

void rewrite(TestTree& tree, const char* name, bool putTimeBack) {
    const auto write = [&] { EXPECT_TRUE(tree.patch(name, 0, "Y")); };
    if (putTimeBack) keepTimes(tree.at(name), write);
    else write();
}

TEST(SeenRemoval, OnlyWhatTheScanSawGoes) {
    const struct {
        const char* what;
        std::function<void(TestTree&)> change;
        const char* stays;
    } cases[] = {
        {"nothing", [](TestTree&) {}, ""},
        {"a new file", [](TestTree& tree) { tree.write("t/new", "x"); }, "t/new: later"},
        {"new ones further down",
         [](TestTree& tree) { tree.write("t/a/b/new", "x"), tree.fifo("t/a/pipe"); },
         "t/a/b/new: later, t/a/pipe: later"},
        {"a new folder",
         [](TestTree& tree) { tree.write("t/a/n/1", "x"), tree.write("t/a/n/2", "x"); },
         "t/a/n: later"},
        {"written since", [](TestTree& tree) { rewrite(tree, "t/a/1", false); }, "t/a/1: changed"},
        {"written, and its time put back", [](TestTree& tree) { rewrite(tree, "t/a/1", true); },
         "t/a/1: changed"},
        {"saved by rename",
         [](TestTree& tree) {
             tree.write("save", "x");
             ::rename(tree.at("save").c_str(), tree.at("t/a/1").c_str());
         },
         "t/a/1: later"},
        {"a folder in place of a file",
         [](TestTree& tree) {
             ::unlink(tree.at("t/a/1").c_str());
             tree.write("t/a/1/precious", "x");
         },
         "t/a/1: later"},
        {"another folder of the name",
         [](TestTree& tree) {
             ::rename(tree.at("t/a/b").c_str(), tree.at("moved").c_str());
             tree.write("t/a/b/2", "x");
         },
         "t/a/b: later"},
        {"a link in place of a folder",
         [](TestTree& tree) {
             ::rename(tree.at("t/a/b").c_str(), tree.at("moved").c_str());
             tree.symlink("../../moved", "t/a/b");
         },
         "t/a/b: later"},
        {"another link",
         [](TestTree& tree) {
             ::unlink(tree.at("t/link").c_str());
             tree.symlink("elsewhere", "t/link");
         },
         "t/link: later"},
        {"moved within",
         [](TestTree& tree) { ::rename(tree.at("t/a/1").c_str(), tree.at("t/a/b/1").c_str()); },
         "t/a/b/1: later"},
    };
    for (const auto& [what, change, stays] : cases) {
        TestTree tree;
        for (const char* name : {"t/a/1", "t/a/b/2", "t/c/3"}) tree.write(name, "x");
        tree.symlink("a/1", "t/link");
        const SeenEntries seen = seenIn(tree.at("t"));
        ASSERT_EQ(seen.count(), 7U);
        change(tree);
        const auto result = removeSeen(tree.at("t"), seen);
        // A number that is free again may go to the next entry at once, which then counts as the
        // same one changed.
        std::string told = failureLines(tree, result);
        if (std::strcmp(what, "another link") == 0 ||
            std::strcmp(what, "a folder in place of a file") == 0)
            if (const std::size_t at = told.find("changed"); at != std::string::npos)
                told.replace(at, 7, "later");
        EXPECT_EQ(told, stays) << what;
        EXPECT_EQ(result.gone, *stays == 0) << what;
        EXPECT_FALSE(isThere(tree.at("t/c"))) << what;
        for (const auto& failure : result.failures) EXPECT_TRUE(isThere(failure.path)) << what;
        EXPECT_FALSE(isThere(tree.at("moved")) && !isThere(tree.at("moved/2"))) << what;
    }
}

// One comes after each removal: a folder that is not empty yet is gone through once more, and not
// for these.
TEST(SeenRemoval, WhatComesWhileItRunsStays) {
    TestTree tree;
    for (int i = 0; i < 20; ++i) tree.write(fmt::format("t/{}/{}", i % 3, i), "x");
    const SeenEntries seen = seenIn(tree.at("t"));
    WatchedFiles watched;
    int came = 0;
    watched.beforeRemoval = [&](const char* operation) {
        if (std::strcmp(operation, "removeEntry") == 0 &&
            isThere(tree.at(fmt::format("t/{}", came % 3))))
            tree.write(fmt::format("t/{}/late{}", came % 3, came), "precious"), ++came;
    };
    const auto result = removeSeen(tree.at("t"), seen, watched);
    EXPECT_FALSE(result.gone);
    ASSERT_GT(came, 10);
    const std::filesystem::recursive_directory_iterator left(tree.at("t"));
    EXPECT_EQ(
        std::count_if(begin(left), end(left), [](auto& one) { return one.is_regular_file(); }),
        came);
    EXPECT_EQ(result.bytes, 20U);
    for (const auto& failure : result.failures)
        EXPECT_EQ(failure.kind, StayReason::CameLater) << failure.path;
}

TEST(SeenRemoval, AnEmptyFolderThatCameIntoThePlaceOfOneThatWasEmptiedStays) {
    TestTree tree;
    tree.write("t/a/1", "x");
    const SeenEntries seen = seenIn(tree.at("t"));
    WatchedFiles watched;
    watched.beforeRemoval = [&](const char* operation) {
        if (std::strcmp(operation, "removeEntry") != 0 || isThere(tree.at("moved"))) return;
        ::rename(tree.at("t/a").c_str(), tree.at("moved").c_str());
        tree.folder("t/a");
    };
    EXPECT_EQ(failureLines(tree, removeSeen(tree.at("t"), seen, watched)), "t/a: later");
    EXPECT_TRUE(isThere(tree.at("t/a")) && isThere(tree.at("moved")));
}

// Each removal of a name changes the file's other names, by our own doing. A change by others
// counts, whatever time it shows.
TEST(SeenRemoval, AllNamesOfAFileGoUnlessSomebodyElseChangedIt) {
    for (const bool changed : {false, true}) {
        TestTree tree;
        tree.write("t/a", "four");
        for (const char* name : {"t/b", "t/in/c", "t/in/d"}) tree.hardLink("t/a", name);
        tree.write("t/other", "x");
        const SeenEntries seen = seenIn(tree.at("t"));
        WatchedFiles watched;
        watched.beforeRemoval =
            [&](const char* operation) {  // between the names in the folder and those below
                if (!changed || std::strcmp(operation, "openInside") != 0 ||
                    isThere(tree.at("t/a")))
                    return;
                std::this_thread::sleep_for(timesDiffer);
                rewrite(tree, "t/in/c", true);
            };
        const auto result = removeSeen(tree.at("t"), seen, watched);
        EXPECT_EQ(failureLines(tree, result), changed ? "t/in/c: changed, t/in/d: changed" : "");
        EXPECT_EQ(result.bytes, 5U) << "a file counts once";
    }
}

// The chosen ones themselves, one after another by one removal; the first has a name elsewhere that
// is written to in between.
TEST(SeenRemoval, OnlyOurOwnRemovalExcusesATimeOfChange) {
    for (const bool changed : {false, true}) {
        TestTree tree;
        tree.write("a", "four");
        tree.hardLink("a", "b");
        const EntryIdentity seenA = EntryIdentity::of(attributesOf(tree.at("a")));
        const EntryIdentity seenB = EntryIdentity::of(attributesOf(tree.at("b")));
        OwnChanges own;
        const SafeRemoval removal(files, nothingProtected, &own);
        const auto first = removal.remove(tree.at("a"), seenA);
        ASSERT_TRUE(first.gone && first.bytes == 4U);
        std::this_thread::sleep_for(timesDiffer);
        if (changed) rewrite(tree, "b", true);
        const auto second = removal.remove(tree.at("b"), seenB);
        EXPECT_EQ(second.gone, !changed);
        EXPECT_EQ(second.bytes.value_or(0), 0U) << "a file counts once";
        EXPECT_EQ(isThere(tree.at("b")), changed);
    }
}

TEST(SeenRemoval, WhereInodeNumbersDoNotLastTheyDoNotCount) {
    for (const bool inodesPass : {false, true}) {
        SeenEntries seen(inodesPass);
        const SeenState file{.type = FileType::Regular, .size = 5, .stamp = 6};
        for (std::uint64_t i = 0; i < 1000; ++i)
            seen.add(seen.keyOf(7, std::to_string(i), i), file);
        const auto verdict = [&](SeenEntries::Key folder, const char* name, std::uint64_t inode,
                                 SeenState entry) {
            return seen.verdictOn(seen.keyOf(folder, name, inode), entry);
        };
        using enum SeenEntries::Verdict;
        EXPECT_EQ(verdict(7, "999", 999, file), AsSeen);
        EXPECT_EQ(verdict(7, "999", 1, file), inodesPass ? AsSeen : Unseen);
        EXPECT_EQ(verdict(8, "999", 999, file), Unseen);
        EXPECT_EQ(verdict(7, "1000", 999, file), Unseen);
        EXPECT_EQ(verdict(7, "3", 3, {.type = FileType::Regular, .size = 4, .stamp = 6}), Changed);
        EXPECT_EQ(verdict(7, "3", 3, {.type = FileType::Regular, .size = 5, .stamp = 7}), Changed);
        EXPECT_EQ(verdict(7, "3", 3, {.type = FileType::SymbolicLink, .size = 5, .stamp = 6}),
                  Changed);
        EXPECT_EQ(SeenEntries().verdictOn(7, file), Unseen);
    }
}

// A program that saves by rename and makes new files in the folder that is being removed, as fast
// as it can.
TEST(SeenRemoval, AThreadThatWritesIntoTheFolderLosesNothingThatItMade) {
    constexpr int rounds = 300;
    int kept = 0;
    for (int round = 0; round < rounds; ++round) {
        TestTree tree("/dev/shm");
        for (int i = 0; i < 30; ++i) tree.write(fmt::format("t/{}/{}", i % 3, i), "x");
        const SeenEntries seen = seenIn(tree.at("t"));
        std::atomic<bool> begun{false};
        std::vector<std::string> made;
        std::jthread writer([&](const std::stop_token& ended) {
            for (int i = 0; !ended.stop_requested() && i < 200; ++i) {
                const std::string path = tree.at(fmt::format("t/{}/new{}", i % 3, i));
                const Descriptor file(
                    ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
                if (file.isOpen()) made.push_back(path);
                begun = true;
            }
        });
        while (!begun) std::this_thread::yield();
        (void)removeSeen(tree.at("t"), seen);
        writer.request_stop();
        writer.join();
        for (const std::string& path : made)
            if (!isThere(path)) ADD_FAILURE() << path << " is gone";
        kept += static_cast<int>(made.size());
    }
    EXPECT_GT(kept, rounds);
}

TEST(SeenRemoval, DepthTakesNoDescriptors) {
    constexpr int levels = 10'000;
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("t", levels, "x", true));
    SeenEntries seen;
    // One descriptor at a time: what is two names deep on each level.
    Descriptor folder =
        files.openFolder(FileSystem::noParent, tree.at("t").c_str(), Links::Keep).value();
    for (auto key = SeenEntries::chosenFolder; folder.isOpen();) {
        CatalogBatch batch;
        Descriptor deeper;
        auto deeperKey = key;
        while (files.readFolder(folder.get(), batch).value_or(false)) {
            files.readIdentities(folder.get(), batch.entries);
            for (const CatalogEntry& entry : batch.entries) {
                const auto own = seen.keyOf(key, entry.name, entry.attributes.inode);
                seen.add(own, SeenState::of(entry.attributes));
                if (entry.attributes.type != FileType::Folder) continue;
                Descriptor inner = files.openFolder(folder.get(), entry.name, Links::Keep).value();
                if (std::strcmp(entry.name, "d") != 0) look(seen, inner.get(), own);
                else deeper = std::move(inner), deeperKey = own;
            }
        }
        folder = std::move(deeper);
        key = deeperKey;
    }
    const std::string told = testing::runInChild({.descriptors = 256}, [&]() -> std::string {
        const auto result = removeSeen(tree.at("t"), seen);
        return result.gone ? std::to_string(result.removed) : failureLines(tree, result);
    });
    EXPECT_EQ(told, std::to_string(levels * 3 + 2));
}

}  // namespace
}  // namespace orrinvale
