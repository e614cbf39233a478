// Other programs do the work and none is waited for: how it went arrives through the event loop.
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
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <utility>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"
#include "platform/paths.h"
#include "services/foundation/runAside.h"

namespace orrinvale {
namespace {

QString fileAddress(const std::string& path) { return QString::fromStdString(fileUrlOf(path)); }

// What others say is no part of our log, and may be much.
void keepSilent(QProcess& process) {
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
}

// As the toolkit does it, but without a word in our log.
bool openByDesktop(const QUrl& address) {
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty()) return QDesktopServices::openUrl(address);
    QProcess opening;
    keepSilent(opening);
    opening.setProgram(opener);
    opening.setArguments({address.toString(QUrl::FullyEncoded)});
    return opening.startDetached();
}

bool openAddress(const std::string& path) {
    if (openByDesktop(QUrl(fileAddress(path), QUrl::StrictMode))) return true;
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
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
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

void startCommand(const std::vector<std::string>& words) {
    if (words.empty()) return;
    QStringList arguments;
    for (std::size_t i = 1; i < words.size(); ++i)
        arguments.append(QFile::decodeName(words[i].c_str()));
    // The call waits until the program is read from its disk.
    runAside(
        QCoreApplication::instance(), "startCommand",
        [program = words.front(), arguments] {
            QProcess process;
            keepSilent(process);
            process.setProgram(QFile::decodeName(program.c_str()));
            process.setArguments(arguments);
            process.setWorkingDirectory(QDir::homePath());
            if (!process.startDetached())
                Log::line(fmt::format("{} could not be started.", program));
        },
        [] {});
}

QString userGuidePath() {
    const QString guide =
        QDir::cleanPath(QCoreApplication::applicationDirPath() +
                        QStringLiteral("/../share/orrinvale/guide/user-guide.html"));
    return QFileInfo::exists(guide) ? guide : QString();
}

// The desktop's opener is watched to its end: the toolkit starts it too, but never learns that it
// has found no browser.
void openUserGuide(std::function<void()> failed) {
    const QString guide = userGuidePath();
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (guide.isEmpty() || opener.isEmpty()) {
        if (guide.isEmpty() || !QDesktopServices::openUrl(QUrl::fromLocalFile(guide))) failed();
        return;
    }
    auto* const opening =
        new QProcess(QCoreApplication::instance());  // never ended: it may have become the browser
    QObject::connect(opening, &QProcess::finished, opening,
                     [opening, failed = std::move(failed)](int status, QProcess::ExitStatus how) {
                         opening->deleteLater();
                         if (how != QProcess::NormalExit || status != 0) failed();
                     });
    keepSilent(*opening);
    opening->start(opener, {guide});
}

void openWebPage(const QString& address) {
    const QUrl url(address, QUrl::StrictMode);
    if (url.scheme() == QLatin1String("https")) openByDesktop(url);
}

}  // namespace orrinvale
