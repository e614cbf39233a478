// launchAtLogin: whether this very program starts at login: its setting and its entry, together.
#pragma once

#include <string>
#include <string_view>

#include "platform/error.h"

namespace orrinvale {

/// Stores the whole number that the text begins with under "LoginCheck", and synchronizes.
Result<void> writeFileOfLaunchAppWhenLogin(std::string_view text);
/// What is stored there, as text.
[[nodiscard]] std::string readeFileOfLaunchAppWhenLogin();

/// Stores the state, takes the entry away where there is one, and with state 1 makes a new one,
/// which starts hidden where the settings say so. A failure is logged and leaves the setting
/// written; the result tells whether the entry is as it should be. Waits for disks.
[[nodiscard]] bool launchAtLogin(int state);

/// Whether an entry starts this program at the next login. Waits for disks.
[[nodiscard]] bool startsAtLogin();

/// Gives our own entry, where there is one, the setting of starting hidden. Waits for disks.
void startHiddenAsSet();

}  // namespace orrinvale
