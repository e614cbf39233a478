// See SpaceGain.h.
#include "engine/cleaning/SpaceGain.h"

#include <map>
#include <utility>

#include "platform/paths.h"

namespace orrinvale {

SpaceGain::SpaceGain(const std::vector<CleanRow>& rows, FreeSpace freeSpace)
    : m_freeSpace(std::move(freeSpace)) {
    std::map<std::uint64_t, std::string> byDevice;
    for (const CleanRow& row : rows) byDevice.try_emplace(row.identity.device, folderOf(row.path));
    for (auto& [device, folder] : byDevice) m_folders.push_back(std::move(folder));
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
    const auto after = m_before ? freeNow() : std::nullopt;
    return after ? std::optional(*after - *m_before) : std::nullopt;
}

}  // namespace orrinvale
