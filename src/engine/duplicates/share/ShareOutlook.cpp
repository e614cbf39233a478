// The door itself looks, so that what is told is what it would do.
#include "engine/duplicates/share/ShareOutlook.h"

#include <utility>

#include "engine/duplicates/plan/planOfTicks.h"
#include "engine/duplicates/share/shareReasons.h"
#include "engine/removal/RemovalRun.h"

namespace orrinvale {
namespace {

// They stay in the plan, since what lies in a folder that stays is left alone.
void keepFolders(ShareablePlan& shareable) {
    for (PlanGroup& group : shareable.plan.groups)
        for (PlanMember& member : group.members)
            if (member.goes && member.identity.type == FileType::Folder) {
                member.goes = false;
                shareable.folders.push_back({member.path, std::string(share::noFile)});
            }
}

void addTo(ShareOutlook& outlook, const std::string& path, const ShareList::Settled& each) {
    using As = ShareList::Settled::As;
    using By = RemovalResult::Shared::By;
    if (each.as == As::Stayed) outlook.kept.push_back({path, each.reason});
    if (each.as != As::Shared) return;
    if (each.shared.by == By::Already) {
        ++outlook.already;
        return;
    }
    ShareOutlook::Way& way = each.shared.by == By::Extents ? outlook.extents : outlook.links;
    ++way.files;
    way.bytes += each.shared.bytes;
}

}  // namespace

ShareablePlan shareableOf(DuplicatePlan plan) {
    ShareablePlan shareable{std::move(plan)};
    const LeftOutOfPlan left = takeOutUnplannable(shareable.plan);
    shareable.wholeGroups = left.groups;
    shareable.links = left.links;
    keepFolders(shareable);
    return shareable;
}

ShareOutlook lookAtSharing(const FileSystem& files, ProtectedPlaces places, DuplicatePlan plan,
                           bool mayLink, ProgressBox& progress, const std::atomic<bool>& stop) {
    ShareOutlook outlook;
    const ShareablePlan shareable = shareableOf(std::move(plan));
    outlook.wholeGroups = shareable.wholeGroups;
    outlook.noFiles = shareable.links + shareable.folders.size();
    const auto looked = std::make_shared<ShareList>(files, shareable.plan);
    ShareDoor door(files, std::move(places), shareOrder(looked, mayLink, true));
    RemovalRun run(files, {}, *looked, door, stop,
                   {[](bool /*isWaiting*/) {},
                    [&](std::size_t index, const std::string& path, bool /*isFolder*/) {
                        progress.setDone(index);
                        progress.setCurrent(path);
                    },
                    [](std::size_t /*index*/, const RemovalResult& /*result*/) {}});
    (void)run.run();
    for (std::size_t i = 0; i < looked->account().size(); ++i)
        addTo(outlook, looked->path(i), looked->account()[i]);
    outlook.list = std::make_shared<ShareList>(files, shareable.plan);
    return outlook;
}

ShareDoor::Order shareOrder(const std::shared_ptr<ShareList>& list, bool mayLink, bool onlyLooks) {
    ShareDoor::Order order;
    order.onlyLooks = onlyLooks;
    order.group = [list] { return list->groupInHand(); };
    order.takenBack = [list](const RemovalResult::Shared& touched) {
        list->noteTakenBack(touched);
    };
    if (mayLink)
        order.objectionToLink = [list](const KeptCopy& kept, std::uint32_t names) {
            return list->objectionToLink(kept, names);
        };
    return order;
}

}  // namespace orrinvale
