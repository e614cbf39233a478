// DesktopNotifications: a few words on the desktop from a program whose windows may all be closed,
// by org.freedesktop.Notifications.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace orrinvale {

/// All texts are plain.
struct DesktopNote {
    struct Action {
        QString key;    ///< what comes back; "default" is a click on the note itself
        QString label;  ///< of the button
    };
    enum class Urgency : std::uint8_t { Low, Normal, Critical };

    QString title;      ///< shown on one line
    QString body = {};  ///< may have several lines
    std::vector<Action> actions = {};
    Urgency urgency = Urgency::Normal;
    /// Forgotten by the desktop when it goes off the screen; otherwise kept among what was missed.
    bool isTransient = true;
    int milliseconds = -1;                     ///< on the screen; -1 is the desktop's own time
    std::chrono::milliseconds patience{5000};  ///< after that it counts as shown by nobody
};

/// Nothing here waits: not for the bus, nor for the service, which may be started by the first
/// note. Main thread only.
class DesktopNotifications final : public QObject {
    Q_OBJECT
public:
    /// A number of ours for a note, never given twice.
    using Number = std::uint64_t;

    explicit DesktopNotifications(const QDBusConnection& bus, QObject* parent = nullptr);
    ~DesktopNotifications() override;

    /// False where there is no session bus; then show() fails for certain. True says nothing about
    /// a service.
    [[nodiscard]] bool hasBus() const { return m_bus.isConnected(); }

    /// `failed` runs later, once, where nobody shows the note within its patience. A service that
    /// is slower than that may show it all the same, and then it is a note like any other. Buttons
    /// are left out where the service has none.
    Number show(const DesktopNote& note, std::function<void()> failed = {});

    /// Takes a note off the screen; does nothing for one that is gone.
    void withdraw(Number number);

Q_SIGNALS:
    /// A button was pressed, or the note itself ("default"). The token lets a window come to the
    /// front; empty where the desktop gives none.
    void actionInvoked(orrinvale::DesktopNotifications::Number number, const QString& key,
                       const QString& token);
    /// It is off the screen, whyever. Comes behind its action.
    void closed(orrinvale::DesktopNotifications::Number number);

private Q_SLOTS:
    void onActionInvoked(const QDBusMessage& message);
    void onActivationToken(const QDBusMessage& message);
    void onNotificationClosed(const QDBusMessage& message);

private:
    /// What the service calls one of our notes. Another process's service may use the same ids, so
    /// that its name on the bus is kept too.
    struct Shown {
        QString service;
        std::uint32_t id = 0;
        QString token;
    };
    struct Sending {
        DesktopNote note;
        std::function<void()> failed;
        bool isWithdrawn = false;
        bool isSent = false;  // the service may show it
    };
    void send(Number number, const QStringList& capabilities);
    void sent(Number number, const QDBusMessage& answer);
    void giveUp(Number number);
    void fail(Number number);
    static void tellFailure(Sending& sending);
    void close(const Shown& shown);
    [[nodiscard]] Number numberOf(const QDBusMessage& message) const;

    QDBusConnection m_bus;
    Number m_last = 0;
    std::map<Number, Sending> m_sending;
    std::map<Number, Shown> m_shown;
};

}  // namespace orrinvale
