#include "ui/uninstall/uninstallParts.h"

#include <map>
#include <memory>
#include <utility>

#include "engine/cleaning/FolderUtilities.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/Trash.h"
#include "engine/uninstall/PlannedUninstallWork.h"
#include "engine/uninstall/UninstallAppInfo.h"
#include "engine/uninstall/inventoryStamp.h"
#include "platform/freeSpace.h"
#include "services/desktop/askToQuit.h"
#include "ui/uninstall/closeWindows.h"

namespace orrinvale {
namespace {

// What the kinds have read for one pass of measuring.
using Readings = std::map<ApplicationType, std::shared_ptr<const void>>;

ApplicationDetails measured(const ApplicationSources& sources, const ApplicationRecord& record,
                            Readings& readings, const std::atomic<bool>& stop) {
    ApplicationDetails details;
    if (const ApplicationKind* const kind = sources.applications->kind(record.type))
        details = kind->detailsOfNext(record, readings[record.type]);
    if (details.bytes || record.path.empty() || stop) return details;
    const std::uint64_t bytes = sources.utilities->sizeOfItemAtPath(record.path, {.stop = &stop});
    if (bytes != 0) details.bytes = bytes;
    return details;
}

// What is mounted may be another at each question, whose copy reads it once.
PlannedUninstallWork::NoTrash noTrashOf(const UninstallParts& parts) {
    return [parts,
            places = std::shared_ptr<const ProtectedPlaces>()](const std::string& path) mutable {
        if (!places)
            places = std::make_shared<const ProtectedPlaces>(
                ProtectedPlaces::ofThisMachine(*parts.files, parts.ownFiles));
        return Trash(*parts.files, *places).objection(path).value_or(std::string());
    };
}

std::shared_ptr<UninstallWork> workOf(const ApplicationSources& sources) {
    const UninstallParts parts{.files = sources.files,
                               .applications = sources.applications,
                               .home = sources.variables.home,
                               .ownFiles = sources.ownFiles};
    return std::make_shared<PlannedUninstallWork>(
        parts, LeftoverPlaces::of(sources.variables, *sources.folders),
        UninstallDoors::usual(parts),
        [](const ApplicationRecord& record) {
            return askToQuit(record.id) || closeWindowsOf(record);
        },
        noTrashOf(parts));
}

}  // namespace

UninstallPageParts uninstallPartsOf(const ApplicationSources& sources) {
    UninstallPageParts parts;
    parts.inventory = [sources](const UninstallPageParts::News& news) {
        const UninstallAppDelegate search(*sources.files, sources.variables.home,
                                          sources.applications);
        UninstallAppInfo info(search, news);
        return FoundApplications{std::move(info.allAppsInfo()), info.rest().unread};
    };
    // Each pass works with a copy of its own, which has read nothing yet.
    parts.measure = [sources, readings = Readings()](const ApplicationRecord& record,
                                                     const std::atomic<bool>& stop) mutable {
        return measured(sources, record, readings, stop);
    };
    parts.stamp = [sources] {
        return inventoryStamp(*sources.files, sources.variables.home, sources.applications);
    };
    parts.work = workOf(sources);
    parts.freeSpace = settledFreeSpace;
    parts.disks = {"/", sources.variables.home};
    return parts;
}

}  // namespace orrinvale
