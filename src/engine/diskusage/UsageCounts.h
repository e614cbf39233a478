// UsageCounts: how far a walk of disk usage is, and its stop.
#pragma once

#include <atomic>
#include <cstdint>

namespace orrinvale {

/// Any thread.
struct UsageCounts {
    std::atomic<bool> stop{false};
    std::atomic<std::uint64_t> found{0};     ///< entries looked at
    std::atomic<std::uint64_t> files{0};     ///< of these what is no folder
    std::atomic<std::uint64_t> size{0};      ///< bytes
    std::atomic<std::int64_t> all{-1};       ///< entries directly in the folder; -1 until listed
    std::atomic<std::uint64_t> finished{0};  ///< of these, those that are counted
};

}  // namespace orrinvale
