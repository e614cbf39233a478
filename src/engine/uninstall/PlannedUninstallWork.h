// PlannedUninstallWork: what the uninstall page asks, over the plan and the run of an
// uninstallation.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "engine/uninstall/UninstallPlan.h"
#include "engine/uninstall/UninstallRun.h"
#include "engine/uninstall/UninstallWork.h"

namespace orrinvale {

/// Any thread. Remembers what it has removed, so that a second attempt with the same plan does not
/// take it for a copy that stays. An application that a plan does not know stays.
class PlannedUninstallWork final : public UninstallWork {
public:
    /// Asks a program to end as its person would; false where there is no way to.
    using Quit = std::function<bool(const ApplicationRecord& record)>;
    /// Why the trash can not take the entry at a path, for people; empty where it can. Each
    /// forecast asks a copy of its own, which may keep what it has read.
    using NoTrash = std::function<std::string(const std::string& path)>;

    /// What is pointed to outlives the object.
    PlannedUninstallWork(UninstallParts parts, LeftoverPlaces places, UninstallDoors doors,
                         Quit quit, NoTrash noTrash)
        : m_parts(std::move(parts)),
          m_places(std::move(places)),
          m_doors(std::move(doors)),
          m_quit(std::move(quit)),
          m_noTrash(std::move(noTrash)) {}

    [[nodiscard]] UninstallOutlook forecast(const std::vector<AppItems>& items,
                                            const std::atomic<bool>& stop) override;
    [[nodiscard]] std::vector<UninstallResult> remove(const UninstallPlan& agreed,
                                                      const std::vector<UninstallRequest>& requests,
                                                      ProgressBox& progress,
                                                      const std::atomic<bool>& stop) override;
    [[nodiscard]] bool askToQuit(const ApplicationRecord& record) override;
    [[nodiscard]] RunState running(const ApplicationRecord& record) override;

private:
    [[nodiscard]] std::vector<RunState> runningOf(const std::vector<AppItems>& items) const;
    static void refuseWithoutTrash(UninstallPlan& plan, const NoTrash& noTrash);
    void takeLeftovers(UninstallForecast& forecast, std::vector<Leftover> found,
                       const NoTrash& noTrash, std::vector<std::string>& notes) const;

    [[nodiscard]] bool hasRemoved(const UninstallPlan::App& app) const;

    const UninstallParts m_parts;
    const LeftoverPlaces m_places;
    const UninstallDoors m_doors;
    const Quit m_quit;
    const NoTrash m_noTrash;
    mutable std::mutex m_mutex;
    std::set<std::shared_ptr<const ApplicationRecord>> m_removed;  // under the mutex
};

}  // namespace orrinvale
