// share as a process: what it asks, what it tells in each form, and its exit statuses.

#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

// Of a file system that knows hard links alone.
struct ShareScene {
    TestTree tree{"/dev/shm"};
    ShareScene() {
        for (const char* const name : {"data/1", "data/2", "data/\xff"})
            EXPECT_TRUE(tree.write(name, std::string(10000, 'x')));
        EXPECT_TRUE(tree.write("data/mode", std::string(10000, 'x')));
        EXPECT_TRUE(tree.setMode("data/mode", 0600) && tree.folder("home"));
    }
    [[nodiscard]] ProgramRun run(std::vector<std::string> arguments) const {
        ProgramRun run = commandRun("share", std::move(arguments));
        run.environment.push_back("HOME=" + tree.at("home"));
        return run;
    }
    [[nodiscard]] std::uint32_t names() const { return attributesOf(tree.at("data/1")).links; }
};

TEST(ShareCommand, TellsWhatItWouldDoAndDoesIt) {
    const ShareScene scene;
    const std::string data = scene.tree.at("data");
    const auto dry = scene.run({"--dry-run", "--link", "--keep", "shortest-path", data}).run();
    EXPECT_EQ(dry.status, 1) << dry.error;
    EXPECT_THAT(dry.output, AllOf(HasSubstr("would be another name of " + data + "/1: "),
                                  HasSubstr("would keep its own space, owner, group"),
                                  HasSubstr("2 files would share the space")));
    EXPECT_EQ(scene.names(), 1U);

    const auto plain = scene.run({"--yes", "--json", data}).run();
    EXPECT_EQ(plain.status, 1);
    const Json kept = Json::parse(plain.output)["kept"];
    ASSERT_EQ(kept.size(), 3U) << plain.output;
    EXPECT_EQ(kept[0]["reason"], "its file system can not let files have their space in common");
    EXPECT_EQ(Json::parse(plain.output)["promised"], 0);
    EXPECT_EQ(scene.names(), 1U);

    const auto plan = commandRun("duplicates", {"--quiet", "--plan", scene.tree.at("plan"),
                                                "--keep", "shortest-path", data});
    ASSERT_EQ(plan.run().status, 0);
    const auto linked =
        scene.run({"--yes", "--link", "--json", "--plan", scene.tree.at("plan")}).run();
    EXPECT_EQ(linked.status, 1) << linked.error;
    const Json account = Json::parse(linked.output);
    ASSERT_EQ(account["shared"].size(), 2U) << linked.output;
    EXPECT_EQ(account["shared"][0]["by"], "link");
    EXPECT_EQ(account["shared"][0]["with"], data + "/1");
    const bool isExact = std::ranges::any_of(account["shared"], [](const Json& each) {
        return each.value("pathHex", "").ends_with("ff");
    });
    EXPECT_TRUE(isExact) << linked.output;
    EXPECT_EQ(account["promised"], 2 * attributesOf(data + "/1").onDisk);
    EXPECT_TRUE(account["gained"].is_number());
    EXPECT_EQ(account["stopped"], false);
    EXPECT_EQ(scene.names(), 3U);
    EXPECT_EQ(namesIn(data), (Strings{"1", "2", "mode", "\xff"}));
}

TEST(ShareCommand, AsksAndTakesNoForAnAnswer) {
    const ShareScene scene;
    const std::string data = scene.tree.at("data");
    const auto answered = [&](const char* answer) {
        auto run = scene.run({"--link", data});
        run.inputTerminal = true;
        run.typed = {{answer, [](const std::string& error) {
                          return error.find("[y/N]") != std::string::npos;
                      }}};
        return run.run();
    };
    const auto no = answered("n\n");
    // In the words of the window, after the same look.
    EXPECT_THAT(no.error,
                HasSubstr("2 files, up to 24.58 KB, by hard links alone: they become other names "
                          "of the copies that stay. That is one file then, and a change to one is "
                          "a change to all.\n1 keeps its own space.\n  1: owner, group, rights or "
                          "extended attributes are not those of the copy that stays\nShare the "
                          "space of the copies that stay? [y/N] "));
    EXPECT_EQ(scene.names(), 1U);
    EXPECT_EQ(answered("y\n").status, 1);
    EXPECT_EQ(scene.names(), 3U);
    auto none = scene.run({data});
    none.inputTerminal = true;
    const auto nothing = none.run();
    EXPECT_EQ(nothing.status, 1);
    EXPECT_THAT(nothing.error,
                AllOf(HasSubstr("Nothing here can share its space"), Not(HasSubstr("[y/N]"))));
    const std::vector<std::pair<std::vector<std::string>, int>> refused{
        {{"--link", data}, 2},
        {{"--yes"}, 2},
        {{"--yes", "--plan", scene.tree.at("plan"), data}, 2},
        {{"--yes", "--plan", scene.tree.at("plan"), "--keep", "newest"}, 2},
        {{"--yes", "--plan", data + "/1"}, 3},
        {{"--yes", scene.tree.at("none")}, 3},
        {{"--yes", scene.tree.at("home")}, 0}};
    for (const auto& [arguments, status] : refused)
        EXPECT_EQ(scene.run(arguments).run().status, status) << arguments.back();
}

// What could not be searched may hold further copies.
TEST(ShareCommand, TellsWhatTheSearchLeftOut) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.write("data/file", "x") && tree.folder("data/locked"));
    ASSERT_TRUE(tree.setMode("data/locked", 0) && tree.folder("home"));
    auto run = commandRun("share", {"--yes", "--json", "--quiet", tree.at("data")});
    run.environment.push_back("HOME=" + tree.at("home"));
    if (::geteuid() == 0) {
        ASSERT_TRUE(tree.giveAway({"data", "data/file", "data/locked", "home"}));
        run.user = 65534;
    }
    const auto done = run.run();
    EXPECT_EQ(done.status, 1) << done.error;
    const Json skipped = Json::parse(done.output)["skipped"];
    ASSERT_EQ(skipped.size(), 1U) << done.output;
    EXPECT_EQ(skipped[0]["path"], tree.at("data/locked"));
}

}  // namespace
}  // namespace orrinvale::testing
