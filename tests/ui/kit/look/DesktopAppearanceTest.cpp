// The desktop's preference from a settings service of our own, on a bus of our own.
#include "ui/kit/look/DesktopAppearance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>
#include <QSignalSpy>

#include "support/test.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

using Scheme = Theme::Scheme;

class DesktopAppearanceTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--session"), QStringLiteral("--print-address"),
                        QStringLiteral("--nofork")});
        if (!m_daemon.waitForStarted()) GTEST_SKIP() << "no dbus-daemon here";
        ASSERT_TRUE(m_daemon.waitForReadyRead());
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        m_bus = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(m_address, QStringLiteral("look")));
        ASSERT_TRUE(m_bus->isConnected());
    }
    void TearDown() override {
        if (m_bus) QDBusConnection::disconnectFromBus(QStringLiteral("look"));
        for (QProcess* process : {&m_service, &m_daemon}) {
            process->kill();
            process->waitForFinished();
        }
    }

    // False where the machine lacks python3-dbusmock. The code is what the service does when it is
    // asked.
    bool startService(const char* readCode) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
        m_service.setProcessEnvironment(environment);
        m_service.start(
            QStringLiteral("/usr/bin/python3"),
            {QStringLiteral("-m"), QStringLiteral("dbusmock"), m_name, m_path, m_interface});
        const auto running = [this] {
            return m_bus->interface()->isServiceRegistered(m_name).value();
        };
        if (!QTest::qWaitFor([&] { return running() || m_service.state() == QProcess::NotRunning; },
                             10000))
            return false;
        if (!running()) return false;
        addMethod("Read", "ss", "v", readCode);
        addMethod("Change", "ssv", "",
                  "self.EmitSignal('org.freedesktop.portal.Settings', 'SettingChanged', 'ssv', "
                  "[args[0], args[1], args[2]])");
        return true;
    }
    void change(const char* in, const char* key, const QVariant& value) {
        call(m_interface, "Change",
             {QLatin1String(in), QLatin1String(key), QVariant::fromValue(QDBusVariant(value))});
    }

    std::unique_ptr<QDBusConnection> m_bus;

private:
    void addMethod(const char* name, const char* in, const char* out, const char* code) {
        call(QStringLiteral("org.freedesktop.DBus.Mock"), "AddMethod",
             {m_interface, QString::fromLatin1(name), QString::fromLatin1(in),
              QString::fromLatin1(out), QString::fromLatin1(code)});
    }
    void call(const QString& interface, const char* method, const QVariantList& arguments) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(m_name, m_path, interface, QString::fromLatin1(method));
        message.setArguments(arguments);
        EXPECT_EQ(m_bus->call(message).type(), QDBusMessage::ReplyMessage);
    }

    const QString m_name = QStringLiteral("org.freedesktop.portal.Desktop");
    const QString m_path = QStringLiteral("/org/freedesktop/portal/desktop");
    const QString m_interface = QStringLiteral("org.freedesktop.portal.Settings");
    QProcess m_daemon;
    QProcess m_service;
    QString m_address;
};

TEST_F(DesktopAppearanceTest, AsksOnceAndFollows) {
    if (!startService("ret = dbus.UInt32(1, variant_level=1) if args[1] == 'color-scheme' else "
                      "dbus.Boolean(False, variant_level=1)"))
        GTEST_SKIP() << "no python3-dbusmock here";
    const DesktopAppearance appearance(*m_bus, nullptr);
    EXPECT_EQ(appearance.scheme(), Scheme::Dark);
    QSignalSpy spy(&appearance, &DesktopAppearance::changed);
    change("org.freedesktop.appearance", "accent-color", 2U);
    change("org.freedesktop.appearance", "color-scheme", 2U);
    ASSERT_TRUE(spy.count() > 0 || spy.wait());
    EXPECT_EQ(appearance.scheme(), Scheme::Light);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_SOON(!appearance.animates());
    change("org.gnome.desktop.interface", "enable-animations", true);
    EXPECT_SOON(appearance.animates());
}

TEST_F(DesktopAppearanceTest, KnowsWhatADoubleClickOnATitleBarDoes) {
    if (!startService("ret = dbus.UInt32(1, variant_level=1) if args[1] == 'color-scheme' else "
                      "dbus.String('minimize', variant_level=1) if args[1] == "
                      "'action-double-click-titlebar' and "
                      "args[0] == 'org.gnome.desktop.wm.preferences' else dbus.Boolean(True, "
                      "variant_level=1)"))
        GTEST_SKIP() << "no python3-dbusmock here";
    const DesktopAppearance appearance(*m_bus, nullptr);
    const auto comes = [&](TitleDoubleClick action) {
        return QTest::qWaitFor([&] { return appearance.titleDoubleClick() == action; });
    };
    const auto press = [&](const char* action) {
        change("org.gnome.desktop.wm.preferences", "action-double-click-titlebar",
               QLatin1String(action));
    };
    EXPECT_TRUE(comes(TitleDoubleClick::Miniaturize));
    press("toggle-maximize-horizontally");
    EXPECT_TRUE(comes(TitleDoubleClick::Zoom));
    press("none");
    EXPECT_TRUE(comes(TitleDoubleClick::Nothing));
}

TEST_F(DesktopAppearanceTest, ASlowServiceHoldsUpNothingAndIsHeardLater) {
    if (!startService("import time; time.sleep(0.5); ret = dbus.UInt32(1, variant_level=1)"))
        GTEST_SKIP() << "no python3-dbusmock here";
    const DesktopAppearance appearance(*m_bus, nullptr);
    EXPECT_EQ(appearance.scheme(), std::nullopt);
    QSignalSpy spy(&appearance, &DesktopAppearance::changed);
    ASSERT_TRUE(spy.wait(10000));
    EXPECT_EQ(appearance.scheme(), Scheme::Dark);
}

TEST_F(DesktopAppearanceTest, WithoutAServiceThereIsNoPreference) {
    const DesktopAppearance appearance(*m_bus, nullptr);
    EXPECT_EQ(appearance.scheme(), std::nullopt);
}

}  // namespace
}  // namespace orrinvale
