// orrinvale-cli volumes as a process, among mounts with names that no one should use. Each run sees
// mounts of its own, which go with it.
#include <nlohmann/json.hpp>
#include <regex>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* mounts =
    "mount -t tmpfs -o mode=755 ram /mnt && mkdir /mnt/locked && cd /mnt/locked && "
    "n=$(printf 'a\\nb') && x=$(printf 'c\\377') && mkdir \"$n\" \"$x\" && "
    "mount -t tmpfs -o size=2000k r \"$n\" && mount -t tmpfs r \"$x\" && ";

// Runs the command after the shell commands; a status of 99 means that nothing can be mounted here.
ProgramRun::Result volumesRun(const std::string& before, const std::string& options) {
    ProgramRun run;
    run.program = "/usr/bin/unshare";
    run.arguments = {"-m",      "--propagation",
                     "private", "sh",
                     "-c",      "{ " + before + "true; } || exit 99; exec " + options};
    run.environment = {"PATH=/usr/sbin:/usr/bin:/sbin:/bin"};
    return run.run();
}

const std::string program = ORRINVALE_CLI_PATH " volumes ";

Json volumeAt(const Json& document, const std::string& path) {
    for (const Json& each : document.at("volumes"))
        if (each.at("path") == path) return each;
    return nullptr;
}

class VolumesCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "only root may mount";
        if (volumesRun(mounts, "true").status != 0) GTEST_SKIP() << "nothing can be mounted here";
    }
};

TEST_F(VolumesCommand, TheDocumentHoldsEveryFieldOfEveryRecord) {
    const auto result = volumesRun(mounts, program + "--json");
    ASSERT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "");
    const Json document = Json::parse(result.output, nullptr, false);
    ASSERT_TRUE(document.is_object()) << result.output;
    const Json root = volumeAt(document, "/");
    ASSERT_TRUE(root.is_object()) << "\"/\" is always there";
    EXPECT_EQ(root.at("boot"), true);
    EXPECT_GT(root.at("total"), 0);

    Json odd = volumeAt(document, "/mnt/locked/a\nb");
    ASSERT_TRUE(odd.is_object()) << result.output;
    EXPECT_GT(odd.at("refNumber"), 0);
    odd.erase("refNumber");
    EXPECT_EQ(
        odd.dump(),
        R"({"type":0,"typeName":"local","boot":false,"name":"a\nb","path":"/mnt/locked/a\nb",)"
        R"("freeSpace":"2.05 MB","totalSpace":"2.05 MB","free":2048000,"total":2048000,)"
        R"("canEject":false,"icon":{"path":"/mnt/locked/a\nb"}})");
    const Json bad = volumeAt(document, "/mnt/locked/c\xEF\xBF\xBD");
    ASSERT_TRUE(bad.is_object()) << result.output;
    EXPECT_EQ(bad.at("name"), "c\xEF\xBF\xBD");
    EXPECT_EQ(bad.at("nameHex"), "63ff");
    EXPECT_EQ(bad.at("pathHex"), "2f6d6e742f6c6f636b65642f63ff");
    EXPECT_EQ(document.at("skipped"), Json::array());
    EXPECT_EQ(document.at("stopped"), false);
}

TEST_F(VolumesCommand, TheListingIsOneLineAVolumeAndPathsAreExact) {
    const auto listing = volumesRun(mounts, program);
    EXPECT_EQ(listing.status, 0);
    // How wide a column is depends on the volumes of the machine.
    const std::string words = std::regex_replace(listing.output, std::regex(" +"), " ");
    EXPECT_NE(words.find(" local 2.05 MB of 2.05 MB no /mnt/locked/a\\nb\n"), std::string::npos)
        << listing.output;
    EXPECT_NE(listing.output.find("  /mnt/locked/a\\nb\n"), std::string::npos) << listing.output;
    EXPECT_NE(listing.output.find("  /mnt/locked/c\\xff\n"), std::string::npos) << listing.output;
    const std::size_t column = listing.output.find("PATH");
    std::size_t lines = 0;
    for (std::size_t at = 0; at < listing.output.size();
         at = listing.output.find('\n', at) + 1, ++lines)
        EXPECT_EQ(lines == 0 ? 'P' : '/', listing.output[at + column]) << listing.output;
    const auto paths = volumesRun(mounts, program + "-0");
    EXPECT_TRUE(paths.output.starts_with(std::string("/\0", 2)));
    EXPECT_NE(paths.output.find(std::string("\0/mnt/locked/a\nb\0/mnt/locked/c\xff\0", 32)),
              std::string::npos);
    EXPECT_EQ(static_cast<std::size_t>(std::count(paths.output.begin(), paths.output.end(), '\0')),
              lines - 1);
}

TEST_F(VolumesCommand, WhatCanNotBeAskedIsNamed) {
    const std::string asOther = "setpriv --reuid=65534 --regid=65534 --clear-groups " + program;
    const std::string locked = std::string(mounts) + "chmod 700 /mnt/locked && ";
    if (volumesRun(locked, asOther + "--help").status != 0)
        GTEST_SKIP() << "another user can not start the program";
    const auto result = volumesRun(locked, asOther + "--json");
    EXPECT_EQ(result.status, 1);
    const Json document = Json::parse(result.output, nullptr, false);
    ASSERT_TRUE(document.is_object()) << result.output;
    EXPECT_EQ(volumeAt(document, "/mnt/locked/a\nb"), nullptr);
    EXPECT_TRUE(volumeAt(document, "/mnt").is_object());
    ASSERT_EQ(document.at("skipped").size(), 2U) << result.output;
    EXPECT_EQ(document["skipped"][0].dump(),
              R"({"path":"/mnt/locked/a\nb","reason":"Permission denied"})");
    EXPECT_TRUE(result.error.starts_with("orrinvale-cli: /mnt/locked/a\\nb: Permission denied\n"))
        << result.error;
    EXPECT_EQ(volumesRun(locked, asOther + "--quiet").error, "");
    EXPECT_EQ(volumesRun(mounts, program + ">/dev/full").status, 1);
}

TEST_F(VolumesCommand, TheWatchTellsEachEventAtOnceOnALineOfItsOwn) {
    EXPECT_EQ(volumesRun("", program + "--watch -0").status, 2);
    // Mounts until something is told, since nobody says when the watch has taken its first look.
    const std::string script =
        "mkdir /mnt/\"a b\" && " ORRINVALE_CLI_PATH
        " volumes --watch --json >/mnt/told & watch=$! && "
        "for i in $(seq 200); do grep -q \\\"mount /mnt/told && break; mount -t tmpfs -o size=1m r "
        "\"/mnt/a "
        "b\" "
        "&& sleep 0.05; umount \"/mnt/a b\"; done; sleep 0.2; kill -TERM $watch; wait $watch; "
        "echo $? >>/mnt/told; cat /mnt/told";
    const auto result = volumesRun("mount -t tmpfs ram /mnt && ", "sh -c '" + script + "'");
    std::istringstream lines(result.output);
    std::string line;
    Strings events;
    while (std::getline(lines, line) && line.starts_with('{')) {
        const Json told = Json::parse(line, nullptr, false);
        ASSERT_TRUE(told.is_object()) << line;
        EXPECT_EQ(told.at("volume").at("path"), "/mnt/a b");
        EXPECT_EQ(told.at("volume").at("total"), 1024 * 1024);
        events.push_back(told.at("event"));
    }
    // The first look may have been taken while it stood.
    if (!events.empty() && events[0] == "unmount") events.erase(events.begin());
    ASSERT_GE(events.size(), 2U) << result.output << result.error;
    EXPECT_EQ(events[0], "mount");
    EXPECT_EQ(events[1], "unmount");
    EXPECT_EQ(line, "130") << "ended by the signal";
}

// Nothing happens to the volumes meanwhile, so that only the reader's going can end it.
TEST_F(VolumesCommand, TheWatchEndsWhenItsReaderDoes) {
    const auto result =
        volumesRun("", "sh -c '{ timeout 10 " + program + "--watch; echo $? >&2; } | true'");
    EXPECT_EQ(result.error, "0\n");
}

}  // namespace
}  // namespace orrinvale::testing
