// FileManager: see FileManager.h.
#include "ui/shell/FileManager.h"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <QUrl>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

QString fileAddress(const std::string& path) { return QString::fromStdString(fileUrlOf(path)); }

bool openAddress(const std::string& path) {
    if (QDesktopServices::openUrl(QUrl(fileAddress(path), QUrl::StrictMode))) return true;
    Log::line(fmt::format("Nothing could be started to open {}.", path));
    return false;
}

void openFolderOf(const std::string& path) { openAddress(folderOf(path)); }

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

bool openInFileManager(const std::string& path) { return openAddress(path); }

bool openUserGuide() {
    const QString guide = QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                          QStringLiteral("/../share/orrinvale/guide/user-guide.html"));
    return QFileInfo::exists(guide) && QDesktopServices::openUrl(QUrl::fromLocalFile(guide));
}

void openWebPage(const QString& address) {
    const QUrl url(address, QUrl::StrictMode);
    if (url.scheme() == QLatin1String("https")) QDesktopServices::openUrl(url);
}

}  // namespace orrinvale
