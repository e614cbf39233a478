// What the helper removes, what it leaves, and what it says when it can not.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "helper/HelperRun.h"
#include "support/TestTree.h"

namespace orrinvale::testing {
namespace {

using Outcome = HelperReply::Outcome;

class HelperRemoves : public ::testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "the helper runs as root only";
    }
    TestTree tree;
};

TEST_F(HelperRemoves, EntriesOfEveryKindAndNothingElse) {
    ASSERT_TRUE(tree.write("outside/kept", "1"));
    ASSERT_TRUE(tree.write("in/folder/deep/file", "1"));
    ASSERT_TRUE(tree.symlink(tree.at("outside"), "in/folder/deep/out"));
    ASSERT_TRUE(tree.symlink(tree.at("outside"), "in/link"));
    ASSERT_TRUE(tree.symlink("nowhere", "in/broken"));
    ASSERT_TRUE(tree.fifo("in/fifo"));
    ASSERT_TRUE(tree.socket("in/socket"));
    const std::string longName(255, 'n');
    for (const std::string& name :
         {std::string("-rf"), std::string("a\nb"), std::string("\xFF\xFE"), longName, std::string("*")})
        ASSERT_TRUE(tree.write("in/" + name, "1"));
    ASSERT_TRUE(tree.write("in/sibling", "1"));
    const HelperRun helper;
    ASSERT_TRUE(helper.isReady());
    for (const std::string& name :
         {std::string("folder"), std::string("link"), std::string("broken"), std::string("fifo"), std::string("socket"),
          std::string("-rf"), std::string("a\nb"), std::string("\xFF\xFE"), longName, std::string("*")}) {
        const HelperReply reply = helper.ask(tree.at("in/" + name));
        EXPECT_EQ(reply.outcome, Outcome::Removed) << name << ": " << reply.text;
        EXPECT_EQ(reply.sequence, 7U);
        EXPECT_FALSE(isThere(tree.at("in/" + name))) << name;
    }
    EXPECT_TRUE(isThere(tree.at("in/sibling")));
    EXPECT_TRUE(isThere(tree.at("outside/kept")));
}

TEST_F(HelperRemoves, TreesDeeperThanAPathIsLong) {
    TestTree quick(::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "");
    ASSERT_TRUE(quick.makeDeep("deep", 2100, "x"));
    const HelperRun helper;
    const HelperReply reply = helper.ask(quick.at("deep"));
    EXPECT_EQ(reply.outcome, Outcome::Removed) << reply.text;
    EXPECT_FALSE(isThere(quick.at("deep")));
}

TEST_F(HelperRemoves, SaysWhyAnEntryIsStillThere) {
    ASSERT_TRUE(tree.write("folder/fixed", "1"));
    ASSERT_TRUE(tree.write("folder/loose", "1"));
    const Descriptor file(::open(tree.at("folder/fixed").c_str(), O_RDONLY | O_CLOEXEC));
    int flags = FS_IMMUTABLE_FL;
    if (::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) != 0) GTEST_SKIP() << "this file system has no immutable files";
    const HelperRun helper;
    const HelperReply reply = helper.ask(tree.at("folder"));
    EXPECT_EQ(reply.outcome, Outcome::StillThere);
    EXPECT_NE(reply.text.find("not permitted"), std::string::npos) << reply.text;
    EXPECT_TRUE(isThere(tree.at("folder/fixed")));
    EXPECT_FALSE(isThere(tree.at("folder/loose")));
    flags = 0;
    EXPECT_EQ(::ioctl(file.get(), FS_IOC_SETFLAGS, &flags), 0);
}

}  // namespace
}  // namespace orrinvale::testing
