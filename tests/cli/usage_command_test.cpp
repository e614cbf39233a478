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

TEST(UsageCommand, comparesWithAScanThatItKept) {
    TestTree tree;
    TestTree state;
    const auto run = [&](std::vector<std::string> arguments) {
        ProgramRun each = usageRun(std::move(arguments), tree.path());
        each.environment = {"XDG_STATE_HOME=" + state.path(), "TZ=UTC"};
        return each.run();
    };
    ASSERT_TRUE(tree.sparse("d/gone.iso", 3'000'000) && tree.sparse("d/shrinks", 9'000'000) &&
                tree.write("d/few", "12345"));
    const auto none = run({"--since", "last", "d"});
    EXPECT_EQ(none.status, 3);
    EXPECT_EQ(none.output, "");
    // Kept before it is printed: the reader of the pipe is gone.
    ProgramRun piped = usageRun({}, tree.path());
    piped.arguments = {"-c",
                       "{ sleep 0.3; exec \"$0\" usage --remember --quiet --limit 0 d; } | true",
                       std::exchange(piped.program, "/bin/sh")};
    piped.environment = {"XDG_STATE_HOME=" + state.path(), "PATH=/usr/bin:/bin"};
    static_cast<void>(piped.run());
    EXPECT_EQ(namesIn(state.at("com.kelpford.Orrinvale/scans")).size(), 1);
    EXPECT_EQ(run({"--forget"}).status, 0);
    EXPECT_TRUE(namesIn(state.at("com.kelpford.Orrinvale/scans")).empty());
    EXPECT_EQ(run({"--remember"}).status, 2) << "of no folder";
    EXPECT_EQ(run({"--since", "last", "--quiet", "--remember", "d"}).status, 0) << "the first one";
    ASSERT_TRUE(tree.sparse("d/shrinks", 2'500'000) && tree.sparse("d/in/it/new.iso", 8'000'000) &&
                tree.write("d/in/note", "12") && tree.write("d/few", "123"));
    std::filesystem::remove(tree.at("d/gone.iso"));

    const auto listed = run({"--since", "last", "d"});
    EXPECT_EQ(listed.status, 0) << listed.error;
    EXPECT_THAT(listed.output,
                ::testing::StartsWith("   +8.00 MB  in/  (new)\n   -6.50 MB  shrinks\n"
                                      "   -3.00 MB  gone.iso  (gone, or under 1.00 MB now)\n"
                                      "    0.00 KB  (files under 1.00 MB then or now)\n"
                                      "   -1.50 MB  " +
                                      tree.at("d") + "  (12.00 MB to 10.50 MB, since "));
    const Json json = Json::parse(run({"--since", "last", "--json", "--limit", "4MB", "d"}).output);
    EXPECT_EQ(json["change"], -1'500'000);
    EXPECT_EQ(json["entries"].size(), 2);
    EXPECT_EQ(json["entries"][0]["state"], "new");
    EXPECT_EQ(json["entries"][1]["onDiskChange"], 0);
    EXPECT_EQ(json["below"]["entries"], 1);
    EXPECT_EQ(json["below"]["change"], -3'000'002);
    EXPECT_EQ(run({"--since", "last", "-0", "d"}).output,
              tree.at("d/in") + '\0' + tree.at("d/shrinks") + '\0');

    // Of one folder below another the terminal tells the one that is the reason.
    EXPECT_EQ(run({"--quiet", "--remember", "."}).status, 0);
    ASSERT_TRUE(tree.sparse("d/in/it/new.iso", 80'000'000));
    EXPECT_THAT(run({"--since", "2100-01-01", "."}).output,
                ::testing::StartsWith("  +72.00 MB  d/  mostly in/it/new.iso\n"));
    for (const char* const bad : {"", "tomorrow", "2026-13-01", "2026-11-15T25:00", "2026-11-15x"})
        EXPECT_EQ(run({"--since", bad, "d"}).status, 2) << bad;
    for (const char* const before : {"2000-01-01T10:00", "last-week"}) {
        const auto old = run({"--since", before, "d"});
        EXPECT_EQ(old.status, 0);
        EXPECT_THAT(old.error, HasSubstr("no scan is as old as that"));
    }

    std::filesystem::remove_all(tree.at("d"));
    EXPECT_THAT(run({"--since", "last", "d"}).error, HasSubstr("1 scan of it is kept"));
    EXPECT_EQ(run({"--forget", "d"}).status, 0);
    EXPECT_THAT(run({"--since", "last", "d"}).error, ::testing::Not(HasSubstr("is kept")));
}

TEST(UsageCommand, saysWhatTwoScansDoNotTellOfEachOther) {
    TestTree tree;
    TestTree state;
    std::filesystem::permissions(state.path(), std::filesystem::perms::all);
    const auto run = [&](std::vector<std::string> arguments) {
        ProgramRun each = usageRun(std::move(arguments), tree.path());
        each.environment = {"XDG_STATE_HOME=" + state.path()};
        if (::geteuid() == 0) each.user = 65534;
        return each.run();
    };
    ASSERT_TRUE(tree.sparse("d/lock/deep/film", 3'000'000) && tree.sparse("d/x/a.iso", 5'000'000));
    EXPECT_EQ(run({"--quiet", "--remember", "d"}).status, 0);
    ASSERT_TRUE(tree.setMode("d/lock", 0) && tree.sparse("d/x/b.iso", 5'000'000));
    std::filesystem::remove(tree.at("d/x/a.iso"));
    const auto listed = run({"--quiet", "--since", "last", "d"});
    EXPECT_THAT(listed.output,
                ::testing::StartsWith("    0.00 KB  x/  (changes of up to 5.00 MB in it)\n"
                                      "   -3.00 MB  lock/  (could not be read each time)\n"
                                      "   -3.00 MB  " +
                                      tree.at("d") + "  (8.00 MB to 5.00 MB, since "));
    EXPECT_THAT(listed.output, ::testing::EndsWith(")  (not all of it could be read)\n"));
    const Json json =
        Json::parse(run({"--quiet", "--since", "last", "--json", "--depth", "2", "d"}).output);
    EXPECT_EQ(json["entries"][0]["largestWithin"], 5'000'000);
    EXPECT_EQ(json["entries"][0]["children"][0]["sizeUnder"], 1'000'000);
    EXPECT_EQ(json["entries"][0]["children"][1]["sizeBeforeUnder"], 1'000'000);
    EXPECT_EQ(json["entries"][1]["state"], "shrank");
    EXPECT_EQ(json["entries"][1]["partial"], true);
    EXPECT_FALSE(json["entries"][1].contains("children")) << "nobody knows what is in it now";
    EXPECT_EQ(json["foldersFrom"], 0);
    ASSERT_TRUE(tree.setMode("d/lock", 0755));

    // Another file system at the same path.
    if (!isThere("/dev/shm")) return;
    const TestTree memory("/dev/shm");
    std::filesystem::permissions(memory.path(), std::filesystem::perms::all);
    if (attributesOf(memory.path()).device == attributesOf(tree.path()).device) return;
    ASSERT_EQ(::symlink(memory.path().c_str(), tree.at("disk").c_str()), 0);
    EXPECT_EQ(run({"--quiet", "--remember", "disk"}).status, 0);
    ASSERT_EQ(::unlink(tree.at("disk").c_str()), 0);
    ASSERT_EQ(::symlink("d", tree.at("disk").c_str()), 0);
    const auto other = run({"--since", "last", "disk"});
    EXPECT_EQ(other.status, 3);
    EXPECT_THAT(other.error, HasSubstr("no scan of the file system that lies there is kept"));
    const auto wanted = run({"--since", "last", "--any-volume", "disk"});
    EXPECT_EQ(wanted.status, 0) << wanted.output;
    EXPECT_THAT(wanted.error, HasSubstr("another file system lies there than at that time"));
}

}  // namespace
}  // namespace orrinvale::testing
