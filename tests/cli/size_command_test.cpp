// orrinvale-cli size as a process: what it prints, exit statuses, several paths, the stop.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/ProgramRun.h"
#include "support/TestTree.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

ProgramRun sizeRun(std::vector<std::string> arguments, const std::string& folder = {}) {
    return commandRun("size", std::move(arguments), folder);
}

void fill(TestTree& tree) {
    ASSERT_TRUE(tree.write("a/file", std::string(1500, 'x')) && tree.write("a/in/\xff", "12345") &&
                tree.write("\xfe\n", "1") && tree.symlink("a", "link"));
}

TEST(SizeCommand, printsEachPathAndTheSum) {
    TestTree tree;
    fill(tree);
    const auto json =
        sizeRun({"--json", "a", tree.at("a/file"), "link", "link/", "\xfe\n", "a"}, tree.path())
            .run();
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(json.error, "");
    const Json expected = {
        {"sizes",
         {{{"path", tree.at("a")}, {"size", 1505}, {"files", 2}, {"folders", 1}},
          {{"path", tree.at("a/file")}, {"size", 1500}, {"files", 1}, {"folders", 0}},
          {{"path", tree.at("link")}, {"size", 1}, {"files", 1}, {"folders", 0}},
          {{"path", tree.at("link/")}, {"size", 1505}, {"files", 2}, {"folders", 1}},
          {{"path", tree.at("\xEF\xBF\xBD\n")},
           {"pathHex", Json::parse(json.output)["sizes"][4].value("pathHex", "")},
           {"size", 1},
           {"files", 1},
           {"folders", 0}},
          {{"path", tree.at("a")}, {"size", 1505}, {"files", 2}, {"folders", 1}}}},
        {"total", 6017},
        {"skipped", Json::array()},
        {"stopped", false}};
    EXPECT_EQ(Json::parse(json.output), expected) << json.output;
    EXPECT_TRUE(expected["sizes"][4]["pathHex"].get<std::string>().ends_with("2ffe0a"));

    EXPECT_EQ(sizeRun({"-0", "a", "\xfe\n"}, tree.path()).run().output,
              "1505\t" + tree.at("a") + '\0' + "1\t" + tree.at("\xfe\n") + '\0');
    ASSERT_TRUE(tree.write("[a,b]", "123") && tree.write("-x", "12"));
    EXPECT_EQ(sizeRun({"-0", "[a,b]", "--", "-x"}, tree.path()).run().output,
              "3\t" + tree.at("[a,b]") + '\0' + "2\t" + tree.at("-x") + '\0');
    EXPECT_EQ(sizeRun({"a"}, tree.path()).run().output, "   1.50 KB  " + tree.at("a") + "\n");
    EXPECT_EQ(sizeRun({"a", "\xfe\n"}, tree.path()).run().output,
              "   1.50 KB  " + tree.at("a") + "\n   0.00 KB  " + tree.at("\\xfe\\n") +
                  "\n   1.51 KB  total\n");
}

TEST(SizeCommand, whatCanNotBeMeasuredIsToldAndAloneIsThree) {
    TestTree tree;
    fill(tree);
    ASSERT_TRUE(tree.write("a/locked/x", "1") && tree.setMode("a/locked", 0));
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::ptrdiff_t lines;  // on standard error
        std::vector<std::string> skipped;
    } cases[] = {
        {{"missing"}, 3, 1, {}},
        {{"a/file/"}, 3, 1, {}},
        {{"a/locked"}, 3, 1, {}},
        {{"missing", "gone", "--quiet"}, 3, 2, {}},
        {{"missing", "link", "gone"}, 1, 2, {"gone", "missing"}},
        {{"a"}, 1, 1, {"a/locked"}},
        {{"a", "--quiet"}, 1, 0, {"a/locked"}},
        {{""}, 2, 1, {}},
        {{}, 2, 1, {}},
        {{"a", "--limit", "1"}, 2, 1, {}},
    };
    for (const auto& each : cases) {
        for (const char* form : {"--json", "-0", "--log"}) {
            ProgramRun run = sizeRun(each.arguments, tree.path());
            run.arguments.emplace_back(form);
            if (::geteuid() == 0) run.user = 65534;
            const auto result = run.run();
            const std::string said = ::testing::PrintToString(each.arguments) + result.error;
            EXPECT_EQ(result.status, each.status) << said;
            EXPECT_EQ(result.output.empty(), each.status > 1) << said;
            EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), each.lines)
                << said;
            if (form != std::string("--json") || each.skipped.empty()) continue;
            std::vector<std::string> skipped;
            const Json document = Json::parse(result.output);
            for (const Json& entry : document["skipped"])
                skipped.push_back(entry["path"].get<std::string>().substr(tree.path().size() + 1));
            EXPECT_EQ(skipped, each.skipped);
        }
    }
    ASSERT_TRUE(tree.setMode("a/locked", 0700));
    ProgramRun full = sizeRun({"a"}, tree.path());
    full.outputFile = "/dev/full";
    EXPECT_EQ(full.run().status, 1);
}

TEST(SizeCommand, helpShowsThatPathsRepeat) {
    const auto help = sizeRun({"--help"}).run();
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.output.find("PATH ..."), std::string::npos) << help.output;
}

TEST(SizeCommand, aStopPrintsWhatIsThere) {
    TestTree tree;
    for (int i = 0; i < 3000; ++i) ASSERT_TRUE(tree.write("t/" + std::to_string(i), "1"));
    // So often that it takes far longer than the first progress line lets wait.
    std::vector<std::string> arguments{"--json"};
    arguments.insert(arguments.end(), 20'000, "t");
    for (const int number : {SIGINT, SIGTERM}) {
        ProgramRun run = sizeRun(arguments, tree.path());
        run.terminal = true;
        run.signals = {{number, [](const std::string& error) {
                            return error.find(" files, ") != std::string::npos;
                        }}};
        const auto result = run.run();
        EXPECT_FALSE(result.late);
        EXPECT_EQ(result.status, 130) << result.signal;
        const Json document = Json::parse(result.output, nullptr, false);
        ASSERT_TRUE(document.is_object());
        EXPECT_EQ(document["stopped"], true);
        EXPECT_GT(document["sizes"].size(), 0U);
        EXPECT_LT(document["sizes"].size(), 20'000U);
        EXPECT_TRUE(result.error.ends_with("\r\x1b[K")) << "the progress line stays behind";
    }
}

}  // namespace
}  // namespace orrinvale::testing
