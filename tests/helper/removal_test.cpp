// What the helper removes, what it leaves, and what it says when it can not.
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/time.h>

#include "helper/HelperRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Outcome = HelperReply::Outcome;

class HelperRemoves : public HelperTest {
protected:
    TestTree tree;
};

TEST_F(HelperRemoves, EntriesOfEveryKindAndNothingElse) {
    ASSERT_TRUE(tree.write("outside/kept", "1") && tree.write("in/folder/deep/file", "1") &&
                tree.symlink(tree.at("outside"), "in/folder/deep/out") &&
                tree.symlink(tree.at("outside"), "in/link") &&
                tree.symlink("nowhere", "in/broken") && tree.fifo("in/fifo") &&
                tree.socket("in/socket") && tree.write("in/sibling", "1"));
    Strings names{"-rf", "a\nb", "\xFF\xFE", std::string(255, 'n'), "*"};
    for (const std::string& name : names) ASSERT_TRUE(tree.write("in/" + name, "1"));
    const HelperRun helper;
    ASSERT_TRUE(helper.isReady());
    names.insert(names.end(), {"folder", "link", "broken", "fifo", "socket"});
    for (const std::string& name : names) {
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
    if (::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) != 0)
        GTEST_SKIP() << "this file system has no immutable files";
    const HelperRun helper;
    const HelperReply reply = helper.ask(tree.at("folder"));
    EXPECT_EQ(reply.outcome, Outcome::StillThere);
    EXPECT_NE(reply.text.find("not permitted"), std::string::npos) << reply.text;
    EXPECT_TRUE(isThere(tree.at("folder/fixed")));
    EXPECT_FALSE(isThere(tree.at("folder/loose")));
    flags = 0;
    EXPECT_EQ(::ioctl(file.get(), FS_IOC_SETFLAGS, &flags), 0);
}

// A tool that can not be started says nothing about the entry.
TEST_F(HelperRemoves, SaysThatTheToolDidNotRun) {
    ASSERT_TRUE(tree.write("file", "1"));
    struct Case {
        std::string tool;
        mode_t mode;
        std::string told;
    };
    for (const Case& each : {Case{"no program", 0644, "could not be started"},
                             {"#!/no/such/shell\n", 0755, "could not be started"},
                             {"#!/bin/sh\nexit 127\n", 0755, "ended with status 127"},
                             {"#!/bin/sh\nkill -9 $$\n", 0755, "ended by signal 9"}}) {
        const std::string told = runInChild({}, [&]() -> std::string {
            tree.write("rm", each.tool);
            tree.setMode("rm", each.mode);
            if (!unshareMounts() || !bindMount(tree.at("rm"), "/bin/rm"))
                return "skipped: no mounts of our own";
            const HelperReply reply = HelperRun().ask(tree.at("file"));
            return reply.outcome == Outcome::Failed ? reply.text : "another outcome: " + reply.text;
        });
        if (told.starts_with("skipped")) GTEST_SKIP() << told;
        EXPECT_NE(told.find(each.told), std::string::npos) << told;
        EXPECT_FALSE(told.starts_with("another")) << told;
        EXPECT_TRUE(isThere(tree.at("file")));
    }
}

TEST_F(HelperRemoves, UnderNoneOfItsCallersLimits) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer itself does not start under such limits";
#endif
    ASSERT_TRUE(tree.write("folder/file", "1"));
    const HelperRun helper(ordinaryUser, [] {
        for (const auto& [which, most] :
             {std::pair{RLIMIT_FSIZE, 0}, {RLIMIT_CPU, 1}, {RLIMIT_NOFILE, 8}}) {
            rlimit limit{};
            ::getrlimit(which, &limit);
            limit.rlim_cur =
                static_cast<rlim_t>(most);  // the hard one only some roots may raise again
            ::setrlimit(which, &limit);
        }
        const itimerval soon{{}, {0, 100'000}};
        ::setitimer(ITIMER_REAL, &soon, nullptr);
        ::setitimer(ITIMER_PROF, &soon, nullptr);
    });
    ASSERT_TRUE(helper.isReady());
    ::usleep(200'000);  // past the timer's end
    const HelperReply reply = helper.ask(tree.at("folder"));
    EXPECT_EQ(reply.outcome, Outcome::Removed) << reply.text;
    for (const auto which : {RLIMIT_FSIZE, RLIMIT_CPU, RLIMIT_NOFILE}) {
        rlimit now{};
        ASSERT_EQ(::prlimit(helper.process(), which, nullptr, &now), 0);
        EXPECT_GE(now.rlim_cur, std::min(now.rlim_max, rlim_t{1024})) << which;
    }
}

// What is mounted over the parts of a folder can not be seen from the mount's copy, so that it
// stays even where it came between the look and the tool.
TEST_F(HelperRemoves, NothingOfAMountThatCameMeanwhile) {
    const auto check = [&]() -> std::string {
        if (!unshareMounts()) return "skipped: no mounts of our own";
        tree.write("way/many/a", "below the mount");
        tree.write("other/precious", "1");
        // The tool of this world mounts first, as if by chance, where its caller's view is, then
        // works.
        tree.write("rm", "#!/bin/sh\nnsenter --mount=/proc/" + std::to_string(::getpid()) +
                             "/ns/mnt mount --bind '" + tree.at("other") + "' '" +
                             tree.at("way/many") + "' || exit 9\nexec '" + tree.at("real rm") +
                             "' \"$@\"\n");
        tree.setMode("rm", 0755);
        std::filesystem::copy_file("/bin/rm", tree.at("real rm"));
        const HelperRequest request = HelperRun::requestFor(tree.at("way/many"));
        if (!bindMount(tree.at("rm"), "/bin/rm")) return "skipped: no tool";
        const HelperReply reply = HelperRun().ask(request);
        if (!isThere(tree.at("other/precious")))
            return "what was mounted meanwhile went: " + reply.text;
        return {};
    };
    EXPECT_TOLD(runInChild({}, check), "");
}

}  // namespace
}  // namespace orrinvale::testing
