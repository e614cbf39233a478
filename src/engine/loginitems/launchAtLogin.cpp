#include "engine/loginitems/launchAtLogin.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/base/Log.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"

namespace orrinvale {
namespace {

bool startsHidden() { return UserDefaults::standardUserDefaults().boolForKey(ZvLoginItemIsHide); }

}  // namespace

Result<void> writeFileOfLaunchAppWhenLogin(std::string_view text) {
    return PreferenceViewController::storeSetting(integerOf(SettingValue(std::string(text))),
                                                  ZvLoginCheckKey);
}

std::string readeFileOfLaunchAppWhenLogin() {
    return fmt::format("{}", UserDefaults::standardUserDefaults().integerForKey(ZvLoginCheckKey));
}

bool launchAtLogin(int state) {
    // A failure is logged there, and the value holds in this process.
    static_cast<void>(writeFileOfLaunchAppWhenLogin(fmt::format("{}", state)));
    const std::string own = LoginItemRegistry::parts().list().folders().ownProgram;
    bool isDone = true;
    if (const auto index = LoginItemRegistry::indexForLoginItemWithPath(own); index != -1)
        isDone = LoginItemRegistry::removeLoginItemAtIndex(index);
    if (state != 1) return isDone;
    if (LoginItemRegistry::addLoginItemWithPath(own, startsHidden())) return true;
    Log::line("Registry login item failed!!!");
    return false;
}

bool startsAtLogin() {
    const LoginItems& items = LoginItemRegistry::parts().list();
    std::int32_t status = 0;
    const auto all = items.list(status);
    return std::ranges::any_of(all, [&items](const LoginItemRecord& each) {
        return each.starts && each.path == items.folders().ownProgram;
    });
}

void startHiddenAsSet() {
    LoginItems& items = LoginItemRegistry::parts().list();
    std::int32_t status = 0;
    for (const LoginItemRecord& each : items.list(status))
        if (each.isPersons && each.isOurs && each.path == items.folders().ownProgram)
            if (const auto set = items.setHidden(each.fileName, startsHidden()); !set)
                Log::line(fmt::format("{}: {}", each.file, set.error().reason()));
}

}  // namespace orrinvale
