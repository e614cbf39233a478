// Settings may change on any thread, so that a change is taken up from this thread's event loop.
#include "ui/tray/SpaceWarnings.h"

#include <fmt/format.h>

#include <QMetaObject>
#include <QPointer>
#include <utility>

#include "engine/base/Log.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/volumes/SpaceLevel.h"

namespace orrinvale {
namespace {

constexpr const char* freeUpAction = "free-up-space";

std::string storedIn(const UserDefaults& defaults) {
    const SettingObject stored = defaults.objectForKey(warnedVolumesKey);
    const auto* const text = stored ? std::get_if<std::string>(&*stored) : nullptr;
    return text != nullptr ? *text : std::string();
}

}  // namespace

SpaceWarnings::SpaceWarnings(Parts parts, QObject* parent)
    : QObject(parent), m_parts(std::move(parts)), m_lowSpace(storedIn(*m_parts.defaults)) {
    const auto later = [this] {
        QMetaObject::invokeMethod(this, &SpaceWarnings::settingsChanged, Qt::QueuedConnection);
    };
    m_switch = m_parts.defaults->addObserver(spaceWarningsKey, later);
    m_level = m_parts.defaults->addObserver(ZvSpaceAlarmKey, later);
    settingsChanged();
}

// A changed level is compared with anew: to observe is to be told of a look.
void SpaceWarnings::settingsChanged() {
    m_watching.reset();
    if (!m_parts.defaults->boolForKey(spaceWarningsKey)) return;
    m_watching = m_parts.watch->observe(SystemWatch::Part::Volumes,
                                        [this](const SystemSight& sight) { look(sight); });
}

void SpaceWarnings::look(const SystemSight& sight) {
    const float level = warningLevel(m_parts.defaults->floatForKey(ZvSpaceAlarmKey));
    for (const SeenVolume& each : m_lowSpace.take(sight.volumes, level)) warnOf(*each.record);
    keep();
}

void SpaceWarnings::warnOf(const ZvVolumeInfo& volume) {
    const QString name = QString::fromStdString(volume.volumeName);
    DesktopNote note;
    note.title = tr("%1 is almost full").arg(name);
    note.body = tr("%1 of %2 are free.")
                    .arg(QString::fromStdString(volume.freeSpace),
                         QString::fromStdString(volume.totalSpace));
    note.actions = {{QStringLiteral("default"), {}},
                    {QLatin1String(freeUpAction), tr("Free up space")}};
    note.isTransient = false;
    m_notes.insert(m_parts.show(
        note, [self = QPointer(this), root = volume.volRootDir,
               line = fmt::format("{}: {} of {} are free, and nobody shows it.", volume.volRootDir,
                                  volume.freeSpace, volume.totalSpace)] {
            if (self == nullptr) return;
            Log::line(line);
            self->m_lowSpace.wasNotTold(root);
            self->keep();
        }));
}

void SpaceWarnings::keep() {
    const std::string warned = m_lowSpace.remembered();
    if (warned != storedIn(*m_parts.defaults)) m_parts.defaults->setValue(warned, warnedVolumesKey);
}

void SpaceWarnings::takeAction(DesktopNotifications::Number number, const QString& /*key*/,
                               const QString& token) {
    if (m_notes.erase(number) != 0) m_parts.freeUpSpace(token);
}

}  // namespace orrinvale
