// The job is waited for, and its outcome put together for the report.
#include "cli/CleanRemoval.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "cli/RemovalRun.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/CleanList.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/cleaning/SpaceGain.h"
#include "engine/removal/PlainDoor.h"
#include "engine/settings/UserFolders.h"
#include "platform/linux/ProgramFiles.h"

namespace orrinvale::cli {
namespace {

std::vector<CleanRow> rowsOf(const std::vector<ScannedCategory>& scanned) {
    std::vector<CleanRow> rows;
    for (const ScannedCategory& each : scanned)
        rows.insert(rows.end(), each.listing.rows.begin(), each.listing.rows.end());
    return rows;
}

}  // namespace

CleanRemovalResult removeRows(const CleanParts& parts, const std::vector<ScannedCategory>& scanned,
                              Telling telling) {
    CleanRemovalResult result;
    auto rows = rowsOf(scanned);
    const auto gain = std::make_shared<SpaceGain>(rows);
    const auto list = std::make_shared<CleanList>(parts, std::move(rows), gain);
    for (const CleanRow& row : list->rows()) addSaturating(result.outcome.promised, row.onDisk);
    const auto makeDoor = [files = parts.files] {
        return std::make_unique<QuietDoor>(std::make_unique<PlainDoor>(
            *files, ProtectedPlaces::ofThisMachine(*files, programFiles())));
    };
    auto [ending, endedBy] = runRemoval(*parts.files, list, makeDoor, telling);
    result.ending = endedBy;
    for (std::size_t row = 0; row < list->rows().size(); ++row)
        if (list->isDone(row) && list->isBegun(row))
            result.outcome.removed.push_back(list->rows()[row].path);
    const std::uint64_t stayed = ending.failedEntries + ending.kept;
    result.outcome.failed = std::move(ending.stayed);
    result.outcome.more = std::max<std::uint64_t>(stayed, result.outcome.failed.size()) -
                          result.outcome.failed.size();
    result.goneBytes = list->goneBytes();
    // Of many that stay the ending tells the first; the list has seen all that it came to.
    result.isWhole = !list->hasFailed() &&
                     std::ranges::all_of(result.outcome.failed, [](const StayedEntry& each) {
                         return isByRule(each.kind);
                     });
    if (!result.outcome.removed.empty() || result.goneBytes > 0)
        static_cast<void>(
            ParseFileLog(userStateFolder()).setSize(result.goneBytes, FileLog().date.value()));
    result.outcome.gained = gain->gained();
    return result;
}

}  // namespace orrinvale::cli
