// Sums of sizes that stop at the largest number: a few sparse files are enough to pass it, and a
// sum that began anew would be small.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace orrinvale {

inline void addSaturating(std::uint64_t& sum, std::uint64_t more) {
    sum += std::min(more, ~std::uint64_t{0} - sum);
}

/// Any thread.
inline void addSaturating(std::atomic<std::uint64_t>& sum, std::uint64_t more) {
    std::uint64_t now = sum.load(std::memory_order_relaxed);
    while (!sum.compare_exchange_weak(now, now + std::min(more, ~std::uint64_t{0} - now),
                                      std::memory_order_relaxed)) {}
}

}  // namespace orrinvale
