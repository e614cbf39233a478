// A controller at work: a folder on the disk, its scanned tree, and a page that writes down what it
// is told.
#pragma once

#include "engine/largefiles/Controller.h"
#include "engine/largefiles/ScannedTree.h"
#include "support/test.h"

namespace orrinvale::testing {

struct RecordingPage final : ControllerDelegate {
    void changeSelectAllButtonState(std::int32_t state) override { allState = state; }
    void reloadTreeList() override { ++reloads; }
    void changeProgressWithPoint(std::int32_t percent, const std::string& path) override {
        progress.emplace_back(percent, path);
        if (onProgress) onProgress(percent);
    }
    void removalEnded(const LargeFileRemoval& removal) override { ended = removal; }

    std::int32_t allState = -1;
    int reloads = 0;
    std::vector<std::pair<std::int32_t, std::string>> progress;
    std::function<void(std::int32_t)> onProgress;
    std::optional<LargeFileRemoval> ended;
};

class ControllerWorld : public ::testing::Test {
protected:
    ~ControllerWorld() override {
        controller.setADelegate(nullptr);
        controller.setParts({});
    }

    void scan(const std::string& below = {}) {
        controller.setParts(parts());
        controller.setADelegate(&page);
        const std::string path = below.empty() ? disk.path() : disk.at(below);
        tree = std::make_shared<FileNodeTree>(path);
        controller.eumeAllRootFileNodeWithRootArr(tree, path);
        ASSERT_TRUE(queue.serveUntil([this] { return controller.eumeRoot()->isEnded(); }));
    }
    ControllerParts parts(const std::vector<std::string>& ownFiles = {}) {
        return {.files = &files,
                .mainQueue = &queue,
                .ownFiles = ownFiles,
                .reveal = {},
                .openFolder = {}};
    }
    FileNode& node(std::string_view path) { return *nodeAt(*tree, path); }
    void tick(const std::vector<std::string>& paths) {
        for (const std::string& path : paths) {
            controller.changeSelectWithNode(node(path), 1);
            controller.changeFatherNodeSelectState(node(path), 1);
        }
    }
    /// Removes what is ticked, to the end.
    void remove() {
        ASSERT_TRUE(controller.deleteFilesWithDic());
        ASSERT_TRUE(queue.serveUntil([this] { return page.ended.has_value(); }));
        EXPECT_FALSE(controller.isRemoving());
    }

    TestTree disk;
    WatchedFiles files;
    ServedQueue queue;
    RecordingPage page;
    std::shared_ptr<FileNodeTree> tree;
    Controller& controller = Controller::getController();
};

}  // namespace orrinvale::testing
