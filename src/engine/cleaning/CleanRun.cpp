// See CleanRun.h.
#include "engine/cleaning/CleanRun.h"

#include <algorithm>
#include <bit>
#include <set>
#include <string_view>

#include "engine/base/saturating.h"
#include "platform/paths.h"

namespace orrinvale {

void CleanSums::add(const CleanFileInfo& row) {
    ++rows;
    if (!row.bIsSelected) return;
    ++ticked;
    addSaturating(bytes, row.fileSizeNum);
}

CleanSums& CleanSums::operator+=(const CleanSums& other) {
    rows += other.rows;
    ticked += other.ticked;
    addSaturating(bytes, other.bytes);
    return *this;
}

CleanSums sumsOf(const ScanViewController& list) {
    CleanSums sums;
    if (list.scanFiles)
        for (const auto& row : *list.scanFiles) sums.add(*row);
    return sums;
}

CleanRun::CleanRun(std::vector<ScanViewController*> lists, unsigned categories)
    : m_all(std::move(lists)), m_categories(categories), m_running(categories) {}

bool CleanRun::end(std::size_t category) {
    const unsigned bit = 1U << category;
    if ((m_running & bit) == 0) return false;
    m_running &= ~bit;
    return m_running == 0;
}

std::size_t CleanRun::left() const { return std::size_t(std::popcount(m_running)); }

std::vector<ScanViewController*> CleanRun::lists() const {
    std::vector<ScanViewController*> those;
    for (std::size_t i = 0; i < m_all.size(); ++i)
        if (takesPart(i)) those.push_back(m_all[i]);
    return those;
}

void CleanRun::promise(const CleanChoice& choice, const SpaceGain::FreeSpace& freeSpace) {
    std::set<std::string> folders;
    m_promised = 0;
    for (std::size_t i = 0; i < m_all.size(); ++i) {
        if (!takesPart(i)) continue;
        std::string_view last;  // rows of one folder follow each other
        for (const std::size_t place : m_all[i]->placesOf(choice.rows.at(i))) {
            const CleanRow& row = m_all[i]->listing().rows[place];
            addSaturating(m_promised, row.onDisk);
            const std::string_view folder = splitPath(row.path).folder;
            if (std::exchange(last, folder) != folder) folders.insert(folderOf(row.path));
        }
    }
    m_gain = std::make_shared<SpaceGain>(std::vector(folders.begin(), folders.end()), freeSpace);
}

RemovalOutcome CleanRun::outcome() const {
    RemovalOutcome all;
    for (const ScanViewController* const list : lists()) {
        if (!list->lastOutcome()) continue;
        const RemovalOutcome& each = *list->lastOutcome();
        all.removed += each.removed;
        all.kept += each.kept;
        all.failed += each.failed;
        all.failedEntries += each.failedEntries;
        all.lacksRights = all.lacksRights || each.lacksRights;
        all.stopped = all.stopped || each.stopped;
        all.stayed.insert(all.stayed.end(), each.stayed.begin(), each.stayed.end());
    }
    return all;
}

std::uint64_t CleanRun::cleanedBytes() const {
    std::uint64_t sum = 0;
    for (const ScanViewController* const list : lists()) addSaturating(sum, list->iCleanSize);
    return sum;
}

std::string CleanRun::current() const {
    for (const ScanViewController* const list : lists()) {
        const RemovalJob::Progress progress = list->cleanProgress();
        if (list->isCleaning() && !progress.isWaiting && !progress.current.empty())
            return progress.current;
    }
    return {};
}

bool CleanRun::isWaiting() const {
    const auto those = lists();
    return std::ranges::any_of(those, &ScanViewController::isCleaning) &&
           std::ranges::all_of(those, [](const ScanViewController* list) {
               return !list->isCleaning() || list->cleanProgress().isWaiting;
           });
}

}  // namespace orrinvale
