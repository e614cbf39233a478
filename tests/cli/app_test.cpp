// The window program as a process: the run that only touches memory, and what its file asks of the machine.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
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

TEST(App, AnythingElseSaysThatThereIsNoWindowYet) {
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

TEST(App, TheMemoryRunLoadsNoWindowLibrary) {
    const std::string command = "readelf -d '" ORRINVALE_APP_PATH "' 2>&1";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), &::pclose);
    ASSERT_TRUE(pipe);
    std::string needed;
    std::array<char, 4096> block;
    for (std::size_t count = 0; (count = std::fread(block.data(), 1, block.size(), pipe.get())) > 0;)
        needed.append(block.data(), count);
    if (needed.find("not found") != std::string::npos) GTEST_SKIP() << "no readelf here: " << needed;
    ASSERT_NE(needed.find("libc.so"), std::string::npos) << needed;
    for (const char* library : {"libQt", "libX11", "libxcb", "libwayland", "libGL", "libEGL", "libgtk"})
        EXPECT_EQ(needed.find(library), std::string::npos) << needed;
}

}  // namespace
}  // namespace orrinvale::testing
