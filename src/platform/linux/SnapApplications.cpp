// From the service's answers to records.
#include "platform/linux/SnapApplications.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/linux/DesktopEntries.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

ApplicationRecord recordOf(const SnapFacts& facts) {
    ApplicationRecord record;
    record.type = ApplicationType::Snap;
    record.id = facts.name;
    record.name = facts.title.empty() ? facts.name : facts.title;
    record.version = facts.version;
    record.icon = facts.icon;
    record.path = joinPath("/snap", facts.name);
    record.entries = facts.entries;
    record.installed = madeAt(joinPath(record.path, "current"));
    return record;
}

ApplicationRemoval removalOf(const tl::expected<void, SnapFailure>& removed) {
    if (removed) return {ApplicationRemoval::State::Gone, {}};
    return {removed.error().isDismissed ? ApplicationRemoval::State::Dismissed
                                        : ApplicationRemoval::State::Failed,
            removed.error().words};
}

}  // namespace

std::vector<ApplicationRecord> SnapApplications::list(std::vector<StartingEntry>& entries) const {
    std::vector<ApplicationRecord> out;
    for (const SnapFacts& facts : m_service.snaps()) {
        if (!facts.type.empty() && facts.type != "app") continue;
        ApplicationRecord record = recordOf(facts);
        for (StartingEntry& each : entries) {
            const bool isListed = std::find(facts.entries.begin(), facts.entries.end(),
                                            each.path) != facts.entries.end();
            if (each.isClaimed || (!isListed && each.started.snap != facts.name)) continue;
            each.isClaimed = true;
            if (!isListed) record.entries.push_back(each.path);
            if (!each.entry.name.empty()) record.name = each.entry.name;
            if (!each.entry.icon.empty()) record.icon = each.entry.icon;
        }
        out.push_back(std::move(record));
    }
    return out;
}

ApplicationDetails SnapApplications::details(const ApplicationRecord& record) const {
    ApplicationDetails out;
    for (const SnapFacts& facts : m_service.snaps())
        if (facts.name == record.id && facts.size != 0) out.bytes = facts.size;
    out.lastUse = lastReadAt(joinPath(record.path, "current/meta/snap.yaml"));
    return out;
}

RemovalForecast SnapApplications::forecast(const std::vector<ApplicationRecord>& records,
                                           const std::atomic<bool>& /*stop*/) const {
    RemovalForecast out;
    out.asksForRight = true;
    constexpr std::chrono::milliseconds patience(10'000);
    const auto answer = m_service.ask("GET", "/v2/system-info", {}, patience);
    if (!answer) out.refusal = answer.error();
    for (const ApplicationRecord& each : records) {
        out.promised.push_back(each.id);
        out.stays.push_back(
            fmt::format("The data of {} are kept in a snapshot for 31 days", each.name));
    }
    return out;
}

std::vector<ApplicationRemoval> SnapApplications::remove(
    const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
    const std::atomic<bool>& stop) const {
    std::vector<ApplicationRemoval> out;
    for (const ApplicationRecord& each : records) {
        if (!forecast.refusal.empty() || stop)
            out.push_back({ApplicationRemoval::State::Refused,
                           forecast.refusal.empty() ? "stopped" : forecast.refusal});
        else out.push_back(removalOf(m_service.remove(each.id)));
    }
    return out;
}

}  // namespace orrinvale
