// What a scan could not read, with the reason. One entry that fails never ends a scan; it lands
// here.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/error.h"

namespace orrinvale {

/// Thread-safe.
class SkipList final {
public:
    void add(Error error) {
        const std::lock_guard lock(m_mutex);
        m_entries.push_back(std::move(error));
    }

    /// All entries so far, by the bytes of their paths, each path once (its first reason).
    [[nodiscard]] std::vector<Error> entries() const;

private:
    mutable std::mutex m_mutex;
    std::vector<Error> m_entries;  // guarded by m_mutex
};

}  // namespace orrinvale
