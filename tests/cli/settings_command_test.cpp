// orrinvale-cli settings as a process: what it lists, what it stores, and what it refuses.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

ProgramRun::Result settings(const TestTree& home, const Strings& arguments) {
    ProgramRun run = commandRun("settings", arguments);
    run.environment = {"HOME=" + home.path()};
    return run.run();
}

TEST(SettingsCommand, ListsGetsAndSets) {
    const TestTree home;
    const Json fresh = Json::parse(settings(home, {"--json"}).output);
    EXPECT_GT(fresh.at("settings").size(), 30U);
    EXPECT_FALSE(isThere(home.at(".config/com.kelpford.Orrinvale/settings.ini")))
        << "looking stores nothing";
    const struct {
        const char *key, *given, *got;
        Json json;
    } rows[] = {
        {"SpaceAlarm", "0.25", "0.25\n", 0.25},
        {"UserDownloads", "2", "2\n", 2},
        {"ZvHidenDuplication", "Yes", "true\n", true},
        {"compareBeforeRemoving", "off", "false\n", false},
        {"ZvDuplicationLimit", "9999", "9999\n", 9999},
        {"SUScheduledCheckInterval", "86400", "86400\n", 86400},
        {"theme", "dark", "dark\n", "dark"},
    };
    for (const auto& row : rows) {
        const auto done = settings(home, {"set", row.key, row.given});
        EXPECT_EQ(done.status, 0) << done.error;
        EXPECT_EQ(settings(home, {"get", row.key}).output, row.got);
        const Json one = Json::parse(settings(home, {"get", row.key, "--json"}).output);
        EXPECT_EQ(one.at("settings").at(0).at("value"), row.json) << row.key;
        EXPECT_EQ(one.at("settings").at(0).at("key"), row.key);
    }
    EXPECT_THAT(settings(home, {"-0"}).output, HasSubstr(std::string("theme=dark\0", 11)));
    EXPECT_THAT(settings(home, {"list"}).output, HasSubstr("0.25   (usually 0.1)"));
}

TEST(SettingsCommand, RefusesWhatTheKeyDoesNotTake) {
    TestTree home;
    const struct {
        Strings arguments;
        const char* says;
    } rows[] = {
        {{"set", "SpaceAlarm", "10"}, "takes a part of 1"},
        {{"set", "SpaceAlarm", "nan"}, "takes a part of 1"},
        {{"set", "SpaceAlarm", "0,1"}, "takes a part of 1"},
        {{"set", "UserTrash", "3"}, "a whole number from 0 to 2"},
        {{"set", "UserTrash", "1x"}, "a whole number from 0 to 2"},
        {{"set", "ZvDuplicationLimit", "10000"}, "from 0 to 9999"},
        {{"set", "SUScheduledCheckInterval", "5"}, "one of 86400, 604800, 2592000"},
        {{"set", "theme", "Dark"}, "one of desktop, light, dark"},
        {{"set", "ZvHidenDuplication", "2"}, "true or false"},
        {{"set", "keepRunning", "maybe"}, "true, false or ask"},
        {{"set", "warnedVolumes", "x"}, "the program keeps it itself"},
        {{"set", "NoSuch", "1"}, "there is no setting \"NoSuch\""},
        {{"get", "NoSuch"}, "there is no setting"},
        {{"set", "SpaceAlarm"}, "list, get KEY, or set KEY VALUE"},
        {{"forget"}, "list, get KEY, or set KEY VALUE"},
    };
    for (const auto& row : rows) {
        const auto done = settings(home, row.arguments);
        EXPECT_EQ(done.status, 2) << row.says;
        EXPECT_THAT(done.error, HasSubstr(row.says));
        EXPECT_EQ(done.output, "");
    }
    EXPECT_FALSE(isThere(home.at(".config/com.kelpford.Orrinvale/settings.ini")));
    ASSERT_TRUE(home.folder(".config/com.kelpford.Orrinvale/settings.ini.new"));
    const auto full = settings(home, {"set", "log", "on"});
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.error, HasSubstr("log is not saved"));
}

}  // namespace
}  // namespace orrinvale::testing
