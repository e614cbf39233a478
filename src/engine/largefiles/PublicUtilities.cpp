#include "engine/largefiles/PublicUtilities.h"

#include <fmt/format.h>

#include <array>

namespace orrinvale {

std::string PublicUtilities::byteToSizeWithByte(std::uint64_t bytes) {
    struct Step {
        std::uint64_t below;
        double unit;
        const char* name;
    };
    static constexpr std::array steps{
        Step{1'000'000, 1e3, "KB"},
        Step{1'000'000'000, 1e6, "MB"},
        Step{1'000'000'000'000, 1e9, "GB"},
        Step{~std::uint64_t{0}, 1e12, "TB"},
    };
    if (bytes < 1000) return fmt::format("{} byte", bytes);
    std::size_t step = 0;
    while (step + 1 < steps.size() && bytes >= steps.at(step).below) ++step;
    // The step is chosen before the rounding, so that 999,999 bytes are 1000.00 KB and not 1.00 MB.
    // A float holds seven digits, of which five or six are shown.
    const auto shown = static_cast<float>(static_cast<double>(bytes) / steps.at(step).unit);
    return fmt::format("{:.2f} {}", shown, steps.at(step).name);
}

}  // namespace orrinvale
