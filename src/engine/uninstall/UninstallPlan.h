// UninstallPlan: what the removal of some applications would do, all of it told before anything
// goes. UninstallRun.h carries it out.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/uninstall/AppItems.h"
#include "engine/uninstall/UninstallApp.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// What an uninstallation works with; nothing is owned, and all outlives it.
struct UninstallParts {
    const FileSystem* files = nullptr;
    const Applications* applications = nullptr;
    std::string home;
    std::string root{};                   ///< before the folders that are not in the home
    std::vector<std::string> ownFiles{};  ///< of this program, which stay
};

struct UninstallPlan {
    struct App {
        std::shared_ptr<AppItems> item;
        std::vector<PlannedEntry> entries;  ///< that go one by one, of a bundle itself the last;
                                            ///< none where its kind removes it
        std::vector<std::string> along;     ///< further packages that it takes along
        std::string refusal;                ///< why it stays; empty when it may go
    };
    std::vector<App> apps;
    std::vector<std::string> stays;  ///< sentences about what is left
    bool asksForRight = false;       ///< some kind may ask for a password by itself
    std::map<ApplicationType, RemovalForecast> forecasts;

    /// Whether any may go.
    [[nodiscard]] bool hasWork() const;
};

/// Simulates, all kinds at the same time. `all` are all that are installed: what another bundle's
/// identifier claims goes with that bundle, or stays with it, and of copies with the last of them.
/// A folder in which another application lies stays, and what could not be looked at. With
/// `areBundlesUnread` bundles may be missing in `all`. Any thread.
[[nodiscard]] UninstallPlan planUninstall(const UninstallParts& parts, const AppItemsArray& ticked,
                                          const AppItemsArray& all, const Waiting& waiting,
                                          bool areBundlesUnread = false);

/// What the details sheet tells, with the size measured now; nothing for what can not be measured.
[[nodiscard]] ApplicationDetails detailsOf(const UninstallParts& parts, const AppItems& app);

/// True of the vendor's own other program in the one version that is never removed.
[[nodiscard]] bool isNeverRemoved(const AppItems& app);

}  // namespace orrinvale
