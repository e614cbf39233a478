// A record tells an application apart: the page's copies share it with the plan.
#include "engine/uninstall/PlannedUninstallWork.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "engine/uninstall/UninstallAppInfo.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Also in what would go with it, which may have become another application's meanwhile.
bool isSame(const ApplicationRecord& a, const ApplicationRecord& b) {
    const auto parts = [](const ApplicationRecord& of) {
        return std::tie(of.type, of.path, of.id, of.installation, of.name, of.version, of.package,
                        of.ref, of.entries, of.programs, of.links, of.others);
    };
    return parts(a) == parts(b);
}

constexpr const char* notAsListed = "not installed any more as it was listed";
constexpr const char* noTime = "What they left could not be looked for in time";
constexpr const char* noAnswer = "what would go along could not be found out in time";

// Those that go are the same objects among all that are installed, which claim what is theirs.
// What is not there any more as a person saw it stays; of a kind that keeps silent nobody knows.
AppItemsArray putAmong(AppItemsArray& installed, const ApplicationInventory& rest,
                       const std::vector<AppItems>& items, PlanDoubts& doubts) {
    std::unordered_multimap<std::string_view, std::size_t> byPath;
    for (std::size_t i = 0; i < installed.size(); ++i)
        byPath.emplace(installed[i]->record->path, i);
    AppItemsArray out;
    // The records of all of them, since the map stands on theirs.
    const AppItemsArray before = installed;
    for (const AppItems& each : items) {
        out.push_back(std::make_shared<AppItems>(each));
        const auto [begin, end] = byPath.equal_range(each.record->path);
        const auto found = std::find_if(begin, end, [&](const auto& other) {
            return isSame(*before[other.second]->record, *each.record);
        });
        if (found != end) {
            installed[found->second] = out.back();
            continue;
        }
        const auto silent = rest.unread.find(each.record->type);
        doubts.refusals[out.size() - 1] =
            silent == rest.unread.end() ? notAsListed : silent->second;
    }
    return out;
}

bool goesToTrash(const AppItems& item) {
    return item.record->type == ApplicationType::AppImage ||
           item.record->type == ApplicationType::Folder;
}

// Leftovers that are not offered would else look like ones that are not there.
std::vector<std::string> warningsOf(const ApplicationInventory& rest) {
    std::vector<std::string> out;
    for (const auto& [type, reason] : rest.unread)
        out.push_back("What is left in the home is not offered, since others may use it: " +
                      reason);
    return out;
}

}  // namespace

// The program itself decides; what stays of its entries is told when it does.
void PlannedUninstallWork::refuseWithoutTrash(UninstallPlan& plan, const NoTrash& noTrash) {
    if (!noTrash) return;
    for (UninstallPlan::App& each : plan.apps)
        if (each.refusal.empty() && goesToTrash(*each.item) && !each.entries.empty())
            each.refusal = noTrash(each.entries.front().path);
}

void PlannedUninstallWork::takeLeftovers(UninstallForecast& forecast, std::vector<Leftover> found,
                                         const NoTrash& noTrash,
                                         std::vector<std::string>& notes) const {
    for (Leftover& each : found) {
        // The snap service takes these itself.
        if (!m_places.snapData.empty() && isWithin(each.path, m_places.snapData)) continue;
        // It would look empty of documents that nobody has seen.
        if (!each.isWhole) {
            notes.push_back("Could not be looked through and is not offered: " + each.path);
            continue;
        }
        const std::string reason = noTrash ? noTrash(each.path) : std::string();
        if (reason.empty()) forecast.leftovers.push_back(std::move(each));
        else forecast.noTrash = reason;
    }
}

// One look for all.
std::vector<RunState> PlannedUninstallWork::runningOf(const std::vector<AppItems>& items) const {
    std::vector<const ApplicationRecord*> records(items.size());
    std::ranges::transform(items, records.begin(),
                           [](const AppItems& each) { return each.record.get(); });
    return m_parts.applications->running(records);
}

UninstallOutlook PlannedUninstallWork::forecast(const std::vector<AppItems>& items,
                                                const std::atomic<bool>& stop) {
    UninstallAppInfo info(
        UninstallAppDelegate(*m_parts.files, m_parts.home, m_parts.applications, m_parts.root));
    AppItemsArray& installed = info.allAppsInfo();
    const LeftoverRules rules(LeftoverClaims::of(installed, info.rest()));
    PlanDoubts doubts;
    doubts.areBundlesUnread = info.rest().unread.contains(ApplicationType::App);
    const AppItemsArray ticked = putAmong(installed, info.rest(), items, doubts);
    UninstallPlan plan = planUninstall(m_parts, ticked, installed, stop, doubts);
    for (UninstallPlan::App& each : plan.apps)
        if (stop && each.refusal == "stopped") each.refusal = noAnswer;
    const NoTrash noTrash = m_noTrash;
    refuseWithoutTrash(plan, noTrash);
    const std::vector<RunState> running = runningOf(items);
    UninstallOutlook out;
    out.warnings = warningsOf(info.rest());
    out.notes = plan.stays;
    out.isListOld = std::ranges::any_of(
        doubts.refusals, [](const auto& each) { return each.second == notAsListed; });
    // Those of them that may go and leave something, with their numbers.
    std::vector<const ApplicationRecord*> leaving;
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const UninstallPlan::App& app = plan.apps.at(i);
        UninstallForecast& told = out.apps.emplace_back();
        // The one that never goes is tried like any other, and fails.
        if (!isNeverRemoved(items[i])) told.refusal = app.refusal;
        told.running = running.at(i);
        if (!app.refusal.empty()) continue;
        told.goesAlong = app.along;
        told.stays = app.stays;
        for (const PlannedEntry& each : app.entries) told.paths.push_back(each.path);
        if (items[i].record->type == ApplicationType::App) continue;
        leaving.push_back(items[i].record.get());
        numbers.push_back(i);
    }
    auto left = findLeftoversOf(*m_parts.files, m_places, rules, leaving, stop);
    if (stop && !leaving.empty()) out.warnings.emplace_back(noTime);
    for (std::size_t i = 0; i < left.size(); ++i)
        takeLeftovers(out.apps[numbers[i]], std::move(left[i]), noTrash, out.notes);
    out.plan = std::make_shared<const UninstallPlan>(std::move(plan));
    return out;
}

std::vector<UninstallResult> PlannedUninstallWork::remove(
    const UninstallPlan& agreed, const std::vector<UninstallRequest>& requests,
    ProgressBox& progress, const std::atomic<bool>& stop) {
    UninstallPlan plan = agreed;
    std::vector<Leftover> leftovers;
    const auto isWanted = [&](const UninstallPlan::App& app) {
        return std::ranges::any_of(requests, [&](const UninstallRequest& request) {
            return request.item.record == app.item->record;
        });
    };
    // They stay in the plan: a copy that is not asked for keeps what both have, unless it is gone.
    std::erase_if(plan.apps, [&](const auto& app) { return !isWanted(app) && hasRemoved(app); });
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
            if (!out[i].isGone) continue;
            out[i].gained = requests[i].item.fileSizeNum;
            const std::scoped_lock lock(m_mutex);
            m_removed.insert(each.item->record);
        }
    if (!out.empty())
        for (const StayedEntry& each : outcome.leftovers)
            out.front().leftovers.push_back({each.path, each.reason});
    return out;
}

// One that was put back since stays like any other.
bool PlannedUninstallWork::hasRemoved(const UninstallPlan::App& app) const {
    const std::scoped_lock lock(m_mutex);
    return m_removed.contains(app.item->record) &&
           PlannedEntry::at(*m_parts.files, app.item->path).fault == ENOENT;
}

bool PlannedUninstallWork::askToQuit(const ApplicationRecord& record) {
    return m_quit && m_quit(record);
}

RunState PlannedUninstallWork::running(const ApplicationRecord& record) {
    return m_parts.applications->running({&record}).front();
}

}  // namespace orrinvale
