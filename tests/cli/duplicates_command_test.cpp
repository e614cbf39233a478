// What orrinvale-cli duplicates finds and prints, in its three forms, on real trees.
// duplicates_run_test.cpp has the process.
#include "cli/DuplicatesTest.h"
#include "support/ServedFiles.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

constexpr std::int64_t kSummer = 1'782'864'000;  // 2026-07-01 00:00 UTC

void setTime(const std::string& path, std::int64_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 999'999'999}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

TEST(DuplicatesJson, WholeDocument) {
    TestTree tree;
    for (const char* name : {"1", "2", "3"})
        ASSERT_TRUE(tree.write(std::string(name) + "\xFF\"\n.txt", someBytes(1500, 1)));
    ASSERT_TRUE(tree.write("other.txt", someBytes(1500, 2)) && tree.write("empty1", "") &&
                tree.write("empty2", ""));
    Json leaves = Json::array();
    for (const char* name : {"1", "2", "3"}) {
        const std::string path = tree.at(std::string(name) + "\xFF\"\n.txt");
        setTime(path, kSummer);
        std::string hex;
        for (const char c : path) hex += fmt::format("{:02x}", static_cast<unsigned char>(c));
        leaves.push_back({{"path", tree.at(std::string(name) + "\xEF\xBF\xBD\"\n.txt")},
                          {"pathHex", hex},
                          {"size", 1500},
                          {"modified", "2026-07-01T02:00:00+02:00"}});
    }
    ProgramRun run = duplicatesRun({"--json", tree.path()});
    run.environment = {"TZ=CET-1CEST,M3.5.0,M10.5.0/3"};
    Json document = jsonOf(run.run());
    ASSERT_EQ(document["groups"].size(), 1U);
    Json& group = document["groups"][0];
    EXPECT_EQ(tree.at(group["name"].get<std::string>()), group["leaves"].back()["path"])
        << "named after the last";
    group.erase("name");
    std::sort(group["leaves"].begin(), group["leaves"].end());
    const Json expected = {{"root", tree.path()},
                           {"groups",
                            {{{"extension", "txt"},
                              {"type", "documents"},
                              {"bundle", false},
                              {"size", 4500},
                              {"leaves", leaves}}}},
                           {"summary",
                            {{"files", 4},
                             {"bundles", 0},
                             {"groups", 1},
                             {"leaves", 3},
                             {"bytes", 4500},
                             {"reclaimable", 3000}}},
                           {"skipped", Json::array()},
                           {"stopped", false}};
    EXPECT_EQ(document.dump(1), expected.dump(1));
}

TEST(DuplicatesJson, NamesOfOneFileFreeNothing) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a", someBytes(1000, 1)) && tree.hardLink("a", "b") &&
                tree.write("c", someBytes(1000, 1)));
    ASSERT_TRUE(tree.write("d", someBytes(300, 2)) && tree.hardLink("d", "e"));
    const Json summary = search({tree.path()})["summary"];
    EXPECT_EQ(summary.dump(),
              R"({"files":5,"bundles":0,"groups":2,"leaves":5,"bytes":3600,"reclaimable":1000})");

    TestTree bundles;
    ASSERT_TRUE(bundles.write("a.app/in", someBytes(1000, 1)) &&
                bundles.write("a.app/own", "12345"));
    ASSERT_TRUE(bundles.hardLink("a.app/in", "b.app/in") && bundles.write("b.app/own", "12345"));
    EXPECT_EQ(search({bundles.path()})["summary"]["reclaimable"], 5);
}

TEST(StandardError, FilesThatAreKnownByPathAloneAreSaidOnce) {
    ServedFiles served({"renumber"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    for (const char* name : {"a/1", "b/2"}) ASSERT_TRUE(served.source().write(name, "12345"));
    const auto result = duplicatesRun({"--json", served.path()}).run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(leavesOf(jsonOf(result)).size(), 2U);
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_NE(result.error.find("inode numbers do not last"), std::string::npos) << result.error;
    EXPECT_EQ(duplicatesRun({"--json", "--quiet", served.path()}).run().error, "");
}

TEST(DuplicatesJson, BundlesComeFirstAndHideTheirFiles) {
    TestTree tree;
    for (const char* bundle : {"One.app", "sub/Two.APP"}) {
        ASSERT_TRUE(tree.write(std::string(bundle) + "/Contents/program", someBytes(5000, 1)));
        ASSERT_TRUE(tree.write(std::string(bundle) + "/Contents/short", "x"));
    }
    for (const char* name : {"loose", "sub/loose"})
        ASSERT_TRUE(tree.write(name, someBytes(5000, 1)));
    const Json document = search({tree.path()});
    ASSERT_EQ(document["groups"].size(), 2U);
    Json bundles = document["groups"][0];
    EXPECT_EQ(
        bundles["name"],
        std::filesystem::path(bundles["leaves"][1]["path"].get<std::string>()).filename().string());
    bundles.erase("name");
    std::sort(bundles["leaves"].begin(), bundles["leaves"].end());
    const Json leaves = {{{"path", tree.at("One.app")}, {"size", 5001}, {"modified", nullptr}},
                         {{"path", tree.at("sub/Two.APP")}, {"size", 5001}, {"modified", nullptr}}};
    const Json expected = {{"extension", "APP"},
                           {"type", "others"},
                           {"bundle", true},
                           {"size", 10002},
                           {"leaves", leaves}};
    EXPECT_EQ(bundles.dump(1), expected.dump(1));
    EXPECT_EQ(document["groups"][1]["bundle"], false);
    EXPECT_EQ(document["summary"].dump(),
              R"({"files":2,"bundles":2,"groups":2,"leaves":4,"bytes":20002,"reclaimable":10001})");
}

TEST(DuplicatesSearch, OptionsChooseWhatIsLookedAt) {
    TestTree tree;
    for (const char* copy : {"1", "2"}) {
        ASSERT_TRUE(tree.write(std::string("ten") + copy, someBytes(10, 1)));
        ASSERT_TRUE(tree.write(std::string("eleven") + copy, someBytes(11, 1)));
        ASSERT_TRUE(tree.write(std::string(".dot/file") + copy, someBytes(12, 1)));
        ASSERT_TRUE(tree.write(std::string("Library/file") + copy, someBytes(13, 1)));
    }
    ASSERT_TRUE(tree.write(".ten3", someBytes(10, 1)));
    const struct {
        std::vector<std::string> options;
        std::size_t leaves;
    } cases[] = {
        {{}, 6},
        {{"--system"}, 6},  // a folder called Library counts in "/" only
        {{"--hidden"}, 9},
        {{"--limit=10"}, 4},
        {{"--limit", "0.01 KB"}, 4},
        {{"--limit", "11", "--hidden"}, 4},
        {{"--limit", "13", "--hidden", "--system"}, 0},
        {{"--limit", "18446744073709551615"}, 0},
    };
    for (auto each : cases) {
        each.options.push_back(tree.path());
        EXPECT_EQ(leavesOf(search(each.options)).size(), each.leaves)
            << ::testing::PrintToString(each.options);
    }
}

// Each run in words: what stays and what goes, or what was said to be wrong.
TEST(DuplicatesSearch, RulesFoldersAndFilters) {
    TestTree tree;
    for (const auto& [name, age] :
         {std::pair{"a/x.txt", 2}, {"b/xx.txt", 1}, {"p/x.txt", 3}, {"a/in/x.txt", 4}}) {
        ASSERT_TRUE(tree.write(name, "same"));
        setTime(tree.at(name), kSummer - age);
    }
    const std::string a = tree.at("a"), b = tree.at("b"), p = tree.at("p");
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string expected;  // sorted leaves, or a part of standard error
    } cases[] = {
        {{a, b}, 0, "a/in/x.txt a/x.txt b/xx.txt "},
        {{"--keep", "newest", a, b}, 0, "a/in/x.txt- a/x.txt- b/xx.txt+ "},
        {{"--keep", "oldest", "--exclude", "in/", a, b}, 0, "a/x.txt+ b/xx.txt- "},
        {{"--keep", "path:a/in", "--keep", "newest", "a", "b"},
         0,
         "a/in/x.txt+ a/x.txt- b/xx.txt- "},
        {{"--keep=shortest-name", "--keep=oldest", a, b}, 0, "a/in/x.txt+ a/x.txt- b/xx.txt- "},
        {{"--protect", p, "--keep", "newest", a, b},
         0,
         "a/in/x.txt- a/x.txt- b/xx.txt- p/x.txt!+ "},
        {{"--protect", tree.at("a/in"), a}, 0, "a/in/x.txt! a/x.txt "},
        {{"--kind", "music", a, b}, 0, ""},
        {{"--min", "5", a, b}, 0, ""},
        {{"--keep", "best", a}, 2, "--keep takes newest"},
        {{"--kind", "songs", a}, 2, "--kind takes documents"},
        {{"--max", "M", a}, 2, "--max takes 10MB"},
        {{"--exclude", "a[b", a}, 2, "--exclude \"a[b\", character 2: no ] closes this ["},
        {{"--protect", tree.at("none"), a}, 3, "No such file"},
        {{a, tree.at("none")}, 3, "No such file"},
    };
    for (const auto& each : cases) {
        ProgramRun run = duplicatesRun(each.arguments);
        run.arguments.emplace_back("--json");
        run.folder = tree.path();
        const auto result = run.run();
        EXPECT_EQ(result.status, each.status) << result.error;
        if (each.status != 0) {
            EXPECT_NE(result.error.find(each.expected), std::string::npos) << result.error;
            continue;
        }
        std::set<std::string> leaves;
        const Json document = jsonOf(result);
        for (const Json& group : document.at("groups"))
            for (const Json& leaf : group.at("leaves"))
                leaves.insert(leaf.at("path").get<std::string>().substr(tree.path().size() + 1) +
                              (leaf.contains("protected") ? "!" : "") +
                              (!leaf.contains("keep")    ? ""
                               : leaf.at("keep") == true ? "+"
                                                         : "-"));
        std::string text;
        for (const std::string& leaf : leaves) text += leaf + ' ';
        EXPECT_EQ(text, each.expected) << ::testing::PrintToString(each.arguments);
    }
    const auto paths = duplicatesRun({"-0", "--keep", "newest", a, b}).run();
    EXPECT_EQ(std::count(paths.output.begin(), paths.output.end(), '\0'), 2);
    EXPECT_EQ(paths.output.find("xx.txt"), std::string::npos) << "what stays is not printed";
    const auto listing = duplicatesRun({"--keep", "newest", a, b, tree.at("a/in")}).run();
    EXPECT_NE(listing.output.find("  stays  " + b), std::string::npos) << listing.output;
    EXPECT_NE(listing.output.find("2 copies would go, which gives 0.01 KB"), std::string::npos)
        << listing.output;
    EXPECT_NE(listing.error.find("a/in lies in " + a), std::string::npos) << listing.error;
}

TEST(DuplicatesSearch, TheRootMayBeNamedInManyWays) {
    TestTree tree;
    for (const char* copy : {"1", "2"})
        for (const char* folder :
             {"x", "x/y", ".dot/in", "[a]", "a,b", "duplicates", "-x", "{}", "%s"})
            ASSERT_TRUE(
                tree.write(std::string(folder) + "/file" + copy, std::string("in ") + folder));
    ASSERT_TRUE(tree.symlink("x/y", "link"));
    const struct {
        std::vector<std::string> arguments;
        std::string from;
        std::string root;
        std::size_t leaves;
    } cases[] = {
        {{"."}, "x/y", "x/y", 2},
        {{"../y/.."}, "x/y", "x", 4},
        {{"link"}, "", "link", 2},
        {{"link/.."}, "", "x", 4},
        {{".dot"}, "", ".dot", 0},  // all that lies below a hidden folder is hidden
        {{"."}, ".dot/in", ".dot/in", 0},
        {{"--hidden", "."}, ".dot/in", ".dot/in", 2},
        {{"[a]"}, "", "[a]", 2},
        {{"a,b"}, "", "a,b", 2},
        {{"{}"}, "", "{}", 2},
        {{"%s"}, "", "%s", 2},
        {{"duplicates"}, "", "duplicates", 2},
        {{"--", "-x"}, "", "-x", 2},
    };
    for (const auto& each : cases) {
        const Json document = search(each.arguments, tree.at(each.from));
        if (!document.is_object()) continue;
        EXPECT_EQ(document["root"], tree.at(each.root)) << ::testing::PrintToString(each.arguments);
        const auto leaves = leavesOf(document);
        EXPECT_EQ(leaves.size(), each.leaves) << document;
        for (const std::string& path : leaves)
            EXPECT_TRUE(path.starts_with(tree.at(each.root) + "/f") || each.leaves == 4) << path;
    }
}

TEST(DuplicatesOutput, ZeroEndedPathsAreExact) {
    TestTree tree;
    const std::vector<std::string> names{"a\nb", "\xFF\xFE", " blank ", "\\n", "\x1b[31m"};
    for (const std::string& name : names) ASSERT_TRUE(tree.write(name, "same"));
    for (const char* option : {"-0", "--print0"}) {
        const auto result = duplicatesRun({option, tree.path()}).run();
        EXPECT_EQ(result.status, 0);
        std::set<std::string> paths;
        ASSERT_TRUE(result.output.ends_with('\0'));
        for (std::size_t at = 0; at < result.output.size(); at = result.output.find('\0', at) + 1)
            paths.insert(result.output.substr(at, result.output.find('\0', at) - at));
        std::set<std::string> expected;
        for (const std::string& name : names) expected.insert(tree.at(name));
        EXPECT_EQ(paths, expected);
    }
    const auto nothing = duplicatesRun({"-0", "--limit", "4", tree.path()}).run();
    EXPECT_EQ(nothing.status, 0);
    EXPECT_EQ(nothing.output, "");
}

TEST(DuplicatesOutput, TheListingForPeople) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a.bin", std::string(1'500'000, 'x')) &&
                tree.hardLink("a.bin", "b.bin"));
    ASSERT_TRUE(tree.write("c.bin", std::string(1'500'000, 'x')));
    const std::vector<std::string> paths = leavesOf(search({tree.path()}));
    ASSERT_EQ(paths.size(), 3U);
    std::string expected =
        std::filesystem::path(paths.back()).filename().string() + "  3 copies of 1.50 MB\n";
    for (const std::string& path : paths) expected += "  " + path + "\n";
    expected += "\n1 group of duplicates among 3 files: 3 copies, 1.50 MB can be freed.\n";
    EXPECT_EQ(duplicatesRun({tree.path()}).run().output, expected);
    EXPECT_EQ(duplicatesRun({"--limit", "1500000", tree.path()}).run().output,
              "No duplicates among 0 files.\n");
}

TEST(DuplicatesOutput, NamesDoNotCommandTheTerminal) {
    TestTree tree;
    for (const char* copy : {"1", "2"})
        ASSERT_TRUE(
            tree.write("x\x1b]0;title\x07\n\r\x7F\xC2\x9B"
                       "2J\x9B" +
                           std::string(copy),
                       "same"));
    for (const bool colour : {false, true}) {
        ProgramRun run = duplicatesRun({tree.path()});
        run.outputTerminal = true;
        if (!colour) run.environment = {"NO_COLOR=1"};
        const auto result = run.run();
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.output.find("\\x1b]0;title\\x07\\n\\x0d\\x7f\\xc2\\x9b2J\\x9b1"),
                  std::string::npos)
            << result.output;
        EXPECT_EQ(result.output.find_first_of("\x07\r\x7F\x9B"), std::string::npos);
        EXPECT_EQ(result.output.find('\x1b') != std::string::npos, colour) << result.output;
        EXPECT_EQ(result.output.find("\x1b]"), std::string::npos);
    }
}

}  // namespace
}  // namespace orrinvale::testing
