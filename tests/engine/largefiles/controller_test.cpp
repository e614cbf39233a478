// Controller on real files: what is ticked goes, what may not stays, and what the page hears of it.
#include "engine/largefiles/Controller.h"

#include <future>

#include "engine/largefiles/ControllerWorld.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::nodeAt;

using LargeFiles = testing::ControllerWorld;

TEST_F(LargeFiles, WhatIsTickedGoesWithProgressAndLeavesTheTree) {
    disk.write("o/f/big", std::string(500, 'x'));
    disk.write("o/f/keep", "x");
    disk.write("o/f/small", std::string(20, 'x'));
    disk.write("d/inner/deep", std::string(100, 'x'));
    disk.write("d/more", "x");
    disk.write("top", std::string(50, 'x'));
    disk.folder("untouched");
    scan();
    tick({"o/f/big", "o/f/small", "d", "top"});
    const std::uint64_t size = node("o/f").size();
    remove();
    for (const char* path : {"o/f/big", "o/f/small", "d", "top"}) {
        EXPECT_FALSE(isThere(disk.at(path))) << path;
        EXPECT_EQ(nodeAt(*tree, path), nullptr) << path;
    }
    EXPECT_TRUE(isThere(disk.at("o/f/keep")) && nodeAt(*tree, "o/f/keep") != nullptr &&
                nodeAt(*tree, "untouched"));
    EXPECT_THAT(page.progress, ElementsAre(Pair(0, disk.at("o/f/big")),
                                           Pair(25, disk.at("o/f/small")), Pair(50, disk.at("d")),
                                           Pair(75, disk.at("top")), Pair(100, disk.at("top"))));
    EXPECT_EQ(page.allState, 0);
    EXPECT_EQ(node("o").state() | node("o/f").state(),
              FileNode::NotSelected);  // also in a folder that is closed
    EXPECT_EQ(node("o/f").size(), size);
    EXPECT_TRUE(page.ended->chosen == 4 && page.ended->gone == 4 && page.ended->failed == 0 &&
                !page.ended->stopped);
    EXPECT_FALSE(controller.deleteFilesWithDic());  // nothing is ticked
    EXPECT_EQ(page.progress.size(), 5U);
}

TEST_F(LargeFiles, OneAloneIsAtThirtyPercent) {
    disk.write("one", "x");
    scan();
    controller.selectAllFileNode(1);
    EXPECT_EQ(page.allState, 1);
    remove();
    EXPECT_THAT(page.progress, ElementsAre(Pair(30, disk.at("one")), Pair(100, disk.at("one"))));
    EXPECT_EQ(tree->root().childCount(), 0U);
}

// None of these is what was ticked: a file that was written, another file of its name, a link in
// the place of a folder.
TEST_F(LargeFiles, WhatFailsIsToldAndLeavesTheTreeAllTheSame) {
    disk.write("log", std::string(400, 'x'));
    disk.write("another", std::string(300, 'x'));
    disk.write("swapped/precious", std::string(200, 'x'));
    disk.write("gone", std::string(100, 'x'));
    scan();
    controller.selectAllFileNode(1);
    disk.patch("log", 400, "and more");
    disk.write("new", "x");
    ASSERT_EQ(::rename(disk.at("new").c_str(), disk.at("another").c_str()), 0);
    ASSERT_EQ(::rename(disk.at("swapped").c_str(), disk.at("kept").c_str()), 0);
    disk.symlink("kept", "swapped");
    ::unlink(disk.at("gone").c_str());
    LogLines log;
    remove();
    EXPECT_TRUE(isThere(disk.at("log")));
    EXPECT_TRUE(isThere(disk.at("another")) && isThere(disk.at("swapped")) &&
                isThere(disk.at("kept/precious")));
    EXPECT_EQ(tree->root().childCount(), 0U);
    EXPECT_EQ(page.ended->gone, 1U);
    EXPECT_EQ(page.ended->failed, 3U);
    EXPECT_EQ(page.ended->failedEntries, 3U);
    ASSERT_EQ(page.ended->failures.size(), 3U);
    EXPECT_EQ(page.ended->failures[0].path, disk.at("log"));
    EXPECT_EQ(page.ended->failures[1].path, disk.at("another"));
    EXPECT_EQ(page.ended->failures[1].reason, "changed since the scan");
    EXPECT_EQ(page.ended->failures[2].path, disk.at("swapped"));
    EXPECT_THAT(log.lines,
                ::testing::Contains(HasSubstr("--delete file error ---::" + disk.at("another"))));
    EXPECT_THAT(page.progress.back(), Pair(100, disk.at("gone")));
}

// The second name has another time of change by then, and by our own doing.
TEST_F(LargeFiles, BothNamesOfAFileGo) {
    disk.write("first", "one file");
    disk.write("folder/other", "another file");
    ASSERT_EQ(::link(disk.at("first").c_str(), disk.at("second").c_str()), 0);
    ASSERT_EQ(::link(disk.at("folder/other").c_str(), disk.at("outside").c_str()), 0);
    scan();
    controller.selectAllFileNode(1);
    remove();
    EXPECT_EQ(page.ended->gone, 4U);
    EXPECT_EQ(page.ended->failed, 0U);
}

// Between the two the file is written through the name that is left, and its time of writing put
// back.
TEST_F(LargeFiles, ASecondNameThatWasWrittenToAfterTheFirstWentStays) {
    disk.write("first", "before");
    disk.hardLink("first", "second");
    scan();
    controller.selectAllFileNode(1);
    std::string left;
    files.beforeRemoval = [&](const char* operation) {
        if (std::strcmp(operation, "attributes") != 0 || !left.empty()) return;
        if (isThere(disk.at("first")) && isThere(disk.at("second"))) return;
        left = isThere(disk.at("first")) ? "first" : "second";
        std::this_thread::sleep_for(20ms);
        keepTimes(disk.at(left), [&] { disk.patch(left, 0, "after!"); });
    };
    remove();
    files.beforeRemoval = {};
    EXPECT_EQ(page.ended->gone, 1U);
    EXPECT_EQ(page.ended->failed, 1U);
    EXPECT_EQ(testing::contentOf(disk.at(left)), "after!");
}

// In a folder that is open in the list, in one that is not, and in a bundle, which stands as one
// row.
TEST_F(LargeFiles, WhatCameIntoATickedFolderAfterTheScanStaysAndIsTold) {
    for (const char* folder : {"open", "closed/inner", "Viewer.app/lib"})
        for (const char* name : {"/old", "/deep/older", "/written"})
            disk.write(std::string(folder) + name, "x");
    scan();
    node("open").setIsExpand(true);
    controller.selectAllFileNode(1);
    for (const char* folder : {"open", "closed/inner", "Viewer.app/lib"}) {
        disk.write(std::string(folder) + "/deep/new", "precious");
        disk.patch(std::string(folder) + "/written", 0, "y");
    }
    remove();
    EXPECT_EQ(page.ended->failed, 3U);
    EXPECT_EQ(page.ended->failedEntries, 6U);
    for (const char* folder : {"open", "closed/inner", "Viewer.app/lib"}) {
        const std::string in(folder);
        EXPECT_TRUE(isThere(disk.at(in + "/deep/new")) && isThere(disk.at(in + "/written"))) << in;
        EXPECT_FALSE(isThere(disk.at(in + "/old")) || isThere(disk.at(in + "/deep/older"))) << in;
        EXPECT_EQ(std::ranges::count_if(page.ended->failures,
                                        [&](const auto& failure) {
                                            return failure.path == disk.at(in + "/deep/new") &&
                                                   failure.reason == "not seen by the scan";
                                        }),
                  1)
            << in;
    }
}

// Size and time of writing are as before, as somebody leaves them who wants a change to go
// unnoticed.
TEST_F(LargeFiles, AFileWrittenWithItsTimeSetBackStays) {
    disk.write("file", "before");
    scan();
    controller.selectAllFileNode(1);
    keepTimes(disk.at("file"), [&] { disk.patch("file", 0, "after!"); });
    remove();
    EXPECT_TRUE(isThere(disk.at("file")));
    EXPECT_EQ(page.ended->failed, 1U);
}

// The stop is pressed while the removal is at its second entry, which is a file, and while it is
// within a folder.
TEST_F(LargeFiles, TheStopEndsItBeforeTheNextEntry) {
    const struct {
        int removals;  // of single entries, before the stop
        const char* last;
        std::uint64_t gone, inFolder;
    } cases[] = {{2, "folder", 2, 40}, {12, "folder", 2, 30}};
    // Scans look at it too, on threads of their own, so that it stays as it is.
    std::atomic<int> toCome = 0;
    files.beforeRemoval = [&](const char* operation) {
        if (std::strcmp(operation, "removeEntry") != 0 || --toCome != 0) return;
        std::promise<void> stopped;
        queue.async([&] {
            controller.stopRemove();
            stopped.set_value();
        });
        stopped.get_future().wait();
    };
    for (const auto& [removals, last, gone, inFolder] : cases) {
        disk.write("a", std::string(900, 'x'));
        disk.write("b", std::string(800, 'x'));
        for (int i = 0; i < 40; ++i)
            disk.write("folder/" + std::to_string(i), std::string(10, 'x'));
        disk.write("z", std::string(100, 'x'));
        scan();
        controller.selectAllFileNode(1);
        toCome = removals;
        page.ended.reset();
        remove();
        EXPECT_TRUE(page.ended->stopped);
        EXPECT_EQ(page.ended->gone, gone);
        EXPECT_EQ(page.ended->failed, 0U);
        EXPECT_THAT(page.progress.back(), Pair(100, disk.at(last)));
        EXPECT_TRUE(isThere(disk.at("folder")) && isThere(disk.at("z")));
        EXPECT_EQ(tree->root().childCount(), 2U);
        EXPECT_EQ(controller.deleteFilesWithDic(tree->root().children()).size(), 0U);
        // What is left of the folder shows in it, and in the sums above, which else stay those of
        // the scan.
        const std::uint64_t left = inFolder * 10;
        EXPECT_TRUE(queue.serveUntil([&] { return node("folder").size() == left; }))
            << node("folder").size();
        EXPECT_EQ(node("folder").childCount(), inFolder);
        EXPECT_EQ(tree->root().size(), 900U + 800 + left + 100);
        scan();
        EXPECT_EQ(node("folder").childCount(), inFolder);
    }
}

TEST_F(LargeFiles, AFolderWhoseEntriesGoInPartTellsWhichDidNot) {
    disk.write("t/locked/a", "x");
    disk.write("t/free", "x");
    if (!disk.giveAway({"t", "t/locked", "."})) GTEST_SKIP() << "files of another user need root";
    disk.setMode("t/locked", 0555);
    const std::string told = testing::runInChild({.ordinaryUser = true}, [this]() -> std::string {
        scan();
        controller.selectAllFileNode(1);
        remove();
        std::string text = std::to_string(page.ended->gone) + std::to_string(page.ended->failed);
        for (const auto& [path, reason] : page.ended->failures) text += ' ' + path + ": " + reason;
        return text + (nodeAt(*tree, "t") == nullptr ? "" : " in the tree");
    });
    EXPECT_EQ(told, "01 " + disk.at("t/locked/a") + ": Permission denied");
    EXPECT_FALSE(isThere(disk.at("t/free")));
}

// In a root of the child's own, where a mistake costs nothing.
TEST_F(LargeFiles, WhatBelongsToTheSystemStaysThoughItWasTicked) {
    for (const char* path : {"usr/src/x", "usr/own/x", "srv/x", "holds/x", "free/x"})
        disk.write(path, "x");
    disk.folder("proc");
    const std::string told = testing::runInChild({}, [this]() -> std::string {
        if (!unshareMounts() || ::mount("proc", disk.at("proc").c_str(), "proc", 0, nullptr) != 0 ||
            ::chroot(disk.path().c_str()) != 0 || ::chdir("/") != 0)
            return "skipped: no root of our own";
        controller.setParts(parts({"/holds/x"}));
        controller.setADelegate(&page);
        tree = std::make_shared<FileNodeTree>("/");
        controller.eumeAllRootFileNodeWithRootArr(tree, "/");
        if (!queue.serveUntil([this] { return controller.eumeRoot()->isEnded(); }))
            return "no scan";
        tick({"usr/src", "usr/own", "srv", "holds", "free", "proc"});
        remove();
        std::string text;
        for (const auto& [path, reason] : page.ended->failures) text += path + ": " + reason + '\n';
        text += "to the trash: " + controller.moveFileToTrash("/srv") + '\n';
        for (const char* path : {"/usr/src/x", "/srv/x", "/holds/x"})
            text += isThere(path) ? "" : "removed";
        return text + std::to_string(page.ended->gone) +
               (isThere("/usr/own") || isThere("/free") ? " left" : " gone");
    });
    if (told.starts_with("skipped")) GTEST_SKIP() << told;
    for (const char* line : {"//usr/src: part of the system\n", "//srv: part of the system\n",
                             "//holds: a folder above one of the program's own files\n",
                             "//proc: ", "to the trash: part of the system\n"})
        EXPECT_THAT(told, HasSubstr(line));
    EXPECT_THAT(told, ::testing::EndsWith("\n2 gone"));
}

// Every percentage once and in order, few turns of the main thread, none of them long: the window
// is drawn meanwhile.
TEST_F(LargeFiles, TwentyThousandOfOneFolderGoInFewTurns) {
    constexpr int count = 20'000;
    disk.write("wide/keep", "x");
    const Descriptor folder(::open(disk.at("wide").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(::mknodat(folder.get(), ("f" + std::to_string(i)).c_str(), S_IFREG | 0644, 0), 0);
    scan();
    node("wide").setIsExpand(true);
    controller.changeSelectWithNode(node("wide"), 1);
    controller.changeSelectWithNode(node("wide/keep"), 0);
    controller.changeFatherNodeSelectState(node("wide/keep"), 0);
    queue.turns = 0;
    queue.longest = {};
    page.reloads = 0;
    remove();
    EXPECT_EQ(page.ended->gone, static_cast<std::uint64_t>(count));
    EXPECT_EQ(node("wide").childCount(), 1U);
    EXPECT_EQ(node("wide").state(), FileNode::NotSelected);
    std::vector<std::int32_t> percents;
    for (const auto& [percent, path] : page.progress)
        if (percents.empty() || percents.back() != percent) percents.push_back(percent);
    EXPECT_EQ(percents.size(), 101U);
    EXPECT_LT(page.progress.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_LT(queue.turns, 200U);
    std::printf("[          ] %zu turns, the longest %.1f ms, %zu notices\n", queue.turns,
                std::chrono::duration<double, std::milli>(queue.longest).count(),
                page.progress.size());
}

// A page that ends everything, or serves its events, from within what it is told.
TEST_F(LargeFiles, ThePageMayEndItOrServeItsEventsWhileItIsTold) {
    for (const bool ends : {false, true}) {
        for (int i = 0; i < 50; ++i) disk.write("f" + std::to_string(i), "x");
        scan();
        controller.selectAllFileNode(1);
        page.progress.clear();
        page.ended.reset();
        bool served = false;
        files.beforeRemoval = [](const char* operation) {  // so that there are news all the time
            if (std::strcmp(operation, "removeEntry") == 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
        };
        page.onProgress = [&](std::int32_t percent) {
            if (percent < 10 || std::exchange(served, true)) return;
            if (ends) controller.setParts({});
            else
                (void)queue.serveUntil(
                    [until = queue.turns + 1, this] { return queue.turns >= until; });
        };
        ASSERT_TRUE(controller.deleteFilesWithDic());
        ASSERT_TRUE(queue.serveUntil([&] { return ends ? served : page.ended.has_value(); }));
        page.onProgress = {};
        files.beforeRemoval = {};
        EXPECT_FALSE(controller.isRemoving());
        EXPECT_EQ(page.ended.has_value(), !ends);
        const auto& told = page.progress;
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end(),
                                   [](auto& a, auto& b) { return a.first < b.first; }));
    }
}

}  // namespace
}  // namespace orrinvale
