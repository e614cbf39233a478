// orrinvale-cli size as a process: what it prints, exit statuses, several paths, the stop.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

ProgramRun sizeRun(std::vector<std::string> arguments, const std::string& folder = {}) {
    return commandRun("size", std::move(arguments), folder);
}

void fillSized(TestTree& tree) {
    ASSERT_TRUE(tree.write("a/file", std::string(1500, 'x')) && tree.write("a/in/\xff", "12345") &&
                tree.write("\xfe\n", "1") && tree.symlink("a", "link"));
}

TEST(SizeCommand, printsEachPathAndTheSum) {
    TestTree tree;
    fillSized(tree);
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
    fillSized(tree);
    ASSERT_TRUE(tree.write("a/locked/x", "1") && tree.setMode("a/locked", 0));
    expectStatuses("size", tree.path(),
                   {{{"a/in"}, 0, 0},
                    {{"missing"}, 3, 1},
                    {{"a/file/"}, 3, 1},
                    {{"a/locked"}, 3, 1},
                    {{"missing", "gone", "--quiet"}, 3, 2},
                    {{"missing", "link", "gone"}, 1, 2, {"gone", "missing"}},
                    {{"a"}, 1, 1, {"a/locked"}},
                    {{"a", "--quiet"}, 1, 0, {"a/locked"}},
                    {{""}, 2, 1},
                    {{}, 2, 1},
                    {{"a", "--limit", "1"}, 2, 1}},
                   {"--json", "-0", "--log"});
    ASSERT_TRUE(tree.setMode("a/locked", 0700));
}

// Both are given so much that it takes far longer than the first progress line lets wait.
TEST(Signals, AStopPrintsWhatIsThereAndTakesTheProgressLineAway) {
    TestTree tree;
    for (int i = 0; i < 3000; ++i) ASSERT_TRUE(tree.write("t/" + std::to_string(i), "1"));
    Strings often(20'000, "t");
    often.emplace_back("--json");
    const struct {
        const char* command;
        Strings arguments;
        const char* progress;
        const char* found;
    } cases[] = {{"size", often, " files, ", "sizes"},
                 {"large", {"--json", "/"}, " entries", "entries"}};
    for (const auto& each : cases)
        for (const int number : {SIGINT, SIGTERM}) {
            ProgramRun run = commandRun(each.command, each.arguments, tree.path());
            run.terminal = true;
            run.signals = {{number, [&](const std::string& error) {
                                return error.find(each.progress) != std::string::npos;
                            }}};
            const auto result = run.run();
            if (each.found == std::string_view("entries") &&
                (result.status == 0 || result.status == 1))
                GTEST_SKIP() << "read the whole disk before the signal came";
            EXPECT_FALSE(result.late);
            EXPECT_EQ(result.status, 130) << each.command << result.signal;
            const Json document = Json::parse(result.output, nullptr, false);
            ASSERT_TRUE(document.is_object()) << each.command;
            EXPECT_EQ(document["stopped"], true);
            EXPECT_GT(document[each.found].size(), 0U);
            EXPECT_LT(document[each.found].size(), 20'000U);
            EXPECT_THAT(result.error, HasSubstr("\r\x1b[K")) << "the progress line stays behind";
        }
}

}  // namespace
}  // namespace orrinvale::testing
