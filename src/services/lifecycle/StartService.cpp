// The bus side answers as org.freedesktop.Application, the socket side reads datagrams; both end in
// one handler.
#include "services/lifecycle/StartService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <utility>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"

namespace orrinvale {
namespace {

std::string tokenIn(const QVariantMap& platformData) {
    for (const QLatin1String key :
         {QLatin1String("activation-token"), QLatin1String("desktop-startup-id")})
        if (const QString token = platformData.value(key).toString(); !token.isEmpty())
            return token.toStdString();
    return {};
}

}  // namespace

StartService::StartService(ProgramInstance& instance, Handler handler)
    : m_instance(instance), m_handler(std::move(handler)) {
    if (instance.descriptor() >= 0) {
        m_notifier =
            std::make_unique<QSocketNotifier>(instance.descriptor(), QSocketNotifier::Read);
        connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { receive(); });
    }
    joinBus();
}

StartService::~StartService() { stop(); }

void StartService::stop() {
    if (m_notifier) m_notifier->setEnabled(false);
    m_instance.stopListening();
    if (!std::exchange(m_isOnBus, false)) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterObject(QLatin1String(programBusPath));
    // By hand, since the connection's own operation would wait for a bus that has come to hang.
    // With the answer all earlier messages are on their way.
    QDBusMessage release = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReleaseName"));
    release << QString::fromLatin1(programBusName);
    constexpr int patience = 200;
    bus.call(release, QDBus::Block, patience);
}

void StartService::joinBus() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    // The object before the name: who waits for the name asks the object at once.
    if (!bus.registerObject(QLatin1String(programBusPath), this, QDBusConnection::ExportAllSlots))
        return;
    m_isOnBus = bus.registerService(QLatin1String(programBusName));
    if (!m_isOnBus) Log::line("Another process has the program's name on the session bus.");
}

void StartService::receive() {
    while (const auto request = m_instance.receive()) m_handler(*request);
}

void StartService::Activate(const QVariantMap& platform_data) {
    m_handler({StartRequest::Kind::Activate, {}, tokenIn(platform_data)});
}

void StartService::Open(const QStringList& uris, const QVariantMap& platform_data) {
    // As with a drop: of several folders only the first is taken.
    for (const QString& uri : uris) {
        const auto path = pathOfFileUrl(uri.toStdString());
        if (!path) continue;
        m_handler({StartRequest::Kind::Open, *path, tokenIn(platform_data)});
        return;
    }
    Activate(platform_data);
}

void StartService::ActivateAction(const QString& action_name, const QVariantList& /*parameter*/,
                                  const QVariantMap& platform_data) {
    m_handler({StartRequest::Kind::Action, action_name.toStdString(), tokenIn(platform_data)});
}

}  // namespace orrinvale
