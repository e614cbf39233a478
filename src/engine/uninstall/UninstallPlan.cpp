// One simulation for each kind, and the lists of what goes entry by entry.
#include "engine/uninstall/UninstallPlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <future>
#include <system_error>
#include <utility>

#include "engine/files/TreeSize.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::vector<PlannedEntry> entriesAt(const FileSystem& files,
                                    const std::vector<std::string>& paths) {
    std::vector<PlannedEntry> out;
    out.reserve(paths.size());
    for (const std::string& path : paths) out.push_back(PlannedEntry::at(files, path));
    return out;
}

// Nobody could tell later whether something else has come into its place.
void refuseUnseen(UninstallPlan::App& app) {
    for (const PlannedEntry& each : app.entries)
        if (app.refusal.empty() && each.fault != 0 && each.fault != ENOENT)
            app.refusal = fmt::format("{} could not be looked at: {}", each.path,
                                      std::generic_category().message(each.fault));
}

bool isBundle(const AppItems& item) { return item.record->type == ApplicationType::App; }

// All that may claim what begins with this bundle's identifier: every other bundle with a longer
// one, whether it goes or stays, since each takes its own; of its copies those that stay, and those
// that go after it.
std::vector<std::string> otherIdentifiers(const UninstallPlan& plan, std::size_t index,
                                          const AppItemsArray& all) {
    const auto& own = plan.apps[index].item;
    std::vector<std::string> out;
    for (const auto& each : all) {
        if (!isBundle(*each) || !each->bundleID || each == own) continue;
        const auto ticked = std::ranges::find(plan.apps, each, &UninstallPlan::App::item);
        const bool goesBefore = ticked != plan.apps.end() && ticked->refusal.empty() &&
                                ticked < plan.apps.begin() + std::ptrdiff_t(index);
        if (!goesBefore || each->bundleID != own->bundleID) out.push_back(*each->bundleID);
    }
    return out;
}

// What another application consists of does not go with a folder.
std::string refusalByOthers(const ApplicationRecord& folder, const AppItemsArray& all) {
    for (const auto& each : all) {
        const ApplicationRecord& other = *each->record;
        const bool isSame = other.type == folder.type && other.path == folder.path;
        const auto isInside = [&](const std::string& path) { return isWithin(path, folder.path); };
        if (!isSame && (isInside(other.path) || std::ranges::any_of(other.programs, isInside)))
            return fmt::format("{} lies in its folder", other.name);
    }
    return {};
}

std::vector<ApplicationRecord> recordsOf(const UninstallPlan& plan,
                                         const std::vector<std::size_t>& indexes) {
    std::vector<ApplicationRecord> records;
    records.reserve(indexes.size());
    for (const std::size_t index : indexes) records.push_back(*plan.apps[index].item->record);
    return records;
}

void take(const UninstallParts& parts, ApplicationType type, RemovalForecast forecast,
          const std::vector<std::size_t>& indexes, UninstallPlan& plan) {
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        UninstallPlan::App& app = plan.apps[indexes[i]];
        if (app.refusal.empty()) app.refusal = forecast.refusal;
        if (const auto own = forecast.refusals.find(i); own != forecast.refusals.end())
            app.refusal = own->second;
        if (const auto own = forecast.kept.find(i); own != forecast.kept.end())
            app.stays = own->second;
        if (i < forecast.trash.size()) app.entries = entriesAt(*parts.files, forecast.trash[i]);
        refuseUnseen(app);
        for (const auto& along : forecast.along)
            if (along.of == i)
                app.along.push_back(along.version.empty() ? along.name
                                                          : along.name + ' ' + along.version);
    }
    if (forecast.refusal.empty()) {
        plan.asksForRight |= forecast.asksForRight;
        plan.stays.insert(plan.stays.end(), forecast.stays.begin(), forecast.stays.end());
    }
    plan.forecasts[type] = std::move(forecast);
}

// A kind that waits for its service holds no other up.
void planKinds(const UninstallParts& parts,
               const std::map<ApplicationType, std::vector<std::size_t>>& byType,
               const Waiting& waiting, UninstallPlan& plan) {
    std::map<ApplicationType, std::future<RemovalForecast>> forecasts;
    for (const auto& [type, indexes] : byType) {
        const ApplicationKind* const kind =
            parts.applications == nullptr ? nullptr : parts.applications->kind(type);
        if (kind == nullptr)
            for (const std::size_t index : indexes)
                plan.apps[index].refusal = "Nothing here removes its kind";
        else try {
                forecasts[type] = std::async(std::launch::async,
                                             [kind, &waiting, records = recordsOf(plan, indexes)] {
                                                 return kind->forecast(records, waiting);
                                             });
            } catch (const std::system_error&) {  // no thread is to be had
                for (const std::size_t index : indexes)
                    plan.apps[index].refusal = "what would go along could not be found out";
            }
    }
    for (auto& [type, forecast] : forecasts)
        take(parts, type, forecast.get(), byType.at(type), plan);
}

}  // namespace

bool UninstallPlan::hasWork() const {
    return std::any_of(apps.begin(), apps.end(),
                       [](const App& each) { return each.refusal.empty(); });
}

bool isNeverRemoved(const AppItems& app) {
    return app.bundleID == "com.kelpford.TidewrackPro" && app.bundleVersion == "3.0";
}

UninstallPlan planUninstall(const UninstallParts& parts, const AppItemsArray& ticked,
                            const AppItemsArray& all, const Waiting& waiting,
                            const PlanDoubts& doubts) {
    UninstallPlan plan;
    std::map<ApplicationType, std::vector<std::size_t>> byType;
    for (const auto& each : ticked) {
        UninstallPlan::App& app = plan.apps.emplace_back();
        app.item = each;
        const auto doubt = doubts.refusals.find(plan.apps.size() - 1);
        if (doubt != doubts.refusals.end()) app.refusal = doubt->second;
        else if (isNeverRemoved(*each))
            app.refusal = fmt::format("{} is never removed", each->name);
        else if (each->record->isOurs)
            app.refusal = fmt::format("{} is the program that runs", each->name);
        else if (each->record->type == ApplicationType::Folder)
            app.refusal = refusalByOthers(*each->record, all);
        if (app.refusal.empty() && !isBundle(*each))
            byType[each->record->type].push_back(plan.apps.size() - 1);
    }
    for (std::size_t i = 0; i < plan.apps.size(); ++i)
        if (isBundle(*plan.apps[i].item) && plan.apps[i].refusal.empty()) {
            plan.apps[i].entries =
                UninstallApp(*parts.files, parts.home, otherIdentifiers(plan, i, all), parts.root,
                             doubts.areBundlesUnread)
                    .planOf(*plan.apps[i].item);
            refuseUnseen(plan.apps[i]);
        }
    planKinds(parts, byType, waiting, plan);
    return plan;
}

ApplicationDetails detailsOf(const UninstallParts& parts, const AppItems& app) {
    ApplicationDetails out;
    const ApplicationKind* const kind =
        parts.applications == nullptr ? nullptr : parts.applications->kind(app.record->type);
    if (kind != nullptr) out = kind->details(*app.record);
    if (!out.bytes)
        if (const auto totals = TreeSize(*parts.files).ofPath(app.path)) out.bytes = totals->bytes;
    return out;
}

}  // namespace orrinvale
