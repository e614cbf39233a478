// FileManager: see FileManager.h.
#include "ui/shell/FileManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QStringList>
#include <QUrl>

#include "engine/base/Log.h"

namespace orrinvale {
namespace {

// Each byte that an address may not hold is written as %XX, so that a name in any encoding comes through.
QString fileAddress(const std::string& path) {
    const QByteArray bytes(path.data(), static_cast<qsizetype>(path.size()));
    return QStringLiteral("file://") + QString::fromLatin1(bytes.toPercentEncoding(QByteArrayLiteral("/")));
}

void openFolderOf(const std::string& path) {
    const std::size_t cut = path.find_last_of('/');
    const std::string folder = cut == 0 || cut == std::string::npos ? "/" : path.substr(0, cut);
    const QUrl address(fileAddress(folder), QUrl::StrictMode);
    if (!QDesktopServices::openUrl(address)) Log::line("No file manager could be started.");
}

}  // namespace

void revealInFileManager(const std::string& path) {
    if (path.empty() || path.front() != '/') return;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolderOf(path);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{fileAddress(path)} << QString();
    constexpr int timeout = 5000;
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, timeout));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
        const QDBusPendingReply<> reply = *watcher;
        if (reply.isError()) openFolderOf(path);
        watcher->deleteLater();
    });
}

void openWebPage(const QString& address) {
    const QUrl url(address, QUrl::StrictMode);
    if (url.scheme() == QLatin1String("https")) QDesktopServices::openUrl(url);
}

}  // namespace orrinvale
