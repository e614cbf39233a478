// UninstallPlan: what the removal of some applications would do, all of it told before anything
// goes. UninstallRun.h carries it out.
#pragma once

#include <atomic>
#include <cstddef>
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
        std::vector<std::string> stays;     ///< settings for everybody, by path
        std::string refusal;                ///< why it stays; empty when it may go
    };
    std::vector<App> apps;
    std::vector<std::string> stays;  ///< sentences about what is left
    bool asksForRight = false;       ///< some kind may ask for a password by itself
    std::map<ApplicationType, RemovalForecast> forecasts;

    /// Whether any may go.
    [[nodiscard]] bool hasWork() const;
};

/// What an inventory says of those that are asked about before anything is simulated.
struct PlanDoubts {
    std::map<std::size_t, std::string> refusals;  ///< why some of them stay, by number
    bool areBundlesUnread = false;                ///< there may be bundles that nobody knows of
};

/// Simulates, all kinds at the same time. `all` are all that are installed: what another bundle's
/// identifier claims goes with that bundle, or stays with it, and of copies with the last of them.
/// A folder in which another application lies stays, and what could not be looked at. What is
/// refused beforehand is part of no simulation, so that nothing is promised for it. Any thread.
[[nodiscard]] UninstallPlan planUninstall(const UninstallParts& parts, const AppItemsArray& ticked,
                                          const AppItemsArray& all, const Waiting& waiting,
                                          const PlanDoubts& doubts = {});

/// What the details sheet tells, with the size measured now; nothing for what can not be measured.
[[nodiscard]] ApplicationDetails detailsOf(const UninstallParts& parts, const AppItems& app);

/// True of the vendor's own other program in the one version that is never removed.
[[nodiscard]] bool isNeverRemoved(const AppItems& app);

}  // namespace orrinvale
