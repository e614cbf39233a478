// orrinvale-cli duplicates as a process: exit statuses, what goes to standard error, signals,
// terminals, the environment.
#include "cli/DuplicatesTest.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

constexpr uid_t kNobody = 65534;

std::optional<uid_t> ordinaryUser() {
    return ::geteuid() == 0 ? std::optional<uid_t>(kNobody) : std::nullopt;
}

std::ptrdiff_t linesIn(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}

ProgramRun programRun(std::vector<std::string> arguments) {
    ProgramRun run;
    run.program = ORRINVALE_CLI_PATH;
    run.arguments = std::move(arguments);
    return run;
}

TEST(CommandLine, WhatIsWrongIsSaidAndHelpIsNamed) {
    const struct {
        std::vector<std::string> arguments;
        std::string says;
    } cases[] = {
        {{}, ""},
        {{"dublicates", "."}, "there is no command \"dublicates\"; the nearest is \"duplicates\""},
        {{"dublicates", "--help"}, "duplicates"},
        {{"--help", "lareg"}, "the nearest is \"large\""},
        {{"vol", "--help"}, "the nearest is \"volumes\""},
        {{"xyzzy", "--version"}, "there is no command \"xyzzy\"; see"},
        {{"duplicates", "--hiden", "--help"},
         "there is no option \"--hiden\"; the nearest is \"--hidden\""},
        {{"duplicates", "--limit=1", "--josn", "-h"}, "the nearest is \"--json\""},
        {{"duplicates", "--json", "-0", "."}, "take one of them"},
        {{"volumes", "--print0", "--json"}, "take one of them"},
        {{"large", "--depth", "1KB", "."}, "--depth"},
        {{"duplicates", "--limit", "1M", "."},
         "10MB, 1.5 GB, 4KiB, or a number of bytes, not \"1M\""},
        {{""}, ""},
        {{"duplicates"}, "FOLDER"},
        {{"duplicates", "--json"}, "FOLDER"},
        {{"duplicates", ".", "--frobnicate"}, "--frobnicate"},
        {{"duplicates", ".", "-x"}, "-x"},
        {{"--json", "duplicates", "."}, "--json"},
        {{"large", ".", "second"}, "second"},
        {{"duplicates", ""}, "empty"},
        {{"duplicates", ".", "--limit"}, "--limit"},
        {{"duplicates", "--limit", "-1", "."}, "--limit"},
        {{"duplicates", "--limit", "abc", "."}, "abc"},
        {{"duplicates", "--limit", "", "."}, "--limit"},
        {{"duplicates", "--limit", "18446744073709551616", "."}, "18446744073709551616"},
        {{"duplicates", "--limit", "1", "--limit", "2", "."}, "--limit"},
        {{"duplicates", ".", "--a\x1b[2J\n"}, "\\x1b[2J\\n"},
    };
    for (const auto& each : cases) {
        const auto result = programRun(each.arguments).run();
        EXPECT_EQ(result.status, 2) << ::testing::PrintToString(each.arguments);
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.error.find("--help"), std::string::npos) << result.error;
        EXPECT_NE(result.error.find(each.says), std::string::npos) << result.error;
        EXPECT_EQ(linesIn(result.error), 1) << result.error;
    }
}

TEST(CommandLine, HelpNamesEveryOption) {
    for (const auto& [command, words] :
         {std::pair{"duplicates", Strings{"--hidden", "--system", "--limit SIZE", "FOLDER",
                                          "--json", "-0,--print0", "--quiet", "--log"}},
          {"size", Strings{"PATH ..."}}}) {
        const auto help = commandRun(command, {"--help"}).run();
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.error, "");
        for (const std::string& word : words) EXPECT_THAT(help.output, HasSubstr(word));
    }
    EXPECT_THAT(programRun({"--help"}).run().output, HasSubstr("duplicates"));
    EXPECT_EQ(programRun({"--version"}).run().status, 0);
}

TEST(Statuses, AFolderThatCanNotBeSearchedIsThree) {
    TestTree tree;
    ASSERT_TRUE(tree.write("file", "x") && tree.folder("locked") &&
                tree.symlink("nowhere", "broken") && tree.fifo("pipe") &&
                tree.symlink("loop", "loop"));
    ASSERT_TRUE(tree.setMode("locked", 0) && ::chmod(tree.path().c_str(), 0755) == 0);
    expectStatuses("duplicates", tree.path(),
                   {{{"missing"}, 3, 1, {}, "No such file or directory"},
                    {{"missing/../file"}, 3, 1},
                    {{"file"}, 3, 1, {}, "Not a directory"},
                    {{"file/"}, 3, 1, {}, "Not a directory"},
                    {{"locked"}, 3, 1, {}, "Permission denied"},
                    {{"broken"}, 3, 1, {}, "No such file or directory"},
                    {{"pipe"}, 3, 1, {}, "Not a directory"},
                    {{"loop"}, 3, 1},
                    {{std::string(300, 'n')}, 3, 1},
                    {{"bad\n\xC2\x9B"}, 3, 1, {}, "No such"}},
                   {"--json", "--print0"});
    ASSERT_TRUE(tree.setMode("locked", 0700));
}

TEST(Statuses, UnreadableEntriesAreNamedAndGiveOne) {
    TestTree tree;
    for (const char* name : {"a", "b", "locked file", "in/c", "locked folder/d"})
        ASSERT_TRUE(tree.write(name, "same"));
    ASSERT_TRUE(tree.write("locked alone", "of a size of its own"));
    ASSERT_TRUE(::chmod(tree.path().c_str(), 0755) == 0 && tree.setMode("in", 0755));
    for (const char* name : {"locked file", "locked folder", "locked alone"})
        ASSERT_TRUE(tree.setMode(name, 0));
    for (const char* name : {"a", "b", "in/c"}) ASSERT_TRUE(tree.setMode(name, 0644));

    ProgramRun run = duplicatesRun({"--json", tree.path()});
    run.user = ordinaryUser();
    const auto result = run.run();
    EXPECT_EQ(result.status, 1);
    const Json document = jsonOf(result);
    std::map<std::string, std::string> skipped;
    for (const Json& entry : document["skipped"]) skipped[entry["path"]] = entry["reason"];
    // The file whose size nobody shares need not be read.
    const std::map<std::string, std::string> expected{
        {tree.at("locked file"), "Permission denied"},
        {tree.at("locked folder"), "Permission denied"}};
    EXPECT_EQ(skipped, expected);
    EXPECT_EQ(leavesOf(document).size(), 3U);
    for (const auto& [path, reason] : expected)
        EXPECT_NE(result.error.find(path + ": " + reason + "\n"), std::string::npos);
    EXPECT_EQ(linesIn(result.error), 2) << result.error;

    run.arguments.insert(run.arguments.begin() + 1, "--quiet");
    const auto quiet = run.run();
    EXPECT_EQ(quiet.status, 1);
    EXPECT_EQ(quiet.error, "");
    EXPECT_EQ(quiet.output, result.output);
    ASSERT_TRUE(tree.setMode("locked folder", 0700));
}

TEST(Statuses, AResultThatCanNotBeWrittenIsAFailure) {
    TestTree tree;
    for (const char* name : {"a", "b"}) ASSERT_TRUE(tree.write(name, "same"));
    for (const char* form : {"--json", "--print0", "--quiet"}) {
        for (const bool closed : {true, false}) {
            ProgramRun run = duplicatesRun({form, tree.path()});
            run.closeOutput = closed;
            if (!closed) run.outputFile = "/dev/full";
            const auto result = run.run();
            EXPECT_EQ(result.status, 1) << form << closed;
            EXPECT_EQ(linesIn(result.error), 1) << result.error;
        }
    }
}

TEST(StandardError, LogLinesOnlyWhenAskedFor) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a", "same") && tree.write("b\nforged", "same"));
    const auto plain = duplicatesRun({tree.path()}).run();
    EXPECT_EQ(plain.error, "");
    const auto logged = duplicatesRun({"--log", tree.path()}).run();
    EXPECT_EQ(logged.output, plain.output);
    EXPECT_GT(linesIn(logged.error), 0);
    for (std::size_t at = 0; at < logged.error.size(); at = logged.error.find('\n', at) + 1)
        EXPECT_TRUE(logged.error.substr(at).starts_with("[qrt]fun:")) << logged.error;
}

// Large files that take long to read for little disk: a byte here and there, at distances below
// which holes are not skipped.
void makeSlowFile(TestTree& tree, const std::string& name, std::uint64_t size) {
    ASSERT_TRUE(tree.sparse(name, size));
    for (std::uint64_t at = 0; at < size; at += 1000 * 1024) ASSERT_TRUE(tree.patch(name, at, "x"));
}

// Pairs of them, each of a size of its own.
constexpr int kPairs = 150;
void makeSlowTree(TestTree& tree, const std::string& folder = {}) {
    for (int i = 0; i < kPairs; ++i)
        for (const char* copy : {"a", "b"})
            makeSlowFile(tree, folder + copy + std::to_string(i),
                         (64U << 20) + static_cast<unsigned>(i) * 4096U);
}

// More than the first batch of files that is hashed together, so that groups are found already.
bool someGigabytesRead(const std::string& error) {
    const std::size_t end = error.rfind(" GB read");
    if (end == std::string::npos) return false;
    const std::size_t begin = error.rfind(' ', end - 1) + 1;
    return std::stoi(error.substr(begin, end - begin)) >= 4;
}

TEST(Signals, AStopPrintsWhatIsThere) {
    TestTree tree;
    makeSlowTree(tree);
    for (const int number : {SIGINT, SIGTERM}) {
        ProgramRun run = duplicatesRun({"--json", tree.path()});
        run.terminal = true;
        run.signals = {{number, &someGigabytesRead}};
        const auto result = run.run();
        EXPECT_FALSE(result.late);
        EXPECT_EQ(result.status, 130) << result.signal;
        const Json document = jsonOf(result);
        EXPECT_EQ(document["stopped"], true);
        const std::size_t groups = document["groups"].size();
        EXPECT_GT(groups, 0U);
        EXPECT_LT(groups, static_cast<std::size_t>(kPairs));
        EXPECT_EQ(document["summary"]["groups"], groups);
        EXPECT_EQ(document["summary"]["files"], 2 * kPairs);
        EXPECT_EQ(leavesOf(document).size(), 2 * groups);
        EXPECT_EQ(document["skipped"].size(), 0U);
        EXPECT_TRUE(result.error.ends_with("\r\x1b[K")) << "the progress line stays behind";
    }
}

TEST(Signals, TheSecondOneEndsAtOnce) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer holds signals back while a call blocks";
#endif
    // Pairs that are found before others that take long; their paths fill a pipe that nobody reads,
    // so that the command hangs in the middle of its result.
    TestTree slow;
    ASSERT_TRUE(slow.folder("x") && slow.folder("y"));
    const std::string early =
        std::filesystem::directory_iterator(slow.path())->path().filename().string() + '/';
    const std::string later = early == "x/" ? "y/" : "x/";
    for (const char* copy : {"a", "b"})
        for (int i = 0; i < 400; ++i)
            ASSERT_TRUE(slow.write(early + std::string(200, 'n') + std::to_string(i) + copy,
                                   "content " + std::to_string(i)));
    makeSlowTree(slow, later);
    for (const auto& [first, second] :
         {std::pair{SIGINT, SIGINT}, {SIGTERM, SIGTERM}, {SIGINT, SIGTERM}, {SIGTERM, SIGINT}}) {
        ProgramRun run = duplicatesRun({"--print0", slow.path()});
        run.terminal = true;
        run.holdOutput = true;
        run.secondsToLive = 60;  // a busy machine takes its time to read gigabytes
        std::chrono::steady_clock::time_point sent;
        run.signals = {{first,
                        [&](const std::string& error) {
                            sent = std::chrono::steady_clock::now();
                            return someGigabytesRead(error);
                        }},
                       {second, [&](const std::string& error) {
                            // The end of the progress line says that the first one has been taken.
                            return error.ends_with("\r\x1b[K") &&
                                   std::chrono::steady_clock::now() - sent >
                                       std::chrono::milliseconds(300);
                        }}};
        const auto result = run.run();
        EXPECT_FALSE(result.late) << first << ' ' << second;
        EXPECT_EQ(result.signal, second)
            << first << ", status " << result.status << ", " << result.output.size();
    }
}

TEST(StandardError, TheProgressLineIsForTerminals) {
    TestTree tree;
    makeSlowTree(tree);
    makeSlowFile(tree, "z\x1b[2J\xC2\x9B", 1ULL << 30);
    makeSlowFile(tree, "z\x1b[2J", 1ULL << 30);
    for (const bool terminal : {true, false}) {
        for (const bool quiet : {true, false}) {
            ProgramRun run = duplicatesRun({quiet ? "--quiet" : "--json", tree.path()});
            run.terminal = terminal;
            const auto begin = std::chrono::steady_clock::now();
            run.signals = {{SIGINT, [begin](const std::string&) {
                                return std::chrono::steady_clock::now() - begin >
                                       std::chrono::milliseconds(700);
                            }}};
            const auto result = run.run();
            EXPECT_EQ(result.status, 130);
            if (quiet || !terminal) {
                EXPECT_EQ(result.error, "");
                continue;
            }
            EXPECT_NE(result.error.find(" files, "), std::string::npos);
            EXPECT_EQ(result.error.find('\n'), std::string::npos)
                << "one line, drawn over and over";
            EXPECT_EQ(result.error.find("\x1b[2J"), std::string::npos);
            for (std::size_t at = 0; at < result.error.size();) {
                const std::size_t end =
                    std::min(result.error.find('\r', at + 1), result.error.size());
                EXPECT_LE(end - at, 80U + 4U)
                    << result.error.substr(at, end - at);  // with "\r" and the erasing
                at = end;
            }
        }
    }
}

TEST(Environment, ChangesNothing) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a", std::string(1'500'000, 'x')) &&
                tree.write("b\xC3\xA9", std::string(1'500'000, 'x')));
    const auto listing = duplicatesRun({tree.path()}).run();  // with no environment at all
    ASSERT_NE(listing.output.find("1.50 MB"), std::string::npos);
    const auto document = duplicatesRun({"--json", tree.path()}).run();
    std::vector<std::vector<std::string>> environments{{"HOME=/nonexistent"},
                                                       {"TMPDIR=/nonexistent"},
                                                       {"LC_ALL=tr_TR.UTF-8"},
                                                       {"TERM=dumb"},
                                                       {"POSIXLY_CORRECT=1"}};
    // Where ./dev test has made the German locale, a comma stands for the decimal point.
    if (const char* const folder = std::getenv("LOCPATH"))
        environments.push_back({"LC_ALL=de_DE.UTF-8", std::string("LOCPATH=") + folder});
    for (const auto& environment : environments) {
        ProgramRun run = duplicatesRun({tree.path()});
        run.environment = environment;
        EXPECT_EQ(run.run().output, listing.output) << environment.front();
        run.arguments.insert(run.arguments.begin() + 1, "--json");
        EXPECT_EQ(run.run().output, document.output) << environment.front();
    }
}

}  // namespace
}  // namespace orrinvale::testing
