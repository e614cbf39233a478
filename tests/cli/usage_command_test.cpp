// orrinvale-cli usage as a process: what it prints, that levels add up, what it says of what it
// could not count, exit statuses.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

ProgramRun usageRun(std::vector<std::string> arguments, const std::string& folder = {}) {
    return commandRun("usage", std::move(arguments), folder);
}

void fill(TestTree& tree) {
    ASSERT_TRUE(tree.write("a/big/file", std::string(2500, 'x')) &&
                tree.write("a/small", "12345") && tree.write("a/empty", "") &&
                tree.write("\xfe\n", std::string(1200, 'x')) &&
                tree.hardLink("a/big/file", "again"));
}

// "NAME SIZE" with what is below the limit in brackets, and in braces the children.
std::string shortOf(const Json& folder) {
    std::string out = fmt::format("[{} {}]", folder["below"]["entries"].get<int>(),
                                  folder["below"]["size"].get<int>());
    const char* const list = folder.contains("entries") ? "entries" : "children";
    if (!folder.contains(list)) return out;
    for (const Json& entry : folder[list]) {
        out +=
            " " + entry["name"].get<std::string>() + fmt::format(" {}", entry["size"].get<int>());
        if (entry["directory"] == true) out += " {" + shortOf(entry) + "}";
    }
    return out;
}

TEST(UsageCommand, printsLevelsThatAddUp) {
    TestTree tree;
    fill(tree);
    const struct {
        std::vector<std::string> arguments;
        std::string json, paths, listing;
    } cases[] = {
        {{}, "[3 6205]", "", "   6.20 KB  (3 items under 1.00 MB)\n"},
        {{"--limit", "1.2 KB"},
         "[0 0] a 2505 {[2 5]} again 2500 \xEF\xBF\xBD\n 1200",
         "/a|/again|/\xfe\n|",
         "   2.51 KB  a/\n   2.50 KB  again\n   1.20 KB  \\xfe\\n\n"},
        {{"--limit", "2KB", "--depth", "2"},
         "[1 1200] a 2505 {[2 5] big 2500 {[0 0]}} again 2500",
         "/a|/a/big|/again|",
         "   2.51 KB  a/\n   2.50 KB    big/\n   0.00 KB    (2 items under 2.00 KB)\n"
         "   2.50 KB  again\n   1.20 KB  (1 item under 2.00 KB)\n"},
        {{"--limit", "0", "--depth", "0"}, "[0 0]", "", ""},
    };
    for (const auto& each : cases) {
        const auto printed = [&](const char* form) {
            ProgramRun run = usageRun(each.arguments, tree.path());
            if (*form != 0) run.arguments.emplace_back(form);
            run.arguments.emplace_back(".");
            const auto result = run.run();
            EXPECT_EQ(result.status, 0) << result.error;
            return result.output;
        };
        const Json json = Json::parse(printed("--json"));
        EXPECT_EQ(json["root"], tree.path());
        EXPECT_EQ(json["size"], 6205);
        EXPECT_LT(json["onDisk"], 3 * 4096 + 3 * 4096 + 1);  // the linked file once
        EXPECT_EQ(json["stopped"], false);
        EXPECT_EQ(shortOf(json), each.json);
        std::string paths;
        for (const char c : each.paths)
            paths += c == '|'                                           ? std::string(1, '\0')
                     : c == '/' && (paths.empty() || paths.back() == 0) ? tree.path() + "/"
                                                                        : std::string(1, c);
        EXPECT_EQ(printed("-0"), paths);
        EXPECT_EQ(printed(""), each.listing + "   6.20 KB  " + tree.path() + "\n");
    }
}

TEST(UsageCommand, saysWhatItCouldNotCount) {
    TestTree tree;
    ASSERT_TRUE(tree.write("b/locked/x", "1") && tree.setMode("b/locked", 0) &&
                tree.write("a/y", "1") && tree.write("file", "1"));
    expectStatuses("usage", tree.path(),
                   {{{"a", "--limit", "0"}, 0, 0},
                    {{"b", "--limit", "0"}, 1, 1, {"b/locked"}},
                    {{"b", "--quiet", "--limit", "0"}, 1, 0, {"b/locked"}},
                    {{"missing"}, 3, 1},
                    {{"file"}, 3, 1},
                    {{"b/locked"}, 3, 1},
                    {{""}, 2, 1},
                    {{"a", "--limit", "1M"}, 2, 1},
                    {{"a", "--depth", "-1"}, 2, 1}},
                   {"--json", "-0"});
    ProgramRun run = usageRun({"--quiet", "--json", "b"}, tree.path());
    if (::geteuid() == 0) run.user = 65534;
    const Json json = Json::parse(run.run().output);
    EXPECT_EQ(json["partial"], true);
    EXPECT_EQ(json["entries"][0]["unread"], true);
    run.arguments = {"usage", "--quiet", "b"};
    EXPECT_NE(run.run().output.find("locked/  (could not be read)"), std::string::npos);
    ASSERT_TRUE(tree.setMode("b/locked", 0700));
}

}  // namespace
}  // namespace orrinvale::testing
