// orrinvale-cli login-items as a process, and what it writes as the desktops read it: entries of
// hostile names are started by the units that systemd makes of them, and by gio.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

// Names that one reader of entries or another takes for something else than a name.
const Strings hostile{"plain",    "with space", "per%cent",      "quo\"te",  "apo'strophe",
                      "back\\sl", "dol$HOME",   "tick`id`",      "a\nb",     "\xff\xfe",
                      "<b>&amp;", "--version",  "~tilde #;|&*?", "Ümläut %f"};

class LoginItemsCommand : public ::testing::Test {
protected:
    ProgramRun::Result run(ProgramRun program) const {
        program.environment = {"HOME=" + tree.path(), "PATH=/usr/bin:/bin",
                               "XDG_CONFIG_DIRS=" + tree.at("etc"), "XDG_DATA_DIRS=/usr/share",
                               "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent"};
        return program.run();
    }
    ProgramRun::Result command(const Strings& arguments) const {
        return run(commandRun("login-items", arguments));
    }
    ProgramRun::Result shell(const std::string& text) const {
        ProgramRun program;
        program.program = "/bin/sh";
        program.arguments = {"-c", text};
        return run(std::move(program));
    }
    Json items() const { return Json::parse(command({"--json"}).output).at("items"); }
    std::string ran(std::size_t number) const { return tree.at(fmt::format("ran-{}", number)); }
    // A program of each name, which notes in a file of its number that it ran.
    void addHostile() {
        for (std::size_t i = 0; i < hostile.size(); ++i) {
            const std::string path = tree.at("progs/" + hostile[i]);
            ASSERT_TRUE(tree.write("progs/" + hostile[i],
                                   fmt::format("#!/bin/sh\necho ran >>'{}'\n", ran(i))));
            ASSERT_EQ(::chmod(path.c_str(), 0755), 0);
            const auto added = command({"add", path});
            ASSERT_EQ(added.status, 0) << added.error;
        }
        ASSERT_EQ(items().size(), hostile.size());
    }
    void expectAllRan() const {
        for (std::size_t i = 0; i < hostile.size(); ++i) {
            for (int tries = 0; tries < 500 && contentOf(ran(i)).empty(); ++tries)
                std::this_thread::sleep_for(10ms);
            EXPECT_EQ(contentOf(ran(i)), "ran\n") << hostile[i];
        }
    }
    TestTree tree;
};

TEST_F(LoginItemsCommand, EntriesAreStartedByTheUnitsOfSystemd) {
    const std::string generator =
        "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";
    if (::access(generator.c_str(), X_OK) != 0) GTEST_SKIP() << "no generator of systemd here";
    addHostile();
    const std::string units = tree.at("units");
    ASSERT_TRUE(tree.folder("units"));
    const auto made = shell(fmt::format("{0} '{1}' '{1}' '{1}'", generator, units));
    ASSERT_EQ(made.status, 0) << made.error;
    int started = 0;
    for (const std::string& name : namesIn(units)) {
        std::istringstream unit(contentOf(units + '/' + name));
        for (std::string line; std::getline(unit, line);) {
            if (!line.starts_with("ExecStart=:")) continue;
            // Behind the colon, which keeps variables out, are words of plain letters.
            const auto done = shell(line.substr(11));
            EXPECT_EQ(done.status, 0) << line << done.error;
            ++started;
        }
    }
    EXPECT_EQ(started, int(hostile.size()));
    expectAllRan();
}

TEST_F(LoginItemsCommand, EntriesAreStartedByGio) {
    if (::access("/usr/bin/gio", X_OK) != 0) GTEST_SKIP() << "no gio here";
    addHostile();
    for (const Json& each : items()) {
        const auto done = shell("gio launch '" + each.at("file").get<std::string>() + "'");
        EXPECT_EQ(done.status, 0) << done.error;
    }
    expectAllRan();
}

TEST_F(LoginItemsCommand, ListsAddsSwitchesAndRemoves) {
    ASSERT_TRUE(tree.write("etc/autostart/s.desktop",
                           "[Desktop Entry]\nType=Application\nName=S\nExec=true\n"));
    EXPECT_EQ(command({"add", "/bin/true"}).output, "/bin/true\n");
    const Json both = items();
    ASSERT_EQ(both.size(), 2U);
    const std::string file = tree.at(".config/autostart/true.desktop");
    EXPECT_EQ(both[0], (Json{{"index", 0},
                             {"name", "true"},
                             {"path", "/bin/true"},
                             {"file", file},
                             {"hidden", false},
                             {"starts", true},
                             {"source", "user"}}));
    EXPECT_EQ(both[1].at("source"), "system");
    EXPECT_EQ(command({"off", "1"}).output, "s.desktop\n");
    EXPECT_EQ(command({"off", "true.desktop"}).status, 0);
    for (const Json& each : items()) EXPECT_EQ(each.at("starts"), false);
    EXPECT_EQ(command({"on", "s.desktop"}).status, 0);
    EXPECT_FALSE(isThere(tree.at(".config/autostart/s.desktop"))) << "the override went";
    const struct {
        Strings arguments;
        int status;
        const char* says;
    } rows[] = {
        {{"on", "7"}, 2, "there is no login item \"7\""},
        {{"off", "none.desktop"}, 2, "there is no login item"},
        {{"remove", "true.desktop"}, 2, "give --yes"},
        {{"remove", "s.desktop", "--yes"}, 1, "it belongs to the system"},
        {{"add", "/no/such"}, 1, "there is no such file"},
        {{"add"}, 2, "takes list, add PATH"},
        {{"list", "more"}, 2, "takes list, add PATH"},
        {{"stop"}, 2, "login-items can not \"stop\""},
    };
    for (const auto& row : rows) {
        const auto done = command(row.arguments);
        EXPECT_EQ(done.status, row.status) << row.says;
        EXPECT_THAT(done.error, HasSubstr(row.says));
        EXPECT_EQ(done.output, "");
    }
    EXPECT_EQ(command({"remove", "true.desktop", "--yes"}).output, "true.desktop\n");
    EXPECT_FALSE(isThere(file));
    EXPECT_TRUE(isThere(tree.at(".local/share/Trash/files/true.desktop")));
    const auto off = run(commandRun("settings", {"set", "LoginCheck", "0"}));
    EXPECT_EQ(off.status, 0) << off.error;
}

}  // namespace
}  // namespace orrinvale::testing
