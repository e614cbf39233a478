// orrinvale-cli memory on this machine, and its process in a group that may take little.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using nlohmann::json;

ProgramRun::Result runOf(std::string program, std::vector<std::string> arguments) {
    ProgramRun run;
    run.program = std::move(program);
    run.arguments = std::move(arguments);
    return run.run();
}

json figures(const ProgramRun::Result& result) { return json::parse(result.output); }

TEST(MemoryCommand, ShowsWhatFreeShows) {
    const json shown = figures(commandRun("memory", {"--json"}).run());
    std::istringstream free(runOf("/usr/bin/free", {"-b"}).output);
    std::string line;
    std::getline(free, line);  // the heads
    free >> line;              // "Mem:"
    double total = 0, used = 0, freeBytes = 0, shared = 0, cache = 0, available = 0;
    free >> total >> used >> freeBytes >> shared >> cache >> available;
    EXPECT_EQ(shown["total"].get<double>(), total);
    EXPECT_NEAR(shown["free"].get<double>(), freeBytes, total * 0.02);
    EXPECT_NEAR(shown["available"].get<double>(), available, total * 0.02);
    EXPECT_EQ(shown["free"].get<std::uint64_t>() + shown["active"].get<std::uint64_t>() +
                  shown["inactive"].get<std::uint64_t>() + shown["wired"].get<std::uint64_t>(),
              shown["total"].get<std::uint64_t>());
    EXPECT_EQ(commandRun("memory", {"-0"}).run().status, 2);
    EXPECT_NE(commandRun("memory", {}).run().output.find("Inactive"), std::string::npos);
}

// A group of its own below the one of the tests; gone with the object.
class LimitedGroup {
public:
    explicit LimitedGroup(const char* bytes) {
        for (const char* const base : {"/sys/fs/cgroup/memory", "/sys/fs/cgroup"}) {
            const std::string group =
                std::string(base) + "/orrinvale-" + std::to_string(::getpid());
            if (::mkdir(group.c_str(), 0755) != 0) continue;
            m_path = group;
            for (const char* const file : {"memory.limit_in_bytes", "memory.max"}) {
                std::ofstream limit(group + '/' + file);
                if (limit << bytes << std::flush) return;
            }
            ::rmdir(group.c_str());
            m_path.clear();
        }
    }
    ~LimitedGroup() {
        if (!m_path.empty()) ::rmdir(m_path.c_str());
    }
    LimitedGroup(const LimitedGroup&) = delete;
    LimitedGroup& operator=(const LimitedGroup&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

TEST(MemoryCommand, InALimitedGroupNothingIsKilled) {
    if (isSanitized()) GTEST_SKIP() << "the sanitizer's own memory counts";
    const LimitedGroup group("629145600");
    if (group.path().empty()) GTEST_SKIP() << "no group can be made here that limits memory";
    const std::string inGroup =
        "echo $$ > " + group.path() + "/cgroup.procs && exec " + commandRun("fr", {}).program + " ";
    const auto run = [&](const char* arguments) {
        return runOf("/bin/sh", {"-c", inGroup + arguments});
    };
    const auto purge = run("fr 4294966272");
    EXPECT_EQ(purge.signal, 0);
    EXPECT_EQ(purge.status, 0);
    const auto freed = run("memory --free --json");
    EXPECT_EQ(freed.status, 0) << freed.error;
    const json document = figures(freed);
    for (const char* const field : {"freeBefore", "freeAfter", "freed"})
        EXPECT_TRUE(document.contains(field)) << field;
}

TEST(MemoryCommand, ASignalEndsTheProcessThatFrees) {
    ProgramRun run = commandRun("memory", {"--free", "--json"});
    run.signals = {{SIGINT, [](const std::string&) { return true; }}};
    const auto result = run.run();
    // The signal may come when all is over.
    if (result.status == 0) GTEST_SKIP() << "it was over before the signal came";
    EXPECT_EQ(result.status, 130);
    EXPECT_TRUE(figures(result)["stopped"].get<bool>());
}

}  // namespace
}  // namespace orrinvale::testing
