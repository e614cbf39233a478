// How the helper ends: with its caller, whatever it is doing, and after a time without work.
#include <sys/socket.h>

#include "helper/HelperRun.h"
#include "helper/Session.h"
#include "support/isSanitized.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Outcome = HelperReply::Outcome;

class HelperLife : public HelperTest {
protected:
    // A tool at work, held there: it removes many files, and is stopped when it is seen. One that
    // was too quick is followed by another.
    pid_t stoppedTool(const HelperRun& helper) {
        for (int attempt = 0; attempt < 10; ++attempt) {
            for (int i = 0; i < 10'000; ++i) tree.write("many/" + std::to_string(i), {});
            if (!helper.send(HelperRun::requestFor(tree.at("many")).packed())) return -1;
            const pid_t tool = childOf(childOf(helper.process()));
            if (tool > 0 && ::kill(tool, SIGSTOP) == 0 && isStopped(tool)) return tool;
            (void)helper.receive();
        }
        return -1;
    }

    // In memory where it can be, as the files are many.
    TestTree tree{::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : ""};
};

TEST_F(HelperLife, OneRequestAtATime) {
    ASSERT_TRUE(tree.write("other", "1"));
    const HelperRun helper;
    const pid_t tool = stoppedTool(helper);
    ASSERT_GT(tool, 0);
    HelperRequest second = HelperRun::requestFor(tree.at("other"));
    second.sequence = 8;
    const HelperReply busy = helper.ask(second);
    EXPECT_EQ(busy.outcome, Outcome::Busy);
    EXPECT_EQ(busy.sequence, 8U);
    ::kill(tool, SIGCONT);
    const auto done = helper.receive();
    ASSERT_TRUE(done);
    EXPECT_EQ(done->outcome, Outcome::Removed);
    EXPECT_EQ(done->sequence, 7U);
    EXPECT_EQ(helper.ask(second).outcome, Outcome::Removed);
}

TEST_F(HelperLife, EndsWithItsCallerAtOnce) {
    HelperRun helper;
    ASSERT_TRUE(helper.isReady());
    helper.letGo();
    EXPECT_TRUE(helper.endsWithin(milliseconds(1000)));
}

// The tool can not take SIGTERM while it is stopped, so that this takes the whole of the second
// that it is given.
TEST_F(HelperLife, TheToolEndsWithTheCallerEvenWhenItDoesNotWantTo) {
    HelperRun helper;
    const pid_t tool = stoppedTool(helper);
    ASSERT_GT(tool, 0);
    helper.letGo();
    EXPECT_FALSE(isGoneWithin(tool, milliseconds(500)));
    EXPECT_TRUE(helper.endsWithin(milliseconds(1500)));
    EXPECT_TRUE(isGoneWithin(tool, milliseconds(500)));
    EXPECT_TRUE(isThere(tree.at("many")));
}

TEST_F(HelperLife, ACallerThatIsKilledEndsARunningTool) {
    HelperRun helper;
    const pid_t tool = stoppedTool(helper);
    ASSERT_GT(tool, 0);
    // A process that holds the only copy of the socket is killed.
    const pid_t caller = ::fork();
    if (caller == 0)
        for (;;) ::pause();
    helper.letGo();
    ::kill(tool, SIGCONT);
    ::kill(caller, SIGKILL);
    ::waitpid(caller, nullptr, 0);
    EXPECT_TRUE(helper.endsWithin(milliseconds(2000)));
    EXPECT_TRUE(isGoneWithin(tool, milliseconds(100)));
}

TEST_F(HelperLife, AKilledHelperLeavesNoTool) {
    HelperRun helper;
    const pid_t tool = stoppedTool(helper);
    ASSERT_GT(tool, 0);
    ::kill(helper.process(), SIGKILL);
    EXPECT_TRUE(isGoneWithin(tool, milliseconds(isSanitized() ? 5000 : 1000)));
    EXPECT_TRUE(isThere(tree.at("many")));
    for (const int number : {SIGINT, SIGHUP, SIGQUIT, SIGTSTP}) {  // the keys of a terminal
        const HelperRun other;
        ::kill(other.process(), number);
        EXPECT_EQ(other.ask(tree.at("missing")).outcome, Outcome::Refused) << number;
    }
}

TEST(HelperIdle, SaysSoAndEnds) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    const Descriptor ours(ends[0]);
    const Descriptor theirs(ends[1]);
    helper::Session(theirs.get(), ::getuid(), {}, milliseconds(20)).run();
    char packet[64];
    for (const Outcome expected : {Outcome::Ready, Outcome::Idle}) {
        const ssize_t count = ::recv(ours.get(), packet, sizeof packet, MSG_DONTWAIT);
        const auto reply =
            HelperReply::read({packet, static_cast<std::size_t>(count > 0 ? count : 0)});
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->outcome, expected);
    }
    static_assert(helper::Session::idleLimit == std::chrono::minutes(10));
}

}  // namespace
}  // namespace orrinvale::testing
