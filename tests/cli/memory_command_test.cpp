// orrinvale-cli memory on this machine, and its process in a group that may take little.
#include <nlohmann/json.hpp>

#include "cli/MemoryCommand.h"
#include "cli/ProgramRun.h"
#include "engine/memory/FakeMemory.h"
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

// The first figures of the two lines of free(1), by the names above them.
std::map<std::string, double> shownByFree() {
    std::istringstream text(runOf("/usr/bin/free", {"-b"}).output);
    std::map<std::string, double> out;
    std::string word;
    std::getline(text, word);  // the heads
    text >> word;              // "Mem:"
    for (const char* const name : {"total", "used", "free", "shared", "cache", "available"})
        text >> out[name];
    text >> word >> out["swapTotal"] >> out["swapUsed"];
    return out;
}

TEST(MemoryCommand, ShowsWhatFreeShows) {
    EXPECT_EQ(commandRun("memory", {"-0"}).run().status, 2);
    EXPECT_NE(commandRun("memory", {}).run().output.find("Inactive"), std::string::npos);
    if (!isThere("/usr/bin/free")) GTEST_SKIP() << "there is no free(1) here";
    // Others take and give memory between the two, so that several looks may be needed.
    std::string apart = "never looked";
    for (int look = 0; look < 50 && !apart.empty(); ++look) {
        const json shown = figures(commandRun("memory", {"--json"}).run());
        EXPECT_EQ(shown["free"].get<std::uint64_t>() + shown["active"].get<std::uint64_t>() +
                      shown["inactive"].get<std::uint64_t>() + shown["wired"].get<std::uint64_t>(),
                  shown["total"].get<std::uint64_t>());
        auto free = shownByFree();
        EXPECT_EQ(shown["total"].get<double>(), free["total"]);
        EXPECT_EQ(shown["swapTotal"].get<double>(), free["swapTotal"]);
        apart.clear();
        for (const char* const name : {"free", "available", "swapUsed"})
            if (std::abs(shown[name].get<double>() - free[name]) > free[name] * 0.02) apart += name;
    }
    EXPECT_EQ(apart, "");
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
    /// The most bytes that its processes ever held; 0 where the system does not tell.
    [[nodiscard]] std::uint64_t peak() const {
        std::uint64_t bytes = 0;
        for (const char* const file : {"/memory.max_usage_in_bytes", "/memory.peak"})
            std::ifstream(m_path + file) >> bytes;
        return bytes;
    }

private:
    std::string m_path;
};

TEST(MemoryCommand, InALimitedGroupNothingIsKilled) {
    if (isSanitized()) GTEST_SKIP() << "the sanitizer's own memory counts";
    const LimitedGroup group("629145600");
    if (group.path().empty()) GTEST_SKIP() << "no group can be made here that limits memory";
    const auto run = [&](const std::string& ignoring, const std::string& arguments) {
        return runOf("/bin/sh", {"-c", "echo $$ > " + group.path() + "/cgroup.procs && exec env " +
                                           ignoring + commandRun("fr", {}).program + arguments});
    };
    const auto purge = run("", " fr 4294966272");
    EXPECT_EQ(purge.signal, 0);
    EXPECT_EQ(purge.status, 0);
    EXPECT_EQ(purge.error, "") << "nobody asked for the log";
    // Nearly all of the limit is taken where the machine has as much.
    constexpr std::uint64_t mib = 1 << 20;
    const json machine = figures(commandRun("memory", {"--json"}).run());
    if (machine["available"].get<std::uint64_t>() > 2048 * mib && group.peak() != 0) {
        EXPECT_GT(group.peak(), 400 * mib);
    }
    // Whatever its parent thought of the ends of children, the command hears of its own.
    const auto freed = run("--ignore-signal=CHLD ", " memory --free --json");
    EXPECT_EQ(freed.status, 0) << freed.error;
    const json document = figures(freed);
    EXPECT_TRUE(document["skipped"].empty());
    for (const char* const field : {"freeBefore", "freeAfter", "freed"})
        EXPECT_TRUE(document.contains(field)) << field;
}

TEST(MemoryCommand, OnlyAsTheFirstWordIsItTheRunThatTouchesMemory) {
    TestTree tree;
    tree.write("fr", "bytes");
    tree.write("4096", "bytes");
    const struct {
        std::string word;
        Strings rest;
        int status;
        bool printsOutput, printsError;
    } cases[] = {{"fr", {"4096"}, 0, false, false},
                 {"fr", {}, 2, false, true},
                 {"size", {"fr", "4096"}, 0, true, false}};
    for (const auto& each : cases) {
        const auto result = commandRun(each.word, each.rest, tree.path()).run();
        EXPECT_EQ(result.status, each.status) << each.word;
        EXPECT_EQ(!result.output.empty(), each.printsOutput) << result.output;
        EXPECT_EQ(!result.error.empty(), each.printsError) << result.error;
    }
}

// The command itself, over a program that does what may become of a purge.
TEST(MemoryCommand, TellsWhatBecameOfThePurge) {
    TestTree tree;
    const struct {
        const char* what;
        const char* script;  // empty for a program that is not there
        bool isOwn;          // it stands for the one that is told "fr"
        std::uint64_t room;
        cli::Status status;
        const char* reason;  // of what was skipped
        const char* says;    // behind the figures
    } cases[] = {
        {"all went well", "exit 0", false, 0, cli::Status::Done, "",
         "\n0.00 KB freed: 0.00 KB were free before, 0.00 KB are now. Programs could have used it "
         "anyway.\n"},
        {"as much was free", "exit 0", true, 1, cli::Status::Done, "",
         "\nNothing had to be given up: as much as one run takes was free, and programs could have "
         "used it anyway.\n"},
        {"no room", "exit 0", true, 0, cli::Status::Done, "",
         "\nNothing was taken: there is no room left for it here, or the system does not tell how "
         "much.\n"},
        {"not there", "", true, 1, cli::Status::SomeSkipped, "it could not be started", ""},
        {"ended early", "exit 3", true, 1, cli::Status::SomeSkipped, "it ended early, with 3", ""},
        {"stopped", "kill -TERM $PPID; exec sleep 100", true, 1, cli::Status::Stopped, "", ""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        ::unlink(tree.at("purge").c_str());
        if (*each.script != '\0') tree.write("purge", std::string("#!/bin/sh\n") + each.script);
        tree.setMode("purge", 0755);
        FakeMemory memory;
        memory.roomNow = [&each] { return each.room; };
        PurgePrograms programs;
        (each.isOwn ? programs.executable : programs.systemPurge) = tree.at("purge");
        cli::MemoryCommand command(memory, programs);
        const bool isStopped = each.status == cli::Status::Stopped;
        for (const char* const form : {"", "json"}) {
            cli::Arguments arguments;
            for (const char* const name : {"free", form}) arguments.set(name, {});
            ::testing::internal::CaptureStdout();
            ::testing::internal::CaptureStderr();
            const LogLines log;
            EXPECT_EQ(command.run(arguments), each.status);
            const std::string error = ::testing::internal::GetCapturedStderr();
            const std::string output = ::testing::internal::GetCapturedStdout();
            EXPECT_EQ(error.empty(), each.status != cli::Status::SomeSkipped) << error;
            EXPECT_THAT(error, HasSubstr(each.reason));
            EXPECT_EQ(log.lines.back() == "Task finished. status = 15", isStopped);
            if (*form == '\0') {
                EXPECT_TRUE(output.ends_with("the system's own\n" + std::string(each.says)))
                    << output;
                continue;
            }
            const json document = json::parse(output);
            EXPECT_EQ(document["stopped"], isStopped);
            EXPECT_EQ(document["skipped"].size(), *each.reason == '\0' ? 0U : 1U);
            for (const json& entry : document["skipped"]) {
                EXPECT_EQ(entry["path"], tree.at("purge"));
                EXPECT_EQ(entry["reason"], each.reason);
            }
            EXPECT_TRUE(document["available"].is_null());
            EXPECT_EQ(document["freeAfter"], document["free"]);
        }
    }
}

}  // namespace
}  // namespace orrinvale::testing
