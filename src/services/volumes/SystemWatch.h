// SystemWatch: the one look at volumes and memory that all who show them share.
// engine/volumes/SystemSight.h says what is seen.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "engine/volumes/SystemSight.h"

namespace orrinvale {

class MainQueue;

/// A thread of its own looks every two seconds for as long as anybody observes, at what is observed
/// and nothing else, and wakes the main thread only when somebody would see a difference. A mount
/// that does not answer holds a look up once, for the platform's patience, and nobody else ever.
/// Without observers nothing runs. Main thread only, handlers included.
class SystemWatch final {
public:
    enum class Part : std::uint8_t { Volumes, Memory };
    using Handler = std::function<void(const SystemSight& sight)>;
    /// An observation lasts as long as this is kept.
    using Observation = std::shared_ptr<void>;

    /// `volumes` is patient (platform/volumes.h) and the one that ejects, so that both mean the
    /// same by a reference number. All three outlive the last look, which may go on behind the
    /// object's end.
    SystemWatch(Volumes& volumes, const Memory& memory, MainQueue& mainQueue,
                std::chrono::milliseconds pause = std::chrono::seconds(2));
    ~SystemWatch();
    SystemWatch(const SystemWatch&) = delete;
    SystemWatch& operator=(const SystemWatch&) = delete;

    /// Looks at once, and tells the handler of that look and then of each in which the part has
    /// changed for people (showsSameVolumes(), showsSameMemory()). Handlers may observe and cease
    /// to. To tell new figures from new rows compare with what is shown: hasSameRows().
    [[nodiscard]] Observation observe(Part part, Handler handler);

    /// The next look is taken now: something has come or gone.
    void lookNow();

    /// What handlers were told last; null before that.
    [[nodiscard]] std::shared_ptr<const SystemSight> latest() const;

private:
    struct Shared;
    struct Observer;
    const std::shared_ptr<Shared> m_shared;
};

}  // namespace orrinvale
