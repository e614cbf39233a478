// StopGrace: a stop that lets what is in hand come to its end, but not for long.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace orrinvale {

/// Looks at a stop flag. What a moment would finish is finished after a stop; what takes longer is
/// given up. Any thread.
class StopGrace final {
public:
    static constexpr std::chrono::milliseconds length{500};

    /// The flag must outlive the object.
    explicit StopGrace(const std::atomic<bool>& stop) : m_stop(stop) {}

    /// True when the flag is set and somebody saw it set `length` ago.
    [[nodiscard]] bool isOver() const {
        if (!m_stop.load(std::memory_order_relaxed)) return false;
        const std::int64_t now = std::chrono::steady_clock::now().time_since_epoch().count();
        std::int64_t seen = 0;
        if (m_seen.compare_exchange_strong(seen, now)) return false;
        return std::chrono::steady_clock::duration(now - seen) > length;
    }

private:
    const std::atomic<bool>& m_stop;
    mutable std::atomic<std::int64_t> m_seen{0};  // steady clock; when the flag was first seen set
};

}  // namespace orrinvale
