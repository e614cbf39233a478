// From the service's answers to records.
#include "platform/linux/SnapApplications.h"

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

}  // namespace orrinvale
