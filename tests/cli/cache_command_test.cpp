// orrinvale-cli cache as a process: what searches remember, what they do not, and what forgets it.
#include "cli/DuplicatesTest.h"
#include "platform/lastingVolume.h"

namespace orrinvale::testing {
namespace {

TEST(CacheCommand, ShowsAndForgetsWhatSearchesRemember) {
    const TestTree tree;
    // Files that nobody has changed in the last minute, but for a few: the program's sources.
    const std::string old = SOURCES_OF_A_WHILE_AGO;
    const Descriptor folder(::open(old.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen() || !lastingVolume(folder.get()))
        GTEST_SKIP() << "no such folder, or no file system that is told again here";
    const auto run = [&](const std::string& command, Strings arguments) {
        ProgramRun program = commandRun(command, std::move(arguments));
        program.environment = {"HOME=" + tree.at("home")};
        return program.run();
    };
    const auto hasFiles = [&] {
        const auto shown = run("cache", {"--json"});
        EXPECT_EQ(shown.status, 0) << shown.error;
        const Json cache = Json::parse(shown.output).at("cache");
        EXPECT_EQ(cache.at("size") != 0, cache.at("files") != 0);
        return cache.at("files") != 0;
    };
    const struct {
        const char* command;
        Strings arguments;
        bool hasFiles;
    } steps[] = {
        {"duplicates", {"--no-cache", old}, false},
        {"settings", {"set", "rememberContents", "false"}, false},
        {"duplicates", {old}, false},
        {"settings", {"set", "rememberContents", "true"}, false},
        {"duplicates", {old}, true},
        {"cache", {"show"}, true},
        {"cache", {"clear"}, false},
        {"cache", {"clear"}, false},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(std::string(step.command) + ' ' + step.arguments.front());
        const auto done = run(step.command, step.arguments);
        EXPECT_EQ(done.status, 0) << done.error;
        EXPECT_EQ(hasFiles(), step.hasFiles);
    }
    EXPECT_EQ(run("cache", {"empty"}).status, 2);
}

}  // namespace
}  // namespace orrinvale::testing
