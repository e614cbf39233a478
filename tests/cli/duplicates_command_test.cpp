// What orrinvale-cli duplicates finds and prints, in its three forms, on real trees. duplicates_run_test.cpp has the process.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <set>

#include "cli/DuplicatesTest.h"

namespace orrinvale::testing {
namespace {

constexpr std::int64_t kWinter = 1'767'225'600;  // 2026-01-01 00:00 UTC
constexpr std::int64_t kSummer = 1'782'864'000;  // 2026-07-01 00:00 UTC

void setTime(const std::string& path, std::int64_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 999'999'999}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

// The names in a folder in the order in which the system gives them, which is the order of the search.
std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), &::closedir);
    while (const dirent* entry = ::readdir(stream.get()))
        if (std::string_view(entry->d_name) != "." && std::string_view(entry->d_name) != "..")
            names.emplace_back(entry->d_name);
    return names;
}

// The leaves of one group: the file that opened it joins behind those that were found for it, and then the first of all moves to
// the end and gives the name.
template <class Belongs> std::vector<std::string> shownOrder(const std::vector<std::string>& names, Belongs belongs) {
    std::vector<std::string> out;
    std::copy_if(names.begin(), names.end(), std::back_inserter(out), belongs);
    if (out.size() > 1) std::rotate(out.begin(), out.begin() + 2, out.end());
    return out;
}

Json leaf(const std::string& path, std::uint64_t size) {
    return {{"path", path}, {"size", size}, {"modified", "2026-01-01T00:00:00+00:00"}};
}

TEST(DuplicatesJson, WholeDocumentInTheOrderOfDiscovery) {
    TestTree tree;
    // Six contents of one size and six sizes, so that neither alone makes a group.
    std::map<std::string, std::string> contents;
    for (int i = 0; i < 36; ++i) {
        const std::string name = "file" + std::to_string(i * 7919 % 1000) + ".txt";
        contents[name] = someBytes(1000 + static_cast<std::size_t>(i % 12 / 6) * 500, static_cast<unsigned>(i % 12));
    }
    contents["single.txt"] = someBytes(1000, 99);
    contents["empty1.txt"] = contents["empty2.txt"] = "";
    for (const auto& [name, bytes] : contents) {
        ASSERT_TRUE(tree.write(name, bytes));
        setTime(tree.at(name), kWinter);
    }

    const std::vector<std::string> names = namesIn(tree.path());
    ASSERT_EQ(names.size(), contents.size());
    Json groups = Json::array();
    std::set<std::string> done;
    for (const std::string& opener : names) {
        const std::string& bytes = contents[opener];
        if (bytes.empty() || !done.insert(bytes).second) continue;
        const std::vector<std::string> shown =
            shownOrder(names, [&](const auto& name) { return contents[name] == bytes; });
        if (shown.size() < 2) continue;
        Json leaves = Json::array();
        for (const std::string& name : shown) leaves.push_back(leaf(tree.at(name), bytes.size()));
        groups.push_back({{"name", shown.back()},
                          {"extension", "txt"},
                          {"type", "documents"},
                          {"bundle", false},
                          {"size", bytes.size() * leaves.size()},
                          {"leaves", leaves}});
    }
    ASSERT_EQ(groups.size(), 12U);
    const Json expected = {{"root", tree.path()},
                           {"groups", groups},
                           {"summary",
                            {{"files", 37},
                             {"bundles", 0},
                             {"groups", 12},
                             {"leaves", 36},
                             {"bytes", 18 * 1000 + 18 * 1500},
                             {"reclaimable", 12 * 1000 + 12 * 1500}}},
                           {"skipped", Json::array()},
                           {"stopped", false}};
    EXPECT_EQ(search({tree.path()}).dump(1), expected.dump(1));
}

TEST(DuplicatesJson, TheExtensionGivesTheType) {
    const struct {
        const char* ending;
        const char* extension;
        const char* type;
    } cases[] = {
        {".TXT", "TXT", "documents"}, {".mp3", "mp3", "music"},      {".ogg", "ogg", "videos"},
        {".Zip", "Zip", "archives"},  {".jpeg", "jpeg", "pictures"}, {".tar.gz", "gz", "others"},
        {"", "", "others"},           {".", "", "others"},           {".mp3~", "mp3~", "others"},
    };
    TestTree tree;
    std::map<std::string, std::pair<std::string, std::string>> expected;
    for (unsigned i = 0; i < std::size(cases); ++i) {
        for (const char* copy : {"a", "b"})
            ASSERT_TRUE(tree.write(copy + std::to_string(i) + cases[i].ending, someBytes(100, i)));
        expected[std::to_string(i) + cases[i].ending] = {cases[i].extension, cases[i].type};
    }
    const Json document = search({tree.path()});
    ASSERT_EQ(document["groups"].size(), std::size(cases));
    for (const Json& group : document["groups"]) {
        const auto& [extension, type] = expected[group["name"].get<std::string>().substr(1)];
        EXPECT_EQ(group["extension"], extension) << group;
        EXPECT_EQ(group["type"], type) << group;
    }
}

TEST(DuplicatesJson, NamesOfOneFileFreeNothing) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a", someBytes(1000, 1)) && tree.hardLink("a", "b") && tree.write("c", someBytes(1000, 1)));
    ASSERT_TRUE(tree.write("d", someBytes(300, 2)) && tree.hardLink("d", "e"));
    const Json summary = search({tree.path()})["summary"];
    EXPECT_EQ(summary.dump(), R"({"files":5,"bundles":0,"groups":2,"leaves":5,"bytes":3600,"reclaimable":1000})");
}

TEST(DuplicatesJson, BundlesComeFirstAndHideTheirFiles) {
    TestTree tree;
    for (const char* bundle : {"One.app", "sub/Two.APP"}) {
        ASSERT_TRUE(tree.write(std::string(bundle) + "/Contents/program", someBytes(5000, 1)));
        ASSERT_TRUE(tree.write(std::string(bundle) + "/Contents/short", "x"));
    }
    for (const char* name : {"loose", "sub/loose"}) ASSERT_TRUE(tree.write(name, someBytes(5000, 1)));
    const Json document = search({tree.path()});
    ASSERT_EQ(document["groups"].size(), 2U);
    Json bundles = document["groups"][0];
    EXPECT_EQ(bundles["name"],
              std::filesystem::path(bundles["leaves"][1]["path"].get<std::string>()).filename().string());
    bundles.erase("name");
    std::sort(bundles["leaves"].begin(), bundles["leaves"].end());
    const Json leaves = {{{"path", tree.at("One.app")}, {"size", 5001}, {"modified", nullptr}},
                         {{"path", tree.at("sub/Two.APP")}, {"size", 5001}, {"modified", nullptr}}};
    const Json expected = {
        {"extension", "APP"}, {"type", "others"}, {"bundle", true}, {"size", 10002}, {"leaves", leaves}};
    EXPECT_EQ(bundles.dump(1), expected.dump(1));
    EXPECT_EQ(document["groups"][1]["bundle"], false);
    EXPECT_EQ(document["summary"].dump(),
              R"({"files":2,"bundles":2,"groups":2,"leaves":4,"bytes":20002,"reclaimable":10001})");
}

TEST(DuplicatesJson, BadBytesInANameComeInHexadecimalToo) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a\xFF\n\".txt", "same") && tree.write("g\xC3\xA9", "same"));
    const Json document = search({tree.path()});
    ASSERT_EQ(document["groups"].size(), 1U);
    std::map<std::string, std::string> hex;
    for (const Json& each : document["groups"][0]["leaves"]) hex[each["path"]] = each.value("pathHex", "none");
    std::string exact;
    for (const char c : tree.at("a\xFF\n\".txt")) {
        constexpr std::string_view digits = "0123456789abcdef";
        exact += digits[static_cast<unsigned char>(c) / 16];
        exact += digits[static_cast<unsigned char>(c) % 16];
    }
    const std::map<std::string, std::string> expected{{tree.at("a\xEF\xBF\xBD\n\".txt"), exact},
                                                      {tree.at("g\xC3\xA9"), "none"}};
    EXPECT_EQ(hex, expected);
}

TEST(DuplicatesJson, TimesCarryTheOffsetOfTheirDay) {
    const struct {
        const char* zone;
        std::int64_t seconds;
        const char* text;
    } cases[] = {
        {"", kWinter, "2026-01-01T00:00:00+00:00"},
        {"UTC", kSummer, "2026-07-01T00:00:00+00:00"},
        {"Asia/Kolkata", kWinter, "2026-01-01T05:30:00+05:30"},
        {"IST-5:30", kWinter, "2026-01-01T05:30:00+05:30"},
        {"Europe/Berlin", kWinter, "2026-01-01T01:00:00+01:00"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", kWinter, "2026-01-01T01:00:00+01:00"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", kSummer, "2026-07-01T02:00:00+02:00"},
        {"NST3:30", kWinter, "2025-12-31T20:30:00-03:30"},
        {"UTC0", -1, "1969-12-31T23:59:59+00:00"},
    };
    TestTree tree;
    ASSERT_TRUE(tree.write("a", "same") && tree.write("b", "same"));
    for (const auto& each : cases) {
        const std::string zone = each.zone;
        if (zone.find('/') < 10 && !std::filesystem::exists("/usr/share/zoneinfo/" + zone))
            continue;  // no zone files here
        for (const char* name : {"a", "b"}) setTime(tree.at(name), each.seconds);
        ProgramRun run = duplicatesRun({"--json", tree.path()});
        if (!zone.empty()) run.environment = {"TZ=" + zone};
        const Json document = jsonOf(run.run());
        ASSERT_EQ(document["groups"].size(), 1U);
        for (const Json& leafOfGroup : document["groups"][0]["leaves"])
            EXPECT_EQ(leafOfGroup["modified"], each.text) << zone;
    }
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
        {{"--limit", "0"}, 6},
        {{"--limit", "9"}, 6},
        {{"--limit=10"}, 4},
        {{"--limit", "11", "--hidden"}, 4},
        {{"--limit", "13", "--hidden", "--system"}, 0},
        {{"--limit", "18446744073709551615"}, 0},
    };
    for (auto each : cases) {
        each.options.push_back(tree.path());
        EXPECT_EQ(leavesOf(search(each.options)).size(), each.leaves) << ::testing::PrintToString(each.options);
    }
}

TEST(DuplicatesSearch, TheRootMayBeNamedInManyWays) {
    TestTree tree;
    for (const char* copy : {"1", "2"})
        for (const char* folder : {"x", "x/y", ".dot/in", "[a]", "a,b", "duplicates", "-x", "{}", "%s"})
            ASSERT_TRUE(tree.write(std::string(folder) + "/file" + copy, std::string("in ") + folder));
    ASSERT_TRUE(tree.symlink("x/y", "link"));
    const struct {
        std::vector<std::string> arguments;
        std::string from;
        std::string root;
        std::size_t leaves;
    } cases[] = {
        {{"."}, "x/y", "x/y", 2},
        {{"./x/y/"}, "", "x/y", 2},
        {{"..//"}, "x/y", "x", 4},
        {{"../y/.."}, "x/y", "x", 4},
        {{"y/../y"}, "x", "x/y", 2},
        {{tree.at("x///y//")}, "", "x/y", 2},
        {{"link"}, "", "link", 2},
        {{"link/"}, "", "link", 2},
        {{"link/.."}, "", "x", 4},
        {{".dot"}, "", ".dot", 0},  // all that lies below a hidden folder is hidden
        {{"."}, ".dot/in", ".dot/in", 0},
        {{"--hidden", "."}, ".dot/in", ".dot/in", 2},
        {{"[a]"}, "", "[a]", 2},
        {{"a,b"}, "", "a,b", 2},
        {{"{}"}, "", "{}", 2},
        {{"%s"}, "", "%s", 2},
        {{"duplicates"}, "", "duplicates", 2},
        {{"./duplicates"}, "", "duplicates", 2},
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
    ASSERT_TRUE(tree.write("a.bin", std::string(1'500'000, 'x')) && tree.hardLink("a.bin", "b.bin"));
    ASSERT_TRUE(tree.write("c.bin", std::string(1'500'000, 'x')));
    const std::vector<std::string> names = shownOrder(namesIn(tree.path()), [](const auto&) { return true; });
    std::string expected = names.back() + "  3 copies of 1.50 MB\n";
    for (const std::string& name : names) expected += "  " + tree.at(name) + "\n";
    expected += "\n1 group of duplicates among 3 files: 3 copies, 1.50 MB can be freed.\n";
    EXPECT_EQ(duplicatesRun({tree.path()}).run().output, expected);
    EXPECT_EQ(duplicatesRun({"--limit", "1500000", tree.path()}).run().output, "No duplicates among 0 files.\n");
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
        EXPECT_NE(result.output.find("\\x1b]0;title\\x07\\n\\x0d\\x7f\\xc2\\x9b2J\\x9b1"), std::string::npos)
            << result.output;
        EXPECT_EQ(result.output.find_first_of("\x07\r\x7F\x9B"), std::string::npos);
        EXPECT_EQ(result.output.find('\x1b') != std::string::npos, colour) << result.output;
        EXPECT_EQ(result.output.find("\x1b]"), std::string::npos);
    }
}

}  // namespace
}  // namespace orrinvale::testing
