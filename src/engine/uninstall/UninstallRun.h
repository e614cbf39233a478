// UninstallRun: carries a plan out, kind by kind, and then moves the leftovers that were ticked to
// the trash.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/removal/RemovalDoor.h"
#include "engine/uninstall/Leftovers.h"
#include "engine/uninstall/UninstallPlan.h"

namespace orrinvale {

struct UninstallOutcome {
    struct App {
        std::shared_ptr<AppItems> item;
        ApplicationRemoval removal;
    };
    std::vector<App> apps;               ///< in the order of the plan
    std::vector<StayedEntry> leftovers;  ///< that stay, of applications that are gone

    /// Whether all applications are gone.
    [[nodiscard]] bool worked() const;
    /// Whether one stays that the administrator's door may still open.
    [[nodiscard]] bool hasDoorFailed() const;
};

/// The ways out; made on the thread that runs.
struct UninstallDoors {
    std::function<std::unique_ptr<RemovalDoor>()> bundles;  ///< with the administrator right
    std::function<std::unique_ptr<RemovalDoor>()> trash;

    /// The program's own.
    [[nodiscard]] static UninstallDoors usual(const UninstallParts& parts);
};

/// Runs to its end on the calling thread, which may have to wait for a password. Bundles go first,
/// each to its first entry that stays; then what their kinds remove, one call each; then what goes
/// to the trash, the program before the entries that start it: where it goes they follow, and a
/// note tells of those that stay. Leftovers follow only of
/// applications that are gone, and of those that were gone before. `begins` is told each name as
/// its turn comes.
[[nodiscard]] UninstallOutcome runUninstall(const UninstallParts& parts, const UninstallPlan& plan,
                                            const std::vector<Leftover>& leftovers,
                                            const UninstallDoors& doors,
                                            const std::atomic<bool>& stop,
                                            const std::function<void(const std::string&)>& begins);

}  // namespace orrinvale
