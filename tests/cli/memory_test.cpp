// The commands with less and less memory: none is cut down in the middle, and each says what was
// missing.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

constexpr rlim_t kMegabyte = rlim_t{1} << 20U;

// Without its libraries a program has not begun; the loader says so itself.
bool hasBegun(const ProgramRun::Result& result) { return result.status != 127; }

TEST(Memory, RunningOutIsSaidAndWhatWasFoundIsPrinted) {
    if (isSanitized())
        GTEST_SKIP() << "the sanitizer's allocator needs the address space that the limit takes";
    TestTree tree;
    const std::string longName(200, 'n');
    for (int file = 0; file < 20'000; ++file)
        ASSERT_TRUE(tree.write(
            "f" + std::to_string(file / 1000) + '/' + longName + std::to_string(file), "same"));
    for (const char* command : {"duplicates", "large", "size"}) {
        int stoppedDocuments = 0;
        for (rlim_t limit = 16; limit <= 64; limit += 8) {
            ProgramRun run = commandRun(command, {"--json", tree.path()});
            run.limits = {{RLIMIT_AS, limit * kMegabyte}};
            const auto result = run.run();
            SCOPED_TRACE(std::string(command) + ' ' + std::to_string(limit) + " MB\n" +
                         result.error);
            EXPECT_EQ(result.signal, 0);
            if (!hasBegun(result) || result.status == 0) continue;
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(std::ranges::count(result.error, '\n'), 1);
            EXPECT_NE(result.error.find("memory"), std::string::npos);
            if (result.output.empty()) continue;
            const auto document = nlohmann::json::parse(result.output, nullptr, false);
            ASSERT_TRUE(document.is_object()) << result.output.substr(0, 200);
            EXPECT_EQ(document["stopped"], true);
            ++stoppedDocuments;
        }
        // Sizes are added up in next to no memory, whatever there is to add.
        EXPECT_TRUE(stoppedDocuments > 0 || command == std::string_view("size")) << command;
    }
}

}  // namespace
}  // namespace orrinvale::testing
