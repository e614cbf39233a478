// UpdateWatch: looks for a newer version from time to time, where the person has switched that on.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "engine/settings/UserDefaults.h"
#include "engine/updates/UpdateCheck.h"

namespace orrinvale {

class ThreadWorker;

/// A minute after the start and every hour from then on it asks whether it is time. Nothing is
/// fetched where "SUEnableAutomaticChecks" is off; switching it off, and the end of the object,
/// stop a look under way. Main thread only.
class UpdateWatch final : public QObject {
    Q_OBJECT
public:
    /// How long after the start it asks first, and between two times from then on.
    struct Times {
        std::chrono::milliseconds first{60'000};  // a desktop that starts has enough to do
        std::chrono::milliseconds later{3'600'000};
    };

    /// The settings outlive the object.
    UpdateWatch(UpdateParts parts, UserDefaults& defaults, QObject* parent = nullptr)
        : UpdateWatch(std::move(parts), defaults, Times{}, parent) {}
    UpdateWatch(UpdateParts parts, UserDefaults& defaults, Times times, QObject* parent = nullptr);
    ~UpdateWatch() override;

    /// Looks at once, aside. A look under way is enough, and one that failed is not repeated for
    /// four hours.
    void look();

    /// Of this copy of the program; nothing until that is known, some time after the start.
    [[nodiscard]] std::optional<UpdateRoad> road() const { return m_road; }

Q_SIGNALS:
    /// There is a newer version; told once a version.
    void found(const QString& version);
    /// A look is over, whatever came of it.
    void looked();
    /// road() is known from now on.
    void roadFound();

private:
    void findRoad();
    void take(const ScheduledCheck& check);

    const UpdateParts m_parts;
    UserDefaults& m_defaults;
    const std::shared_ptr<std::atomic<bool>> m_isWanted;  // as the settings say, for the look
    const UserDefaults::Observation m_switched;
    std::shared_ptr<ThreadWorker> m_worker;  // of the look
    std::optional<UpdateRoad> m_road;
    QTimer m_timer;
    std::optional<Date> m_failed;  // when the last look failed
    std::int64_t m_toldNumber = 0;
};

}  // namespace orrinvale
