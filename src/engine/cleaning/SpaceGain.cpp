// See SpaceGain.h.
#include "engine/cleaning/SpaceGain.h"

#include <chrono>
#include <future>
#include <map>
#include <set>
#include <system_error>
#include <thread>
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

namespace {

// A disk tells its free space once it has written what is on its way, which took half a minute
// beside a large build. Who cleans does not wait for a figure that long.
constexpr std::chrono::seconds longestSettling{2};

using FreeOfAll = std::optional<std::int64_t>;

FreeOfAll freeOf(const std::vector<std::string>& folders, const SpaceGain::FreeSpace& freeSpace) {
    std::int64_t sum = 0;
    for (const std::string& folder : folders) {
        const auto free = freeSpace(folder);
        if (!free) return std::nullopt;
        sum += static_cast<std::int64_t>(*free);
    }
    return sum;
}

// Nothing where it takes longer: then the thread ends by itself.
FreeOfAll freeInTime(const std::vector<std::string>& folders,
                     const SpaceGain::FreeSpace& freeSpace) {
    std::packaged_task<FreeOfAll()> ask(
        [folders, freeSpace] { return freeOf(folders, freeSpace); });
    auto answer = ask.get_future();
    try {
        std::thread(std::move(ask)).detach();
    } catch (const std::system_error&) {  // no thread left for this user
        return std::nullopt;
    }
    if (answer.wait_for(longestSettling) != std::future_status::ready) return std::nullopt;
    return answer.get();
}

}  // namespace

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
    m_before = freeInTime(m_folders, m_freeSpace);
}

std::optional<std::int64_t> SpaceGain::freeNow() const { return freeOf(m_folders, m_freeSpace); }

std::optional<std::int64_t> SpaceGain::gained() const {
    const std::lock_guard lock(m_mutex);
    const auto after = m_before ? freeNow() : std::nullopt;
    return after ? std::optional(*after - *m_before) : std::nullopt;
}

}  // namespace orrinvale
