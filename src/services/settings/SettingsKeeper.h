// SettingsKeeper: keeps the settings in memory and their file alike, without anybody asking for it.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <array>
#include <cstdint>
#include <memory>

#include "engine/settings/UserDefaults.h"

namespace orrinvale {

/// While it lives: a change of the file by another process reaches the observers within a moment,
/// on this object's thread; what was set and not synchronized is written a second after the last
/// change, when the application quits, and at the end of this object. A failure is logged by
/// UserDefaults and tried again with the next change. Make and end it on a thread with an event
/// loop; the defaults must outlive it.
class SettingsKeeper final : public QObject {
    Q_OBJECT
public:
    /// Makes the folder of the settings, so that it can be watched.
    explicit SettingsKeeper(UserDefaults& defaults);
    ~SettingsKeeper() override;

Q_SIGNALS:
    void valueSet();

private:
    struct Link;
    using Stamp = std::array<std::int64_t, 5>;
    void watch();
    void watchPath(const std::string& path);
    void takeOver();
    void save();

    UserDefaults& m_defaults;
    QFileSystemWatcher m_watcher;
    QTimer m_takeOverTimer;
    QTimer m_saveTimer;
    Stamp m_stamp{};  // of the file when it was last taken over
    std::shared_ptr<Link> m_link;
    UserDefaults::Observation m_observation;
};

}  // namespace orrinvale
