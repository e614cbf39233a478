// Whether a tray is there: a watcher and host on a bus of the test's own, and trayer on a display
// of the test's own.
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <csignal>

#include "platform/linux/LinuxTrayHost.h"
#include "support/test.h"
#include "ui/support/soon.h"

namespace orrinvale::testing {
namespace {

// What was told so far, a letter each, from the watching thread.
struct Told {
    void take(TrayKind kind) {
        const std::lock_guard lock(mutex);
        text += kind == TrayKind::StatusNotifier ? 'S' : kind == TrayKind::XEmbed ? 'X' : '-';
    }
    std::string now() {
        const std::lock_guard lock(mutex);
        return text;
    }
    std::mutex mutex;
    std::string text;
};

// A program of the test's that prints something once it is ready.
struct TrayHelper {
    TrayHelper(const QString& program, const QStringList& arguments) {
        process.start(program, arguments);
    }
    ~TrayHelper() {
        process.kill();
        process.waitForFinished();
    }
    QString line() {
        while (!process.canReadLine())
            if (!process.waitForReadyRead(10'000)) return {};
        return QString::fromUtf8(process.readLine()).trimmed();
    }
    void tell(const char* command) {
        process.write(command);
        process.write("\n");
        EXPECT_EQ(line().toStdString(), ".");
    }
    QProcess process;
};

TEST(TrayHost, AHostThatComesAndGoesIsTold) {
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
        GTEST_SKIP() << "no dbus-daemon here";
    TrayHelper daemon(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--print-address"),
                       QStringLiteral("--nofork")});
    const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.line().toUtf8());
    TrayHelper panel(QStringLiteral("/usr/bin/python3"), {QStringLiteral(ORRINVALE_TRAY_HOST)});
    const auto told = std::make_shared<Told>();
    {
        LinuxTrayHost host({.hasBus = true, .hasX11 = false});
        host.watch([told](TrayKind kind) { told->take(kind); });
        EXPECT_SOON(told->now() == "-");
        panel.tell("host on");
        panel.tell("watcher on");
        EXPECT_SOON(told->now() == "-S");
        panel.tell("host off");
        EXPECT_SOON(told->now() == "-S-");
        panel.tell("host on");
        EXPECT_SOON(told->now() == "-S-S");
        panel.tell("watcher off");
        EXPECT_SOON(told->now() == "-S-S-");
        panel.tell("watcher on");
        EXPECT_SOON(told->now() == "-S-S-S");
        // A watcher that hangs says nothing, which is another thing than "no".
        ASSERT_EQ(::kill(static_cast<pid_t>(panel.process.processId()), SIGSTOP), 0);
        const auto slow = std::make_shared<Told>();
        LinuxTrayHost second({.hasBus = true, .hasX11 = false});
        second.watch([slow](TrayKind kind) { slow->take(kind); });
        EXPECT_SOON(slow->now() == "-");
        ASSERT_EQ(::kill(static_cast<pid_t>(panel.process.processId()), SIGCONT), 0);
        EXPECT_SOON(slow->now() == "-S") << "asked again";
        daemon.process.kill();
        EXPECT_SOON(told->now() == "-S-S-S-");
    }
    LinuxTrayHost late({.hasBus = true, .hasX11 = false});
    late.watch([told](TrayKind kind) { told->take(kind); });
    EXPECT_SOON(told->now() == "-S-S-S--") << "no bus, and nothing hangs";
    before.isNull() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS")
                    : qputenv("DBUS_SESSION_BUS_ADDRESS", before);
}

TEST(TrayHost, ABusThatHangsBehindItsGreetingIsToldAsNoTray) {
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
        GTEST_SKIP() << "no dbus-daemon here";
    TrayHelper daemon(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--print-address"),
                       QStringLiteral("--nofork")});
    const TestTree tree;
    TrayHelper bus(QStringLiteral("/usr/bin/python3"),
                   {QStringLiteral(ORRINVALE_HANGING_BUS), daemon.line(),
                    QString::fromStdString(tree.path())});
    const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.line().toUtf8());
    const auto told = std::make_shared<Told>();
    LinuxTrayHost host({.hasBus = true, .hasX11 = false});
    host.watch([told](TrayKind kind) { told->take(kind); });
    EXPECT_EQ(bus.line().toStdString(), "hangs");
    EXPECT_TRUE(QTest::qWaitFor([&] { return told->now() == "-"; }, 3000));
    before.isNull() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS")
                    : qputenv("DBUS_SESSION_BUS_ADDRESS", before);
}

TEST(TrayHost, ATrayOfX11ThatComesAndGoesIsTold) {
    for (const char* const program : {"Xvfb", "trayer"})
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            GTEST_SKIP() << "no " << program << " here";
    TrayHelper server(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                               QStringLiteral("-noreset"),
                                               QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    const QByteArray before = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":" + server.line().toUtf8());
    const auto told = std::make_shared<Told>();
    {
        LinuxTrayHost host({.hasBus = false, .hasX11 = true});
        host.watch([told](TrayKind kind) { told->take(kind); });
        EXPECT_SOON(told->now() == "-");
        for (const char* const now : {"-X", "-X-X"}) {
            const TrayHelper tray(QStringLiteral("trayer"), {});
            EXPECT_SOON(told->now() == now);
        }
        EXPECT_SOON(told->now() == "-X-X-");
        server.process.kill();
        server.process.waitForFinished();
    }
    EXPECT_EQ(told->now(), "-X-X-");
    before.isNull() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", before);
}

}  // namespace
}  // namespace orrinvale::testing
