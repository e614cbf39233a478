// One simulation for each kind, and the lists of what goes entry by entry.
#include "engine/uninstall/UninstallPlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "engine/files/TreeSize.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

std::vector<PlannedEntry> entriesAt(const FileSystem& files,
                                    const std::vector<std::string>& paths) {
    std::vector<PlannedEntry> out;
    for (const std::string& path : paths) {
        const auto seen = files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
        out.push_back({path, seen ? std::optional(EntryIdentity::of(*seen)) : std::nullopt});
    }
    return out;
}

// Of each bundle that is not among those that go.
std::vector<std::string> identifiersThatStay(const AppItemsArray& ticked,
                                             const AppItemsArray& all) {
    std::vector<std::string> out;
    for (const auto& each : all)
        if (each->record->type == ApplicationType::App && each->bundleID &&
            std::find(ticked.begin(), ticked.end(), each) == ticked.end())
            out.push_back(*each->bundleID);
    return out;
}

void planKind(const UninstallParts& parts, const ApplicationKind& kind, UninstallPlan& plan,
              const std::vector<std::size_t>& indexes, const std::atomic<bool>& stop) {
    std::vector<ApplicationRecord> records;
    for (const std::size_t index : indexes) records.push_back(*plan.apps[index].item->record);
    RemovalForecast forecast = kind.forecast(records, stop);
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        UninstallPlan::App& app = plan.apps[indexes[i]];
        if (app.refusal.empty()) app.refusal = forecast.refusal;
        if (i < forecast.trash.size()) app.entries = entriesAt(*parts.files, forecast.trash[i]);
        for (const auto& along : forecast.along)
            if (along.of == i)
                app.along.push_back(along.version.empty() ? along.name
                                                          : along.name + ' ' + along.version);
    }
    if (forecast.refusal.empty()) {
        plan.asksForRight |= forecast.asksForRight;
        plan.stays.insert(plan.stays.end(), forecast.stays.begin(), forecast.stays.end());
    }
    plan.forecasts[kind.type()] = std::move(forecast);
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
                            const AppItemsArray& all, const std::atomic<bool>& stop) {
    UninstallPlan plan;
    const UninstallApp bundles(*parts.files, parts.home, identifiersThatStay(ticked, all),
                               parts.root);
    std::map<ApplicationType, std::vector<std::size_t>> byType;
    for (const auto& each : ticked) {
        UninstallPlan::App& app = plan.apps.emplace_back();
        app.item = each;
        if (isNeverRemoved(*each)) app.refusal = fmt::format("{} is never removed", each->name);
        else if (each->record->isOurs)
            app.refusal = fmt::format("{} is the program that runs", each->name);
        else if (each->record->type == ApplicationType::App) app.entries = bundles.planOf(*each);
        else byType[each->record->type].push_back(plan.apps.size() - 1);
    }
    for (const auto& [type, indexes] : byType) {
        const ApplicationKind* const kind =
            parts.applications == nullptr ? nullptr : parts.applications->kind(type);
        if (kind != nullptr) planKind(parts, *kind, plan, indexes, stop);
        else
            for (const std::size_t index : indexes)
                plan.apps[index].refusal = "Nothing here removes its kind";
    }
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
