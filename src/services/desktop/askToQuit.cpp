// The actions of a program are those of org.gtk.Actions, which programs of GNOME and of others
// export at a path that follows from their name.
#include "services/desktop/askToQuit.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QStringList>
#include <QVariant>

namespace orrinvale {
namespace {

constexpr int patience = 1000;  // milliseconds

QString pathOf(const QString& name) {
    QString path = QLatin1Char('/') + name;
    path.replace(QLatin1Char('.'), QLatin1Char('/'));
    path.replace(QLatin1Char('-'), QLatin1Char('_'));
    return path;
}

QDBusMessage call(const QDBusConnection& bus, const QString& name, const char* method,
                  const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        name, pathOf(name), QStringLiteral("org.gtk.Actions"), QLatin1String(method));
    message.setAutoStartService(false);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, patience);
}

}  // namespace

bool askToQuit(const std::string& id) {
    const QString name = QString::fromStdString(id);
    const QDBusConnection bus = QDBusConnection::sessionBus();
    // A name on the bus has two parts at least.
    if (!name.contains(QLatin1Char('.')) || !bus.isConnected()) return false;
    const QString quit = QStringLiteral("quit");
    const QDBusMessage list = call(bus, name, "List", {});
    if (list.type() != QDBusMessage::ReplyMessage ||
        !list.arguments().value(0).toStringList().contains(quit))
        return false;
    const QDBusMessage answer =
        call(bus, name, "Activate", {quit, QVariant(QVariantList()), QVariant(QVariantMap())});
    return answer.type() == QDBusMessage::ReplyMessage;
}

}  // namespace orrinvale
