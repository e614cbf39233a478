// orrinvale-cli apps as a process, on this machine and a home of the test's.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

ProgramRun appsRun(const TestTree& tree, std::vector<std::string> arguments) {
    ProgramRun run = commandRun("apps", std::move(arguments));
    run.environment.push_back("HOME=" + tree.path());
    return run;
}

TEST(AppsCommand, listsWhatIsInstalledAndWhatWasLeft) {
    TestTree tree;
    ASSERT_TRUE(tree.write("Applications/a\xff\n.app/Contents/x", "1") &&
                tree.write(".var/app/org.gone.App/cache/x", "1234"));
    const auto run = appsRun(tree, {"--json", "--kind", "app", "--kind=folder"}).run();
    EXPECT_EQ(run.status, 0) << run.error;
    const Json document = Json::parse(run.output);
    ASSERT_EQ(document["applications"].size(), 1U) << run.output;
    const Json& app = document["applications"][0];
    EXPECT_EQ(app["kind"], "app");
    EXPECT_EQ(app["id"], nullptr);
    EXPECT_EQ(
        app["pathHex"].get<std::string>().substr(app["pathHex"].get<std::string>().size() - 14),
        "61ff0a2e617070");
    EXPECT_EQ(document["stopped"], false);
    EXPECT_THAT(appsRun(tree, {"--kind=app"}).run().output, HasSubstr("a\\xff\\n"));

    for (const Strings& asked :
         {Strings{"--leftovers", "--json"}, Strings{"--json", "--leftovers", "org.gone.App"}}) {
        const auto left = appsRun(tree, asked).run();
        EXPECT_EQ(left.status, 0) << left.error;
        const Json found = Json::parse(left.output)["leftovers"];
        ASSERT_EQ(found.size(), 1U) << left.output;
        EXPECT_EQ(found[0]["grade"], "certain");
        EXPECT_EQ(found[0]["size"], 4);
        EXPECT_EQ(found[0]["of"], "org.gone.App");
    }
    ASSERT_TRUE(tree.symlink("app", "shared/app"));
    ProgramRun unread = appsRun(tree, {"--leftovers", "--json"});
    unread.environment.push_back("FLATPAK_SYSTEM_DIR=" + tree.at("shared"));
    const auto partly = unread.run();
    EXPECT_EQ(partly.status, 1);
    EXPECT_THAT(partly.error, HasSubstr("flatpak: The installation of flatpak in "));
    EXPECT_EQ(Json::parse(partly.output)["skipped"][0]["kind"], "flatpak");
    EXPECT_EQ(Json::parse(partly.output)["leftovers"].size(), 0U);
    EXPECT_EQ(appsRun(tree, {"--leftovers=other", "-0"}).run().output, "");
    for (const Strings& wrong : {Strings{"--kind", "rpm"}, Strings{"--kind=app", "--leftovers"}})
        EXPECT_EQ(appsRun(tree, wrong).run().status, 2) << wrong.front();
}

}  // namespace
}  // namespace orrinvale::testing
