// HangLook: notices that a command waits for a file system that does not answer.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/blockedCalls.h"

namespace orrinvale::cli {

/// Work without a new progress line for five seconds, and a thread of it that has waited in one and
/// the same call on a file for nearly all of that time. Work that computes for long, or reads one
/// large file piece by piece, is no hang. One thread.
class HangLook final {
public:
    using Clock = std::chrono::steady_clock;

    struct Hang {
        std::string path;
        std::chrono::seconds since;  ///< how long there was no progress
    };

    /// To be asked several times a second with the progress line and the time.
    [[nodiscard]] std::optional<Hang> look(const std::string& progress, Clock::time_point now);

private:
    [[nodiscard]] std::string stuckPath(Clock::time_point now);

    std::string m_progress;
    Clock::time_point m_since;    // of the progress line
    Clock::time_point m_next;     // when to look again
    Clock::time_point m_sampled;  // when m_sample was taken
    std::vector<BlockedCall> m_sample;
    std::string m_stuck;  // what the last look found
};

}  // namespace orrinvale::cli
