// ScanErrand: a CategoryScan on a thread of its own that nobody has to wait for. A home on a server
// that does not answer holds such a thread for good, and nothing else.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/cleaning/CategoryScan.h"

namespace orrinvale {

/// One thread besides its own. What `parts` points to outlives the process's last scan.
class ScanErrand final {
public:
    /// Called on the thread of the errand, as even the names of the folders are asked of the disk.
    using FolderNames = std::function<std::vector<std::string>()>;

    enum class State : std::uint8_t {
        Running,
        Ended,
        Silent  ///< nothing was heard of it for that long; what it says later is dropped
    };
    static constexpr std::chrono::seconds usualPatience{5};

    /// Starts. Without a thread for it, it has ended with nothing.
    ScanErrand(const CleanParts& parts, FolderNames folders,
               std::chrono::milliseconds patience = usualPatience);
    /// Lets go of it.
    ~ScanErrand();
    ScanErrand(const ScanErrand&) = delete;
    ScanErrand& operator=(const ScanErrand&) = delete;

    /// Ends it soon; what is complete by then is its result. Any thread.
    void stop();

    /// Waits for its end, no longer than `atMost`, and tells how it stands.
    [[nodiscard]] State wait(std::chrono::milliseconds atMost);
    /// Once, after it has ended.
    [[nodiscard]] CategoryListing take();

    /// Any thread: bytes of the rows that are complete, and entries that were looked at.
    [[nodiscard]] std::uint64_t total() const;
    [[nodiscard]] std::uint64_t entries() const;

private:
    struct Shared;
    const std::shared_ptr<Shared> m_shared;
    const std::chrono::milliseconds m_patience;
    std::uint64_t m_heard = 0;
    std::chrono::steady_clock::time_point m_since = std::chrono::steady_clock::now();
};

}  // namespace orrinvale
