// The memory's figures from files that were written down, and this machine's own.
#include "platform/linux/LinuxMemory.h"
#include "platform/linux/MemoryGroups.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t kib = 1024;

TEST(LinuxMemory, ReadsTheFilesOfTheKernel) {
    TestTree tree;
    tree.write("proc/meminfo",
               "MemTotal:       16000 kB\nMemFree:         4000 kB\nMemAvailable:    9000 kB\n"
               "Active:          3000 kB\nInactive:        5000 kB\nActive(anon):    2000 kB\n"
               "Inactive(anon):  1000 kB\nInactive(file):  4000 kB\nSwapTotal:       8000 kB\n"
               "SwapFree:        7000 kB\nrubbish\nHugePages_Total:       0\n");
    tree.write("proc/vmstat", "pgpgin 8000\npgpgout 4000\npgfault 12\npgfault_more 99\n");
    tree.write("proc/pressure/memory",
               "some avg10=9.00 avg60=1.25 avg300=0.10 total=5\nfull avg10=0.00 avg60=0.50\n");
    const LinuxMemory memory(tree.path());
    const std::uint64_t page = memory.figure("hw.pagesize")->value();
    const MemoryCounts counts = memory.counts().value();
    EXPECT_EQ(memory.figure("hw.memsize")->value(), 16000 * kib);
    EXPECT_EQ(counts.free * page, 4000 * kib);
    EXPECT_EQ(counts.active * page, 4000 * kib);
    EXPECT_EQ(counts.inactive * page, 4000 * kib);
    EXPECT_EQ(counts.wired * page, 4000 * kib);
    EXPECT_EQ(counts.pageIns * page, 8000 * kib);
    EXPECT_EQ(counts.pageOuts * page, 4000 * kib);
    EXPECT_EQ(counts.faults, 12U);
    const MemoryState state = memory.state().value();
    EXPECT_EQ(state.available, 9000 * kib);
    EXPECT_EQ(state.swapUsed, 1000 * kib);
    EXPECT_DOUBLE_EQ(state.pressure.value(), 1.25);
    EXPECT_EQ(memory.room(), 9000 * kib) << "no groups to be seen";
}

TEST(LinuxMemory, WithoutFilesThereAreNoFigures) {
    TestTree tree;
    const LinuxMemory memory(tree.path());
    EXPECT_EQ(memory.figure("hw.memsize").error(), ENOENT);
    EXPECT_EQ(memory.figure("hw.else").error(), ENOENT);
    EXPECT_FALSE(memory.counts());
    EXPECT_FALSE(memory.state());
    EXPECT_EQ(memory.room(), 0U);
    tree.write("proc/meminfo", "MemTotal: much\n");
    EXPECT_FALSE(memory.counts());
}

// Each case is a machine's table of mounts, the groups of the process, and the files of groups.
TEST(LinuxMemory, TheTightestOfAllGroupsLimitsTheRoom) {
    const std::string unified = "30 20 0:26 / /sys/fs/cgroup rw - cgroup2 cgroup2 rw\n";
    const std::string first = "31 20 0:27 / /cg/memory rw - cgroup cgroup rw,memory\n";
    const struct {
        const char* what;
        std::string mounts, own;
        std::vector<std::pair<std::string, std::string>> files;
        std::uint64_t room;
    } cases[] = {
        {"none", unified, "0::/a\n", {{"sys/fs/cgroup/a/memory.max", "max\n"}}, ~0ULL},
        {"own",
         unified,
         "0::/a/b\n",
         {{"sys/fs/cgroup/a/b/memory.max", "1000\n"}, {"sys/fs/cgroup/a/b/memory.current", "300"}},
         700},
        {"an ancestor's, and the softer limit",
         unified,
         "0::/a/b\n",
         {{"sys/fs/cgroup/a/b/memory.max", "1000"},
          {"sys/fs/cgroup/a/b/memory.current", "300"},
          {"sys/fs/cgroup/a/memory.max", "9000"},
          {"sys/fs/cgroup/a/memory.high", "500"},
          {"sys/fs/cgroup/a/memory.current", "400"}},
         100},
        {"over the limit already",
         unified,
         "0::/a\n",
         {{"sys/fs/cgroup/a/memory.max", "100"}, {"sys/fs/cgroup/a/memory.current", "400"}},
         0},
        {"the first version, among others",
         unified + first,
         "7:cpu:/\n4:hugetlb,memory:/x/y\n0::/\n",
         {{"cg/memory/x/memory.limit_in_bytes", "5000"},
          {"cg/memory/x/memory.usage_in_bytes", "1000"}},
         4000},
        {"in a container that sees its own part alone",
         "30 20 0:26 /pod/one /sys/fs/cgroup rw - cgroup2 cgroup2 rw\n",
         "0::/pod/one/in\n",
         {{"sys/fs/cgroup/memory.max", "50"},
          {"sys/fs/cgroup/memory.current", "20"},
          {"sys/fs/cgroup/in/memory.max", "60"},
          {"sys/fs/cgroup/in/memory.current", "20"}},
         30},
        {"a group outside of what is to be seen",
         unified,
         "0::/../other\n",
         {{"sys/fs/cgroup/memory.max", "50"}, {"sys/fs/cgroup/memory.current", "20"}},
         30},
    };
    for (const auto& each : cases) {
        TestTree tree;
        tree.write("proc/self/mountinfo", each.mounts);
        tree.write("proc/self/cgroup", each.own);
        for (const auto& [name, text] : each.files) tree.write(name, text);
        EXPECT_EQ(roomInMemoryGroups(tree.path()), each.room) << each.what;
    }
}

TEST(LinuxMemory, ThisMachineAddsUp) {
    const LinuxMemory memory;
    const MemoryCounts counts = memory.counts().value();
    const std::uint64_t pages = counts.free + counts.active + counts.inactive + counts.wired;
    EXPECT_EQ(pages * memory.figure("hw.pagesize")->value(), memory.figure("hw.memsize")->value());
    EXPECT_GT(counts.faults, 0U);
    EXPECT_GT(memory.room(), 0U);
}

}  // namespace
}  // namespace orrinvale
