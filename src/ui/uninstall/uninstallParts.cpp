#include "ui/uninstall/uninstallParts.h"

#include <utility>

#include "engine/cleaning/FolderUtilities.h"
#include "engine/uninstall/PlannedUninstallWork.h"
#include "engine/uninstall/UninstallAppInfo.h"
#include "engine/uninstall/inventoryStamp.h"
#include "services/desktop/askToQuit.h"

namespace orrinvale {
namespace {

ApplicationDetails measured(const ApplicationSources& sources, const ApplicationRecord& record,
                            const std::atomic<bool>& stop) {
    ApplicationDetails details;
    if (const ApplicationKind* const kind = sources.applications->kind(record.type))
        details = kind->details(record);
    if (details.bytes || record.path.empty() || stop) return details;
    const std::uint64_t bytes = sources.utilities->sizeOfItemAtPath(record.path, {.stop = &stop});
    if (bytes != 0) details.bytes = bytes;
    return details;
}

std::shared_ptr<UninstallWork> workOf(const ApplicationSources& sources) {
    const UninstallParts parts{.files = sources.files,
                               .applications = sources.applications,
                               .home = sources.variables.home,
                               .ownFiles = sources.ownFiles};
    return std::make_shared<PlannedUninstallWork>(
        parts, LeftoverPlaces::of(sources.variables, *sources.folders),
        UninstallDoors::usual(parts), askToQuit);
}

}  // namespace

UninstallPageParts uninstallPartsOf(const ApplicationSources& sources) {
    UninstallPageParts parts;
    parts.inventory = [sources] {
        const UninstallAppDelegate search(*sources.files, sources.variables.home,
                                          sources.applications);
        return std::move(UninstallAppInfo(search).allAppsInfo());
    };
    parts.measure = [sources](const ApplicationRecord& record, const std::atomic<bool>& stop) {
        return measured(sources, record, stop);
    };
    parts.stamp = [sources] { return inventoryStamp(*sources.files, sources.variables); };
    parts.work = workOf(sources);
    return parts;
}

}  // namespace orrinvale
