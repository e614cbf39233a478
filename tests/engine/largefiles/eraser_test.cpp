// The outside eraser with a script in its place, and the two ways to the trash that the controller
// offers.
#include "engine/largefiles/RemoveFileAndFolder.h"

#include <linux/fs.h>
#include <sys/ioctl.h>

#include <future>

#include "engine/largefiles/ControllerWorld.h"
#include "support/test.h"

namespace orrinvale {
namespace {

class Eraser : public testing::ControllerWorld, protected RemoveFileAndFolderDelegate {
protected:
    void SetUp() override {
        script("printf '%s,' \"$PWD\" \"$@\" >> " + world.at("log") + "; rm -rf -- \"$2\"");
    }
    void script(const std::string& lines) {
        ASSERT_TRUE(world.write("eraser", "#!/bin/sh\n" + lines + '\n'));
        ASSERT_TRUE(world.setMode("eraser", 0755));
    }
    /// Makes ready to erase these entries, with the program of that name.
    void prepare(const std::vector<std::string>& paths, const std::string& program = "eraser") {
        std::vector<FileNode*> nodes;
        for (const std::string& path : paths) nodes.push_back(&node(path));
        eraser = std::make_unique<RemoveFileAndFolder>(files, queue, std::vector<std::string>{},
                                                       tree, nodes, world.at(program));
        eraser->setDelegate(this);
    }
    bool serveToTheEnd() {
        return queue.serveUntil([this] { return ended.has_value(); });
    }
    void removeProgress(float percent, const std::string& path) override {
        told.emplace_back(percent, path);
    }
    void removeObjEnd(const std::vector<std::string>& deleteErrorArr) override {
        ended = deleteErrorArr;
    }

    testing::TestTree world;
    std::unique_ptr<RemoveFileAndFolder> eraser;
    std::vector<std::pair<float, std::string>> told;
    std::optional<std::vector<std::string>> ended;
};

TEST_F(Eraser, GetsOnePathAfterTheOtherWithItsThreeArguments) {
    disk.write("folder/x", "x");
    disk.write("odd \"$name\n", "x");
    disk.write("kept", "x");
    scan();
    prepare({"folder", "odd \"$name\n"});
    EXPECT_TRUE(eraser->runTaskWithPath());
    ASSERT_TRUE(serveToTheEnd());
    EXPECT_EQ(contentOf(world.at("log")), "/,mv," + disk.at("folder") + ",~/.Trash,/,mv," +
                                              disk.at("odd \"$name\n") + ",~/.Trash,");
    EXPECT_THAT(told,
                ElementsAre(Pair(0.0F, disk.at("folder")), Pair(50.0F, disk.at("odd \"$name\n"))));
    EXPECT_THAT(*ended, IsEmpty());
    EXPECT_TRUE(!isThere(disk.at("folder")) && isThere(disk.at("kept")));
}

TEST_F(Eraser, ThatHasNothingToEraseOrIsNotThereIsNoCall) {
    disk.write("one", "x");
    disk.write("two", "x");
    scan();
    prepare({});
    EXPECT_FALSE(eraser->runTaskWithPath());
    EXPECT_TRUE(told.empty() && !ended);
    prepare({"one", "two"}, "missing");
    EXPECT_FALSE(eraser->runTaskWithPath());
    EXPECT_FALSE(ended.has_value());  // in a later turn
    ASSERT_TRUE(serveToTheEnd());
    EXPECT_THAT(*ended, ElementsAre(disk.at("one"), disk.at("two")));
    EXPECT_TRUE(isThere(disk.at("one")) && isThere(disk.at("two")));
}

TEST_F(Eraser, IsNotGivenWhatIsAnotherEntryNow) {
    disk.write("one", "x");
    disk.write("two", "x");
    disk.write("three", "x");
    scan();
    disk.write("new", "precious");
    ASSERT_EQ(::rename(disk.at("new").c_str(), disk.at("two").c_str()), 0);
    prepare({"two", "one", "three"});
    EXPECT_TRUE(eraser->runTaskWithPath());
    ASSERT_TRUE(serveToTheEnd());
    EXPECT_THAT(*ended, ElementsAre(disk.at("two")));
    EXPECT_EQ(contentOf(disk.at("two")), "precious");
    EXPECT_FALSE(isThere(disk.at("one")) || isThere(disk.at("three")));
    EXPECT_THAT(told, ElementsAre(Pair(0.0F, disk.at("two")), Pair(33.0F, disk.at("one")),
                                  Pair(66.0F, disk.at("three"))));
}

TEST_F(Eraser, ThatFailsIsFollowedByTheNext) {
    disk.write("one", "x");
    disk.write("two", "x");
    scan();
    script("case \"$2\" in */one) head -c 300000 /dev/zero; kill -9 $$;; esac; rm \"$2\"");
    prepare({"one", "two"});
    LogLines log;
    EXPECT_TRUE(eraser->runTaskWithPath());
    ASSERT_TRUE(serveToTheEnd());
    EXPECT_THAT(*ended, IsEmpty());
    EXPECT_TRUE(isThere(disk.at("one")) && !isThere(disk.at("two")));
    EXPECT_THAT(log.lines, Contains(HasSubstr("Not erased " + disk.at("one"))));
}

TEST_F(Eraser, CancelledEndsAndIsFollowedByNone) {
    disk.write("one", "x");
    disk.write("two", "x");
    scan();
    script("echo > " + world.at("running") + "; exec sleep 60");
    prepare({"one", "two"});
    EXPECT_TRUE(eraser->runTaskWithPath());
    eraser->isCancel();
    ASSERT_TRUE(serveToTheEnd());
    EXPECT_THAT(told, ElementsAre(Pair(0.0F, disk.at("one"))));
    EXPECT_TRUE(isThere(disk.at("one")) && isThere(disk.at("two")));
}

TEST_F(Eraser, TakesTheMarkThatKeepsAFileFromGoing) {
    disk.write("fixed", "x");
    {
        const Descriptor file(::open(disk.at("fixed").c_str(), O_RDONLY | O_CLOEXEC));
        int flags = FS_IMMUTABLE_FL;
        if (::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) != 0)
            GTEST_SKIP() << "no immutable files here";
    }
    scan();
    prepare({"fixed"});
    EXPECT_TRUE(eraser->runTaskWithPath());
    ASSERT_TRUE(serveToTheEnd());
    EXPECT_THAT(told, ElementsAre(Pair(30.0F, disk.at("fixed"))));
    EXPECT_FALSE(isThere(disk.at("fixed")));
}

TEST_F(Eraser, GoneInTheMidstOfAnEntryTellsNobody) {
    disk.write("one", "x");
    scan();
    script("sleep 0.1; rm -rf -- \"$2\"");
    prepare({"one"});
    EXPECT_TRUE(eraser->runTaskWithPath());
    eraser.reset();
    for (int i = 0; i < 2000 && isThere(disk.at("one")); ++i) ::usleep(5000);
    EXPECT_FALSE(isThere(disk.at("one")));
    EXPECT_FALSE(ended.has_value());
}

TEST_F(Eraser, OfTheControllerGetsWhatIsTicked) {
    if (isThere("/usr/bin/srm")) GTEST_SKIP() << "the eraser is installed";
    disk.write("f/one", "x");
    disk.write("f/kept", "x");
    disk.write("two", "x");
    scan();
    controller.moveFileToTarsh();  // nothing is ticked
    tick({"f/one", "two"});
    page.reloads = 0;
    LogLines log;
    controller.moveFileToTarsh();
    controller.moveFileToTarsh();  // it is at work
    ASSERT_TRUE(queue.serveUntil([this] { return page.reloads == 3; }));
    std::vector<std::string> errors;
    for (const std::string& line : log.lines)
        if (line.starts_with("--delete")) errors.push_back(line);
    EXPECT_THAT(errors,
                ::testing::UnorderedElementsAre("--delete file error ---::" + disk.at("f/one"),
                                                "--delete file error ---::" + disk.at("two")));
}

TEST_F(Eraser, TheTrashOfTheControllerTakesOnePathAndTellsTheLog) {
    disk.write("data/with blank", "x");
    disk.write("data/own", "x");
    const auto check = [this]() -> std::string {
        ::setenv("XDG_DATA_HOME", disk.at("share").c_str(), 1);
        controller.setParts(parts({disk.at("data/own")}));
        LogLines log;
        std::string text = controller.moveFileToTrash(disk.at("data/with blank")) + ',';
        text += controller.moveFileToTrash(disk.at("data/own"));
        for (const std::string& line : log.lines)
            if (line.starts_with("--delete")) text += '\n' + line;
        return text;
    };
    EXPECT_EQ(runInChild({}, check),
              ",one of the program's own files\n--delete file error ---::(null)\n"
              "--delete file error ---::one of the program's own files");
    EXPECT_TRUE(isThere(disk.at("share/Trash/files/with blank")) && isThere(disk.at("data/own")));
}

// As in a home folder on a server that does not answer.
TEST_F(Eraser, ATrashThatDoesNotAnswerKeepsNobody) {
    disk.write("data/first", "x");
    const auto check = [this]() -> std::string {
        ::setenv("XDG_DATA_HOME", disk.at("share").c_str(), 1);
        std::promise<void> answer;
        files.beforeRemoval = [waits = answer.get_future().share()](const char* step) {
            if (std::strcmp(step, "moveEntry") == 0) waits.wait();
        };
        controller.setParts(parts());
        Strings answers;
        const auto tell = [&](const std::string& reason) { answers.push_back(reason); };
        controller.moveFileToTrash(disk.at("data/first"), std::nullopt, tell);
        controller.moveFileToTrash(disk.at("data/missing"), std::nullopt, tell);
        if (!queue.serveUntil([&] { return answers.size() == 1; })) return "no answer";
        answer.set_value();
        if (!queue.serveUntil([&] { return answers.size() == 2; })) return "no end";
        return answers[0] + ',' + answers[1];
    };
    EXPECT_EQ(runInChild({}, check), "No such file or directory,");
    EXPECT_TRUE(isThere(disk.at("share/Trash/files/first")));
}

}  // namespace
}  // namespace orrinvale
