// Notes on the desktop: by a service of the test's making, and by dunst, on buses of their own.
#include "services/desktop/DesktopNotifications.h"

#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QProcess>
#include <QStandardPaths>

#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::serveUntil;

QString operator""_s(const char* text, std::size_t size) {
    return QString::fromUtf8(text, static_cast<qsizetype>(size));
}

// The service: what it was asked for, and what it can.
class NotificationService final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    struct Note {
        QString summary, body;
        QStringList actions;
        QVariantMap hints;
        int timeout;
    };
    QStringList capabilities;
    std::vector<Note> notes;
    std::vector<uint> closedIds;
    bool isSlow = false;  // answers no note before answerAll()
    std::vector<QDBusMessage> unanswered;

    void answerAll() {
        const QDBusConnection bus("service"_s);
        uint id = 6;
        for (const QDBusMessage& each : unanswered) EXPECT_TRUE(bus.send(each.createReply(++id)));
    }

public Q_SLOTS:
    QStringList GetCapabilities() { return capabilities; }
    uint Notify(const QString& /*application*/, uint /*replaces*/, const QString& /*icon*/,
                const QString& summary, const QString& body, const QStringList& actions,
                const QVariantMap& hints, int timeout) {
        notes.push_back({summary, body, actions, hints, timeout});
        setDelayedReply(isSlow);
        if (isSlow) unanswered.push_back(message());
        return static_cast<uint>(notes.size()) + 6;
    }
    void CloseNotification(uint id) {
        closedIds.push_back(id);
        Q_EMIT NotificationClosed(id, 3);
    }

Q_SIGNALS:
    void ActionInvoked(uint id, const QString& key);
    void ActivationToken(uint id, const QString& token);
    void NotificationClosed(uint id, uint reason);
};

class DesktopNotificationsTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (address.isEmpty()) GTEST_SKIP() << "no dbus-daemon here";
        m_own = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(address, "own"_s));
    }
    void TearDown() override {
        for (const QString& name : {"own"_s, "service"_s, "stranger"_s})
            QDBusConnection::disconnectFromBus(name);
    }
    void startService() {
        auto connection = QDBusConnection::connectToBus(address, "service"_s);
        EXPECT_TRUE(connection.registerObject("/org/freedesktop/Notifications"_s, &service,
                                              QDBusConnection::ExportAllContents));
        EXPECT_TRUE(connection.registerService("org.freedesktop.Notifications"_s));
    }
    [[nodiscard]] const QDBusConnection& own() const { return *m_own; }

    const testing::PrivateBus bus;
    const QString address = bus.address;
    NotificationService service;

private:
    std::unique_ptr<QDBusConnection> m_own;
};

TEST_F(DesktopNotificationsTest, WordsReachTheServiceInTheFormThatItTakes) {
    startService();
    const struct {
        const char* what;
        QStringList capabilities;
        const char *title, *body;
        const char *summary, *shown;
        int actions;
    } cases[] = {
        {"markup is for the body alone",
         {"body"_s, "body-markup"_s},
         "R&D_disk<b>",
         "<i>R&D</i> is \"full\"",
         "R&D_disk<b>",
         "&lt;i&gt;R&amp;D&lt;/i&gt; is &quot;full&quot;",
         0},
        {"a service that knows none", {"body"_s}, "a", "R&D <b>", "a", "R&D <b>", 0},
        {"a name with a line break", {"body"_s}, "a\nb\tc\x1b", "d\ne", "a b c ", "d\ne", 0},
        {"buttons where there are some", {"actions"_s}, "a", "b", "a", "b", 4},
    };
    DesktopNotifications notifications(own());
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        service.capabilities = each.capabilities;
        service.notes.clear();
        DesktopNote note{.title = QString::fromUtf8(each.title),
                         .body = QString::fromUtf8(each.body),
                         .actions = {{"default"_s, "Open"_s}, {"free"_s, "Free up space"_s}}};
        note.milliseconds = 1234;
        notifications.show(note, [] { FAIL(); });
        ASSERT_TRUE(serveUntil([&] { return !service.notes.empty(); }));
        const auto& came = service.notes.front();
        EXPECT_EQ(came.summary.toStdString(), each.summary);
        EXPECT_EQ(came.body.toStdString(), each.shown);
        EXPECT_EQ(came.actions.size(), each.actions);
        EXPECT_EQ(came.timeout, 1234);
        EXPECT_TRUE(came.hints.value("transient"_s).toBool());
        EXPECT_EQ(came.hints.value("urgency"_s), QVariant::fromValue(static_cast<uchar>(1)));
        EXPECT_EQ(came.hints.value("desktop-entry"_s).toString(), "com.kelpford.Orrinvale"_s);
    }
}

TEST_F(DesktopNotificationsTest, AnActionComesWithItsTokenAndOnlyFromTheServiceThatHasTheNote) {
    startService();
    service.capabilities = {"actions"_s};
    DesktopNotifications notifications(own());
    std::vector<std::string> heard;
    QObject::connect(&notifications, &DesktopNotifications::actionInvoked, &notifications,
                     [&](auto number, const QString& key, const QString& token) {
                         heard.push_back(std::to_string(number) + ' ' + key.toStdString() + ' ' +
                                         token.toStdString());
                     });
    QObject::connect(&notifications, &DesktopNotifications::closed, &notifications,
                     [&](auto number) { heard.push_back("closed " + std::to_string(number)); });
    const auto first = notifications.show({.title = "a"_s, .actions = {{"free"_s, "Free"_s}}});
    const auto second = notifications.show({.title = "b"_s, .actions = {{"free"_s, "Free"_s}}});
    ASSERT_TRUE(serveUntil([&] { return service.notes.size() == 2; }));
    notifications.withdraw(first);
    ASSERT_TRUE(serveUntil([&] { return heard.size() == 1; }));
    EXPECT_EQ(service.closedIds, std::vector<uint>{7});

    const auto stranger = QDBusConnection::connectToBus(address, "stranger"_s);
    for (const uint id : {7U, 8U, 900U}) {
        QDBusMessage forged =
            QDBusMessage::createSignal("/org/freedesktop/Notifications"_s,
                                       "org.freedesktop.Notifications"_s, "ActionInvoked"_s);
        forged << id << "free"_s;
        EXPECT_TRUE(stranger.send(forged));
    }
    Q_EMIT service.ActionInvoked(7, "free"_s);  // that one is gone
    Q_EMIT service.ActivationToken(8, "token"_s);
    Q_EMIT service.ActionInvoked(8, "free"_s);
    Q_EMIT service.NotificationClosed(8, 2);
    ASSERT_TRUE(serveUntil([&] { return heard.size() >= 3; }));
    EXPECT_EQ(heard, (std::vector<std::string>{"closed " + std::to_string(first),
                                               std::to_string(second) + " free token",
                                               "closed " + std::to_string(second)}));
}

TEST_F(DesktopNotificationsTest, WhereNobodyShowsItThatIsToldOnce) {
    int failures = 0;
    const auto count = [&] { ++failures; };
    {
        DesktopNotifications notifications(own());
        notifications.show({.title = "a"_s}, count);
        EXPECT_EQ(failures, 0) << "later";
        EXPECT_TRUE(serveUntil([&] { return failures == 1; }));
        notifications.withdraw(notifications.show({.title = "a"_s}, count));
    }
    DesktopNotifications withoutBus(QDBusConnection("there is none"_s));
    EXPECT_FALSE(withoutBus.hasBus());
    withoutBus.show({.title = "a"_s}, count);
    EXPECT_TRUE(serveUntil([&] { return failures == 2; }));
    auto waiting = std::make_unique<DesktopNotifications>(own());
    waiting->show({.title = "a"_s}, [] { FAIL() << "there is nobody left to be told"; });
    waiting.reset();
    EXPECT_FALSE(serveUntil([&] { return failures > 2; }, 1));
}

// It counts as not shown, and yet its buttons work and it can be taken away.
TEST_F(DesktopNotificationsTest, ANoteThatComesLateLives) {
    startService();
    service.isSlow = true;
    DesktopNotifications notifications(own());
    std::vector<std::string> heard;
    QObject::connect(&notifications, &DesktopNotifications::actionInvoked, &notifications,
                     [&](auto number, const QString& key) {
                         heard.push_back(std::to_string(number) + ' ' + key.toStdString());
                     });
    DesktopNote note{.title = "late"_s};
    note.patience = std::chrono::milliseconds(300);
    const auto kept = notifications.show(note, [&] { heard.emplace_back("kept failed"); });
    ASSERT_TRUE(serveUntil([&] { return service.unanswered.size() == 1; }));
    const auto dropped = notifications.show(note, [&] { heard.emplace_back("dropped failed"); });
    ASSERT_TRUE(serveUntil([&] { return heard.size() == 2; }));
    EXPECT_EQ(heard, (std::vector<std::string>{"kept failed", "dropped failed"}));
    ASSERT_EQ(service.unanswered.size(), 2U);
    notifications.withdraw(dropped);
    service.answerAll();
    EXPECT_TRUE(serveUntil([&] { return !service.closedIds.empty(); }));
    EXPECT_EQ(service.closedIds, std::vector<uint>{8});
    Q_EMIT service.ActionInvoked(7, "default"_s);
    EXPECT_TRUE(serveUntil([&] { return heard.size() == 3; }));
    EXPECT_EQ(heard.back(), std::to_string(kept) + " default");
}

// A server that people use: it counts what it shows, and its own closing is heard.
TEST_F(DesktopNotificationsTest, DunstShowsIt) {
    for (const char* program : {"dunst", "dunstctl", "Xvfb"})
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            GTEST_SKIP() << program << " is not installed";
    testing::Helper display, dunst;
    display.start("Xvfb"_s, "-displayfd 1 -screen 0 800x600x24 -nolisten tcp"_s.split(u' '));
    ASSERT_TRUE(display.waitForReadyRead());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY"_s, u':' + QString::fromLatin1(display.readLine().trimmed()));
    environment.insert("DBUS_SESSION_BUS_ADDRESS"_s, address);
    environment.remove("WAYLAND_DISPLAY"_s);
    dunst.setProcessEnvironment(environment);
    dunst.start("dunst"_s, {"-conf"_s, "/dev/null"_s});
    const auto tell = [&](const QStringList& arguments) {
        QProcess control;
        control.setProcessEnvironment(environment);
        control.start("dunstctl"_s, arguments);
        control.waitForFinished();
        return QString::fromUtf8(control.readAllStandardOutput()).trimmed();
    };
    EXPECT_TRUE(serveUntil([&] {
        return own().interface()->isServiceRegistered("org.freedesktop.Notifications"_s).value();
    }));
    DesktopNotifications notifications(own());
    int closed = 0;
    QObject::connect(&notifications, &DesktopNotifications::closed, &notifications,
                     [&] { ++closed; });
    const auto first = notifications.show({.title = "R&D <b>"_s, .body = "12 % free"_s},
                                          [] { FAIL() << "dunst is there"; });
    notifications.show({.title = "another"_s});
    const QStringList displayed{"count"_s, "displayed"_s};
    EXPECT_TRUE(serveUntil([&] { return tell(displayed) == "2"_s; }));
    notifications.withdraw(first);
    EXPECT_TRUE(serveUntil([&] { return closed == 1; }));
    EXPECT_EQ(tell(displayed), "1"_s);
    tell({"close-all"_s});
    EXPECT_TRUE(serveUntil([&] { return closed == 2; }));
}

}  // namespace
}  // namespace orrinvale

#include "desktop_notifications_test.moc"
