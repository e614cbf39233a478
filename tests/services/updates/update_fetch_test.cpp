// The check over a real wire: what goes out, what comes back, and how long it may take.
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "services/updates/HttpsTransport.h"
#include "services/updates/UpdateWatch.h"
#include "support/EventLoop.h"
#include "support/OwnTlsServer.h"
#include "support/ReleaseKey.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::OwnTlsServer;

struct UpdateFetchTest : testing::TlsTest<UpdateFetchTest> {
    static void SetUpTestSuite() {
        TlsTest::SetUpTestSuite();
        key.emplace();
    }
    static void TearDownTestSuite() {
        TlsTest::TearDownTestSuite();
        key.reset();
    }

    static void answer(QTcpSocket& socket, const QByteArray& request) {
        const std::lock_guard lock(guard);
        requests.push_back(request);
        const QByteArray path = request.split(' ').value(1);
        if (path == "/plain")
            return OwnTlsServer::say(socket, "302 Found\r\nLocation: " + server->plainAddress(),
                                     {});
        if (path == "/silent") return;
        if (path == "/large") return OwnTlsServer::say(socket, "200 OK", QByteArray(2 << 20, 'x'));
        const auto found = files.find(path);
        if (found == files.end()) return OwnTlsServer::say(socket, "404 Not Found", "no");
        OwnTlsServer::say(socket, "200 OK\r\nSet-Cookie: who=you; Path=/", found->second);
    }

    void SetUp() override {
        TlsTest::SetUp();
        if (IsSkipped()) return;
        if (key->publicKey.empty()) GTEST_SKIP() << "openssl is missing, so there is no key";
        const std::lock_guard lock(guard);
        requests.clear();
        for (const auto& [path, number] : {std::pair("/newer", "200"), std::pair("/older", "99")}) {
            const std::string bytes = testing::description(number, "");
            files[path] = QByteArray::fromStdString(bytes);
            files[path + QByteArray(".sig")] = QByteArray::fromStdString(key->sign(bytes));
        }
        files["/tampered"] = files["/newer"] + ' ';
        files["/tampered.sig"] = files["/newer.sig"];
        files["/unsigned"] = files["/newer"];
    }

    UpdateParts parts(const std::string& path, const UpdateTransport& by) const {
        return {.transport = &by,
                .address = server->address(path),
                .keys = {key->publicKey},
                .isOwnedByPackage = {},
                .isCanBeUseNetWork = [](const auto&) { return true; },
                .localNumber = [] { return 100; },
                .lastTime = [] { return "2020-01-01T00:00:00+00:00"; },
                .writeTime = [](const std::string&) { return Result<void>(); }};
    }

    const HttpsTransport transport{{server->certificate}, 500ms};
    inline static std::optional<testing::ReleaseKey> key;
    inline static std::mutex guard;
    inline static std::map<QByteArray, QByteArray> files;
    inline static std::vector<QByteArray> requests;
};

TEST_F(UpdateFetchTest, OnlyAGoodAnswerIsRead) {
    const struct {
        const char* path;
        bool isRead, isNewer;
    } cases[] = {{"/newer", true, true},      {"/older", true, false},
                 {"/tampered", false, false}, {"/unsigned", false, false},
                 {"/missing", false, false},  {"/large", false, false},
                 {"/plain", false, false},    {"/silent", false, false}};
    for (const auto& each : cases) {
        const auto start = Clock::now();
        FetchedUpdate update = fetchUpdate(parts(each.path, transport));
        EXPECT_EQ(update.description.has_value(), each.isRead) << each.path;
        auto* const description = update.description ? &*update.description : nullptr;
        EXPECT_EQ(takeNewVersion(description, 100).has_value(), each.isNewer) << each.path;
        EXPECT_LT(Clock::now() - start, 10s) << each.path;
    }
    EXPECT_EQ(server->plainRequests, 0) << "led away to plain HTTP";
    EXPECT_FALSE(fetchUpdate(parts("/newer", HttpsTransport())).description)
        << "nobody vouches for this certificate";
}

TEST_F(UpdateFetchTest, NothingGoesOutButTheQuestion) {
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(fetchUpdate(parts("/newer", transport)).description.has_value());
    const std::lock_guard lock(guard);
    ASSERT_EQ(requests.size(), 4U);
    const std::set<QByteArray> expected{"host",
                                        "cache-control: no-cache",
                                        "pragma: no-cache",
                                        "connection",
                                        "user-agent: orrinvale",
                                        "accept-language: *",
                                        "accept-encoding: identity"};
    for (const QByteArray& request : requests) {
        std::set<QByteArray> headers;
        for (const QByteArray& line : request.toLower().split('\n').mid(1))
            if (!line.trimmed().isEmpty())
                headers.insert(line.startsWith("host:") || line.startsWith("connection:")
                                   ? line.split(':').first()
                                   : line.trimmed());
        EXPECT_EQ(headers, expected) << request.toStdString();
    }
}

TEST_F(UpdateFetchTest, WhoStopsItWaitsForNothing) {
    const auto threads = [] {
        const std::filesystem::directory_iterator all("/proc/self/task");
        return std::distance(begin(all), end(all));
    };
    const auto before = threads();
    const auto start = Clock::now();
    const auto isStopped = [&] { return Clock::now() - start > 100ms; };
    const HttpsTransport patient({server->certificate}, 60s);
    EXPECT_EQ(fetchUpdate(parts("/silent", patient), isStopped).end, FetchedUpdate::End::Stopped);
    EXPECT_LT(Clock::now() - start, 10s);
    // What was let go gives back what it holds; threads that the toolkit keeps for later stay.
    for (int tries = 0; tries < 500 && threads() > before; ++tries)
        std::this_thread::sleep_for(1ms);
}

TEST_F(UpdateFetchTest, ALookEndsWhereItIsSwitchedOff) {
    const TestTree tree;
    UserDefaults defaults(tree.at("settings.ini"));
    defaults.setBool(true, SUEnableAutomaticChecks);
    const HttpsTransport patient({server->certificate}, 60s);
    UpdateWatch watch(parts("/silent", patient), defaults);
    bool hasLooked = false;
    QObject::connect(&watch, &UpdateWatch::looked, &watch, [&] { hasLooked = true; });
    watch.look();
    ASSERT_TRUE(testing::serveUntil([] {
        const std::lock_guard lock(guard);
        return !requests.empty();
    }));
    defaults.setBool(false, SUEnableAutomaticChecks);
    EXPECT_TRUE(testing::serveUntil([&] { return hasLooked; }, 10));
}

TEST_F(UpdateFetchTest, TheWatchLooksByItselfAgainAndAgain) {
    const TestTree tree;
    UserDefaults defaults(tree.at("settings.ini"));
    defaults.setBool(true, SUEnableAutomaticChecks);
    int looks = 0;
    UpdateWatch watch(parts("/newer", transport), defaults, {.first = 10ms, .later = 20ms});
    QObject::connect(&watch, &UpdateWatch::looked, &watch, [&] { ++looks; });
    EXPECT_TRUE(testing::serveUntil([&] { return looks >= 3; }, 10)) << looks;
    const UpdateWatch::Times usual;
    EXPECT_EQ(usual.first, 1min);
    EXPECT_EQ(usual.later, 1h);
}

TEST_F(UpdateFetchTest, TheWatchAsksOnlyWhereItIsSwitchedOnAndTellsAVersionOnce) {
    const TestTree tree;
    UserDefaults defaults(tree.at("settings.ini"));
    std::vector<QString> told;
    int looks = 0;
    auto now = std::make_shared<std::atomic<std::int64_t>>(1'800'000'000);
    UpdateParts own = parts("/newer", transport);
    own.clock = [now] { return Date::fromSeconds(*now); };
    UpdateWatch watch(own, defaults);
    QObject::connect(&watch, &UpdateWatch::found, &watch,
                     [&](const QString& version) { told.push_back(version); });
    QObject::connect(&watch, &UpdateWatch::looked, &watch, [&] { ++looks; });
    EXPECT_TRUE(testing::serveUntil([&] { return watch.road() == UpdateRoad::Server; }));
    watch.look();
    defaults.setBool(true, SUEnableAutomaticChecks);
    for (int i = 1; i <= 2; ++i) {
        watch.look();
        watch.look();  // one under way is enough
        ASSERT_TRUE(testing::serveUntil([&] { return looks == i; }));
    }
    EXPECT_EQ(told, std::vector<QString>{QStringLiteral("2.0")});
    {
        const std::lock_guard lock(guard);
        EXPECT_EQ(requests.size(), 4U) << "none while it was off";
        files.clear();
    }
    for (const int later : {0, 4 * 3600 - 1, 1}) {
        *now += later;
        const bool isRepeated = later != 4 * 3600 - 1;
        const int before = looks;
        watch.look();
        EXPECT_EQ(testing::serveUntil([&] { return looks > before; }, isRepeated ? 20 : 1),
                  isRepeated)
            << later;
    }
}

}  // namespace
}  // namespace orrinvale
