// The commands on a file system that is slow, and on one that does not answer: a stop is heard, and
// a hang is told with its path.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/ServedFiles.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

void fillSlow(TestTree& tree) {
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(tree.write("f" + std::to_string(i % 40) + "/x" + std::to_string(i), "same"));
}

// One look at an entry takes 0.25 s, and two may be under way for one file, so that the whole takes
// minutes.
TEST(SlowFileSystem, AStopIsHeardWithinASecond) {
    ServedFiles slow({"look=250"});
    if (!slow.isThere()) GTEST_SKIP() << "FUSE can not be mounted here";
    fillSlow(slow.source());
    for (const char* command : {"duplicates", "large", "size"}) {
        ProgramRun run = commandRun(command, {"--json", slow.path()});
        Clock::time_point begin = Clock::now();
        Clock::time_point sent;
        run.signals = {{SIGINT, [&](const std::string&) {
                            sent = Clock::now();
                            return sent - begin > 2s;
                        }}};
        const auto result = run.run();
        const auto took = Clock::now() - sent;
        EXPECT_EQ(result.status, 130) << command << result.error;
        EXPECT_LT(took, isSanitized() ? 3s : 1s) << command;
        const auto document = nlohmann::json::parse(result.output, nullptr, false);
        ASSERT_TRUE(document.is_object()) << command << result.output;
        EXPECT_EQ(document["stopped"], true) << command;
    }
}

TEST(SlowFileSystem, AHangIsToldWithItsPath) {
    for (const char* command : {"duplicates", "large", "size"}) {
        for (const bool terminal : {true, false}) {
            ServedFiles hanging({"hang"});
            if (!hanging.isThere()) GTEST_SKIP() << "FUSE can not be mounted here";
            fillSlow(hanging.source());
            ASSERT_TRUE(hanging.source().write("f0/hangs \u202Ehere", "same"));
            const std::string told = " s: " + hanging.path() + "/f0/hangs \\xe2\\x80\\xaehere";
            ProgramRun run = commandRun(command, {"--json", hanging.path()});
            run.terminal = terminal;
            const Clock::time_point begin = Clock::now();
            Clock::duration took{};
            // Not even a kill gets through to the call; it comes back when the file system is gone.
            // A second more shows whether the line is told again.
            run.signals = {{0, [&](const std::string& error) {
                                const auto now = Clock::now() - begin;
                                if (took == 0s && error.find("no answer for ") != std::string::npos)
                                    took = now;
                                if (now < (took == 0s ? 15s : took + 1500ms)) return false;
                                hanging.end();
                                return true;
                            }}};
            const auto result = run.run();
            EXPECT_NE(result.error.find(told), std::string::npos)
                << command << terminal << result.error;
            EXPECT_GT(took, 4900ms) << command << terminal;
            EXPECT_LT(took, 8s) << command << terminal;
            // What the end of the file system made unreadable is told besides.
            const std::size_t first = result.error.find("no answer for ");
            EXPECT_TRUE(terminal ||
                        result.error.find("no answer for ", first + 1) == std::string::npos)
                << result.error.substr(0, 1000);
        }
    }
}

}  // namespace
}  // namespace orrinvale::testing
