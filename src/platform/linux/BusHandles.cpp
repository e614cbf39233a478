#include "platform/linux/BusHandles.h"

#include <cerrno>

#include "platform/deadline.h"

namespace orrinvale {
bool becomesReady(sd_bus& bus, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const int ready = sdBus().is_ready(&bus);
        if (ready != 0) return ready > 0;
        const int processed = sdBus().process(&bus, nullptr);
        if (processed < 0) return false;
        if (processed > 0) continue;
        const auto left = timeUntil(end);
        if (left.count() == 0) return false;
        if (const int waited = sdBus().wait(&bus, busMicroseconds(left));
            waited < 0 && waited != -EINTR)
            return false;
    }
}

}  // namespace orrinvale
