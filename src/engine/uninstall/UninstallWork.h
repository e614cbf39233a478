// UninstallWork: what the uninstall page asks of whoever removes applications: what would go, what
// stays, what is left in the home, and the removal itself.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/Progress.h"
#include "engine/uninstall/AppItems.h"
#include "engine/uninstall/Leftovers.h"
#include "engine/uninstall/UninstallPlan.h"

namespace orrinvale {

/// What a removal of one application comes to, as far as anybody knows before. Texts are for
/// people.
struct UninstallForecast {
    std::string refusal;                 ///< why it is not removed; empty where it may go
    std::vector<std::string> goesAlong;  ///< names of packages and the like
    std::vector<std::string> paths;      ///< all that goes by path, where its kind goes so
    std::vector<std::string> stays;      ///< settings of the system, by path
    std::vector<Leftover> leftovers;     ///< in the person's home, which the trash can take
    std::string noTrash;                 ///< why it can not take others; empty where it takes all
    RunState running = RunState::Unknown;
};

/// What the removal of several comes to. The plan is the promise: a removal is given it back and
/// keeps to it, so that a later answer to another question changes nothing.
struct UninstallOutlook {
    std::vector<UninstallForecast> apps;  ///< one for each that was asked about, in their order
    std::vector<std::string> warnings;    ///< sentences about all of them, which are few
    std::vector<std::string> notes;       ///< sentences about some of them
    bool isListOld = false;               ///< some are not installed any more as they were listed
    std::shared_ptr<const UninstallPlan> plan;
};

/// One application on its way out, with the leftovers that the person ticked.
struct UninstallRequest {
    AppItems item;
    std::vector<Leftover> leftovers;
};

struct UninstallResult {
    bool isGone = false;
    std::string reason;  ///< why it stays; for people
    std::string note;    ///< what a person wants to know even where it is gone
    std::uint64_t gained = 0;
    struct Stayed {
        std::string path, reason;
    };
    std::vector<Stayed> leftovers;  ///< that could not be moved to the trash
};

/// All operations may wait, for disks, services and passwords, and are for a thread aside. A raised
/// flag ends them early: a forecast with what is known by then, a removal before its next
/// application.
class UninstallWork {
public:
    virtual ~UninstallWork() = default;
    UninstallWork(const UninstallWork&) = delete;
    UninstallWork& operator=(const UninstallWork&) = delete;

    /// Those of one kind that go together are simulated together.
    [[nodiscard]] virtual UninstallOutlook forecast(const std::vector<AppItems>& items,
                                                    const std::atomic<bool>& stop) = 0;

    /// What of the plan is requested; the answers in the order of the requests, which share their
    /// records with it. Tells the names of what it is at.
    [[nodiscard]] virtual std::vector<UninstallResult> remove(
        const UninstallPlan& plan, const std::vector<UninstallRequest>& requests,
        ProgressBox& progress, const std::atomic<bool>& stop) = 0;

    /// Asks a program that runs to end by itself, so that it can ask its person to save; false
    /// where it knows no such thing. Never ends it by force.
    [[nodiscard]] virtual bool askToQuit(const ApplicationRecord& record) = 0;
    [[nodiscard]] virtual RunState running(const ApplicationRecord& record) = 0;

protected:
    UninstallWork() = default;
};

/// Whether its removal goes through the administrator's door, which the padlock opens.
[[nodiscard]] inline bool goesThroughDoor(const AppItems& item) {
    return item.record->type == ApplicationType::App && !isNeverRemoved(item);
}

}  // namespace orrinvale
