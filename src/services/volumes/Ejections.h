// Ejections: what is being ejected, for all that show volumes; one volume is asked for once,
// whoever shows it. VolumeWorker.h does the work.
#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "engine/volumes/SystemSight.h"
#include "services/volumes/VolumeWorker.h"

namespace orrinvale {

/// The window's one way to eject. Main thread only.
class Ejections final : public QObject {
    Q_OBJECT
public:
    /// As VolumeWorker's.
    Ejections(Volumes& platform, MainQueue& mainQueue, QObject* parent = nullptr);
    ~Ejections() override;

    /// Returns at once, and does nothing for a place that is being ejected. `ended` runs unless
    /// `asker` is gone by then.
    void eject(const VolumePlace& place, const std::string& volumeName, QObject* asker,
               const std::function<void(bool isGone)>& ended);

    /// Also for a moment after it went, until those that look at the volumes no longer see it.
    /// While all are ejected, of each that can be.
    [[nodiscard]] bool isEjecting(const VolumePlace& place) const;

    /// All that can be ejected, after what is being ejected; does nothing while that is under way.
    void ejectAll(const VolumeWorker::Ejected& ended);
    [[nodiscard]] bool isEjectingAll() const { return m_isEjectingAll; }

Q_SIGNALS:
    /// Another set is being ejected.
    void changed();
    /// A volume stayed.
    void failed(const std::vector<orrinvale::EjectFailure>& failures);

private:
    void over(const VolumePlace& place);

    VolumeWorker m_worker;
    std::vector<VolumePlace> m_places;
    bool m_isEjectingAll = false;
};

}  // namespace orrinvale
