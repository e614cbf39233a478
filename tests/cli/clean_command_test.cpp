// orrinvale-cli clean as a process: what it lists, and what it leaves alone.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "cli/ProgramRun.h"
#include "support/TestTree.h"

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

// sudo leaves a person's home to root.
TEST(CleanCommand, rootLeavesTheHomeOfSomebodyElseAlone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can try";
    TestTree tree;
    ASSERT_TRUE(tree.write("Downloads/a", "1") && ::chown(tree.path().c_str(), 65534, 65534) == 0);
    const auto run = cleanRun(tree, {"--category", "user-downloads"}).run();
    EXPECT_NE(run.output.find("left alone, the home folder is somebody else's"), std::string::npos)
        << run.output;
    EXPECT_EQ(run.output.find("Downloads/a"), std::string::npos);
}

}  // namespace
}  // namespace orrinvale::testing
