// See SpaceGain.h.
#include "engine/cleaning/SpaceGain.h"

#include <map>
#include <set>
#include <utility>

#include "platform/paths.h"

namespace orrinvale {

SpaceGain::SpaceGain(const std::vector<CleanRow>& rows, FreeSpace freeSpace)
    : m_freeSpace(std::move(freeSpace)) {
    std::set<std::string> folders;
    std::string_view last;  // rows of one folder follow each other
    for (const CleanRow& row : rows) {
        const std::string_view folder = splitPath(row.path).folder;
        if (std::exchange(last, folder) != folder) folders.insert(folderOf(row.path));
    }
    m_folders.assign(folders.begin(), folders.end());
}

void SpaceGain::begin() {
    const std::lock_guard lock(m_mutex);
    if (std::exchange(m_isBegun, true)) return;
    std::map<std::string, std::string> bySpace;
    for (std::string& folder : m_folders) {
        std::string space = spaceOf(folder);
        bySpace.try_emplace(std::move(space), std::move(folder));
    }
    m_folders.clear();
    for (auto& [space, folder] : bySpace) m_folders.push_back(std::move(folder));
    m_before = freeNow();
}

std::optional<std::int64_t> SpaceGain::freeNow() const {
    std::int64_t sum = 0;
    for (const std::string& folder : m_folders) {
        const auto free = m_freeSpace(folder);
        if (!free) return std::nullopt;
        sum += static_cast<std::int64_t>(*free);
    }
    return sum;
}

std::optional<std::int64_t> SpaceGain::gained() const {
    const std::lock_guard lock(m_mutex);
    const auto after = m_before ? freeNow() : std::nullopt;
    return after ? std::optional(*after - *m_before) : std::nullopt;
}

}  // namespace orrinvale
