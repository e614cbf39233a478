// A path is a list of one row for RemovalRun, so that what holds for whole lists holds for it.
#include "engine/cleaning/PathCleaner.h"

#include <fmt/format.h>

#include <atomic>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/CleanList.h"
#include "engine/removal/RemovalRun.h"

namespace orrinvale {

// A new look would take our own removal for somebody's change a moment ago.
std::optional<CleanRow> PathCleaner::rowAt(const std::string& path) {
    std::optional<CleanRow> begun = std::exchange(m_begun, std::nullopt);
    if (begun && begun->path == path) return begun;
    return CategoryScan(m_parts.clean, {}).rowAt(path);
}

PathCleaner::Outcome PathCleaner::remove(const std::string& path) {
    auto row = rowAt(path);
    if (!row) {
        Log::line(fmt::format("Clean deletable file failed: {}-it can not be looked at", path));
        return {};
    }
    if (!row->isOffered()) {
        Log::line(fmt::format("Kept {}: {}", path, row->keptWords));
        return {.isKept = true};
    }
    std::vector<CleanRow> rows;
    rows.push_back(std::move(*row));
    CleanList list(m_parts.clean, std::move(rows));
    QuietDoor door(m_parts.makeDoor());
    const std::atomic<bool> never{false};
    RemovalRun run(*m_parts.clean.files, m_parts.stateFolder, list, door, never,
                   {.waiting = [](bool) {},
                    .begins = [](auto, const auto&, bool) {},
                    .settled = [](auto, const auto&) {}});
    const RemovalOutcome outcome = run.run();
    if (outcome.lacksRights && list.isBegun(0)) {
        m_begun = list.rows().front();
        m_begun->isBegun = true;
    }
    return {.isDone = list.isDone(0), .isKept = list.isKept(0), .lacksRights = outcome.lacksRights};
}

}  // namespace orrinvale
