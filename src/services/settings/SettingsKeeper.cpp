// Saves a moment after the last change, and reads again when the file was written by somebody else.
#include "services/settings/SettingsKeeper.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <QFile>
#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <utility>

#include "engine/files/DurableFile.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds kSettle{50};  // one save makes several notices
constexpr std::chrono::milliseconds kSaveDelay{1000};

// The settings themselves, behind a link of the user's; a link that may not be followed stands for
// itself.
std::string fileOf(const UserDefaults& defaults) {
    return defaults.filePath().value_or(defaults.path());
}

// What changes with every new content of the file; zeros while there is none.
std::array<std::int64_t, 5> stampOf(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return {};
    return {static_cast<std::int64_t>(status.st_ino), status.st_size, status.st_ctim.tv_sec,
            status.st_ctim.tv_nsec, static_cast<std::int64_t>(status.st_mode)};
}

}  // namespace

// A handler may still run on another thread when the keeper ends; it then finds this empty.
struct SettingsKeeper::Link {
    std::mutex mutex;
    SettingsKeeper* keeper;  // guarded by mutex
};

SettingsKeeper::SettingsKeeper(UserDefaults& defaults)
    : m_defaults(defaults), m_link(std::make_shared<Link>()) {
    m_link->keeper = this;
    m_takeOverTimer.setSingleShot(true);
    m_takeOverTimer.setInterval(kSettle);
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(kSaveDelay);
    const auto startTakeOver = [this] { m_takeOverTimer.start(); };
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, startTakeOver);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, startTakeOver);
    connect(&m_takeOverTimer, &QTimer::timeout, this, &SettingsKeeper::takeOver);
    connect(
        this, &SettingsKeeper::valueSet, this, [this] { m_saveTimer.start(); },
        Qt::QueuedConnection);
    connect(&m_saveTimer, &QTimer::timeout, this, &SettingsKeeper::save);
    if (auto* const application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, &SettingsKeeper::save);
    m_observation = m_defaults.addObserverOfAll([link = m_link] {
        const std::lock_guard lock(link->mutex);
        if (link->keeper != nullptr) Q_EMIT link->keeper->valueSet();
    });
    watch();
    m_takeOverTimer.start();  // what has changed since the defaults were read
    if (m_defaults.isUnsaved()) m_saveTimer.start();
}

SettingsKeeper::~SettingsKeeper() {
    m_observation.remove();
    {
        const std::lock_guard lock(m_link->mutex);
        m_link->keeper = nullptr;
    }
    save();
}

// A replaced file is watched no longer, so this is done again after each change. The folder of a
// link tells when it leads elsewhere.
void SettingsKeeper::watch() {
    const std::string file = fileOf(m_defaults);
    if (DurableFile::makeFolder(folderOf(m_defaults.path())))
        watchPath(folderOf(m_defaults.path()));
    watchPath(folderOf(file));
    watchPath(file);
}

void SettingsKeeper::watchPath(const std::string& path) {
    const QString name = QFile::decodeName(path.c_str());
    const bool isWatched =
        m_watcher.files().contains(name) || m_watcher.directories().contains(name);
    if (!isWatched && QFile::exists(name)) m_watcher.addPath(name);
}

// A folder in which a file can not be put right would otherwise answer each attempt with a notice.
void SettingsKeeper::takeOver() {
    watch();
    const Stamp stamp = stampOf(fileOf(m_defaults));
    if (std::exchange(m_stamp, stamp) == stamp) return;
    // Ours goes along with it: both are one exchange under one lock. An error is logged there.
    (void)m_defaults.synchronize();
}

void SettingsKeeper::save() {
    m_saveTimer.stop();
    if (m_defaults.isUnsaved()) (void)m_defaults.synchronize();
}

}  // namespace orrinvale
