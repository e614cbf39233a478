// The two halves of a Fast Clean: what is measured, what goes, and the notices of both in order.

#include <atomic>
#include <cstdio>
#include <future>

#include "engine/cleaning/BrowseFolderOperation.h"
#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/DeleteFolderOperation.h"
#include "engine/cleaning/LockedDoor.h"
#include "engine/cleaning/QnAuthorization.h"
#include "support/ServedQueue.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::CleanHome;
using testing::LockedDoor;
using testing::ServedQueue;
using Lines = std::vector<std::string>;

/// Two folders of the user's caches, the way from measuring to the end, and what is told on it.
struct Journey {
    Journey() {
        const auto note = [this](const char* name) {
            observations.push_back(center.addObserver(
                name, [this](const Notification& each) { told.push_back(lineOf(each)); }));
        };
        for (const char* name :
             {"ScanSingleFolder", "ScanOperationFinish", "BeginFastClean", "DeleteFileSuccess",
              "DeleteFileFailed", "FastCleanFinish", "FastCleanCanceled"})
            note(name);
    }

    [[nodiscard]] std::string lineOf(const Notification& each) const {
        std::string line = each.name;
        for (const char* key : {"FolderPath", "FilePath"})
            if (const auto found = each.userInfo.find(key); found != each.userInfo.end())
                line += ' ' + std::any_cast<std::string>(found->second).substr(root.size());
        for (const char* key : {"FolderSize", "FileCount", "FileSize"})
            if (const auto found = each.userInfo.find(key); found != each.userInfo.end())
                line += ' ' + std::to_string(std::any_cast<std::uint64_t>(found->second));
        return line;
    }
    [[nodiscard]] bool hasTold(const std::string& name) const {
        return std::ranges::any_of(told,
                                   [&](const std::string& line) { return line.starts_with(name); });
    }
    bool measure() {
        browse = std::make_unique<BrowseFolderOperation>(folders, home.parts(), posts());
        browse->main();
        return queue.serveUntil(
            [this] { return hasTold("ScanOperationFinish") || hasTold("FastCleanCanceled"); });
    }
    void prepareRemoval() {
        told.clear();
        CleanTaskParts parts{
            .clean = home.parts(), .stateFolder = home.tree.at("state"), .makeDoor = [this] {
                return std::make_unique<LockedDoor>(home.files);
            }};
        removal = std::make_unique<DeleteFolderOperation>(
            folders, browse->listing().rows, parts, posts(),
            [this](const std::string&) { return SysResult<std::uint64_t>(free += 500); });
    }
    bool remove() {
        removal->main();
        return queue.serveUntil(
            [this] { return hasTold("FastCleanFinish") || hasTold("FastCleanCanceled"); });
    }
    CleanPosts posts() { return {&center, &queue}; }

    CleanHome home;
    ServedQueue queue;
    NotificationCenter center;
    std::vector<NotificationCenter::Observation> observations;
    Lines told;
    const std::string root = home.tree.path();
    std::vector<std::string> folders{home.tree.at(".cache"), home.tree.at(".var/app/x/cache")};
    std::atomic<std::uint64_t> free{1000};
    std::unique_ptr<BrowseFolderOperation> browse;
    std::unique_ptr<DeleteFolderOperation> removal;
};

std::string entrySize(const Journey& run, const std::string& name) {
    return std::to_string(attributesOf(run.home.tree.at(name)).size);
}

TEST(FastCleanOperations, MeasureAndRemoveInOrderAndTheFoldersStay) {
    Journey run;
    ASSERT_TRUE(run.home.tree.write(".cache/a/b/c", "12345") &&
                run.home.tree.write(".cache/k/.git/x", "1") &&
                run.home.tree.write(".var/app/x/cache/one", "123"));
    ASSERT_TRUE(run.measure());
    EXPECT_EQ(run.told, (Lines{"ScanSingleFolder /.cache", "ScanSingleFolder /.var/app/x/cache",
                               "ScanOperationFinish 8 4"}))
        << "folders count, what a rule keeps does not";
    const std::string folderSize = entrySize(run, ".cache/a");
    run.prepareRemoval();
    ASSERT_TRUE(run.remove());
    EXPECT_EQ(run.told, (Lines{"BeginFastClean", "DeleteFileSuccess /.cache/a " + folderSize,
                               "DeleteFileSuccess /.var/app/x/cache/one 3", "FastCleanFinish"}));
    EXPECT_TRUE(run.removal->hasRemoved());
    EXPECT_EQ(run.removal->goneBytes(), 8U);
    EXPECT_EQ(run.removal->gain()->gained(), 500);
    EXPECT_EQ(namesIn(run.folders[0]), Lines{"k"});
    EXPECT_EQ(namesIn(run.folders[1]), Lines{});
    // Measured anew there is nothing, and the way is the same.
    run.told.clear();
    ASSERT_TRUE(run.measure());
    EXPECT_EQ(run.told.back(), "ScanOperationFinish 0 0");
    run.prepareRemoval();
    ASSERT_TRUE(run.remove());
    EXPECT_EQ(run.told, (Lines{"BeginFastClean", "FastCleanFinish"}));
    EXPECT_FALSE(run.removal->hasRemoved());
}

// The folder is told once where the padlock is closed; where it is open each entry is, twice.
TEST(FastCleanOperations, WhatTheRightsRefuseIsToldBehindItsFolder) {
    for (const bool isOpen : {false, true}) {
        Journey run;
        ASSERT_TRUE(run.home.tree.write(".cache/locked", "12") &&
                    run.home.tree.write(".var/app/x/cache/one", "123"));
        ASSERT_TRUE(run.measure());
        run.prepareRemoval();
        QnAuthorization::shareQnAuthorization().isValidAuth = isOpen;
        const bool isEnded = run.remove();
        QnAuthorization::shareQnAuthorization().isValidAuth = false;
        ASSERT_TRUE(isEnded);
        const Lines failed = isOpen ? Lines{"DeleteFileFailed /.cache/locked 2",
                                            "DeleteFileSuccess /.cache/locked 2"}
                                    : Lines{"DeleteFileFailed /.cache"};
        Lines expected{"BeginFastClean"};
        expected.insert(expected.end(), failed.begin(), failed.end());
        expected.insert(expected.end(),
                        {"DeleteFileSuccess /.var/app/x/cache/one 3", "FastCleanFinish"});
        EXPECT_EQ(run.told, expected);
        EXPECT_TRUE(run.removal->outcome().lacksRights);
        EXPECT_TRUE(isThere(run.home.tree.at(".cache/locked")));
    }
}

// The window has to live meanwhile.
TEST(FastCleanOperations, ManyThatStayAreToldInManyTurns) {
    constexpr std::size_t count = 2500;
    Journey run;
    for (std::size_t index = 0; index < count; ++index)
        ASSERT_TRUE(run.home.tree.write(".cache/locked" + std::to_string(index), "1"));
    ASSERT_TRUE(run.home.tree.write(".var/app/x/cache/one", "123"));
    ASSERT_TRUE(run.measure());
    run.prepareRemoval();
    QnAuthorization::shareQnAuthorization().isValidAuth = true;
    run.removal->main();
    std::size_t most = 0;
    const bool isEnded = run.queue.serveUntil([&, before = run.told.size()]() mutable {
        most = std::max(most, run.told.size() - before);
        before = run.told.size();
        return run.hasTold("FastCleanFinish");
    });
    QnAuthorization::shareQnAuthorization().isValidAuth = false;
    ASSERT_TRUE(isEnded);
    EXPECT_EQ(run.told.size(), 1 + 2 * count + 1 + 1);
    EXPECT_LE(most, 2001U);
    EXPECT_EQ(run.told[run.told.size() - 2], "DeleteFileSuccess /.var/app/x/cache/one 3");
    EXPECT_EQ(run.removal->outcome().failed, count);
    while (run.queue.step()) {}
    EXPECT_EQ(std::ranges::count(run.told, "FastCleanFinish"), 1);
}

TEST(FastCleanOperations, ACancelIsTheLastThatIsTold) {
    const struct {
        const char* when;
        bool isMeasured;
        Lines told;
    } cases[] = {{"before measuring", false, {"FastCleanCanceled"}},
                 {"while measuring", false, {"ScanSingleFolder /.cache", "FastCleanCanceled"}},
                 {"before removing", true, {"BeginFastClean", "FastCleanCanceled"}},
                 {"while removing", true, {"BeginFastClean", "FastCleanCanceled"}}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.when);
        Journey run;
        for (const char* name : {".cache/a", ".cache/b", ".cache/c"})
            ASSERT_TRUE(run.home.tree.write(name, "1"));
        const std::string_view when = each.when;
        if (!each.isMeasured) {
            run.browse =
                std::make_unique<BrowseFolderOperation>(run.folders, run.home.parts(), run.posts());
            if (when == "before measuring") run.browse->cancel();
            else run.home.files.onReadFolder = [&] { run.browse->cancel(); };
            run.browse->main();
            ASSERT_TRUE(run.queue.serveUntil([&] { return run.hasTold("FastCleanCanceled"); }));
        } else {
            ASSERT_TRUE(run.measure());
            run.prepareRemoval();
            if (when == "before removing") run.removal->cancel();
            std::promise<void> reached;
            std::promise<void> cancelled;
            run.home.files.beforeRemoval = [&, isFirst = true](std::string_view operation) mutable {
                if (operation != "removeEntry" || !std::exchange(isFirst, false)) return;
                reached.set_value();
                cancelled.get_future().wait();
            };
            run.removal->main();
            if (when == "while removing") {
                reached.get_future().wait();
                run.removal->cancel();
                cancelled.set_value();
            }
            ASSERT_TRUE(run.queue.serveUntil([&] { return run.hasTold("FastCleanCanceled"); }));
        }
        std::erase_if(run.told, [](const auto& line) { return line.starts_with("DeleteFileS"); });
        EXPECT_EQ(run.told, each.told);
        EXPECT_GE(namesIn(run.folders[0]).size(), 2U) << "the entry in hand at most";
    }
}

// What changes between measuring and removing is neither removed nor told.
TEST(FastCleanOperations, FoldersThatChangeMeanwhile) {
    Journey run;
    ASSERT_TRUE(run.home.tree.write(".cache/a", "1") && run.home.tree.write("precious/file", "1") &&
                run.home.tree.write("away/one", "1"));
    const std::string link = run.home.tree.at(".var/app/x/cache");
    ASSERT_TRUE(run.home.tree.symlink(run.home.tree.at("away"), ".var/app/x/cache"));
    ASSERT_TRUE(run.measure());
    EXPECT_EQ(run.told.back(), "ScanOperationFinish 1 1") << "what lies behind a link is not ours";
    ASSERT_EQ(run.browse->listing().closed.size(), 1U);
    EXPECT_EQ(run.browse->listing().closed[0].path, link);
    // A link takes the place of the category's folder while somebody reads the question.
    ASSERT_EQ(::rename(run.folders[0].c_str(), run.home.tree.at("moved").c_str()), 0);
    ASSERT_TRUE(run.home.tree.write("precious/a", "1") &&
                run.home.tree.symlink(run.home.tree.at("precious"), ".cache"));
    run.prepareRemoval();
    ASSERT_TRUE(run.remove());
    EXPECT_EQ(run.told, (Lines{"BeginFastClean", "FastCleanFinish"}));
    EXPECT_TRUE(isThere(run.home.tree.at("precious/a")) && isThere(run.home.tree.at("moved/a")));
    // Gone as a whole.
    ASSERT_EQ(::unlink(run.folders[0].c_str()), 0);
    run.prepareRemoval();
    ASSERT_TRUE(run.remove());
    EXPECT_EQ(run.told.back(), "FastCleanFinish");
    EXPECT_FALSE(run.removal->hasRemoved());
}

}  // namespace
}  // namespace orrinvale
