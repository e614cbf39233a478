// orrinvale-cli clean as a process: what it lists, and what it leaves alone.

#include <nlohmann/json.hpp>

#include "cli/CleanReport.h"
#include "cli/Output.h"
#include "cli/ProgramRun.h"
#include "platform/descriptor.h"
#include "support/ServedFiles.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

// With the tree as home; its caches are too new to be offered.
ProgramRun cleanRun(const TestTree& tree, std::vector<std::string> arguments) {
    ProgramRun run = commandRun("clean", std::move(arguments));
    run.environment.push_back("HOME=" + tree.path());
    return run;
}

TEST(CleanCommand, listsWhatWouldGoAndWhatStays) {
    TestTree tree;
    ASSERT_TRUE(tree.write("Downloads/big/x", std::string(3000, 'x')) &&
                tree.write("Downloads/small\xff", "12") && tree.write("Downloads/a.part", "1") &&
                tree.write(".cache/new/x", "1"));
    const auto run =
        cleanRun(tree, {"--category", "user-downloads", "--category", "user-caches", "--json"})
            .run();
    EXPECT_EQ(run.status, 0) << run.error;
    const Json document = Json::parse(run.output);
    EXPECT_EQ(document["stopped"], false);
    ASSERT_EQ(document["categories"].size(), 2U) << run.output;
    const Json& caches = document["categories"][0];
    EXPECT_EQ(caches["name"], "user-caches");
    EXPECT_EQ(caches["entries"], Json::array());
    EXPECT_EQ(caches["kept"][0]["path"], tree.at(".cache/new"));
    EXPECT_EQ(caches["kept"][0]["reason"], "changed in the last 10 minutes");
    const Json& downloads = document["categories"][1];
    EXPECT_EQ(downloads["size"], 3002);
    EXPECT_EQ(downloads["entries"].size(), 2U);
    EXPECT_EQ(downloads["kept"].size(), 1U);
    EXPECT_EQ(document["promised"], caches["onDisk"].get<int>() + downloads["onDisk"].get<int>());
    EXPECT_TRUE(isThere(tree.at("Downloads/big/x")));

    const auto listing = cleanRun(tree, {"--category", "user-downloads"}).run();
    for (const char* text : {"user-downloads: 3.00 KB in 2 entries\n", "   3.00 KB  just now    ",
                             "/Downloads/small\\xff\n", "kept: a download that is not complete\n",
                             "In all 3.00 KB; the disk gets back "})
        EXPECT_NE(listing.output.find(text), std::string::npos) << listing.output;
    const auto paths = cleanRun(tree, {"-0", "--category", "user-downloads"}).run();
    EXPECT_EQ(paths.output.size(),
              tree.at("Downloads/big").size() + tree.at("Downloads/small\xff").size() + 2);
    EXPECT_EQ(cleanRun(tree, {"--category", "caches"}).run().status, 2);
}

TEST(CleanCommand, keepsForGood) {
    TestTree tree;
    ASSERT_TRUE(tree.write("Downloads/a", "1") && tree.write("Downloads/b", "1"));
    const std::string asked = "--category=user-downloads";
    EXPECT_EQ(cleanRun(tree, {asked, "-0", "--keep", tree.at("Downloads/a")}).run().output,
              tree.at("Downloads/b") + '\0');
    EXPECT_EQ(cleanRun(tree, {asked, "-0"}).run().output, tree.at("Downloads/b") + '\0');
    const auto both = cleanRun(tree, {asked, "-0", "--no-longer-keep", tree.at("Downloads/a")});
    EXPECT_EQ(both.run().output.size(), 2 * tree.at("Downloads/a").size() + 2);
}

TEST(CleanCommand, removesWhatItListedAndSaysHowMuchCameBack) {
    TestTree tree;
    ASSERT_TRUE(tree.write("Downloads/big/x", std::string(200'000, 'x')) &&
                tree.write("Downloads/small", "12") && tree.write("Downloads/a.part", "1"));
    const auto run = cleanRun(tree, {"--category=user-downloads", "--remove", "--yes", "--json"});
    const auto result = run.run();
    EXPECT_EQ(result.status, 0) << result.error;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document["removed"].size(), 2U) << result.output;
    EXPECT_EQ(document["failed"], Json::array());
    EXPECT_GE(document["promised"].get<std::int64_t>(), 200'000);
    EXPECT_TRUE(document["gained"].is_number_integer());
    EXPECT_FALSE(isThere(tree.at("Downloads/big")) || isThere(tree.at("Downloads/small")));
    EXPECT_TRUE(isThere(tree.at("Downloads/a.part")));
    const std::string history =
        contentOf(tree.at(".local/state/com.kelpford.Orrinvale/.kelpford.log.bin"));
    EXPECT_TRUE(history.starts_with("logName=SIZE&&date=20") && history.ends_with("&&iSize=200002"))
        << history;

    const auto again = cleanRun(tree, {"--category=user-downloads", "--remove", "--yes"})
                           .run();  // nothing is left
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.output.find("Removed"), std::string::npos) << again.output;
}

TEST(CleanCommand, removesOnlyWhenItMay) {
    const struct {
        std::vector<std::string> arguments;
        bool isRoot;
        int status;
        const char* error;
    } cases[] = {
        {{"--remove", "--yes"}, true, 2, "--remove wants to be told what"},
        {{"--remove", "--category=user-downloads"}, true, 2, "there is no terminal to ask on"},
        {{"--remove", "--yes", "--category=system-logs"}, false, 3, "is for root to clean"},
        {{"--remove", "--yes", "--category=none"}, true, 2, "there is no category"},
    };
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(tree.write("Downloads/x", "1"));
        auto run = cleanRun(tree, each.arguments);
        if (!each.isRoot && ::geteuid() == 0) run.user = 65534;
        const auto result = run.run();
        EXPECT_EQ(result.status, each.status) << each.error;
        EXPECT_NE(result.error.find(each.error), std::string::npos) << result.error;
        EXPECT_EQ(result.output, "");
        EXPECT_TRUE(isThere(tree.at("Downloads/x")));
    }
}

bool isAsked(const std::string& error) { return error.find("[y/N]") != std::string::npos; }

TEST(CleanCommand, onATerminalOnlyAYesToTheQuestionRemoves) {
    const struct {
        const char* what;
        std::vector<TypedWhen> typed;
        std::vector<SignalWhen> signals;
        bool goes;
    } cases[] = {
        {"before the question", {{"y\n", {}}, {"n\n", isAsked}}, {}, false},
        {"end of input", {{"\x04", isAsked}}, {}, false},
        {"interrupted", {}, {{SIGINT, isAsked}}, false},
        {"yes", {{"y\n", isAsked}}, {}, true},
    };
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(tree.write("Downloads/x", "1"));
        auto run = cleanRun(tree, {"--category=user-downloads", "--remove"});
        run.inputTerminal = true;
        run.typed = each.typed;
        run.signals = each.signals;
        const auto result = run.run();
        EXPECT_TRUE(isAsked(result.error)) << each.what << result.error;
        EXPECT_EQ(result.signal, each.signals.empty() ? 0 : SIGINT) << each.what;
        EXPECT_EQ(isThere(tree.at("Downloads/x")), !each.goes) << each.what;
    }
    for (const char* const form : {"--json", "-0"}) {  // nothing would be listed
        TestTree tree;
        ASSERT_TRUE(tree.write("Downloads/x", "1"));
        auto run = cleanRun(tree, {"--category=user-downloads", "--remove", form});
        run.inputTerminal = true;
        run.typed = {{"y\n", isAsked}};
        EXPECT_EQ(run.run().status, 2) << form;
        EXPECT_TRUE(isThere(tree.at("Downloads/x"))) << form;
    }
}

// Between the listing and the answer.
TEST(CleanCommand, whatOthersRemovedOrThePersonKeepsIsNotCalledRemoved) {
    for (const bool byOthers : {true, false}) {
        TestTree tree;
        const std::string list = ".config/com.kelpford.Orrinvale/always-keep";
        const std::string below = tree.at("Downloads/r/none") + '\n';
        ASSERT_TRUE(tree.write("Downloads/r/x", "1") && (byOthers || tree.write(list, below)));
        auto run = cleanRun(tree, {"--category=user-downloads", "--remove"});
        run.inputTerminal = true;
        run.typed = {{"y\n", [&](const std::string& error) {
                          if (!isAsked(error)) return false;
                          if (byOthers)
                              return ::rename(tree.at("Downloads/r").c_str(),
                                              tree.at("moved").c_str()) == 0;
                          return tree.write(list, below + tree.at("Downloads/r/x") + '\n');
                      }}};
        const auto result = run.run();
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_NE(result.output.find("Removed 0 entries."), std::string::npos) << result.output;
        EXPECT_FALSE(isThere(tree.at(".local/state/com.kelpford.Orrinvale/.kelpford.log.bin")));
    }
}

TEST(CleanReport, theDocumentTellsWhatRulesKeepFromWhatFailed) {
    TestTree tree;
    ASSERT_TRUE(tree.write("document", ""));
    const Descriptor file(::open(tree.at("document").c_str(), O_WRONLY | O_CLOEXEC));
    {
        cli::Output out(file.get());
        cli::CleanOutcome outcome;
        outcome.failed = {{"/a", "not seen by the scan", StayReason::CameLater},
                          {"/b", "Permission denied", StayReason::Rights}};
        outcome.more = 3;
        cli::printCleanJson(out, {}, outcome, false);
        out.flush();
    }
    const Json document = Json::parse(contentOf(tree.at("document")));
    EXPECT_EQ(document["failed"][0]["byRule"], true);
    EXPECT_EQ(document["failed"][1]["byRule"], false);
    EXPECT_EQ(document["failedCount"], 5);
}

TEST(CleanCommand, aCategoryThatDoesNotAnswerEndsByWhatWasDecided) {
    ServedFiles served({"hang"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    TestTree tree;
    auto run = cleanRun(tree, {"--category=user-caches", "--remove", "--yes"});
    run.environment.push_back("XDG_CACHE_HOME=" + served.at("hang"));
    // The process is gone when the system has let go of its thread.
    run.signals = {{0, [&](const std::string& error) {
                        const bool isTold = error.find("no answer for") != std::string::npos;
                        if (isTold) served.end();
                        return isTold;
                    }}};
    const auto result = run.run();
    EXPECT_EQ(result.status, 3) << result.error;
    EXPECT_NE(result.error.find("no answer for 5 seconds"), std::string::npos) << result.error;
}

TEST(CleanCommand, whatCanNotGoIsTold) {
    TestTree tree;
    for (int i = 0; i < 149; ++i)
        ASSERT_TRUE(tree.write("Downloads/shut/in/" + std::to_string(i), "1"));
    ASSERT_TRUE(tree.write("Downloads/shut/in/x", "1") && tree.write("Downloads/free", "1") &&
                tree.setMode("Downloads/shut/in", 0555) && tree.setMode(".", 0755));
    auto run = cleanRun(tree, {"--category=user-downloads", "--remove", "--yes"});
    if (::geteuid() == 0) {
        for (const char* name : {".", "Downloads", "Downloads/shut", "Downloads/free"})
            ASSERT_EQ(::chown(tree.at(name).c_str(), 65534, 65534), 0);
        run.user = 65534;
    }
    const auto result = run.run();
    EXPECT_EQ(result.status, 1) << result.error;
    EXPECT_NE(result.output.find("stayed, Permission denied: " + tree.at("Downloads/shut/in/")),
              std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("\nstayed as well: 50 more\n"), std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("Removed 1 entry. Promised "), std::string::npos);
    EXPECT_FALSE(isThere(tree.at("Downloads/free")));
}

// sudo leaves a person's home to root.
TEST(CleanCommand, rootLeavesTheHomeOfSomebodyElseAlone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can try";
    TestTree tree;
    ASSERT_TRUE(tree.write("Downloads/a", "1") && ::chown(tree.path().c_str(), 65534, 65534) == 0);
    const auto run = cleanRun(tree, {"--category", "user-downloads"}).run();
    EXPECT_NE(run.output.find("left alone, the home folder is somebody else's"), std::string::npos)
        << run.output;
    EXPECT_EQ(run.output.find("Downloads/a"), std::string::npos);
    const auto removal = cleanRun(tree, {"--category=user-downloads", "--remove", "--yes"}).run();
    EXPECT_EQ(removal.status, 3);
    EXPECT_TRUE(isThere(tree.at("Downloads/a")));
}

// Beside its own home, as "su" without "-" leaves them.
TEST(CleanCommand, rootLeavesFoldersOfSomebodyElseAlone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can try";
    for (const char* const category : {"user-caches", "user-downloads"}) {
        TestTree tree;
        ASSERT_TRUE(tree.write("person/x/y", "1") && tree.setMode("person", 0755) &&
                    tree.write(".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/person\"") &&
                    tree.giveAway({"person", "person/x", "person/x/y"}));
        auto run = cleanRun(tree, {"--category", category, "--remove", "--yes"});
        run.environment.push_back("XDG_CACHE_HOME=" + tree.at("person"));
        const auto result = run.run();
        EXPECT_EQ(result.status, 3) << category << result.output;
        EXPECT_NE(result.error.find("somebody else's"), std::string::npos) << result.error;
        EXPECT_TRUE(isThere(tree.at("person/x/y"))) << category;
    }
}

}  // namespace
}  // namespace orrinvale::testing
