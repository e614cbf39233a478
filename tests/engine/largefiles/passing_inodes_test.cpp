// The large file page on a file system whose inode numbers need not last: what it removes, erases
// or moves to the trash is known by its place, size and times there.
#include "engine/largefiles/EumeRoot.h"
#include "engine/largefiles/RemoveFileAndFolder.h"
#include "engine/largefiles/ScannedTree.h"
#include "engine/largefiles/TrashErrands.h"
#include "platform/ForwardingFiles.h"
#include "platform/linux/LinuxFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

/// Gives regular files new numbers once the scan is over, as FAT does after a remount.
class Renumbered final : public ForwardingFiles {
public:
    explicit Renumbered(const FileSystem& base) : ForwardingFiles(base) {}

    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        return renumbered(ForwardingFiles::attributes(parent, name, links));
    }
    SysResult<FileAttributes> attributes(int descriptor) const override {
        return renumbered(ForwardingFiles::attributes(descriptor));
    }
    std::vector<std::uint64_t> devicesOfPassingInodes() const override { return passing; }

    std::vector<std::uint64_t> passing;
    bool isLater = false;

private:
    SysResult<FileAttributes> renumbered(SysResult<FileAttributes> seen) const {
        if (seen && isLater && seen->type == FileType::Regular) seen->inode += 1'000'000;
        return seen;
    }
};

class PassingInodes : public ::testing::TestWithParam<bool> {
protected:
    PassingInodes() {
        EXPECT_TRUE(disk.write("film", "frames") && disk.folder("share"));
        tree = std::make_shared<FileNodeTree>(disk.path());
        EumeRoot scan({.files = &files, .mainQueue = nullptr, .grown = {}});
        scan.eumeAllRootFileNodeWithRootArr(tree, disk.path());
        scan.waitForEnd();
        film = testing::nodeAt(*tree, "film");
        if (GetParam()) files.passing = {film->identity().device};
        files.isLater = true;
    }

    TestTree disk;
    LinuxFileSystem real;
    Renumbered files{real};
    std::shared_ptr<FileNodeTree> tree;
    FileNode* film = nullptr;
};

TEST_P(PassingInodes, DecideWhatTheTrashAndTheEraserTake) {
    ASSERT_TRUE(disk.write("eraser", "#!/bin/sh\nexit 0\n") && disk.setMode("eraser", 0755));
    const std::string result = runInChild({}, [this]() -> std::string {
        ::setenv("XDG_DATA_HOME", disk.at("share").c_str(), 1);
        testing::ServedQueue queue;
        RemoveFileAndFolder eraser(files, queue, {}, tree, {film}, disk.at("eraser"));
        const std::string erased = eraser.runTaskWithPath() ? "erased, " : "not erased, ";
        return erased + putIntoTrash(files, {}, film->path(), film->identity());
    });
    EXPECT_EQ(result, GetParam() ? "erased, " : "not erased, changed since the scan");
    EXPECT_EQ(isThere(disk.at("film")), !GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, PassingInodes, ::testing::Bool());

}  // namespace
}  // namespace orrinvale
