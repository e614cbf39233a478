// The command-line run that touches memory: its arguments, its exit statuses, and that it does
// touch.
#include <cstdio>

#include "engine/memory/ClearMemory.h"
#include "support/test.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORRINVALE_OWN_ALLOCATOR 1
#else
#define ORRINVALE_OWN_ALLOCATOR 0
#endif

namespace orrinvale {
namespace {

std::int32_t run(const std::vector<const char*>& arguments) {
    return ClearMemory::freeMemory(static_cast<int>(arguments.size()), arguments.data());
}

TEST(ClearMemory, OnlyAPairOfTheWordAndASizeIsARun) {
    const struct {
        std::vector<const char*> arguments;
        std::int32_t result;
    } cases[] = {
        {{}, -1},
        {{"p"}, -1},
        {{"fr"}, -1},
        {{"fr", "4096"}, -1},  // the program's own name does not count
        {{"p", "fr"}, -1},
        {{"p", "x", "fr"}, -1},
        {{"p", "FR", "4096"}, -1},
        {{"p", "free", "4096"}, -1},
        {{"p", "fr", "4096"}, 0},
        {{"p", "x", "fr", "4096", "y"}, 0},
        {{"p", "fr", "word"}, 0},
        {{"p", "fr", ""}, 0},
        {{"p", "fr", "fr"}, 0},
    };
    for (const auto& each : cases)
        EXPECT_EQ(run(each.arguments), each.result) << ::testing::PrintToString(each.arguments);
}

#if !ORRINVALE_OWN_ALLOCATOR

/// The most memory held since the last reset, in KiB.
long peak() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::stol(line.substr(6));
    return -1;
}

/// How far the memory held grows at the peak of a run, in KiB; -1 when the run fails. Called in a
/// child, as the reset is for the process. (The peak of getrusage would not do: a child begins with
/// its parent's.)
long growth(const char* size) {
    std::ofstream("/proc/self/clear_refs") << "5" << std::flush;
    const long before = peak();
    return run({"p", "fr", size}) == 0 ? peak() - before : -1;
}

TEST(ClearMemory, TouchesTheLow32BitsInWholeKibibytes) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const struct {
        const char* size;
        long kibibytes;
    } cases[] = {
        {"134217728", 131072},
        {" +134217728 bytes", 131072},
        {"4429185024", 131072},  // 4 GiB more
        {"-4160749568", 131072},
        {"134218751", 131072},  // one byte short of the next 1024
        {"1023", 0},
        {"4294967296", 0},
        {"4294968320", 1},
    };
    for (const auto& each : cases) {
        const auto check = [&each] {
            // The C library's own first use of memory, and what else shares the page tables, stays
            // far below 4 MiB.
            const long grown = growth(each.size);
            std::fprintf(stderr, "grew by %ld KiB\n", grown);
            ::_exit(grown >= each.kibibytes - 4096 && grown >= 0 && grown <= each.kibibytes + 4096
                        ? 0
                        : 1);
        };
        EXPECT_EXIT(check(), ::testing::ExitedWithCode(0), "") << each.size;
    }
}

#endif

}  // namespace
}  // namespace orrinvale
