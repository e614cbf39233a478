// duplicates --plan and remove --plan as processes: there, and what is refused.

#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

ProgramRun planRun(const TestTree& tree, std::string command, std::vector<std::string> arguments) {
    ProgramRun run = commandRun(std::move(command), std::move(arguments));
    run.environment.push_back("HOME=" + tree.at("home"));
    return run;
}

void makePlannedTree(const TestTree& shown) {
    auto& tree = const_cast<TestTree&>(shown);
    for (const char* const name : {"data/1", "data/2", "data/\xff", "data/sub/3"})
        ASSERT_TRUE(tree.write(name, "the same"));
    ASSERT_TRUE(tree.write("data/x", "another") && tree.write("data/y", "another"));
    ASSERT_TRUE(tree.folder("home"));
    const auto run =
        planRun(tree, "duplicates", {"--quiet", "--plan", tree.at("plan"), tree.at("data")}).run();
    ASSERT_EQ(run.status, 0) << run.error;
}

TEST(RemoveCommand, DoesWhatThePlanSaysAndNothingTwice) {
    TestTree tree;
    makePlannedTree(tree);
    ASSERT_TRUE(tree.write("data/y", "ANOTHER"));
    const auto run = planRun(tree, "remove", {"--plan", tree.at("plan"), "--yes", "--json"});
    const auto first = run.run();
    EXPECT_EQ(first.status, 1) << first.error;
    const Json account = Json::parse(first.output);
    EXPECT_EQ(account["removed"].size(), 3U) << first.output;
    EXPECT_EQ(account["gained"], 24);
    ASSERT_EQ(account["kept"].size(), 1U);
    EXPECT_EQ(account["kept"][0]["path"], tree.at("data/y"));
    EXPECT_EQ(account["kept"][0]["reason"], "changed since the scan");
    EXPECT_EQ(namesIn(tree.at("data")), (Strings{"1", "sub", "x", "y"}));
    bool isExact = false;
    for (const Json& each : account["removed"])
        isExact = isExact || each.value("pathHex", "").ends_with("ff");
    EXPECT_TRUE(isExact) << first.output;

    const auto second = run.run();
    EXPECT_EQ(Json::parse(second.output)["removed"], Json::array());
    EXPECT_EQ(Json::parse(second.output)["byOthers"].size(), 3U) << second.output;
    EXPECT_EQ(contentOf(tree.at("data/1")), "the same");
}

TEST(RemoveCommand, MovesToTheTrashWhereItIsTold) {
    TestTree tree;
    makePlannedTree(tree);
    const auto run = planRun(tree, "remove", {"--plan", tree.at("plan"), "--yes", "--trash"}).run();
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_THAT(run.output, HasSubstr("Moved 4 files to the trash, 0.03 KB. Undo: "));
    EXPECT_EQ(namesIn(tree.at("home/.local/share/Trash/files")).size(), 4U);
    EXPECT_EQ(namesIn(tree.at("home/.local/share/Trash/info")).size(), 4U);

    // A second run moves nothing, and leaves the first to be undone.
    const auto again =
        planRun(tree, "remove", {"--plan", tree.at("plan"), "--yes", "--trash", "--json"}).run();
    EXPECT_TRUE(Json::parse(again.output)["undo"].is_null()) << again.output;

    const auto listed = planRun(tree, "undo", {"--list", "--json"}).run();
    const Json removals = Json::parse(listed.output)["removals"];
    ASSERT_EQ(removals.size(), 1U) << listed.output;
    EXPECT_EQ(removals[0]["entries"], 4);
    // One whose record is damaged is named, and is not nothing.
    const std::string id = removals[0]["id"];
    bool isFound = false;
    for (const auto& each : std::filesystem::recursive_directory_iterator(tree.path())) {
        if (each.path().filename() != id + ".json") continue;
        isFound = true;
        const std::string sound = contentOf(each.path());
        std::ofstream(each.path()) << sound.substr(0, sound.size() - 3);
        const auto damaged = planRun(tree, "undo", {"--list"}).run();
        EXPECT_EQ(damaged.status, 1);
        EXPECT_EQ(damaged.output, "");
        EXPECT_THAT(damaged.error, HasSubstr(id + ": its record is damaged"));
        std::ofstream(each.path()) << sound;
    }
    EXPECT_TRUE(isFound);
    const auto taken = tree.write("data/y", "came since");
    ASSERT_TRUE(taken);
    const auto undo = planRun(tree, "undo", {"--json"}).run();
    EXPECT_EQ(undo.status, 1) << undo.error;
    const Json outcome = Json::parse(undo.output);
    EXPECT_EQ(outcome["restored"].size(), 3U) << undo.output;
    ASSERT_EQ(outcome["left"].size(), 1U);
    EXPECT_EQ(outcome["left"][0]["reason"], "its name is taken by now");
    EXPECT_EQ(contentOf(outcome["left"][0]["place"]), "another");
    EXPECT_EQ(contentOf(tree.at("data/y")), "came since");
    EXPECT_EQ(planRun(tree, "undo", {"--clear"}).run().status, 0);
    EXPECT_EQ(planRun(tree, "undo", {}).run().status, 3);
    EXPECT_EQ(planRun(tree, "undo", {"../x"}).run().status, 3);
}

TEST(RemoveCommand, AsksAndTakesNoForAnAnswer) {
    TestTree tree;
    makePlannedTree(tree);
    EXPECT_EQ(planRun(tree, "remove", {"--plan", tree.at("plan")}).run().status, 2);
    EXPECT_EQ(planRun(tree, "remove", {"--yes"}).run().status, 2);
    const auto answered = [&](const char* answer) {
        auto run = planRun(tree, "remove", {"--plan", tree.at("plan")});
        run.inputTerminal = true;
        run.typed = {{answer, [](const std::string& error) {
                          return error.find("[y/N]") != std::string::npos;
                      }}};
        return run.run();
    };
    const auto no = answered("n\n");
    EXPECT_THAT(no.error, HasSubstr("Remove 4 files, 0.03 KB, for good? No group loses all"));
    EXPECT_TRUE(isThere(tree.at("data/2")));
    EXPECT_EQ(answered("y\n").status, 0);
    EXPECT_FALSE(isThere(tree.at("data/2")));

    // What a link leads to is nothing that a person who chose one folder thinks of.
    ASSERT_TRUE(tree.write("elsewhere/far", "the same") && tree.symlink("../elsewhere", "data/l"));
    ASSERT_EQ(planRun(tree, "duplicates",
                      {"--quiet", "--keep", "path:" + tree.at("data"), "--plan", tree.at("plan"),
                       tree.at("data")})
                  .run()
                  .status,
              0);
    EXPECT_THAT(answered("n\n").error,
                HasSubstr("? 1 of them lies outside of the folder that was searched. No group"));
}

TEST(RemoveCommand, RefusesWhatIsNoPlanOfThisUser) {
    TestTree tree;
    makePlannedTree(tree);
    ASSERT_TRUE(tree.write("mine", "not a plan"));
    const auto taken =
        planRun(tree, "duplicates", {"--plan", tree.at("mine"), tree.at("data")}).run();
    EXPECT_EQ(taken.status, 3);
    EXPECT_EQ(taken.output, "");
    EXPECT_EQ(contentOf(tree.at("mine")), "not a plan");

    std::string text = contentOf(tree.at("plan"));
    const std::size_t at = text.find("\"goes\": false");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 13, "\"goes\": true");
    ASSERT_TRUE(tree.write("edited", text));
    for (const char* const name : {"mine", "edited", "none", "data"}) {
        const auto run = planRun(tree, "remove", {"--plan", tree.at(name), "--yes"}).run();
        EXPECT_EQ(run.status, 3) << name;
        EXPECT_EQ(run.output, "") << name;
    }
    if (::geteuid() == 0 && tree.setMode("plan", 0644)) {
        ASSERT_EQ(::chmod(tree.path().c_str(), 0755), 0);
        auto run = planRun(tree, "remove", {"--plan", tree.at("plan"), "--yes"});
        run.user = 65534;
        EXPECT_EQ(run.run().status, 3);
    }
    EXPECT_EQ(namesIn(tree.at("data")).size(), 6U);
}

// Two runs of one plan at once: each entry goes once, and what stays by the plan stays.
TEST(RemoveCommand, TwoRunsOfOnePlanAtOnceTakeEachEntryOnce) {
    TestTree tree;
    for (int i = 0; i < 400; ++i)
        for (const char* const folder : {"a", "b"})
            ASSERT_TRUE(tree.write(fmt::format("data/{}/{:03}", folder, i), fmt::format("{}", i)));
    ASSERT_TRUE(tree.folder("home"));
    ASSERT_EQ(planRun(tree, "duplicates", {"--quiet", "--plan", tree.at("plan"), tree.at("data")})
                  .run()
                  .status,
              0);
    std::array<ProgramRun::Result, 2> results;
    const auto runInto = [&](ProgramRun::Result& into, std::vector<std::string> more) {
        more.insert(more.begin(), {"--plan", tree.at("plan"), "--yes", "--json"});
        into = planRun(tree, "remove", std::move(more)).run();
    };
    std::thread other([&] { runInto(results[1], {"--trash"}); });
    runInto(results[0], {});
    other.join();
    std::size_t removed = 0;
    for (const auto& each : results) removed += Json::parse(each.output)["removed"].size();
    EXPECT_EQ(removed, 400U);
    EXPECT_EQ(namesIn(tree.at("data/a")).size() + namesIn(tree.at("data/b")).size(), 400U);
}

}  // namespace
}  // namespace orrinvale::testing
