// The window program as a process: the run that only touches memory, and what its file asks of the machine.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "cli/ProgramRun.h"

namespace orrinvale::testing {
namespace {

ProgramRun::Result runApp(std::vector<std::string> arguments, std::vector<std::pair<int, rlim_t>> limits = {}) {
    ProgramRun run;
    run.program = ORRINVALE_APP_PATH;
    run.arguments = std::move(arguments);
    run.limits = std::move(limits);
    return run.run();
}

TEST(App, APairOfTheWordAndASizeTouchesMemoryAndEnds) {
    const struct {
        std::vector<std::string> arguments;
        std::string log;
    } cases[] = {
        {{"fr", "4096"}, "freeMemoy size=4096\n"},
        {{"fr", ""}, "freeMemoy size=\n"},
        {{"fr", "a\nb\x1b"}, "freeMemoy size=a\\nb\\x1b\n"},
        {{"fr", "fr", "4096"}, "freeMemoy size=fr\n"},
    };
    for (const auto& each : cases) {
        const auto result = runApp(each.arguments);
        EXPECT_EQ(result.status, 0) << each.log;
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error, each.log);
    }
}

TEST(App, AnythingElseNeedsADisplay) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"fr"}, {"x", "fr"}, {"FR", "4096"}}) {
        const auto result = runApp(arguments);
        EXPECT_EQ(result.status, 2) << ::testing::PrintToString(arguments);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_TRUE(result.error.ends_with('\n')) << result.error;
    }
}

TEST(App, NoMemoryIsStatusOne) {
    if (isSanitized()) GTEST_SKIP() << "the sanitizer's allocator needs the address space that the limit takes";
    const auto result = runApp({"fr", "3221225472"}, {{RLIMIT_AS, 512U << 20}});
    EXPECT_EQ(result.status, 1) << result.error;
    EXPECT_EQ(result.error, "freeMemoy size=3221225472\n");
    EXPECT_EQ(runApp({"fr", "33554432"}, {{RLIMIT_AS, 512U << 20}}).status, 0);  // the limit alone is no hindrance
}

// The run that only touches memory happens each time somebody frees memory: it must not load what draws windows.
TEST(App, TheMemoryRunLoadsNoPlugins) {
    if (isSanitized()) GTEST_SKIP() << "strace and the sanitizers do not go together";
    ProgramRun run;
    run.program = "/usr/bin/strace";
    if (::access(run.program.c_str(), X_OK) != 0) GTEST_SKIP() << "no strace here";
    run.arguments = {"-f", "-e", "trace=openat", ORRINVALE_APP_PATH, "fr", "4096"};
    const auto result = run.run();
    ASSERT_EQ(result.status, 0) << result.error;
    ASSERT_NE(result.error.find("libc.so"), std::string::npos) << result.error;
    EXPECT_EQ(result.error.find("/plugins/"), std::string::npos) << result.error;
}

}  // namespace
}  // namespace orrinvale::testing
