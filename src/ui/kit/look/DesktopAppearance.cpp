// One call and one signal of the desktop's settings service. Theme.cpp decides what its answer counts for.
#include "ui/kit/look/DesktopAppearance.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace orrinvale {
namespace {

const QString& service() {
    static const QString name = QStringLiteral("org.freedesktop.portal.Desktop");
    return name;
}
const QString& object() {
    static const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
    return path;
}
const QString& interface() {
    static const QString name = QStringLiteral("org.freedesktop.portal.Settings");
    return name;
}
const QString& group() {
    static const QString name = QStringLiteral("org.freedesktop.appearance");
    return name;
}
const QString& key() {
    static const QString name = QStringLiteral("color-scheme");
    return name;
}

constexpr int patience = 200;  // milliseconds

}  // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& bus, QObject* parent) : QObject(parent) {
    if (!bus.isConnected()) return;
    QDBusConnection(bus).connect(service(), object(), interface(), QStringLiteral("SettingChanged"), this,
                                 SLOT(settingChanged(QDBusMessage)));
    QDBusMessage read = QDBusMessage::createMethodCall(service(), object(), interface(), QStringLiteral("Read"));
    read << group() << key();
    const QDBusMessage reply = bus.call(read, QDBus::Block, patience);
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) {
        take(reply.arguments().constFirst());
        return;
    }
    if (QDBusError(reply).type() != QDBusError::NoReply) return;
    const auto* late = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(late, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        const QDBusPendingReply<QDBusVariant> answer = *call;
        if (answer.isValid()) take(answer.value().variant());
        call->deleteLater();
    });
}

void DesktopAppearance::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() == 3 && arguments[0] == group() && arguments[1] == key()) take(arguments[2]);
}

// Read() wraps the number in one variant more than the signal does.
void DesktopAppearance::take(const QVariant& value) {
    QVariant plain = value;
    while (plain.canConvert<QDBusVariant>()) plain = plain.value<QDBusVariant>().variant();
    const uint preference = plain.toUInt();
    std::optional<Theme::Scheme> scheme;
    if (preference == 1) scheme = Theme::Scheme::Dark;
    if (preference == 2) scheme = Theme::Scheme::Light;
    if (scheme == m_scheme) return;
    m_scheme = scheme;
    Q_EMIT changed();
}

}  // namespace orrinvale
