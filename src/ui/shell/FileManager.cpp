// Other programs do the work. They are looked for and started aside; how it went arrives through
// the event loop.
#include "ui/shell/FileManager.h"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <optional>
#include <utility>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"
#include "platform/paths.h"
#include "services/foundation/runAside.h"

namespace orrinvale {
namespace {

QString installedGuide() {
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../share/orrinvale/guide/user-guide.html"));
}

QString fileAddress(const std::string& path) { return QString::fromStdString(fileUrlOf(path)); }

// What others say is no part of our log, and may be much.
void keepSilent(QProcess& process) {
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
}

// What opens files and addresses as the desktop would, with the word that comes before those.
struct Opener {
    QString program;
    QStringList words;
};

// Each folder of PATH is looked at, of which one may lie on a server: call it aside.
std::optional<Opener> findOpener() {
    const struct {
        const char *program, *word;
    } known[] = {
        {"xdg-open", nullptr}, {"gio", "open"}, {"kde-open", nullptr}, {"exo-open", nullptr}};
    for (const auto& each : known) {
        const QString program = QStandardPaths::findExecutable(QLatin1String(each.program));
        if (program.isEmpty()) continue;
        return Opener{program,
                      each.word == nullptr ? QStringList() : QStringList{QLatin1String(each.word)}};
    }
    return std::nullopt;
}

// The call waits until the opener is read from its disk.
bool openByDesktop(const QString& address) {
    const auto opener = findOpener();
    if (!opener) return false;
    QProcess opening;
    keepSilent(opening);
    opening.setProgram(opener->program);
    opening.setArguments(opener->words + QStringList{address});
    return opening.startDetached();
}

// To its end: whoever has found no browser says so by its status.
bool showByDesktop(const QString& guide) {
    const auto opener = findOpener();
    if (!opener || !QFileInfo::exists(guide)) return false;
    QProcess opening;
    keepSilent(opening);
    opening.start(opener->program, opener->words + QStringList{guide});
    constexpr int forever = -1;  // it may have become the browser
    return opening.waitForFinished(forever) && opening.exitStatus() == QProcess::NormalExit &&
           opening.exitCode() == 0;
}

std::function<void(const std::string& path)>& whoTellsOfFailures() {
    static auto* const handler = new std::function<void(const std::string& path)>;
    return *handler;
}

void openAddress(const std::string& path) {
    runAside(
        QCoreApplication::instance(), "openAddress",
        [address = fileAddress(path)] { return openByDesktop(address); },
        [path](bool isStarted) {
            if (isStarted) return;
            Log::line(fmt::format("Nothing could be started to open {}.", path));
            if (const auto& tell = whoTellsOfFailures()) tell(path);
        });
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

bool openInFileManager(const std::string& path) {
    if (path.empty() || path.front() != '/') return false;
    openAddress(path);
    return true;
}

void tellOfFailedOpening(std::function<void(const std::string& path)> handler) {
    whoTellsOfFailures() = std::move(handler);
}

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
    const QString guide = installedGuide();
    return QFileInfo::exists(guide) ? guide : QString();
}

void openUserGuide(std::function<void()> failed) {
    runAside(
        QCoreApplication::instance(), "openUserGuide",
        [guide = installedGuide()] { return showByDesktop(guide); },
        [failed = std::move(failed)](bool isShown) {
            if (!isShown) failed();
        });
}

void openWebPage(const QString& address) {
    const QUrl url(address, QUrl::StrictMode);
    if (url.scheme() != QLatin1String("https")) return;
    runAside(
        QCoreApplication::instance(), "openWebPage",
        [shown = url.toString(QUrl::FullyEncoded)] { openByDesktop(shown); }, [] {});
}

}  // namespace orrinvale
