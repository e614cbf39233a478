// The command-line run that touches memory: its arguments, its exit statuses, and that it does
// touch.
#include <malloc.h>

#include <cstdio>

#include "engine/memory/ClearMemory.h"
#include "engine/memory/FakeMemory.h"
#include "support/test.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORRINVALE_OWN_ALLOCATOR 1
#else
#define ORRINVALE_OWN_ALLOCATOR 0
#endif

namespace orrinvale {
namespace {

using testing::FakeMemory;

const FakeMemory& plenty() {
    static const FakeMemory memory;
    return memory;
}

std::int32_t run(const std::vector<const char*>& arguments, const Memory& memory = plenty()) {
    return ClearMemory::freeMemory(static_cast<int>(arguments.size()), arguments.data(), memory);
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
long growth(const char* size, const Memory& memory = plenty()) {
    std::ofstream("/proc/self/clear_refs") << "5" << std::flush;
    const long before = peak();
    return run({"p", "fr", size}, memory) == 0 ? peak() - before : -1;
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

// What a machine leaves while the run takes from it, in MiB, and what it took in the end.
TEST(ClearMemory, TakesNoMoreThanThereIsRoomAndEndsWhenSwapGrows) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    constexpr std::uint64_t mib = 1 << 20;
    const struct {
        const char* what;
        std::uint64_t room;
        std::uint64_t othersTake;  // after each look
        bool swapGrows;
        long lowest, highest;
    } cases[] = {
        {"bounded by the room", 160, 0, false, 140, 150},
        {"others take a step between each look and ours", 155, 9, false, 40, 80},
        {"swap begins to fill", 160, 0, true, 0, 10},
        {"no room", 0, 0, false, 0, 0},
    };
    for (const auto& each : cases) {
        const auto check = [&each] {
            ::mallopt(M_PERTURB, 1);  // an allocator that fills what it hands out
            FakeMemory memory;
            std::uint64_t looks = 0, mostGone = 0;
            memory.roomNow = [&] {
                const auto taken = static_cast<std::uint64_t>(std::max(0L, peak())) * 1024;
                static const std::uint64_t start = taken;
                const std::uint64_t gone = taken - start + looks++ * each.othersTake * mib;
                mostGone = std::max(mostGone, gone);
                return each.room * mib - std::min(each.room * mib, gone);
            };
            memory.swapNow = [&] { return each.swapGrows ? looks * mib : 0; };
            const long grown = growth("1073741824", memory) / 1024;
            std::fprintf(stderr, "%s: grew by %ld MiB, first to end: %d, gone at most: %lu MiB\n",
                         each.what, grown, int(memory.isFirst), mostGone / mib);
            const bool isRight = grown >= each.lowest - 2 && grown <= each.highest + 2;
            ::_exit(isRight && memory.isFirst && mostGone / mib <= each.room + 1 ? 0 : 1);
        };
        EXPECT_EXIT(check(), ::testing::ExitedWithCode(0), "") << each.what;
    }
}

TEST(ClearMemory, TakesNothingWhereOthersWouldBeEndedInItsPlace) {
    FakeMemory memory;
    memory.canBeFirst = false;
    memory.roomNow = []() -> std::uint64_t { throw std::logic_error("asked for room"); };
    EXPECT_EQ(run({"p", "fr", "4096"}, memory), 1);
}

#endif

}  // namespace
}  // namespace orrinvale
