// First what the service can show is asked, then the note goes out in that form. Both answers come
// through the event loop.
#include "services/desktop/DesktopNotifications.h"

#include <QDBusPendingCallWatcher>
#include <QTimer>
#include <QVariantMap>
#include <algorithm>
#include <utility>

#include "platform/instance.h"

namespace orrinvale {
namespace {

constexpr int lateness = 60'000;  // milliseconds in which a slow service may show a note
constexpr std::size_t kMostKept = 100;

QString serviceName() { return QStringLiteral("org.freedesktop.Notifications"); }
QString objectPath() { return QStringLiteral("/org/freedesktop/Notifications"); }

QDBusMessage call(const char* method) {
    return QDBusMessage::createMethodCall(serviceName(), objectPath(), serviceName(),
                                          QLatin1String(method));
}

// A line break or a control character in a name is shown by some services and obeyed by others.
QString textOnOneLine(QString text) {
    for (QChar& each : text)
        if (each.category() == QChar::Other_Control || each == QChar::LineSeparator ||
            each == QChar::ParagraphSeparator)
            each = QLatin1Char(' ');
    return text;
}

QVariantMap hintsOf(const DesktopNote& note) {
    return {
        {QStringLiteral("urgency"), QVariant::fromValue(static_cast<unsigned char>(note.urgency))},
        {QStringLiteral("transient"), note.isTransient},
        {QStringLiteral("desktop-entry"), QLatin1String(programBusName)}};
}

}  // namespace

DesktopNotifications::DesktopNotifications(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), m_bus(bus) {
    // Of any sender: with a name the toolkit would ask the bus who owns it, and wait for that.
    const std::pair<const char*, const char*> signalSlots[] = {
        {"ActionInvoked", SLOT(onActionInvoked(QDBusMessage))},
        {"ActivationToken", SLOT(onActivationToken(QDBusMessage))},
        {"NotificationClosed", SLOT(onNotificationClosed(QDBusMessage))}};
    if (!m_bus.isConnected()) return;
    for (const auto& [name, slot] : signalSlots)
        m_bus.connect(QString(), objectPath(), serviceName(), QLatin1String(name), this, slot);
}

DesktopNotifications::~DesktopNotifications() = default;

DesktopNotifications::Number DesktopNotifications::show(const DesktopNote& note,
                                                        std::function<void()> failed) {
    const Number number = ++m_last;
    m_sending[number] = {note, std::move(failed)};
    if (!hasBus()) {  // a call on no bus is never answered
        QTimer::singleShot(0, this, [this, number] { fail(number); });
        return number;
    }
    QTimer::singleShot(note.patience, this, [this, number] { giveUp(number); });
    auto* const asked =
        new QDBusPendingCallWatcher(m_bus.asyncCall(call("GetCapabilities"), lateness), this);
    connect(asked, &QDBusPendingCallWatcher::finished, this, [this, asked, number] {
        asked->deleteLater();
        const QDBusMessage answer = asked->reply();
        if (answer.type() != QDBusMessage::ReplyMessage) fail(number);
        else send(number, answer.arguments().value(0).toStringList());
    });
    return number;
}

// What was sent is kept: its late answer has the id by which it is pressed and taken away.
void DesktopNotifications::giveUp(Number number) {
    const auto found = m_sending.find(number);
    if (found == m_sending.end()) return;
    if (found->second.isSent) tellFailure(found->second);
    else fail(number);
}

void DesktopNotifications::fail(Number number) {
    auto sending = m_sending.extract(number);
    if (!sending.empty()) tellFailure(sending.mapped());
}

void DesktopNotifications::tellFailure(Sending& sending) {
    const auto failed = std::exchange(sending.failed, nullptr);
    if (failed && !sending.isWithdrawn) failed();
}

void DesktopNotifications::send(Number number, const QStringList& capabilities) {
    const auto found = m_sending.find(number);
    if (found == m_sending.end()) return;
    if (found->second.isWithdrawn) {
        m_sending.erase(found);
        return;
    }
    const DesktopNote& note = found->second.note;
    QStringList actions;
    if (capabilities.contains(QLatin1String("actions")))
        for (const DesktopNote::Action& each : note.actions) actions << each.key << each.label;
    const bool isMarkup = capabilities.contains(QLatin1String("body-markup"));
    QDBusMessage notify = call("Notify");
    notify << QStringLiteral("Orrinvale") << std::uint32_t{0} << QLatin1String(programBusName)
           << textOnOneLine(note.title) << (isMarkup ? note.body.toHtmlEscaped() : note.body)
           << actions << hintsOf(note) << note.milliseconds;
    found->second.isSent = true;
    auto* const asked = new QDBusPendingCallWatcher(m_bus.asyncCall(notify, lateness), this);
    connect(asked, &QDBusPendingCallWatcher::finished, this, [this, asked, number] {
        asked->deleteLater();
        sent(number, asked->reply());
    });
}

void DesktopNotifications::sent(Number number, const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
        fail(number);
        return;
    }
    const auto sending = m_sending.extract(number);
    const Shown shown{answer.service(), answer.arguments().constFirst().toUInt(), {}};
    m_shown[number] = shown;
    if (!sending.empty() && sending.mapped().isWithdrawn) close(shown);
    // A service that died says of no note that it is gone.
    if (m_shown.size() > kMostKept) m_shown.erase(m_shown.begin());
}

void DesktopNotifications::withdraw(Number number) {
    if (const auto sending = m_sending.find(number); sending != m_sending.end())
        sending->second.isWithdrawn = true;
    if (const auto shown = m_shown.find(number); shown != m_shown.end()) close(shown->second);
}

void DesktopNotifications::close(const Shown& shown) {
    QDBusMessage message = call("CloseNotification");
    message << shown.id;
    message.setAutoStartService(false);
    m_bus.asyncCall(message, lateness);
}

DesktopNotifications::Number DesktopNotifications::numberOf(const QDBusMessage& message) const {
    if (message.arguments().isEmpty()) return 0;
    const std::uint32_t id = message.arguments().constFirst().toUInt();
    const auto found = std::ranges::find_if(m_shown, [&](const auto& each) {
        return each.second.id == id && each.second.service == message.service();
    });
    return found == m_shown.end() ? 0 : found->first;
}

void DesktopNotifications::onActivationToken(const QDBusMessage& message) {
    if (const Number number = numberOf(message); number != 0)
        m_shown[number].token = message.arguments().value(1).toString();
}

void DesktopNotifications::onActionInvoked(const QDBusMessage& message) {
    if (const Number number = numberOf(message); number != 0)
        Q_EMIT actionInvoked(number, message.arguments().value(1).toString(),
                             m_shown[number].token);
}

void DesktopNotifications::onNotificationClosed(const QDBusMessage& message) {
    const Number number = numberOf(message);
    if (number == 0) return;
    m_shown.erase(number);
    Q_EMIT closed(number);
}

}  // namespace orrinvale
