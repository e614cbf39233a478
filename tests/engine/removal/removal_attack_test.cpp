// Removals under attack, by real processes: killed at any moment, two at once with opposite ticks,
// files saved over what goes, and each system call failing once. ORRINVALE_ROUNDS multiplies the
// rounds.
#include "engine/files/asideName.h"
#include "engine/removal/AsideJournal.h"
#include "engine/removal/PairList.h"
#include "support/ServiceProcess.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::PairList;
using testing::ServiceProcess;

int rounds(int usual) {
    const char* const factor = std::getenv("ORRINVALE_ROUNDS");
    return usual * (factor != nullptr ? std::max(std::atoi(factor), 1) : 1);
}

std::size_t asideIn(const std::string& folder) {
    const auto names = namesIn(folder);
    return static_cast<std::size_t>(std::count_if(
        names.begin(), names.end(), [](const auto& name) { return isAsideName(name); }));
}

void makePairs(TestTree& tree, int count) {
    for (int i = 0; i < count; ++i)
        for (const char* const folder : {"a", "b"})
            ASSERT_TRUE(tree.write(fmt::format("{}/{}", folder, i), std::to_string(i)));
}

const std::string program = ORRINVALE_REMOVAL_PROGRAM;

// Killed at any moment, the next start leaves nothing aside: each file is gone or has its own name.
TEST(RemovalAttack, AKillLeavesNothingAsideAfterTheNextStart) {
    constexpr int files = 2000;
    std::mt19937 chance(7);
    int inTheMiddle = 0;
    for (int round = 0; round < rounds(4); ++round) {
        TestTree tree;
        makePairs(tree, files);
        ServiceProcess child({program, tree.at("a"), tree.at("b"), tree.at("state")});
        while (namesIn(tree.at("a")).size() == files && !child.hasEnded())
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::microseconds(chance() % 30'000));
        child.end();
        const std::size_t left = namesIn(tree.at("a")).size();
        inTheMiddle += left > 0 && left < files ? 1 : 0;
        (void)bringBackAside(LinuxFileSystem(), tree.at("state/removals"));
        ASSERT_EQ(asideIn(tree.at("a")), 0U) << round;
        ASSERT_EQ(namesIn(tree.at("b")).size(), files) << round;
        for (const std::string& name : namesIn(tree.at("a")))
            ASSERT_EQ(contentOf(tree.at("a/" + name)), name);
    }
    EXPECT_GT(inTheMiddle, 0) << "no kill hit a removal that was under way";
    RecordProperty("killsInTheMiddle", inTheMiddle);
}

// What one removes the other one relies on. They take no turns here: each has a state folder of its
// own.
TEST(RemovalAttack, TwoRemovalsWithOppositeTicksNeverTakeBothCopies) {
    constexpr int files = 300;
    std::size_t met = 0;
    for (int round = 0; round < rounds(3); ++round) {
        TestTree tree;
        makePairs(tree, files);
        ServiceProcess one({program, tree.at("a"), tree.at("b"), tree.at("one")});
        ServiceProcess other({program, tree.at("b"), tree.at("a"), tree.at("other")});
        one.wait();
        other.wait();
        for (int i = 0; i < files; ++i) {
            const bool isA = isThere(tree.at(fmt::format("a/{}", i)));
            const bool isB = isThere(tree.at(fmt::format("b/{}", i)));
            ASSERT_TRUE(isA || isB) << round << ' ' << i;
            met += isA && isB ? 1 : 0;
        }
    }
    RecordProperty("bothStayed", std::to_string(met));
}

// An editor saves by renaming a new file over the old one, again and again, while that one is
// removed.
TEST(RemovalAttack, AFileThatIsSavedMeanwhileIsNeverLost) {
    TestTree tree;
    const LinuxFileSystem files;
    ASSERT_TRUE(tree.write("b", "old") && tree.write("save/x", ""));
    PlainDoor door(files, {});
    const std::atomic<bool> never{false};
    std::atomic<int> wanted{0};
    std::atomic<int> saved{0};
    std::atomic<bool> isEnd{false};
    std::thread editor([&] {
        for (int number = 1; !isEnd; ++number) {
            while (wanted < number && !isEnd) std::this_thread::yield();
            if (isEnd) return;
            for (int pause = number * 37 % 2000; pause > 0; --pause)
                std::atomic_signal_fence(std::memory_order_seq_cst);
            (void)::rename(tree.at("new").c_str(), tree.at("a").c_str());
            saved = number;
        }
    });
    int lost = 0;
    for (int round = 1; round <= rounds(500); ++round) {
        ASSERT_TRUE(tree.write("a", "old") && tree.write("new", "saved"));
        PairList list(files, tree.at("none"), {});
        list.add(tree.at("a"), tree.at("b"));
        LeavingEntry leaving;
        leaving.path = list.path(0);
        leaving.identity = list.identity(0);
        auto look = list.judge(0);
        leaving.look = look->get();
        leaving.token = fmt::format("{:016x}", round);
        wanted = round;
        const RemovalResult result = door.remove(leaving, never);
        while (saved < round) std::this_thread::yield();
        std::string content = contentOf(tree.at("a"));
        for (const std::string& name : namesIn(tree.path()))
            if (isAsideName(name)) {
                if (content != "saved") content = contentOf(tree.at(name));
                ASSERT_EQ(::unlink(tree.at(name).c_str()), 0);
            }
        lost += content == "saved" ? 0 : 1;
        (void)::unlink(tree.at("a").c_str());
    }
    isEnd = true;
    editor.join();
    EXPECT_EQ(lost, 0);
}

// Each call that changes or looks fails once, at each of its turns. Nothing is lost then, and
// nothing is aside after the next start.
TEST(RemovalAttack, AnyCallThatFailsLosesNothing) {
    if (::access("/usr/bin/strace", X_OK) != 0) GTEST_SKIP() << "strace is not installed";
    int injected = 0;
    for (const char* const call :
         {"renameat2", "statx", "unlinkat", "openat", "openat2", "fdatasync", "fsync", "write",
          "flock", "preadv2", "pread64", "fcntl", "close"})
        for (const char* const error : {"EIO", "ENOSPC"})
            for (int when = 1; when <= 12; when += 1 + when / 4) {
                TestTree tree;
                makePairs(tree, 3);
                ServiceProcess({"/usr/bin/strace", "-f", "-qq", "-o", "/dev/null", "-e",
                                fmt::format("inject={}:error={}:when={}", call, error, when),
                                program, tree.at("a"), tree.at("b"), tree.at("state")})
                    .wait();
                ++injected;
                (void)bringBackAside(LinuxFileSystem(), tree.at("state/removals"));
                ASSERT_EQ(asideIn(tree.at("a")), 0U) << call << ' ' << error << ' ' << when;
                for (int i = 0; i < 3; ++i)
                    ASSERT_EQ(contentOf(tree.at(fmt::format("b/{}", i))), std::to_string(i))
                        << call;
                for (const std::string& name : namesIn(tree.at("a")))
                    ASSERT_EQ(contentOf(tree.at("a/" + name)), name) << call;
            }
    EXPECT_GT(injected, 100);
}

}  // namespace
}  // namespace orrinvale
