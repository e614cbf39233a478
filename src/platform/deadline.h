// deadline: how much time is left until a moment.
#pragma once

#include <algorithm>
#include <chrono>

namespace orrinvale {

/// Never below 0.
[[nodiscard]] inline std::chrono::milliseconds timeUntil(
    std::chrono::steady_clock::time_point end) {
    using std::chrono::milliseconds;
    const auto left =
        std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now());
    return std::max(milliseconds(0), left);
}

}  // namespace orrinvale
