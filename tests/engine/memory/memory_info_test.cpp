// The record of the figures, and a purge from its start to the reading that notices its end.
#include "engine/base/Log.h"
#include "engine/memory/ClearMemory.h"
#include "engine/memory/FakeMemory.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::FakeMemory;

TEST(MemoryInfo, AFigureThatCanNotBeReadKeepsItsValue) {
    FakeMemory memory;
    EXPECT_EQ(getMemoryInfo(nullptr, memory), -1);

    memory.figures.insert_or_assign("hw.pagesize", 16384);
    memory.counted = MemoryCounts{.free = 1,
                                  .active = 2,
                                  .inactive = 3,
                                  .wired = 4,
                                  .bytesIn = 5,
                                  .bytesOut = 6,
                                  .faults = 7};
    _MEMORY_INFO info;
    EXPECT_EQ(getMemoryInfo(&info, memory), 0);
    EXPECT_EQ(info.wiredMem, 4U * 16384);
    EXPECT_EQ(info.vMem, 7U * 16384);
    EXPECT_EQ(info.pageIn, 5U);
    EXPECT_EQ(info.usedMem, (1U << 30) - 16384);

    // The page size is taken as 4096 until it is told; the last errno counts.
    memory.figures.insert_or_assign("hw.pagesize", tl::unexpected(ENOENT));
    memory.figures.insert_or_assign("hw.memsize", tl::unexpected(EPERM));
    memory.counted = MemoryCounts{.free = 10};
    EXPECT_EQ(getMemoryInfo(&info, memory), EPERM);
    EXPECT_EQ(info.freeMem, 10U * 4096);
    EXPECT_EQ(info.totalMem, 1U << 30);
    EXPECT_EQ(info.pageIn, 5U) << "the events were not told this time";
    EXPECT_EQ(info.vMem, 7U * 16384);
    memory.figures.insert_or_assign("hw.memsize", std::optional<std::uint64_t>());
    memory.counted = tl::unexpected(EIO);
    EXPECT_EQ(getMemoryInfo(&info, memory), ENOENT);
    EXPECT_EQ(info.freeMem, 10U * 4096);
}

TEST(MemoryInfo, AsText) {
    const cleanMemoryInfo shown = cleanMemoryInfoOf({.freeMem = 3U << 30, .wiredMem = 1 << 20});
    EXPECT_EQ(shown.freeMem, "3.00 GB");
    EXPECT_EQ(shown.wiredMem, "1.00 MB");
}

class Purge : public ::testing::Test {
protected:
    // A program that writes its arguments down, and then lives until it is ended or for no time.
    std::string program(const std::string& name, const std::string& rest) {
        tree.write(name, "#!/bin/sh\necho \"$@\" > " + tree.at(name + ".ran") + "\n" + rest + '\n');
        tree.setMode(name, 0755);
        return tree.at(name);
    }
    static bool untilNoticed(ClearMemory& memory) {
        for (int i = 0; i < 1000 && memory.isRunFree(); ++i) {
            std::this_thread::sleep_for(10ms);
            memory.getMemoryInfo(nullptr);
        }
        return !memory.isRunFree();
    }
    TestTree tree;
    FakeMemory figures;
};

TEST_F(Purge, TakesTheFirstProgramThereIs) {
    figures.counted = MemoryCounts{.free = 100, .inactive = 200};
    const std::string own = program("own", "exit 3");
    const struct {
        const char* name;
        bool hasSystem, hasResource;
        const char* arguments;
        int status;
    } cases[] = {
        {"system", true, true, "\n", 0},
        {"resource", false, true, "\n", 0},
        {"own", false, false, "fr 1228800\n", 3},
    };
    const std::string ours = tree.at("resource");
    for (const auto& each : cases) {
        ClearMemory memory(figures,
                           {.systemPurge = each.hasSystem ? program("system", "") : std::string(),
                            .resourcePurge = ours,
                            .executable = own,
                            .isTrusted = [](const std::string& path) { return isThere(path); }});
        memory.getMemoryInfo(nullptr);
        // What is there counts at the start of the purge.
        if (each.hasResource) program("resource", "");
        else ::unlink(ours.c_str());
        const LogLines log;
        EXPECT_EQ(memory.clearMemory(), 0);
        ASSERT_TRUE(untilNoticed(memory)) << each.name;
        EXPECT_EQ(contentOf(tree.at(std::string(each.name) + ".ran")), each.arguments) << each.name;
        EXPECT_EQ(memory.terminationStatus(), each.status);
        EXPECT_EQ(memory.program(), tree.at(each.name));
        EXPECT_EQ(log.lines.front() == "purge = " + ours, !each.hasSystem) << each.name;
        EXPECT_EQ(log.lines.back(), "Task finished. status = " + std::to_string(each.status));
    }
}

TEST_F(Purge, RunsOnceAtATimeAndStopsWhenAsked) {
    ClearMemory memory(figures, {.systemPurge = program("system", "exec sleep 100")});
    EXPECT_FALSE(memory.isRuning());
    EXPECT_EQ(memory.clearMemory(), 0);
    EXPECT_EQ(memory.clearMemory(), 1);
    EXPECT_TRUE(memory.isRuning());
    memory.stop();
    for (int i = 0; i < 1000 && memory.isRuning(); ++i) std::this_thread::sleep_for(10ms);
    EXPECT_FALSE(memory.isRuning());
    EXPECT_TRUE(memory.isRunFree()) << "nothing but a reading notices the end";
    EXPECT_EQ(memory.clearMemory(), 0) << "which a new start makes";
    memory.stop();
    ASSERT_TRUE(untilNoticed(memory));
    EXPECT_EQ(memory.terminationStatus(), SIGTERM);
}

TEST_F(Purge, TellsThatItsProgramIsNotThere) {
    ClearMemory memory(figures, {.executable = tree.at("nothing")});
    EXPECT_EQ(memory.clearMemory(), 0);
    EXPECT_FALSE(memory.isRuning());
    ASSERT_TRUE(untilNoticed(memory));
    EXPECT_EQ(memory.terminationStatus(), 127);
}

TEST(ClearMemory, TellsBeforehandWhatAPurgeWouldDo) {
    constexpr std::uint64_t gib = 1 << 30;
    constexpr std::uint64_t page = 4096;
    constexpr std::uint64_t any = ~std::uint64_t{0};
    const struct {
        std::uint64_t free, inactive, room;
        const char* system;
        PurgeOutlook outlook;
    } cases[] = {{1 * gib, 2 * gib, any, "", PurgeOutlook::GivesUp},
                 {5 * gib, 1 * gib, any, "", PurgeOutlook::WithinFree},
                 {1 * gib, 3 * gib, any, "", PurgeOutlook::WithinFree},  // 4 GiB are cut to nothing
                 {0, 4 * gib - page, any, "", PurgeOutlook::GivesUp},
                 {1 * gib, 2 * gib, gib / 2, "", PurgeOutlook::WithinFree},
                 {1 * gib, 2 * gib, 0, "", PurgeOutlook::NoRoom},
                 {5 * gib, 1 * gib, any, "/bin/true", PurgeOutlook::Foreign}};
    for (const auto& each : cases) {
        FakeMemory figures;
        figures.counted = MemoryCounts{.free = each.free / page, .inactive = each.inactive / page};
        figures.roomNow = [&each] { return each.room; };
        ClearMemory memory(figures, {.systemPurge = each.system});
        memory.getMemoryInfo(nullptr);
        EXPECT_EQ(memory.outlook(), each.outlook) << each.free << ' ' << each.inactive;
    }
}

}  // namespace
}  // namespace orrinvale
