// BusHandles: see BusHandles.h.
#include "platform/linux/BusHandles.h"

#include <algorithm>
#include <cerrno>

namespace orrinvale {

bool becomesReady(sd_bus& bus, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const int ready = sd_bus_is_ready(&bus);
        if (ready != 0) return ready > 0;
        const int processed = sd_bus_process(&bus, nullptr);
        if (processed < 0) return false;
        if (processed > 0) continue;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        if (const int waited = sd_bus_wait(&bus, busMicroseconds(left)); waited < 0 && waited != -EINTR) return false;
    }
}

}  // namespace orrinvale
