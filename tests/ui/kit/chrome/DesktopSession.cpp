// DesktopSession: see DesktopSession.h. It ends only the processes that it has started.
#include "ui/kit/chrome/DesktopSession.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QThread>

#include <sstream>

namespace orrinvale::testing {
namespace {

constexpr int patience = 10000;  // milliseconds; all of it is used only when a check fails

bool isInstalled(const QString& program) {
    return !QStandardPaths::findExecutable(program).isEmpty();
}

}  // namespace

DesktopSession::DesktopSession() : m_environment(QProcessEnvironment::systemEnvironment()) {
    for (const char* name :
         {"DISPLAY", "WAYLAND_DISPLAY", "ORRINVALE_SYSTEM_FRAME", "ORRINVALE_THEME"})
        m_environment.remove(QLatin1String(name));
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_folder.path());
    m_environment.insert(QStringLiteral("HOME"), m_folder.path());
    m_environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("1"));
}

DesktopSession::~DesktopSession() {
    m_probe.kill();
    m_probe.waitForFinished();
    for (auto server = m_servers.rbegin(); server != m_servers.rend(); ++server) {
        (*server)->terminate();
        if (!(*server)->waitForFinished(2000)) (*server)->kill();
        (*server)->waitForFinished();
    }
}

void DesktopSession::setVariable(const char* name, const char* value) {
    m_environment.insert(QLatin1String(name), QLatin1String(value));
}

bool DesktopSession::startServer(const QString& command) {
    auto server = std::make_unique<QProcess>();
    server->setProcessEnvironment(m_environment);
    server->setStandardErrorFile(QProcess::nullDevice());
    server->startCommand(command);
    const bool good = server->waitForStarted();
    m_servers.push_back(std::move(server));
    return good;
}

std::string DesktopSession::startX11(const char* windowManager) {
    for (const char* program : {"Xvfb", "xdotool", "xprop", windowManager})
        if (*program != '\0' && !isInstalled(QLatin1String(program)))
            return std::string(program) + " is not installed";
    // The server itself picks a free display and writes its number.
    if (!startServer(QStringLiteral("Xvfb -displayfd 1 -screen 0 1000x800x24 -nolisten tcp")))
        return "Xvfb does not start";
    QProcess& server = *m_servers.front();
    while (!server.canReadLine())
        if (!server.waitForReadyRead(patience)) return "Xvfb gives no display";
    m_environment.insert(QStringLiteral("DISPLAY"),
                         QLatin1Char(':') + QString::fromLatin1(server.readLine().trimmed()));
    m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    if (*windowManager == '\0') return {};
    if (!startServer(QLatin1String(windowManager))) return "the window manager does not start";
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < patience; QThread::msleep(20))
        if (run(QStringLiteral("xprop -root _NET_SUPPORTING_WM_CHECK"))
                .contains(QLatin1String("0x")))
            return {};
    return "the window manager does not announce itself";
}

std::string DesktopSession::startWayland() {
    if (!isInstalled(QStringLiteral("weston"))) return "weston is not installed";
    const QString socket = QStringLiteral("chrome-test");
    if (!startServer(QStringLiteral("weston --backend=headless-backend.so --width=1000 "
                                    "--height=800 --idle-time=0 --socket=") +
                     socket))
        return "weston does not start";
    m_environment.insert(QStringLiteral("WAYLAND_DISPLAY"), socket);
    m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < patience; QThread::msleep(20))
        if (QFile::exists(m_folder.filePath(socket))) return {};
    return "weston opens no socket";
}

std::string DesktopSession::startProbe(const QString& probe, const QStringList& arguments) {
    m_probe.setProcessEnvironment(m_environment);
    m_probe.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_probe.start(probe, arguments);
    if (!m_probe.waitForStarted()) return "the probe does not start";
    return waitFor([](const ProbeState& state) { return state.frame.isValid(); })
               ? ""
               : "the probe shows no window";
}

QString DesktopSession::run(const QString& command) {
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.startCommand(command);
    if (!process.waitForFinished(patience) || process.exitCode() != 0) return {};
    return QString::fromUtf8(process.readAllStandardOutput()) + QLatin1Char(' ');
}

void DesktopSession::drag(QPoint from, QPoint to, int milliseconds) {
    const QString pause = QStringLiteral(" sleep %1").arg(milliseconds / 1000.0);
    const auto move = [](QPoint point) {
        return QStringLiteral(" mousemove %1 %2").arg(point.x()).arg(point.y());
    };
    QString orders = QStringLiteral("xdotool") + move(from) + QStringLiteral(" mousedown 1");
    constexpr int steps = 8;
    for (int step = 1; step <= steps; ++step)
        orders += pause + move(from + (to - from) * step / steps);
    // The window manager asks for the pointer in the meantime; letting go before it has it would
    // end nothing.
    run(orders + pause + pause + QStringLiteral(" mouseup 1"));
}

void DesktopSession::tell(const char* order) {
    m_probe.write(order);
    m_probe.write("\n");
    m_probe.waitForBytesWritten();
}

void DesktopSession::take(const std::string& line) {
    m_said += line + '\n';
    std::istringstream words(line);
    std::string first, zoomed;
    int x = 0, y = 0, width = 0, height = 0;
    if (!(words >> first) || first != "frame") return;
    words >> x >> y >> width >> height >> zoomed >> m_state.kind;
    m_state.frame = QRect(x, y, width, height);
    m_state.isZoomed = zoomed == "zoomed";
}

bool DesktopSession::readUntil(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > patience) return false;
        if (!m_probe.canReadLine()) {
            if (m_probe.state() == QProcess::NotRunning) return false;
            m_probe.waitForReadyRead(50);
        }
        while (m_probe.canReadLine()) take(m_probe.readLine().trimmed().toStdString());
    }
    return true;
}

bool DesktopSession::waitFor(const std::function<bool(const ProbeState&)>& condition) {
    return readUntil([&] { return condition(m_state); });
}

bool DesktopSession::waitForLine(const std::string& line) {
    return readUntil([&] { return m_said.find(line + '\n') != std::string::npos; });
}

bool DesktopSession::probeEnded(int& status) {
    if (!m_probe.waitForFinished(patience) || m_probe.exitStatus() != QProcess::NormalExit)
        return false;
    status = m_probe.exitCode();
    return true;
}

}  // namespace orrinvale::testing
