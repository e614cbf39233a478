// A record tells an application apart: the page's copies share it with the plan.
#include "engine/uninstall/PlannedUninstallWork.h"

#include <algorithm>
#include <utility>

#include "engine/uninstall/UninstallAppInfo.h"

namespace orrinvale {
namespace {

bool isSame(const ApplicationRecord& a, const ApplicationRecord& b) {
    return a.type == b.type && a.path == b.path && a.id == b.id && a.installation == b.installation;
}

// Those that go are the same objects among all that are installed, which claim what is theirs.
AppItemsArray putAmong(AppItemsArray& installed, const std::vector<AppItems>& items) {
    AppItemsArray out;
    for (const AppItems& each : items) {
        out.push_back(std::make_shared<AppItems>(each));
        const auto found = std::ranges::find_if(
            installed, [&](const auto& other) { return isSame(*other->record, *each.record); });
        if (found != installed.end()) *found = out.back();
    }
    return out;
}

std::vector<const ApplicationRecord*> recordsOf(const std::vector<AppItems>& items) {
    std::vector<const ApplicationRecord*> out;
    for (const AppItems& each : items) out.push_back(each.record.get());
    return out;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string out;
    for (const std::string& each : lines) out += (out.empty() ? "" : "\n") + each;
    return out;
}

}  // namespace

std::vector<UninstallForecast> PlannedUninstallWork::forecast(const std::vector<AppItems>& items,
                                                              const std::atomic<bool>& stop) {
    UninstallAppInfo info(
        UninstallAppDelegate(*m_parts.files, m_parts.home, m_parts.applications, m_parts.root));
    AppItemsArray& installed = info.allAppsInfo();
    const LeftoverRules rules(LeftoverClaims::of(installed, info.rest()));
    const AppItemsArray ticked = putAmong(installed, items);
    UninstallPlan plan = planUninstall(m_parts, ticked, installed, stop);
    std::vector<UninstallForecast> out(items.size());
    const std::vector<RunState> running = m_parts.applications->running(recordsOf(items));
    bool isNoted = false;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const UninstallPlan::App& app = plan.apps.at(i);
        // The one that never goes is tried like any other, and fails.
        if (!isNeverRemoved(items[i])) out[i].refusal = app.refusal;
        out[i].running = running.at(i);
        if (!app.refusal.empty()) continue;
        out[i].goesAlong = app.along;
        for (const PlannedEntry& each : app.entries)
            if (each.path != items[i].path) out[i].goesAlong.push_back(each.path);
        if (!std::exchange(isNoted, true)) out[i].note = joined(plan.stays);
        if (items[i].record->type != ApplicationType::App)
            out[i].leftovers =
                findLeftoversOf(*m_parts.files, m_places, rules, *items[i].record, stop);
    }
    const std::lock_guard guard(m_mutex);
    m_plan = std::move(plan);
    return out;
}

std::vector<UninstallResult> PlannedUninstallWork::remove(
    const std::vector<UninstallRequest>& requests, ProgressBox& progress,
    const std::atomic<bool>& stop) {
    UninstallPlan plan;
    {
        const std::lock_guard guard(m_mutex);
        plan = m_plan;
    }
    std::vector<Leftover> leftovers;
    const auto isWanted = [&](const UninstallPlan::App& app) {
        return std::ranges::any_of(requests, [&](const UninstallRequest& request) {
            return request.item.record == app.item->record;
        });
    };
    // They stay in the plan: a copy that is not asked for keeps what both have.
    for (UninstallPlan::App& app : plan.apps)
        if (!isWanted(app)) app.refusal = "nobody asked for it";
    for (const UninstallRequest& each : requests)
        leftovers.insert(leftovers.end(), each.leftovers.begin(), each.leftovers.end());
    const UninstallOutcome outcome =
        runUninstall(m_parts, plan, leftovers, m_doors, stop,
                     [&](const std::string& name) { progress.setCurrent(name); });
    std::vector<UninstallResult> out(requests.size());
    for (std::size_t i = 0; i < out.size(); ++i)
        for (const UninstallOutcome::App& each : outcome.apps) {
            if (each.item->record != requests[i].item.record) continue;
            out[i].isGone = each.removal.state == ApplicationRemoval::State::Gone;
            out[i].reason = each.removal.reason;
            out[i].note = each.removal.note;
            if (out[i].isGone) out[i].gained = requests[i].item.fileSizeNum;
        }
    if (!out.empty())
        for (const StayedEntry& each : outcome.leftovers)
            out.front().leftovers.push_back({each.path, each.reason});
    return out;
}

bool PlannedUninstallWork::askToQuit(const ApplicationRecord& record) {
    return m_quit && !record.id.empty() && m_quit(record.id);
}

RunState PlannedUninstallWork::running(const ApplicationRecord& record) {
    return m_parts.applications->running({&record}).front();
}

}  // namespace orrinvale
