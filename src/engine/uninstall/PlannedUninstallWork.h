// PlannedUninstallWork: what the uninstall page asks, over the plan and the run of an
// uninstallation.
#pragma once

#include <functional>
#include <mutex>

#include "engine/uninstall/UninstallPlan.h"
#include "engine/uninstall/UninstallRun.h"
#include "engine/uninstall/UninstallWork.h"

namespace orrinvale {

/// Any thread. What goes is what the last forecast told: an application that it did not know stays.
class PlannedUninstallWork final : public UninstallWork {
public:
    /// Asks a program of this identifier to end by its own action; false where it knows none.
    using Quit = std::function<bool(const std::string& id)>;

    /// What is pointed to outlives the object.
    PlannedUninstallWork(UninstallParts parts, LeftoverPlaces places, UninstallDoors doors,
                         Quit quit)
        : m_parts(std::move(parts)),
          m_places(std::move(places)),
          m_doors(std::move(doors)),
          m_quit(std::move(quit)) {}

    [[nodiscard]] std::vector<UninstallForecast> forecast(const std::vector<AppItems>& items,
                                                          const std::atomic<bool>& stop) override;
    [[nodiscard]] std::vector<UninstallResult> remove(const std::vector<UninstallRequest>& requests,
                                                      ProgressBox& progress,
                                                      const std::atomic<bool>& stop) override;
    [[nodiscard]] bool askToQuit(const ApplicationRecord& record) override;
    [[nodiscard]] RunState running(const ApplicationRecord& record) override;

private:
    const UninstallParts m_parts;
    const LeftoverPlaces m_places;
    const UninstallDoors m_doors;
    const Quit m_quit;
    std::mutex m_mutex;
    UninstallPlan m_plan;  // of the last forecast; guarded by m_mutex
};

}  // namespace orrinvale
