// A display server of its own for a test, with a window manager, and the probe's window on it.
#pragma once

#include <QProcess>
#include <QRect>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orrinvale::testing {

/// What the probe said last about its window.
struct ProbeState {
    QRect frame;
    bool isZoomed = false;
    std::string kind;  ///< "own", "bare", "system"
};

class DesktopSession {
public:
    DesktopSession();
    ~DesktopSession();
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    /// For what is started from now on.
    void setVariable(const char* name, const char* value);

    /// Each answers an empty text, or why the machine can not do it.
    std::string startX11(const char* windowManager);
    std::string startWayland();
    std::string startProbe(const QString& probe, const QStringList& arguments = {});

    /// A command in the session, to its end, with spaces between its words; what it wrote. A null
    /// text when it failed.
    QString run(const QString& command);
    /// The pointer presses at the first place, goes to the second in eight steps with that pause
    /// before each, and lets go.
    void drag(QPoint from, QPoint to, int milliseconds);

    void tell(const char* order);
    /// Reads the probe until the condition holds. False when it does not within some seconds, or
    /// the probe has ended.
    bool waitFor(const std::function<bool(const ProbeState&)>& condition);
    bool waitForLine(const std::string& line);

    /// For a program that the test starts itself.
    [[nodiscard]] const QProcessEnvironment& environment() const { return m_environment; }
    [[nodiscard]] const ProbeState& state() const { return m_state; }
    /// All that the probe said, for the message of a failure.
    [[nodiscard]] const std::string& said() const { return m_said; }
    bool probeEnded(int& status);

private:
    bool readUntil(const std::function<bool()>& condition);
    void take(const std::string& line);
    bool startServer(const QString& command);

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
    std::vector<std::unique_ptr<QProcess>> m_servers;
    QProcess m_probe;
    ProbeState m_state;
    std::string m_said;
};

}  // namespace orrinvale::testing
