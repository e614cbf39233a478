// SpaceWarnings: a word on the desktop when a disk fills up, also while all windows are closed.
// engine/volumes/LowSpace.h says when.
#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <set>
#include <string>

#include "engine/settings/UserDefaults.h"
#include "engine/volumes/LowSpace.h"
#include "services/desktop/DesktopNotifications.h"
#include "services/volumes/SystemWatch.h"

namespace orrinvale {

/// Watches for as long as the setting has it switched on (spaceWarningsKey), by the level of
/// ZvSpaceAlarmKey. Who was warned of is kept in the settings. Main thread only.
class SpaceWarnings final : public QObject {
    Q_OBJECT
public:
    struct Parts {
        SystemWatch* watch = nullptr;  ///< as the next one, outlives the object
        UserDefaults* defaults = nullptr;
        /// As DesktopNotifications::show().
        std::function<DesktopNotifications::Number(const DesktopNote&,
                                                   std::function<void()> failed)>
            show;
        /// A person wants to free space now, and brings the token that lets a window come to the
        /// front.
        std::function<void(const QString& token)> freeUpSpace;
    };

    explicit SpaceWarnings(Parts parts, QObject* parent = nullptr);

    /// A button of some note was pressed; those of others are left alone.
    void takeAction(DesktopNotifications::Number number, const QString& key, const QString& token);

private:
    void settingsChanged();
    void look(const SystemSight& sight);
    void warnOf(const ZvVolumeInfo& volume);
    void keep();

    const Parts m_parts;
    LowSpace m_lowSpace;
    std::set<DesktopNotifications::Number> m_notes;
    UserDefaults::Observation m_switch;
    UserDefaults::Observation m_level;
    SystemWatch::Observation m_watching;
};

}  // namespace orrinvale
