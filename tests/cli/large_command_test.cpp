// orrinvale-cli large as a process: what it prints and how much of it, exit statuses, the stop, the
// log.
#include <fcntl.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

ProgramRun largeRun(std::vector<std::string> arguments, const std::string& folder = {}) {
    return commandRun("large", std::move(arguments), folder);
}

void fillLarge(TestTree& tree) {
    ASSERT_TRUE(tree.write("a/big/file", std::string(1500, 'x')) &&
                tree.write("a/\"small\"", "12345") && tree.write("\xfe\n", "123") &&
                tree.folder("empty"));
}

// The tree in short: NAME SIZE, and in braces what stands in a folder's children.
std::string shortOf(const Json& entries, const std::string& above) {
    std::string out;
    for (const Json& entry : entries) {
        const auto name = entry["name"].get<std::string>();
        EXPECT_EQ(entry["path"], above + "/" + name);
        out += name + " " + std::to_string(entry["size"].get<std::uint64_t>());
        out += entry["directory"] == true ? "/ " : " ";
        if (entry.contains("children"))
            out += "{" + shortOf(entry["children"], above + "/" + name) + "} ";
    }
    return out;
}

TEST(LargeCommand, printsAsDeepAndAsMuchAsAsked) {
    TestTree tree;
    fillLarge(tree);
    const struct {
        std::vector<std::string> arguments;
        std::string json, paths, listing;
    } cases[] = {
        {{},
         "a 1505/ \xEF\xBF\xBD\n 3 empty 0/ ",
         "/a|/\xfe\n|/empty|",
         "   1.50 KB  a/\n   0.00 KB  \\xfe\\n\n   0.00 KB  empty/\n"},
        {{"--depth", "0"}, "", "", ""},
        {{"--depth", "2", "--top", "1"},
         "a 1505/ {big 1500/ } ",
         "/a|/a/big|",
         "   1.50 KB  a/\n   1.50 KB    big/\n"},
        {{"--depth", "99"},
         "a 1505/ {big 1500/ {file 1500 } \"small\" 5 } \xEF\xBF\xBD\n 3 empty 0/ {} ",
         "/a|/a/big|/a/big/file|/a/\"small\"|/\xfe\n|/empty|",
         "   1.50 KB  a/\n   1.50 KB    big/\n   1.50 KB      file\n   0.00 KB    \"small\"\n   "
         "0.00 KB  \\xfe\\n\n"
         "   0.00 KB  empty/\n"},
        {{"--top", "0"}, "", "", ""},
    };
    for (const auto& each : cases) {
        const auto printed = [&](const char* form) {
            ProgramRun run = largeRun(each.arguments, tree.path());
            if (*form != 0) run.arguments.emplace_back(form);
            run.arguments.emplace_back(".");
            const auto result = run.run();
            EXPECT_EQ(result.status, 0);
            EXPECT_EQ(result.error, "");
            return result.output;
        };
        const Json json = Json::parse(printed("--json"));
        EXPECT_EQ(json["root"], tree.path());
        EXPECT_EQ(json["size"], 1508);
        EXPECT_EQ(json["skipped"], Json::array());
        EXPECT_EQ(json["stopped"], false);
        EXPECT_EQ(shortOf(json["entries"], tree.path()), each.json);
        std::string paths;
        for (const char c : each.paths)
            paths += c == '|'                                           ? std::string(1, '\0')
                     : c == '/' && (paths.empty() || paths.back() == 0) ? tree.path() + "/"
                                                                        : std::string(1, c);
        EXPECT_EQ(printed("-0"), paths);
        EXPECT_EQ(printed(""), each.listing + "   1.51 KB  " + tree.path() + "\n");
    }
    const Json raw = Json::parse(largeRun({"--json", tree.path()}).run().output)["entries"][1];
    EXPECT_TRUE(raw.value("pathHex", "").ends_with("2ffe0a")) << raw;
}

TEST(LargeCommand, whatCanNotBeReadAndWhatIsWrong) {
    TestTree tree;
    fillLarge(tree);
    ASSERT_TRUE(tree.write("b/locked/x", "1") && tree.setMode("b/locked", 0) &&
                tree.write("file", "1"));
    expectStatuses("large", tree.path(),
                   {{{"a"}, 0, 0},
                    {{"b"}, 1, 1, {"b/locked"}},
                    {{"b", "--quiet"}, 1, 0, {"b/locked"}},
                    {{"missing"}, 3, 1},
                    {{"file"}, 3, 1},
                    {{"b/locked"}, 3, 1},
                    {{""}, 2, 1},
                    {{}, 2, 1},
                    {{"a", "b"}, 2, 1},
                    {{"a", "--depth", "x"}, 2, 1},
                    {{"a", "--top", "-1"}, 2, 1}},
                   {"--json", "-0"});
    ASSERT_TRUE(tree.setMode("b/locked", 0700));
}

// Two films in folders and a text, of which one film has been left alone for years.
TEST(LargeCommand, listsTheFilesOfAllFoldersAsTheyAreWished) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.write("a/b/film.MP4", std::string(1500, 'x')) &&
                tree.write("a/old.mkv", std::string(2500, 'x')) &&
                tree.write("note.txt", "12345") &&
                tree.write("Tool.app/bin/tool", std::string(700, 'x')));
    const timespec longAgo{.tv_sec = 1'400'000'000, .tv_nsec = 0};
    const timespec times[]{longAgo, longAgo};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.at("a/old.mkv").c_str(), times, 0), 0);
    const struct {
        std::vector<std::string> arguments;
        std::string paths;
        std::uint64_t files, size;
    } cases[] = {
        {{}, "/a/old.mkv|/a/b/film.MP4|/Tool.app|/note.txt|", 4, 4705},
        {{"--top", "1"}, "/a/old.mkv|", 4, 4705},
        {{"--kind", "videos", "--sort", "name"}, "/a/b/film.MP4|/a/old.mkv|", 2, 4000},
        {{"--kind", "music"}, "", 0, 0},
        {{"--older", "1y"}, "/a/old.mkv|", 1, 2500},
        {{"--unopened", "1y", "--sort", "opened"}, "/a/old.mkv|", 1, 2500},
        {{"--sort", "age", "--top", "2", "--kind", "videos"}, "/a/old.mkv|/a/b/film.MP4|", 2, 4000},
    };
    for (const auto& each : cases) {
        const auto printed = [&](const char* form) {
            ProgramRun run = largeRun(each.arguments);
            run.arguments.insert(run.arguments.end(), {"--flat", form, "--quiet", tree.path()});
            const auto result = run.run();
            EXPECT_EQ(result.status, 0) << result.error;
            return result.output;
        };
        std::string paths = printed("-0");
        for (std::size_t at = 0; (at = paths.find(tree.path(), at)) != std::string::npos;)
            paths.erase(at, tree.path().size());
        std::ranges::replace(paths, '\0', '|');
        EXPECT_EQ(paths, each.paths);
        const Json json = Json::parse(printed("--json"));
        EXPECT_EQ(json["files"], each.files) << each.paths;
        EXPECT_EQ(json["size"], each.size) << each.paths;
    }
    const Json first =
        Json::parse(largeRun({"--flat", "--json", tree.path()}).run().output)["entries"][0];
    EXPECT_EQ(first["name"], "old.mkv");
    EXPECT_EQ(first["kind"], "videos");
    EXPECT_TRUE(first["modified"].get<std::string>().starts_with("2014-05-13T")) << first;
    EXPECT_EQ(first["opened"], first["modified"]);
    EXPECT_EQ(largeRun({"--flat", "--kind", "videos", "--older", "1y", tree.path()}).run().output,
              "   2.50 KB  2014-05-13  " + tree.at("a/old.mkv") + "\n   2.50 KB  1 file in " +
                  tree.path() + "\n");
    // A time of 1970 is one, and one of two names says so.
    const timespec start[]{{}, {}};
    ASSERT_TRUE(::utimensat(AT_FDCWD, tree.at("note.txt").c_str(), start, 0) == 0 &&
                tree.hardLink("note.txt", "a/again.txt"));
    ProgramRun named =
        largeRun({"--flat", "--kind", "documents", "--unopened", "50y", tree.path()});
    named.environment = {"TZ=UTC"};
    const auto listed = named.run();
    EXPECT_THAT(listed.output, ::testing::HasSubstr("  1970-01-01  " + tree.at("note.txt") +
                                                    "  (one of 2 names)\n"));
    named.arguments.push_back("--json");
    const Json both = Json::parse(named.run().output);
    EXPECT_EQ(both["files"], 2);
    EXPECT_EQ(both["entries"][0]["names"], 2);
    EXPECT_EQ(both["entries"][0]["modified"], "1970-01-01T00:00:00+00:00");
    const timespec before[]{{-400 * 86400, 0}, {-400 * 86400, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.at("note.txt").c_str(), before, 0), 0);
    const Json earlier = Json::parse(named.run().output);
    EXPECT_TRUE(earlier["files"] == 2 && earlier["entries"][0]["modified"].is_null() &&
                earlier["entries"][0]["opened"].is_null())
        << earlier;
    named.arguments.pop_back();
    EXPECT_THAT(named.run().output,
                ::testing::HasSubstr("  pre-1970    " + tree.at("note.txt") + "  (one of"));
    EXPECT_EQ(both["openedUnanswered"], 0);
    EXPECT_EQ(first["names"], 1);
    expectStatuses("large", tree.path(),
                   {{{"--flat", "--kind", "films", "a"}, 2, 1},
                    {{"--flat", "--older", "1", "a"}, 2, 1},
                    {{"--flat", "--sort", "date", "a"}, 2, 1},
                    {{"--flat", "--depth", "2", "a"}, 2, 1},
                    {{"--older", "1y", "a"}, 2, 1}},
                   {"--json", "-0"});
}

TEST(LargeCommand, theLogTellsTheEndOfTheScan) {
    TestTree tree;
    fillLarge(tree);
    EXPECT_EQ(largeRun({"--log", "--quiet", tree.path()}).run().error, "---end----\n");
}

TEST(LargeCommand, neitherDepthNorPathsHaveAnEnd) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("deep", 3000, "leaf"));
    const auto result = largeRun({"-0", "--depth", "4000", tree.path()}).run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\0'), 3002);
    EXPECT_TRUE(result.output.ends_with(std::string("/d/d/leaf\0", 10)));
}

}  // namespace
}  // namespace orrinvale::testing
