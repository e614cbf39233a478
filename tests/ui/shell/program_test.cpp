// The program as a person starts it: the window, its bounds, a folder from the command line,
// further starts, and its end.
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QStandardPaths>
#include <QTest>
#include <filesystem>
#include <set>

#include "platform/StartRequest.h"
#include "support/SilentSocket.h"
#include "support/test.h"
#include "ui/kit/chrome/DesktopSession.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

using testing::DesktopSession;
using testing::PageWindow;

TEST(MainWindow, HasItsBoundsAndShowsOnlyWhatIsThere) {
    PageWindow on;
    TCImageWindow& window = *on.window->window();
    EXPECT_EQ(window.frame().size(), QSize(800, 506 + 62));
    const struct {
        QSize wanted, given;
    } sizes[] = {{{100, 100}, {800, 506}}, {{5000, 5000}, {1200, 900}}, {{900, 700}, {900, 700}}};
    for (const auto& each : sizes) {
        window.setFrame({window.frame().topLeft(), each.wanted});
        EXPECT_EQ(window.frame().size(), each.given);
    }
    EXPECT_EQ(window.titleBarView()->findChild<QLabel*>(QStringLiteral("titleLabel"))->text(),
              QStringLiteral("Orrinvale"));
    EXPECT_EQ(on.textOf("duplicateButton"), "Duplicate File Finder");
    EXPECT_EQ(on.textOf("fileListButton"), "Large File Finder");
    EXPECT_EQ(on.window->listFileVC(), nullptr) << "made when somebody wants it";
    window.performClose();
    EXPECT_FALSE(window.isVisible());
    on.window->showWindow();
    EXPECT_EQ(window.frame().size(), QSize(900, 700)) << "as it was left";
}

// The program as another process, in the environment of a session.
struct Running {
    /// With `log` the lines of the log come here.
    explicit Running(QProcessEnvironment variables, const char* log = "1")
        : environment(std::move(variables)) {
        environment.remove(QStringLiteral("ORRINVALE_LOG"));
        if (log != nullptr) environment.insert(QStringLiteral("ORRINVALE_LOG"), QLatin1String(log));
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
    }
    ~Running() {
        program.kill();
        program.waitForFinished();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void start(const QStringList& arguments = {}) {
        program.start(QStringLiteral(ORRINVALE_PROGRAM), arguments);
        ASSERT_TRUE(program.waitForStarted());
    }
    /// Another start of the program, to its end: its status, -1 when it does not end within five
    /// seconds.
    int startAgain(const QStringList& arguments = {}) const {
        QProcess second;
        second.setProcessEnvironment(environment);
        second.start(QStringLiteral(ORRINVALE_PROGRAM), arguments);
        const bool hasEnded =
            second.waitForFinished(5000) && second.exitStatus() == QProcess::NormalExit;
        EXPECT_EQ(second.readAllStandardError().toStdString(), "") << "it was answered";
        return hasEnded ? second.exitCode() : -1;
    }
    bool hasSaid(const std::string& words) {
        said += program.readAll().toStdString();
        return said.find(words) != std::string::npos;
    }
    /// The status with which it ended; -1 for none yet, minus the signal that ended it.
    int ended(int patience = 10'000) {
        if (program.state() != QProcess::NotRunning && !program.waitForFinished(patience))
            return -1;
        return program.exitStatus() == QProcess::NormalExit ? program.exitCode()
                                                            : -program.exitCode();
    }

    QProcessEnvironment environment;
    QProcess program;
    std::string said;
};

const QString xdotoolFind = QStringLiteral("xdotool search --onlyvisible --name ^Orrinvale$");
const QStringList quit{QStringLiteral("--action"), QStringLiteral("quit")};

TEST(Program, StartsSearchesAFolderAndLivesOnWhenItsWindowIsClosed) {
    TestTree tree;
    ASSERT_TRUE(tree.write("f/a/x.txt", "the same") && tree.write("f/b/x.txt", "the same"));
    DesktopSession session;
    session.setVariable("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    const std::string reason = session.startX11("openbox");
    if (!reason.empty()) GTEST_SKIP() << reason;
    Running running(session.environment());
    running.program.setWorkingDirectory(QString::fromStdString(tree.path()));
    running.start({QStringLiteral("./f/")});
    const auto find = [&] { return session.run(xdotoolFind).trimmed(); };
    QString id;
    ASSERT_SOON(!(id = find()).isEmpty());
    // More than a dozen colours: not a blank window.
    const QString picture = QString::fromStdString(tree.at("window.png"));
    QImage image;
    ASSERT_TRUE(PageWindow::waitFor([&] {
        session.run(QStringLiteral("import -window %1 %2").arg(id, picture));
        if (!image.load(picture)) return false;
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 4)
            for (int x = 0; x < image.width(); x += 4) colours.insert(image.pixel(x, y));
        return colours.size() > 12;
    }));
    EXPECT_GE(image.width(), 800);
    EXPECT_GE(image.height(), 506 + 62);
    EXPECT_SOON(running.hasSaid("search Path:" + tree.at("f") + ' ')) << running.said;
    const auto press = [&](const char* keys) {
        session.run(QStringLiteral("xdotool windowactivate --sync %1 key %2")
                        .arg(find(), QLatin1String(keys)));
    };
    press("ctrl+w");
    press("Return");  // "Keep Running": no tray here shows that it does
    ASSERT_SOON(find().isEmpty());
    EXPECT_EQ(running.program.state(), QProcess::Running);
    EXPECT_EQ(running.startAgain(), 0);
    ASSERT_SOON(!find().isEmpty()) << "the second start opens the first one's window";
    press("ctrl+q");
    EXPECT_EQ(running.ended(), 1);
}

TEST(Program, StandsInTheMiddleOfTheScreenAndWhereItWasLeftTheNextTime) {
    for (const char* const dpi : {"96", "144"}) {
        SCOPED_TRACE(dpi);
        TestTree tree;
        DesktopSession session;
        session.setVariable("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        session.setVariable("XDG_CONFIG_HOME", tree.path().c_str());
        session.setVariable("QT_FONT_DPI", dpi);
        const std::string reason = session.startX11("openbox");
        if (!reason.empty()) GTEST_SKIP() << reason;
        const auto place = [&]() -> QRect {
            const QString said =
                session.run(xdotoolFind + QStringLiteral(" getwindowgeometry --shell"));
            const auto number = [&](const char* name) {
                return said.section(QLatin1String(name) + QLatin1Char('='), 1, 1)
                    .section(QLatin1Char('\n'), 0, 0)
                    .toInt();
            };
            return {number("X"), number("Y"), number("WIDTH"), number("HEIGHT")};
        };
        const auto ended = [&](Running& running) {
            session.run(QStringLiteral("xdotool key --clearmodifiers ctrl+q"));
            return running.ended();
        };
        QRect first;
        {
            Running running(session.environment());
            running.start();
            ASSERT_SOON((first = place()).width() > 100);
            EXPECT_LE(first.height(), 800) << "as high as the screen";
            EXPECT_LE(std::abs(first.center().y() - 400), 3);
            if (first.width() <= 1000) {
                EXPECT_LE(std::abs(first.center().x() - 500), 3);
            }
            session.run(xdotoolFind + QStringLiteral(" windowmove --sync 60 12"));
            ASSERT_SOON(place().topLeft() != first.topLeft());
            first = place();
            EXPECT_EQ(ended(running), 1);
        }
        if (first.right() >= 1000) continue;  // it would be brought into view
        Running running(session.environment());
        running.start();
        ASSERT_SOON(place().width() > 100);
        EXPECT_SOON(place() == first) << place().x() << ' ' << place().y();
    }
}

// Without a display, with folders of its own.
QProcessEnvironment offscreen(const TestTree& tree, const std::string& bus) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
        environment.insert(QLatin1String(name), QString::fromStdString(tree.path()));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QString::fromStdString(bus));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    return environment;
}

// A session bus that starts the program when somebody calls it by its name, as an installed one
// does.
class StartingBus {
public:
    explicit StartingBus(TestTree& tree) {
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty() ||
            QStandardPaths::findExecutable(QStringLiteral("gdbus")).isEmpty())
            return;
        tree.write("services/com.kelpford.Orrinvale.service",
                   "[D-BUS Service]\nName=com.kelpford.Orrinvale\nExec=" ORRINVALE_PROGRAM "\n");
        tree.write("bus.conf",
                   "<busconfig><type>session</type><listen>unix:path=" + tree.at("bus") +
                       "</listen><servicedir>" + tree.at("services") +
                       "</servicedir><policy context=\"default\"><allow send_destination=\"*\" "
                       "eavesdrop=\"true\"/>"
                       "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
        environment = offscreen(tree, "unix:path=" + tree.at("bus"));
        environment.insert(QStringLiteral("ORRINVALE_LOG"), QStringLiteral("1"));
        m_daemon.setProcessEnvironment(environment);
        m_daemon.setProcessChannelMode(QProcess::MergedChannels);
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QString::fromStdString("--config-file=" + tree.at("bus.conf")),
                        QStringLiteral("--nofork"), QStringLiteral("--nopidfile")});
        isThere = m_daemon.waitForStarted() &&
                  PageWindow::waitFor([&] { return testing::isThere(tree.at("bus")); });
    }
    ~StartingBus() {
        m_daemon.terminate();
        m_daemon.waitForFinished();
    }
    StartingBus(const StartingBus&) = delete;
    StartingBus& operator=(const StartingBus&) = delete;

    /// What the method answers; a null text when it fails.
    QString call(const QString& method, const QStringList& arguments,
                 const char* destination = "com.kelpford.Orrinvale",
                 const char* path = "/com/kelpford/Orrinvale") const {
        QProcess gdbus;
        gdbus.setProcessEnvironment(environment);
        gdbus.start(QStringLiteral("gdbus"),
                    QStringList{QStringLiteral("call"), QStringLiteral("--session"),
                                QStringLiteral("--dest"), QLatin1String(destination),
                                QStringLiteral("--object-path"), QLatin1String(path),
                                QStringLiteral("--method"), method} +
                        arguments);
        if (!gdbus.waitForFinished(20'000) || gdbus.exitCode() != 0) return {};
        return QString::fromUtf8(gdbus.readAllStandardOutput());
    }
    /// What the program said that the bus has started.
    std::string said() { return m_said += m_daemon.readAll().toStdString(); }
    bool hasProgram() const {
        return call(QStringLiteral("org.freedesktop.DBus.NameHasOwner"),
                    {QStringLiteral("com.kelpford.Orrinvale")}, "org.freedesktop.DBus",
                    "/org/freedesktop/DBus")
            .contains(QLatin1String("true"));
    }

    QProcessEnvironment environment;
    bool isThere = false;

private:
    QProcess m_daemon;
    std::string m_said;
};

TEST(Program, IsStartedAndReachedOverTheSessionBus) {
    TestTree tree;
    StartingBus bus(tree);
    if (!bus.isThere) GTEST_SKIP() << "no dbus-daemon or no gdbus here";
    ASSERT_TRUE(tree.write("a b/x", "same") && tree.write("a b/y", "same") &&
                tree.write("c/x", "same"));
    const QString application = QStringLiteral("org.freedesktop.Application.");
    ASSERT_FALSE(bus.hasProgram());
    ASSERT_FALSE(
        bus.call(application + QStringLiteral("Activate"), {QStringLiteral("{}")}).isNull())
        << bus.said();
    EXPECT_TRUE(bus.hasProgram());
    const QString address = QString::fromStdString("['file://" + tree.at("a%20b") + "']");
    EXPECT_FALSE(
        bus.call(application + QStringLiteral("Open"), {address, QStringLiteral("{}")}).isNull());
    EXPECT_SOON(bus.said().find("search Path:" + tree.at("a b") + ' ') != std::string::npos)
        << bus.said();
    // A start from a terminal ends with the status 0 when the running program has taken it over.
    const Running second(bus.environment);
    EXPECT_TRUE(PageWindow::waitFor([&] {  // the first search may still be at its end
        EXPECT_EQ(second.startAgain({QString::fromStdString(tree.at("c"))}), 0);
        return bus.said().find("search Path:" + tree.at("c") + ' ') != std::string::npos;
    })) << bus.said();
    // Another runtime folder, and so another lock, and yet the same bus.
    ASSERT_TRUE(tree.folder("other") && tree.setMode("other", 0700));
    QProcessEnvironment elsewhere = bus.environment;
    elsewhere.insert(QStringLiteral("XDG_RUNTIME_DIR"), QString::fromStdString(tree.at("other")));
    EXPECT_EQ(Running(elsewhere).startAgain(), 0);
    EXPECT_EQ(second.startAgain(quit), 0);
    EXPECT_SOON(!bus.hasProgram()) << "it has quit";
}

TEST(Program, LaunchesToItsEnd) {
    TestTree tree;
    ASSERT_TRUE(
        tree.write("com.kelpford.Orrinvale/settings.ini", "[Orrinvale]\nZvLastClickRow = 5\n"));
    Running running(offscreen(tree, "unix:path=/nonexistent"));
    running.start();
    ASSERT_SOON(isThere(tree.at("orrinvale.socket")));
    EXPECT_EQ(running.startAgain(quit), 0);
    EXPECT_EQ(running.ended(), 1);
    // The last step of the launch puts the row back, and what is set is stored when the program
    // ends.
    EXPECT_EQ(contentOf(tree.at("com.kelpford.Orrinvale/settings.ini")).find("ZvLastClickRow = 5"),
              std::string::npos);
}

// A home of its own, without a bus.
QProcessEnvironment atHome(TestTree& tree) {
    QProcessEnvironment environment = offscreen(tree, "unix:path=/nonexistent");
    environment.insert(QStringLiteral("HOME"), QString::fromStdString(tree.at("home")));
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                       QStringLiteral("unix:path=/nonexistent"));
    for (const char* const name : {"XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME",
                                   "JOURNAL_STREAM", "ORRINVALE_STALLS"})
        environment.remove(QLatin1String(name));
    return environment;
}

TEST(Program, ItsLogIsAFileWhereNobodyElseHasIt) {
    const struct {
        const char* setting;
        const char* variable;
        bool isFile;
    } cases[] = {{"", nullptr, true},
                 {"logFile = \"never\"\n", nullptr, false},
                 {"", "0", false},
                 {"logFile = \"always\"\n", nullptr, true}};
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(tree.folder("home") && tree.write("com.kelpford.Orrinvale/settings.ini",
                                                      std::string("[Orrinvale]\n") + each.setting));
        const std::string log = tree.at("home/.local/state/com.kelpford.Orrinvale/Orrinvale.log");
        Running running(atHome(tree), each.variable);
        running.start();
        ASSERT_SOON(isThere(tree.at("orrinvale.socket")));
        EXPECT_EQ(running.startAgain({QString::fromStdString(tree.at("home"))}), 0);
        EXPECT_EQ(running.startAgain(quit), 0);
        EXPECT_EQ(running.ended(), 1);
        const std::string said = running.program.readAll().toStdString();
        EXPECT_EQ(isThere(log), each.isFile) << each.setting;
        EXPECT_EQ(said.empty(), each.isFile) << said;
        const std::string lines = contentOf(log);
        EXPECT_EQ(lines.find(" hardware info\n") != std::string::npos, each.isFile) << lines;
        EXPECT_EQ(lines.find("Process "), lines.rfind("Process ")) << "further starts have no part";
    }
}

TEST(Program, NothingThatIsAskedFromOutsideRemovesAnything) {
    TestTree tree;
    for (const char* const each :
         {"home/.cache/one/a", "home/.cache/b", "home/.local/share/Trash/files/x",
          "home/.local/share/Trash/info/x.trashinfo", "home/Downloads/film",
          "home/Downloads/film 2", "home/.config/autostart/x.desktop",
          "home/Applications/T.app/Contents/Info.plist", "home/.xsession-errors.old",
          "home/.local/state/logs/old.log"})
        ASSERT_TRUE(tree.write(each, "the same"));
    const auto all = [&] {
        std::set<std::string> paths;
        for (const auto& each : std::filesystem::recursive_directory_iterator(tree.at("home")))
            paths.insert(each.path().native());
        return paths;
    };
    const auto before = all();
    Running running(atHome(tree));
    running.start({QStringLiteral("--action"), QStringLiteral("fast-clean")});
    ASSERT_SOON(isThere(tree.at("orrinvale.socket")));
    for (const std::string_view name : startAction::all) {
        // It would eject the drives of whoever runs this.
        if (name == startAction::ejectAll || name == startAction::quit) continue;
        EXPECT_EQ(running.startAgain({QStringLiteral("--action"),
                                      QString::fromUtf8(name.data(), qsizetype(name.size()))}),
                  0)
            << name;
    }
    for (const char* const option : {"--disk-usage", "--"})
        EXPECT_EQ(running.startAgain(
                      {QLatin1String(option), QString::fromStdString(tree.at("home/Downloads"))}),
                  0);
    EXPECT_SOON(running.hasSaid("search Path:" + tree.at("home/Downloads") + ' ')) << running.said;
    QTest::qWait(500);  // for what somebody began
    const auto after = all();
    EXPECT_TRUE(std::ranges::includes(after, before));
    EXPECT_EQ(running.startAgain(quit), 0);
    EXPECT_EQ(running.ended(), 1);
    EXPECT_EQ(running.said.find("emove"), std::string::npos) << running.said;
}

TEST(Program, OfTwoStartsAtTheSameMomentOneStays) {
    TestTree tree;
    StartingBus bus(tree);
    if (!bus.isThere) GTEST_SKIP() << "no dbus-daemon or no gdbus here";
    const QByteArray asked = qgetenv("ORRINVALE_TEST_ROUNDS");
    const int rounds = asked.isEmpty() ? 5 : asked.toInt();
    for (int round = 0; round < rounds; ++round) {
        // With the bus in one half of the rounds, through the socket alone in the other.
        QProcessEnvironment environment = bus.environment;
        if (round % 2 == 1)
            environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                               QStringLiteral("unix:path=/nonexistent"));
        Running one(environment), other(environment);
        one.start();
        other.start();
        ASSERT_SOON(one.program.state() == QProcess::NotRunning ||
                    other.program.state() == QProcess::NotRunning);
        Running& first = one.program.state() == QProcess::Running ? one : other;
        Running& second = &first == &one ? other : one;
        ASSERT_EQ(second.ended(), 0)
            << "round " << round << ": " << second.program.readAll().toStdString();
        ASSERT_EQ(first.program.state(), QProcess::Running) << round;
        ASSERT_EQ(first.startAgain(quit), 0) << round;
        ASSERT_EQ(first.ended(), 1) << "round " << round;
    }
}

TEST(Program, EndsBySignalsAndNeedsNoBusAtAll) {
    TestTree tree;
    // A bus that accepts and never says a word.
    const Descriptor silent = testing::silentSocket(tree.at("bus"));
    ASSERT_TRUE(silent.isOpen());
    for (const std::string& bus :
         {"unix:path=" + tree.at("bus"), std::string("unix:path=/nonexistent"), std::string()}) {
        QProcessEnvironment environment = offscreen(tree, bus);
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), QString::fromStdString(bus));
        Running running(environment);
        running.start();
        // It answers once its window stands.
        ASSERT_SOON(isThere(tree.at("orrinvale.socket"))) << bus;
        QElapsedTimer clock;
        clock.start();
        EXPECT_EQ(running.startAgain(), 0) << bus;
        EXPECT_LT(clock.elapsed(), 3000) << bus;
        for (int attempt = 0; attempt < 50 && running.program.state() == QProcess::Running;
             ++attempt) {
            running.program.terminate();
            if (running.program.waitForFinished(100)) break;
        }
        EXPECT_EQ(running.ended(0), -SIGTERM) << bus;
        EXPECT_FALSE(isThere(tree.at("orrinvale.socket"))) << "it tidied up";
    }
}

}  // namespace
}  // namespace orrinvale
