// From the service's answers to records.
#include "platform/linux/SnapApplications.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/deadline.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
ApplicationRecord SnapApplications::recordOf(const SnapFacts& facts) const {
    ApplicationRecord record;
    record.type = ApplicationType::Snap;
    record.id = facts.name;
    record.name = facts.title.empty() ? facts.name : facts.title;
    record.version = facts.version;
    record.icon = facts.icon;
    record.path = joinPath(m_places.snapFolder, facts.name);
    record.entries = facts.entries;
    record.installed = madeAt(joinPath(record.path, "current"));
    return record;
}

// A service that is not there at all is none that keeps silent, unless snaps are.
bool SnapApplications::isHere() const {
    if (::access(m_places.snapSocket.c_str(), F_OK) == 0 || (errno != ENOENT && errno != ENOTDIR))
        return true;
    const auto names = systemNamesIn(m_places.snapFolder);
    return std::any_of(names.begin(), names.end(),
                       [](const std::string& name) { return name != "bin" && name != "README"; });
}

void SnapApplications::list(std::vector<StartingEntry>& entries,
                            ApplicationInventory& inventory) const {
    const auto snaps = m_service.snaps();
    if (!snaps) {
        if (isHere()) inventory.unread[type()] = snaps.error();
        return;
    }
    for (const SnapFacts& facts : *snaps) {
        if (!facts.type.empty() && facts.type != "app") continue;
        ApplicationRecord record = recordOf(facts);
        std::vector<std::string> names;
        for (StartingEntry& each : entries) {
            const bool isListed = std::find(facts.entries.begin(), facts.entries.end(),
                                            each.path) != facts.entries.end();
            if (each.isClaimed || (!isListed && each.started.snap != facts.name)) continue;
            each.isClaimed = true;
            if (!isListed) record.entries.push_back(each.path);
            // What others wrote to start it may be called after anything.
            if (!isListed) continue;
            if (!each.entry.name.empty()) names.push_back(record.name = each.entry.name);
            if (!each.entry.icon.empty()) record.icon = each.entry.icon;
        }
        takeOthers(record, names);
        inventory.records.push_back(std::move(record));
    }
}

ApplicationDetails SnapApplications::details(const ApplicationRecord& record) const {
    std::shared_ptr<const void> reading;
    return detailsOfNext(record, reading);
}

ApplicationDetails SnapApplications::detailsOfNext(const ApplicationRecord& record,
                                                   std::shared_ptr<const void>& reading) const {
    using Snaps = std::vector<SnapFacts>;
    ApplicationDetails out;
    // One that keeps silent is not asked again for each of them.
    if (!reading) reading = std::make_shared<const Snaps>(m_service.snaps().value_or(Snaps()));
    for (const SnapFacts& facts : *static_cast<const Snaps*>(reading.get()))
        if (facts.name == record.id && facts.size != 0) out.bytes = facts.size;
    out.lastUse = lastReadAt(joinPath(record.path, "current/meta/snap.yaml"));
    return out;
}

RemovalForecast SnapApplications::forecast(const std::vector<ApplicationRecord>& records,
                                           const Waiting& waiting) const {
    RemovalForecast out;
    out.asksForRight = true;
    const auto answer = m_service.ask("GET", "/v2/system-info", {}, timeUntil(waiting.end));
    if (!answer) out.refusal = answer.error();
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ApplicationRecord& each = records[i];
        out.promised.push_back(each.id);
        for (const std::string& name : each.others) out.along.push_back({i, name, {}});
        // The service takes the data of all people along, and keeps them as it was told to.
        out.along.push_back({i, "~/snap/" + each.id, {}});
        out.along.push_back({i, "/var/snap/" + each.id, {}});
        out.stays.push_back(fmt::format(
            "The data of {} are kept in a snapshot for 31 days, unless snapshots are switched off",
            each.name));
    }
    return out;
}

// Whoever has removed it meanwhile: what is gone is gone.
ApplicationRemoval SnapApplications::removed(const ApplicationRecord& record,
                                             const std::atomic<bool>& stop) const {
    using State = ApplicationRemoval::State;
    const SnapCourse course = m_service.remove(record.id, stop);
    const auto left = m_service.snaps();
    const bool isListed = !left || std::any_of(left->begin(), left->end(), [&](const auto& each) {
        return each.name == record.id;
    });
    const std::string note =
        course.couldNotStop
            ? fmt::format("The removal of {} could not be stopped any more", record.name)
            : std::string();
    if (!isListed) return {State::Gone, {}, note};
    if (!course.words.empty())
        return {course.isDismissed ? State::Dismissed : State::Failed, course.words, note};
    return {State::Failed,
            left ? std::string("The snap service left it")
                 : "Nobody can tell whether it is gone: " + left.error(),
            note};
}

std::vector<ApplicationRemoval> SnapApplications::remove(
    const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
    const std::atomic<bool>& stop) const {
    std::vector<ApplicationRemoval> out;
    for (const ApplicationRecord& each : records) {
        if (!forecast.refusal.empty() || stop)
            out.push_back({ApplicationRemoval::State::Refused,
                           forecast.refusal.empty() ? "stopped" : forecast.refusal,
                           {}});
        else out.push_back(removed(each, stop));
    }
    return out;
}

}  // namespace orrinvale
