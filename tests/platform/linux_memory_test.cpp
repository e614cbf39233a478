// The memory's figures from files that were written down, and this machine's own.
#include "platform/linux/LinuxMemory.h"
#include "platform/linux/MemoryGroups.h"
#include "platform/programMemory.h"
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
    tree.write("proc/vmstat", "pgpgin 8001\npgpgout 4000\npgfault 12\npgfault_more 99\n");
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
    EXPECT_EQ(counts.bytesIn, 8001 * kib);
    EXPECT_EQ(counts.bytesOut, 4000 * kib);
    EXPECT_EQ(counts.faults, 12U);
    const MemoryState state = memory.state().value();
    EXPECT_EQ(state.available, 9000 * kib);
    EXPECT_EQ(state.swapUsed, 1000 * kib);
    EXPECT_DOUBLE_EQ(state.pressure.value(), 1.25);
    EXPECT_EQ(memory.room(), 9000 * kib) << "a kernel without groups";
    EXPECT_FALSE(memory.endThisProcessFirst());
    tree.write("proc/self/oom_score_adj", "0");
    EXPECT_TRUE(memory.endThisProcessFirst());
    EXPECT_EQ(contentOf(tree.at("proc/self/oom_score_adj")), "1000");
}

TEST(LinuxMemory, WithoutFilesThereAreNoFigures) {
    TestTree tree;
    const LinuxMemory memory(tree.path());
    EXPECT_EQ(memory.figure("hw.memsize").error(), ENOENT);
    EXPECT_EQ(memory.figure("hw.else").error(), ENOENT);
    EXPECT_FALSE(memory.counts());
    EXPECT_FALSE(memory.state());
    EXPECT_EQ(memory.room(), 0U);
    // Each line of a whole file in turn is not there.
    const Strings lines{"MemTotal: 8000 kB\n",       "MemFree: 4000 kB\n",
                        "Active: 4000 kB\n",         "Inactive(anon): 4000 kB\n",
                        "Inactive(file): 4000 kB\n", "SwapTotal: 8 kB\n",
                        "SwapFree: 8 kB\n",          "MemAvailable: 100 kB\n"};
    const auto without = [&](const std::string& missing) {
        std::string text;
        for (const std::string& line : lines) text += line == missing ? "MemTotal: much\n" : line;
        tree.write("proc/meminfo", text);
    };
    for (std::size_t i = 0; i < lines.size(); ++i) {
        without(lines[i]);
        EXPECT_EQ(memory.counts().has_value(), i >= 5) << lines[i];
        EXPECT_EQ(memory.state().has_value(), i != 0 && i != 5 && i != 6) << lines[i];
        EXPECT_EQ(memory.room(), i == 0 || i >= 5 ? 0 : 100 * kib) << lines[i];
    }
    EXPECT_FALSE(memory.state()->available);
    EXPECT_FALSE(memory.counts()->bytesIn) << "there is no file of events";
    EXPECT_FALSE(memory.counts()->faults);

    // More than all can not be in use.
    without({});
    const MemoryCounts counts = memory.counts().value();
    const std::uint64_t pages = counts.free + counts.active + counts.inactive + counts.wired;
    EXPECT_EQ(pages * memory.figure("hw.pagesize")->value(), 8000 * kib);
}

// Each case is a machine's table of mounts, the groups of the process, the folder of its own group,
// and the files of groups.
TEST(LinuxMemory, TheTightestOfAllGroupsLimitsTheRoom) {
    const std::string unified = "30 20 0:26 / /sys/fs/cgroup rw - cgroup2 cgroup2 rw\n";
    const std::string first = "31 20 0:27 / /cg/memory rw - cgroup cgroup rw,memory\n";
    const std::string inside = "30 20 0:26 /pod/one /sys/fs/cgroup rw - cgroup2 cgroup2 rw\n";
    const std::string notMountedAnew =
        "31 20 0:27 /../.. /cg/memory rw - cgroup cgroup rw,memory\n";
    const std::vector<std::pair<std::string, std::string>> top{
        {"sys/fs/cgroup/memory.max", "50"}, {"sys/fs/cgroup/memory.current", "20"}};
    constexpr std::uint64_t unlimited = ~0ULL;
    const struct {
        const char* what;
        std::string mounts, own, group;
        std::vector<std::pair<std::string, std::string>> files;
        std::uint64_t room;
    } cases[] = {
        {"no limit",
         unified,
         "0::/a\n",
         "sys/fs/cgroup/a",
         {{"sys/fs/cgroup/a/memory.max", "max\n"}},
         unlimited},
        {"no group counts memory", unified, "3:cpu:/a\n", "", {}, unlimited},
        {"own",
         unified,
         "0::/a/b\n",
         "sys/fs/cgroup/a/b",
         {{"sys/fs/cgroup/a/b/memory.max", "1000\n"}, {"sys/fs/cgroup/a/b/memory.current", "300"}},
         700},
        {"an ancestor's, and the softer limit",
         unified,
         "0::/a/b\n",
         "sys/fs/cgroup/a/b",
         {{"sys/fs/cgroup/a/b/memory.max", "1000"},
          {"sys/fs/cgroup/a/b/memory.current", "300"},
          {"sys/fs/cgroup/a/memory.max", "9000"},
          {"sys/fs/cgroup/a/memory.high", "500"},
          {"sys/fs/cgroup/a/memory.current", "400"}},
         100},
        {"over the limit already",
         unified,
         "0::/a\n",
         "sys/fs/cgroup/a",
         {{"sys/fs/cgroup/a/memory.max", "100"}, {"sys/fs/cgroup/a/memory.current", "400"}},
         0},
        {"nobody tells what is taken",
         unified,
         "0::/a\n",
         "sys/fs/cgroup/a",
         {{"sys/fs/cgroup/a/memory.max", "100"}},
         0},
        {"no limit that can be read",
         unified,
         "0::/a\n",
         "sys/fs/cgroup/a",
         {{"sys/fs/cgroup/a/memory.max", "much"}, {"sys/fs/cgroup/a/memory.current", "1"}},
         0},
        {"the first version, among others, whose group is elsewhere",
         first,
         "7:cpu:/\n4:hugetlb,memory:/x/y\n0::/z\n",
         "cg/memory/x/y",
         {{"cg/memory/x/memory.limit_in_bytes", "5000"},
          {"cg/memory/x/memory.usage_in_bytes", "1000"}},
         4000},
        {"memory and swap together",
         first,
         "4:memory:/x\n",
         "cg/memory/x",
         {{"cg/memory/x/memory.limit_in_bytes", "5000"},
          {"cg/memory/x/memory.usage_in_bytes", "1000"},
          {"cg/memory/x/memory.memsw.limit_in_bytes", "5000"},
          {"cg/memory/x/memory.memsw.usage_in_bytes", "4500"}},
         500},
        {"in a container that sees its own part alone",
         inside,
         "0::/pod/one/in\n",
         "sys/fs/cgroup/in",
         {{"sys/fs/cgroup/memory.max", "50"},
          {"sys/fs/cgroup/memory.current", "20"},
          {"sys/fs/cgroup/in/memory.max", "60"},
          {"sys/fs/cgroup/in/memory.current", "20"}},
         30},
        {"dots that are a name", unified, "0::/..x\n", "sys/fs/cgroup/..x", top, 30},
        {"a neighbour of what is to be seen", inside, "0::/pod/one2\n", "sys/fs/cgroup", top, 0},
        {"a group outside of what is to be seen", unified, "0::/../other\n", "sys/fs/cgroup", top,
         0},
        {"a group namespace, not mounted anew", notMountedAnew, "4:memory:/\n", "cg/memory", {}, 0},
        {"a group without a mount", "", "0::/a\n", "sys/fs/cgroup/a", top, 0},
        {"a group that is gone", unified, "0::/a (deleted)\n", "sys/fs/cgroup", top, 0},
    };
    for (const auto& each : cases) {
        TestTree tree;
        tree.write("proc/self/mountinfo", each.mounts);
        tree.write("proc/self/cgroup", each.own);
        if (!each.group.empty()) tree.write(each.group + "/cgroup.procs", "");
        for (const auto& [name, text] : each.files) tree.write(name, text);
        EXPECT_EQ(roomInMemoryGroups(tree.path()), each.room) << each.what;
    }
    // A table, and then a list of groups, that can not be read.
    TestTree tree;
    tree.write("proc/self/cgroup", "0::/a\n");
    EXPECT_EQ(roomInMemoryGroups(tree.path()), 0U);
    TestTree closed;
    closed.folder("proc/self/cgroup");
    EXPECT_EQ(roomInMemoryGroups(closed.path()), 0U);
}

TEST(PurgePrograms, OnlyWhatIsTheAdministratorsAloneIsRun) {
    EXPECT_TRUE(onlyRootCanHavePut("/etc/passwd"));
    for (const char* const path : {"", "passwd", "/etc", "/etc/nothing", "/bin/sh"})
        EXPECT_FALSE(onlyRootCanHavePut(path)) << path;  // the last one is a link
    TestTree open;
    open.write("purge", "");
    EXPECT_FALSE(onlyRootCanHavePut(open.at("purge"))) << "anybody may write into /tmp";
    if (::geteuid() != 0) GTEST_SKIP() << "the rest needs the administrator's own folders";
    TestTree own("/var/lib");
    own.write("in/purge", "");
    const struct {
        const char* name;
        mode_t mode;
        bool isTrusted;
    } steps[] = {{"in", 0775, false},       {"in", 0757, false},       {"in", 0755, true},
                 {"in/purge", 0664, false}, {"in/purge", 0646, false}, {"in/purge", 0755, true}};
    for (const auto& each : steps) {
        own.setMode(each.name, each.mode);
        EXPECT_EQ(onlyRootCanHavePut(own.at("in/purge")), each.isTrusted)
            << each.name << ' ' << std::oct << each.mode;
    }
    own.giveAway({"in"});
    EXPECT_FALSE(onlyRootCanHavePut(own.at("in/purge")));
}

TEST(LinuxMemory, ThisMachineAddsUp) {
    const LinuxMemory memory;
    const MemoryCounts counts = memory.counts().value();
    const std::uint64_t pages = counts.free + counts.active + counts.inactive + counts.wired;
    EXPECT_EQ(pages * memory.figure("hw.pagesize")->value(), memory.figure("hw.memsize")->value());
    EXPECT_GT(counts.faults, 0U);
    EXPECT_GT(memory.room(), 0U);
}

// "PID COMM RESIDENT SHARED EXE" in pages, a process a line; no EXE is one that is not ours to see.
TEST(LargestPrograms, ProcessesOfAFileAreOneProgramAndOthersCountAsUpTo) {
    TestTree tree;
    std::istringstream lines(
        "2 kthreadd 0 0\n"
        "10 firefox 100 40 /usr/lib/firefox/firefox\n"
        "11 Web\\x20Content 90 50 /usr/lib/firefox/firefox\n"
        "12 firefox 30 10 /opt/firefox\n"
        "20 postgres 80 70\n"
        "21 postgres 80 75\n"
        "30 vim 25 30 /usr/bin/vim\\x20(deleted)\n"
        "self odd 900 0 /odd\n");
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string pid;
        std::string comm;
        std::string resident;
        std::string shared;
        std::string file;
        words >> pid >> comm >> resident >> shared >> file;
        tree.write(pid + "/comm", comm + "\n");
        tree.write(pid + "/statm", "9999 " + resident + ' ' + shared + " 1 0 9 0\n");
        if (const auto mark = file.find("\\x20"); mark != std::string::npos)
            file.replace(mark, 4, " ");
        if (!file.empty()) tree.symlink(file, pid + "/exe");
    }
    tree.write("40/statm", "rubbish");
    const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    const auto told = [&](std::size_t most) {
        std::string text;
        for (const ProgramMemory& each : largestPrograms(most, tree.path()))
            text += fmt::format("{} {}{} x{};", each.name, each.isUpTo ? "<=" : "",
                                each.bytes / page, each.processes);
        return text;
    };
    EXPECT_EQ(told(9), "postgres <=160 x2;firefox 150 x2;firefox 30 x1;vim 25 x1;");
    EXPECT_EQ(told(1), "postgres <=160 x2;");
    EXPECT_TRUE(largestPrograms(9, tree.at("nothing")).empty());
    const auto here = largestPrograms(1000);
    EXPECT_TRUE(std::ranges::any_of(
        here, [](const ProgramMemory& each) { return each.name == "engine_tests"; }));
}

}  // namespace
}  // namespace orrinvale
