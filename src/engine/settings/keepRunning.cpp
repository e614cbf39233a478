#include "engine/settings/keepRunning.h"

#include <string>
#include <variant>

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"

namespace orrinvale {

std::optional<bool> keepRunningAnswer(const UserDefaults& defaults) {
    const SettingObject stored = defaults.objectForKey(keepRunningKey);
    if (!stored) return std::nullopt;
    const auto* const text = std::get_if<std::string>(&*stored);
    if (text != nullptr && *text == askToKeepRunning) return std::nullopt;
    return boolOf(*stored);
}

}  // namespace orrinvale
