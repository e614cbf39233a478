// FileAge: how long ago, as a person types it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orrinvale {

/// What an age may look like, for messages.
inline constexpr std::string_view ageForms = "10d, 2w, 6m or 1y";

inline constexpr std::uint64_t secondsOfDay = 86'400;
inline constexpr std::uint64_t daysOfMonth = 30;
inline constexpr std::uint64_t daysOfYear = 365;

/// Seconds: a whole number of days, weeks, months of 30 days or years of 365, small or capital
/// letters, a space before the unit or none. Nothing for anything else, and for more than some
/// thousand years.
[[nodiscard]] std::optional<std::uint64_t> parseAge(std::string_view text);

/// The last second at which something happened that is so old now, which is what a wish takes
/// (LargestFiles.h); both in seconds since 1970, and FileNode::before1970 for all before.
[[nodiscard]] std::int64_t lastSecondOf(std::uint64_t age, std::int64_t now);

}  // namespace orrinvale
