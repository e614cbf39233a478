// orrinvale-cli eject on volumes of the test's making: which volume is meant, what is printed, and
// the status. The real thing is in ejection/disk_image_test.cpp.
#include "cli/EjectCommand.h"

#include <nlohmann/json.hpp>

#include "platform/fake/FakeVolumes.h"
#include "support/test.h"

namespace orrinvale::cli {
namespace {

using Json = nlohmann::ordered_json;

struct Printed {
    Status status = Status::Done;
    std::string output;
    std::string error;
};

class EjectCommandTest : public ::testing::Test {
protected:
    void SetUp() override {
        add(2, "System", "/", false);
        add(3, "Stick", "/media/stick", true);
        add(4, "Twin", "/media/one", true);
        add(5, "Twin", "/media/two\n", true);
        add(6, "a\nb", "/media/odd\xff", true);
        add(7, "-x", "/media/dash", true);
        add(8, "a/b", "/media/slash", true);
        platform.ejections[4] = {
            fBsyErr,
            {"The volume is in use", {{12, "c\nat", "/media/one/\xff"}, {13, "sh", "/media/one"}}}};
    }

    void add(std::int16_t number, const std::string& name, const std::string& root, bool canEject) {
        platform.volumes.push_back(FakeVolumes::volume(number, name, root, canEject));
    }

    Printed run(const std::string& volume, const std::string& option = "quiet") {
        Arguments arguments;
        arguments.set("VOLUME", {volume});
        arguments.set(option, {"true"});
        Printed out;
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        out.status = EjectCommand(platform).run(arguments);
        out.output = ::testing::internal::GetCapturedStdout();
        out.error = ::testing::internal::GetCapturedStderr();
        return out;
    }

    FakeVolumes platform;
};

TEST_F(EjectCommandTest, AVolumeIsMeantByItsPathOrItsName) {
    const struct {
        const char* given;
        std::vector<std::int16_t> ejected;
        Status status = Status::Done;
    } cases[] = {
        {"Stick", {3}},
        {"/media/stick", {3}},
        {"//media/./stick/", {3}},
        {"/media/one", {4}, Status::SomeSkipped},
        {"a\nb", {6}},
        {"./-x", {7}},
        {"a/b", {8}},
        {"/media/stick/sub", {}, Status::NoSuchFolder},
        {"stick", {}, Status::NoSuchFolder},
        {"./Stick/x", {}, Status::NoSuchFolder},
        {"System", {}, Status::SomeSkipped},
        {"Twin", {}, Status::BadUsage},
        {"", {}, Status::BadUsage},
    };
    for (const auto& each : cases) {
        platform.ejectedNumbers.clear();
        const Printed result = run(each.given);
        EXPECT_EQ(result.status, each.status) << each.given;
        EXPECT_EQ(platform.ejectedNumbers, each.ejected) << each.given;
        EXPECT_EQ(result.output.empty(), each.status != Status::Done) << each.given;
        EXPECT_EQ(result.error.empty(), each.status == Status::Done) << each.given << result.error;
    }
}

TEST_F(EjectCommandTest, SentencesForPeopleStayOnTheirLine) {
    EXPECT_EQ(run("a\nb").output, "Ejected a\\nb from /media/odd\\xff\n");
    EXPECT_EQ(run("a\nb", "print0").output, std::string("/media/odd\xff\0", 12));
    EXPECT_EQ(run("/media/one").error,
              "orrinvale-cli: \"Twin\" could not be ejected: The volume is in use, held open by "
              "c\\nat (process 12, "
              "/media/one/\\xff) and sh (process 13, /media/one).\n");
    EXPECT_EQ(run("/media/one", "print0").output, "");
    EXPECT_EQ(run("System").error,
              "orrinvale-cli: \"System\" could not be ejected: It is fixed in this machine.\n");
    EXPECT_EQ(
        run("Twin").error,
        "orrinvale-cli: \"Twin\" is mounted on /media/one\norrinvale-cli: \"Twin\" is mounted on "
        "/media/two\\n\n"
        "orrinvale-cli: several volumes bear this name, give a path; see orrinvale-cli --help\n");
}

TEST_F(EjectCommandTest, TheDocumentTellsBothEnds) {
    EXPECT_EQ(
        Json::parse(run("a\nb", "json").output).dump(),
        R"({"ejected":true,"name":"a\nb","path":"/media/odd)"
        "\xEF\xBF\xBD"
        R"(","pathHex":"2f6d656469612f6f6464ff","reason":null,"holders":[],"stopped":false})");
    EXPECT_EQ(
        Json::parse(run("/media/one", "json").output).dump(),
        R"({"ejected":false,"name":"Twin","path":"/media/one","reason":"The volume is in use",)"
        R"("holders":[{"pid":12,"name":"c\nat","path":"/media/one/)"
        "\xEF\xBF\xBD"
        R"(","pathHex":"2f6d656469612f6f6e652fff"},{"pid":13,"name":"sh","path":"/media/one"}],"stopped":false})");
    EXPECT_EQ(Json::parse(run("System", "json").output).at("reason"),
              "It is fixed in this machine");
    platform.onEjection = [&](std::int16_t) { platform.volumes.clear(); };
    platform.ejections[3] = {nsvErr, {"The volume is not mounted any more", {}}};
    EXPECT_EQ(Json::parse(run("Stick", "json").output).at("name"), "Stick")
        << "nobody else knows it any more";
    EXPECT_EQ(run("Stick", "json").status, Status::NoSuchFolder);
}

}  // namespace
}  // namespace orrinvale::cli
