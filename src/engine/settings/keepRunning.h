// keepRunning: what a person has answered to whether the program goes on unseen.
#pragma once

#include <optional>

namespace orrinvale {

class UserDefaults;

/// Stored under keepRunningKey where the person wants to be asked again.
inline constexpr const char* askToKeepRunning = "ask";

/// Nothing where the person is to be asked.
[[nodiscard]] std::optional<bool> keepRunningAnswer(const UserDefaults& defaults);

}  // namespace orrinvale
