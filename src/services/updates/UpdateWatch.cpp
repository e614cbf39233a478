#include "services/updates/UpdateWatch.h"

#include "engine/settings/SettingsKeys.h"
#include "services/foundation/runAside.h"

namespace orrinvale {
namespace {

constexpr std::chrono::seconds roadLook{2};
constexpr std::chrono::hours failurePause{4};

}  // namespace

// A setting may change on any thread.
UpdateWatch::UpdateWatch(UpdateParts parts, UserDefaults& defaults, Times times, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_defaults(defaults),
      m_isWanted(std::make_shared<std::atomic<bool>>(defaults.boolForKey(SUEnableAutomaticChecks))),
      m_switched(defaults.addObserver(SUEnableAutomaticChecks, [wanted = m_isWanted, &defaults] {
          *wanted = defaults.boolForKey(SUEnableAutomaticChecks);
      })) {
    QTimer::singleShot(roadLook, this, &UpdateWatch::findRoad);
    connect(&m_timer, &QTimer::timeout, this, [this, times] {
        m_timer.setInterval(times.later);
        look();
    });
    m_timer.start(times.first);
}

UpdateWatch::~UpdateWatch() {
    if (m_worker) m_worker->markAsCancelled();
}

// The lists of packages are long, and a program that starts has other files to read.
void UpdateWatch::findRoad() {
    runAside(
        this, "updateRoad", [own = m_parts] { return updateRoad(own); },
        [this](UpdateRoad road) {
            m_road = road;
            Q_EMIT roadFound();
        });
}

void UpdateWatch::look() {
    if (m_worker || !m_defaults.boolForKey(SUEnableAutomaticChecks)) return;
    if (scheduleStep(failurePause, m_failed, m_parts.clock()) == ScheduleStep::Wait) return;
    const std::chrono::seconds interval =
        checkInterval(m_defaults.integerForKey(SUScheduledCheckInterval));
    m_worker = runAside(
        this, "lookForUpdate",
        [own = m_parts, interval, wanted = m_isWanted](ThreadWorker& worker) {
            return checkIfDue(own, interval, [&] { return worker.cancelled() || !*wanted; });
        },
        [this](const ScheduledCheck& check) { take(check); });
}

void UpdateWatch::take(const ScheduledCheck& check) {
    m_worker.reset();
    m_failed = check.isFailed ? std::optional(m_parts.clock()) : std::nullopt;
    if (check.found && std::exchange(m_toldNumber, check.found->number) != check.found->number)
        Q_EMIT found(QString::fromStdString(check.found->version));
    Q_EMIT looked();
}

}  // namespace orrinvale
