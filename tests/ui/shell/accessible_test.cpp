// What a screen reader is told of the real program, through the desktop's own interface for it, on
// a bus and a display of the test.
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include "support/test.h"
#include "ui/kit/chrome/DesktopSession.h"
#include "ui/support/PageWindow.h"

namespace orrinvale::testing {
namespace {

// Ends with the test; started by it alone.
struct Process {
    ~Process() {
        program.terminate();
        if (!program.waitForFinished(3000)) program.kill();
        program.waitForFinished();
    }
    QProcess program;
};

const QString launcher = QStringLiteral("/usr/libexec/at-spi-bus-launcher");
// The system's own, which has the reader's side as a package.
const QString python = QStringLiteral("/usr/bin/python3");

class ScreenReader : public ::testing::Test {
protected:
    /// Why it can not be had here; empty when the program runs with a search of the folder.
    std::string start(const TestTree& tree) {
        if (!QFileInfo::exists(launcher)) return "at-spi2-core is not installed";
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
            return "no dbus-daemon here";
        if (std::string reason = session.startX11("openbox"); !reason.empty()) return reason;
        const std::string address = "unix:path=" + tree.at("bus");
        session.setVariable("DBUS_SESSION_BUS_ADDRESS", address.c_str());
        session.setVariable("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        session.setVariable("XDG_CONFIG_HOME", tree.path().c_str());
        session.setVariable("LC_ALL", "C.UTF-8");
        run(bus, QStringLiteral("dbus-daemon"),
            {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
             QString::fromStdString("--address=" + address)});
        if (!PageWindow::waitFor([&] { return isThere(tree.at("bus")); }))
            return "the bus does not start";
        run(spi, launcher, {QStringLiteral("--launch-immediately")});
        run(orrinvale, QStringLiteral(ORRINVALE_PROGRAM), {QString::fromStdString(tree.at("f"))});
        return {};
    }
    void run(Process& process, const QString& program, const QStringList& arguments) const {
        process.program.setProcessEnvironment(session.environment());
        process.program.setProcessChannelMode(QProcess::MergedChannels);
        process.program.start(program, arguments);
        EXPECT_TRUE(process.program.waitForStarted()) << program.toStdString();
    }

    DesktopSession session;
    Process bus, spi, orrinvale;
};

struct Told {
    Strings lines;
    [[nodiscard]] long count(const std::string& wanted) const {
        return std::ranges::count(lines, wanted);
    }
    /// Of the cells of that role those with that state.
    [[nodiscard]] long cells(const std::string& role, const std::string& state = {}) const {
        return std::ranges::count_if(lines, [&](const std::string& line) {
            return line.starts_with(role + '|') && line.find("x.txt|") != std::string::npos &&
                   line.find(state, line.rfind('|')) != std::string::npos;
        });
    }
};

Told part(const std::string& said, const std::string& title) {
    Told told;
    std::istringstream lines(said);
    bool isIn = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("== ")) isIn = line == "== " + title;
        else if (isIn) told.lines.push_back(line);
    }
    return told;
}

TEST_F(ScreenReader, HearsWhatEachThingIsAndItsState) {
    TestTree tree;
    const std::string bytes = someBytes(3000, 1);
    for (const char* name : {"f/a/x.txt", "f/b/x.txt", "f/c/x.txt"})
        ASSERT_TRUE(tree.write(name, bytes));
    if (const std::string reason = start(tree); !reason.empty()) GTEST_SKIP() << reason;
    Process reader;
    run(reader, python,
        {QStringLiteral(ORRINVALE_SOURCE_DIR "/tests/ui/shell/accessible_tree.py")});
    ASSERT_TRUE(reader.program.waitForFinished(90'000));
    if (reader.program.exitCode() == 77) GTEST_SKIP() << "python3-pyatspi is not installed";
    const std::string said = reader.program.readAll().toStdString();
    ASSERT_EQ(reader.program.exitCode(), 0) << said;

    const Told found = part(said, "found");
    EXPECT_EQ(found.count("frame|Orrinvale|"), 1) << said;
    EXPECT_EQ(found.count("list|Kinds of files|"), 1);
    EXPECT_EQ(found.count("list item|All, 9.00 KB|selected"), 1);
    EXPECT_EQ(found.count("list item|Documents, 9.00 KB|"), 1);
    EXPECT_EQ(found.count("page tab|Duplicate File Finder|selected"), 1);
    EXPECT_EQ(found.count("page tab|Large File Finder|"), 1);
    EXPECT_EQ(found.count("table column header|Ticked|"), 1);
    EXPECT_EQ(found.cells("check box"), 4) << "the group and its three copies";
    EXPECT_EQ(found.cells("check box", "checked"), 0);
    EXPECT_EQ(found.count("check box|Select all but one of each group|"), 1);
    const Told ticked = part(said, "ticked");
    EXPECT_EQ(ticked.cells("check box", "indeterminate"), 1) << "the group";
    EXPECT_EQ(ticked.cells("check box", "checked"), 2) << "all copies but one";
    EXPECT_EQ(ticked.cells("table cell", "checked") + ticked.cells("table cell", "indeterminate"),
              0);
    EXPECT_EQ(ticked.count("check box|Select all but one of each group|checked indeterminate"), 1)
        << "in the toolkit's words";
    const Told asked = part(said, "asked");
    EXPECT_EQ(asked.count("alert|Are you sure you want to delete all your selected files?|modal"),
              1)
        << said;
}

}  // namespace
}  // namespace orrinvale::testing
