// Mailbox: the newest value that one thread has for another.
#pragma once

#include <mutex>
#include <optional>
#include <utility>

namespace orrinvale {

/// Holds one value under a lock. A writer replaces it, a reader copies or takes it; neither waits
/// for the other beyond that. For what changes often and of which only the newest counts, such as
/// the path that a scan is at.
template <class T> class Mailbox final {
public:
    void put(T value) {
        const std::lock_guard guard(m_mutex);
        m_value = std::move(value);
    }

    /// The newest value, which stays; nothing when none was put.
    [[nodiscard]] std::optional<T> copy() const {
        const std::lock_guard guard(m_mutex);
        return m_value;
    }

    /// The newest value, which goes.
    [[nodiscard]] std::optional<T> take() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_value, std::nullopt);
    }

private:
    mutable std::mutex m_mutex;
    std::optional<T> m_value;  // guarded by m_mutex
};

}  // namespace orrinvale
