#include "services/updates/UpdateWatch.h"

#include <utility>

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "services/foundation/runAside.h"

namespace orrinvale {
namespace {

constexpr std::chrono::seconds roadLook{2};
constexpr std::chrono::minutes firstLook{1};  // a desktop that starts has enough to do
constexpr std::chrono::hours laterLooks{1};
constexpr std::chrono::hours failurePause{4};

}  // namespace

UpdateWatch::UpdateWatch(UpdateParts parts, const UserDefaults& defaults, QObject* parent)
    : QObject(parent), m_parts(std::move(parts)), m_defaults(defaults) {
    QTimer::singleShot(roadLook, this, &UpdateWatch::findRoad);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_timer.setInterval(laterLooks);
        look();
    });
    m_timer.start(firstLook);
}

// The lists of packages are long, and a program that starts has other files to read.
void UpdateWatch::findRoad() {
    runAside(
        this, "updateRoad", [own = m_parts] { return updateRoad(own); },
        [this](UpdateRoad road) { m_road = road; });
}

void UpdateWatch::look() {
    if (m_isLooking || !m_defaults.boolForKey(SUEnableAutomaticChecks)) return;
    if (scheduleStep(failurePause, m_failed, m_parts.clock()) == ScheduleStep::Wait) return;
    const std::chrono::seconds interval =
        checkInterval(m_defaults.integerForKey(SUScheduledCheckInterval));
    m_isLooking =
        runAside(
            this, "lookForUpdate", [own = m_parts, interval] { return checkIfDue(own, interval); },
            [this](const ScheduledCheck& check) { take(check); }) != nullptr;
}

void UpdateWatch::take(const ScheduledCheck& check) {
    m_isLooking = false;
    m_failed = check.isFailed ? std::optional(m_parts.clock()) : std::nullopt;
    if (check.found && std::exchange(m_toldNumber, check.found->number) != check.found->number)
        Q_EMIT found(QString::fromStdString(check.found->version));
    Q_EMIT looked();
}

}  // namespace orrinvale
