// Whom the check believes, what it asks for, and when it is time.
#include "engine/updates/UpdateCheck.h"
#include "platform/linux/OwnPackage.h"
#include "platform/signatures.h"
#include "support/ReleaseKey.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using End = FetchedUpdate::End;

struct MadeUpTransport final : UpdateTransport {
    [[nodiscard]] Result<std::string> fetch(const std::string& address,
                                            const std::function<bool()>& isStopped) const override {
        asked.push_back(address);
        if (isStopped()) return tl::unexpected(systemError("fetch", address, ECANCELED));
        if (const auto found = files.find(address); found != files.end()) return found->second;
        return tl::unexpected(systemError("fetch", address, ENOENT));
    }
    std::map<std::string, std::string> files;
    mutable Strings asked;
};

/// A vendor with two keys, and a copy of the program that knows them.
struct UpdateCheckTest : ::testing::Test {
    struct Keys {
        testing::ReleaseKey oldKey, newKey, otherKey;
    };
    static void SetUpTestSuite() { keys.emplace(); }
    static void TearDownTestSuite() { keys.reset(); }

    void SetUp() override {
        if (keys->otherKey.publicKey.empty())
            GTEST_SKIP() << "openssl is missing, so there is no key";
        publish(testing::description("200", "<key>1</key><string>New</string>"), keys->newKey);
    }
    void publish(const std::string& bytes, testing::ReleaseKey& key) {
        transport.files = {{"ini", bytes}, {"ini.sig", key.sign(bytes)}};
    }
    UpdateParts parts() {
        return {.transport = &transport,
                .address = "ini",
                .keys = {keys->oldKey.publicKey, keys->newKey.publicKey},
                .isOwnedByPackage = [this] { return isOwned; },
                .isCanBeUseNetWork = [this](const auto&) { return ++probes, hasNetwork; },
                .localNumber = [] { return 100; },
                .lastTime = [this] { return time; },
                .writeTime =
                    [this](const std::string& read) {
                        time = read;
                        return Result<void>();
                    },
                .clock = [this] { return now; }};
    }

    inline static std::optional<Keys> keys;
    MadeUpTransport transport;
    bool isOwned = false, hasNetwork = true;
    int probes = 0;
    std::optional<std::string> time;
    Date now = Date::fromSeconds(1'800'000'000);
    LogLines log;
};

TEST(Signatures, AreThoseOfTheStandard) {
    // The second test of RFC 8032, section 7.1.
    const auto bytesOf = [](std::string_view digits) {
        std::string bytes;
        for (std::size_t i = 0; i < digits.size(); i += 2)
            bytes += char(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
        return bytes;
    };
    const std::string key =
        bytesOf("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c");
    std::string signature = bytesOf(
        "92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
        "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00");
    EXPECT_EQ(checkSignature("\x72", signature, key), SignatureCheck::Good);
    EXPECT_EQ(checkSignature("\x73", signature, key), SignatureCheck::Bad);
    EXPECT_EQ(checkSignature("\x72", signature + '\n', key), SignatureCheck::Bad);
    EXPECT_EQ(checkSignature("\x72", signature, key.substr(1)), SignatureCheck::Bad);
    signature[5] ^= 1;
    EXPECT_EQ(checkSignature("\x72", signature, key), SignatureCheck::Bad);
}

TEST_F(UpdateCheckTest, OnlyWhatAKnownKeyHasSignedIsRead) {
    const std::string good = transport.files["ini"];
    const auto isRead = [&] {
        const auto update = fetchUpdate(parts());
        EXPECT_EQ(update.end, End::Fetched);
        return update.description.has_value();
    };
    EXPECT_TRUE(isRead());
    EXPECT_EQ(transport.asked, (Strings{"ini", "ini.sig"}));
    EXPECT_TRUE(log.lines.empty());
    publish(good, keys->oldKey);
    EXPECT_TRUE(isRead());
    publish(good, keys->otherKey);
    EXPECT_FALSE(isRead()) << "of another key";
    publish(good, keys->newKey);
    transport.files["ini"] += ' ';
    EXPECT_FALSE(isRead()) << "tampered with";
    publish(good, keys->newKey);
    transport.files.erase("ini.sig");
    EXPECT_FALSE(isRead()) << "no signature";
    publish("no list", keys->newKey);
    EXPECT_FALSE(isRead()) << "signed, and no property list";
    EXPECT_EQ(log.lines.size(), 4U) << "each says why";
}

TEST_F(UpdateCheckTest, NothingIsAskedForWhereNothingCanComeOfIt) {
    UpdateParts keyless = parts();
    keyless.keys = {"", ""};
    EXPECT_EQ(fetchUpdate(keyless).road, UpdateRoad::NoKeys);
    isOwned = true;
    EXPECT_EQ(fetchUpdate(parts()).road, UpdateRoad::Package);
    EXPECT_EQ(probes, 0);
    isOwned = false;
    hasNetwork = false;
    EXPECT_EQ(fetchUpdate(parts()).end, End::NoNetwork);
    hasNetwork = true;
    EXPECT_EQ(fetchUpdate(parts(), [] { return true; }).end, End::Stopped);
    UpdateParts stopped = parts();
    bool isStopped = false;
    stopped.isCanBeUseNetWork = [&](const std::function<bool()>& asked) {
        isStopped = true;
        return !asked();
    };
    EXPECT_EQ(fetchUpdate(stopped, [&] { return isStopped; }).end, End::Stopped)
        << "while the network is tried";
    EXPECT_TRUE(transport.asked.empty());
    EXPECT_FALSE(time) << "nothing was read";
}

TEST_F(UpdateCheckTest, TheScheduleCountsFromTheLastReading) {
    using Seconds = std::chrono::seconds;
    for (const std::int64_t tag : {0, 1, -86'400, 604'800, 604'801})
        EXPECT_EQ(checkInterval(tag), Seconds(604'800)) << tag;
    EXPECT_EQ(checkInterval(86'400), Seconds(86'400));
    EXPECT_EQ(checkInterval(2'592'000), Seconds(2'592'000));

    const struct {
        const char* what;
        std::int64_t passed;  // seconds since the call before
        const char* stored;   // before the call; null leaves what is there
        bool isAsked, isFound;
    } steps[] = {{"never at the first start", 0, nullptr, false, false},
                 {"not yet", 604'799, nullptr, false, false},
                 {"due", 1, nullptr, true, true},
                 {"it counts anew", 604'799, nullptr, false, false},
                 {"a clock that was ahead", 0, "2250-01-01T00:00:00+00:00", false, false},
                 {"which is forgotten", 604'800, nullptr, true, true},
                 {"what is no time", 604'800, "soon", false, false}};
    for (const auto& step : steps) {
        now.nanoseconds += step.passed * 1'000'000'000;
        if (step.stored != nullptr) time = step.stored;
        transport.asked.clear();
        const ScheduledCheck check = checkIfDue(parts(), checkInterval(0));
        EXPECT_EQ(!transport.asked.empty(), step.isAsked) << step.what;
        EXPECT_EQ(check.found.has_value(), step.isFound) << step.what;
        EXPECT_FALSE(check.isFailed) << step.what;
    }
    now.nanoseconds += 604'800 * std::int64_t{1'000'000'000};
    const auto before = time;
    transport.files.clear();
    EXPECT_TRUE(checkIfDue(parts(), checkInterval(0)).isFailed);
    EXPECT_EQ(time, before) << "a failure is no reading";
}

TEST(OwnPackage, IsKnownByListsBeforePlaces) {
    TestTree tree;
    ASSERT_TRUE(tree.write("dpkg/status",
                           "Package: orrinvale\nStatus: install ok installed\nArchitecture: "
                           "amd64\nVersion: 1\n\n"));
    ASSERT_TRUE(tree.write("dpkg/info/orrinvale.list", "/.\n/usr/bin/orrinvale\n"));
    ASSERT_TRUE(tree.folder("other/info"));
    ASSERT_TRUE(tree.write("mark", ""));
    const struct {
        const char *executable, *dpkg, *mark;
        bool isOwned;
    } cases[] = {{"/usr/bin/orrinvale", "dpkg", "none", true},
                 {"/usr/bin/mine", "dpkg", "none", false},
                 {"/home/anna/bin/orrinvale", "dpkg", "none", false},
                 {"/usr/bin/orrinvale", "other", "none", true},
                 {"/usr/local/bin/orrinvale", "other", "none", false},
                 {"/opt/orrinvale/bin/orrinvale", "other", "none", false},
                 {"/app/bin/orrinvale", "dpkg", "none", true},
                 {"/home/anna/bin/orrinvale", "dpkg", "mark", true},
                 {"", "other", "none", false}};
    for (const auto& each : cases)
        EXPECT_EQ(isOwnedByPackage({each.executable, tree.at(each.dpkg), tree.at(each.mark)}),
                  each.isOwned)
            << each.executable << ' ' << each.dpkg;
}

}  // namespace
}  // namespace orrinvale
