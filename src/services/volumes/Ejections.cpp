// The set of places, around the worker that ejects them one after another.
#include "services/volumes/Ejections.h"

#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace orrinvale {
namespace {

// Milliseconds in which a look at the volumes no longer sees one that was ejected.
constexpr int untilSeenGone = 3000;

}  // namespace

Ejections::Ejections(Volumes& platform, MainQueue& mainQueue, QObject* parent)
    : QObject(parent), m_worker(platform, mainQueue) {}

Ejections::~Ejections() = default;

bool Ejections::isEjecting(const VolumePlace& place) const {
    return m_isEjectingAll || std::ranges::find(m_places, place) != m_places.end();
}

void Ejections::eject(const VolumePlace& place, const std::string& volumeName, QObject* asker,
                      const std::function<void(bool isGone)>& ended) {
    if (isEjecting(place)) return;
    m_places.push_back(place);
    Q_EMIT changed();
    m_worker.ejectVolume(place.refNumber, place.root, volumeName,
                         [this, place, asker = QPointer(asker), ended](
                             std::int32_t /*status*/, const std::vector<EjectFailure>& failures) {
                             const bool isGone = failures.empty();
                             if (isGone)
                                 QTimer::singleShot(untilSeenGone, this,
                                                    [this, place] { over(place); });
                             else over(place);
                             if (asker != nullptr) ended(isGone);
                             if (!isGone) Q_EMIT failed(failures);
                         });
}

void Ejections::ejectAll(const VolumeWorker::Ejected& ended) {
    if (std::exchange(m_isEjectingAll, true)) return;
    Q_EMIT changed();
    m_worker.ejectAllVolumes(
        [this, ended](std::int32_t status, const std::vector<EjectFailure>& failures) {
            m_isEjectingAll = false;
            Q_EMIT changed();
            ended(status, failures);
        });
}

void Ejections::over(const VolumePlace& place) {
    std::erase(m_places, place);
    Q_EMIT changed();
}

}  // namespace orrinvale
