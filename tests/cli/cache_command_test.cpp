// orrinvale-cli cache as a process: what searches remember, what they do not, and what forgets it.
#include "cli/DuplicatesTest.h"
#include "platform/lastingVolume.h"

namespace orrinvale::testing {
namespace {

TEST(CacheCommand, ShowsAndForgetsWhatSearchesRemember) {
    TestTree tree;
    const Descriptor folder(::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!lastingVolume(folder.get())) GTEST_SKIP() << "no file system that is told again here";
    for (const char* name : {"in/a", "in/b", "in/c"}) ASSERT_TRUE(tree.write(name, "same"));
    std::this_thread::sleep_for(2100ms);  // until times tell of every further change
    const auto run = [&](const std::string& command, Strings arguments) {
        ProgramRun program = commandRun(command, std::move(arguments));
        program.environment = {"HOME=" + tree.at("home")};
        return program.run();
    };
    const auto files = [&] {
        const auto shown = run("cache", {"--json"});
        EXPECT_EQ(shown.status, 0) << shown.error;
        const Json cache = Json::parse(shown.output).at("cache");
        EXPECT_EQ(cache.at("size") != 0, cache.at("files") != 0);
        return cache.at("files").get<int>();
    };
    const struct {
        const char* command;
        Strings arguments;
        int files;
    } steps[] = {
        {"duplicates", {"--no-cache", tree.at("in")}, 0},
        {"settings", {"set", "rememberContents", "false"}, 0},
        {"duplicates", {tree.at("in")}, 0},
        {"settings", {"set", "rememberContents", "true"}, 0},
        {"duplicates", {tree.at("in")}, 3},
        {"cache", {"show"}, 3},
        {"cache", {"clear"}, 0},
        {"cache", {"clear"}, 0},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(std::string(step.command) + ' ' + step.arguments.front());
        const auto done = run(step.command, step.arguments);
        EXPECT_EQ(done.status, 0) << done.error;
        EXPECT_EQ(files(), step.files);
    }
    EXPECT_EQ(run("cache", {"empty"}).status, 2);
}

}  // namespace
}  // namespace orrinvale::testing
