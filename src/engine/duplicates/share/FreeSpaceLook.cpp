// platform/freeSpace.h asks one file system.
#include "engine/duplicates/share/FreeSpaceLook.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/freeSpace.h"

namespace orrinvale {

struct FreeSpaceLook::Answer {
    std::mutex mutex;
    std::condition_variable came;
    bool isThere = false;  // as the next guarded by mutex
    std::optional<std::int64_t> free;

    void tell(std::optional<std::int64_t> told) {
        const std::lock_guard guard(mutex);
        free = told;
        isThere = true;
        came.notify_all();
    }
};

FreeSpaceLook::FreeSpaceLook(std::shared_ptr<const std::set<std::string>> folders, Ask ask)
    : m_answer(std::make_shared<Answer>()) {
    try {
        std::thread([answer = m_answer, folders = std::move(folders), ask = std::move(ask)] {
            answer->tell(ask(*folders));
        }).detach();
    } catch (const std::system_error&) {  // no thread left for this user
        m_answer->tell(std::nullopt);
    }
}

std::optional<std::int64_t> FreeSpaceLook::wait(std::chrono::milliseconds patience,
                                                const std::function<bool()>& isUnwanted) const {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds betweenLooks{20};
    const auto until = Clock::now() + patience;
    std::unique_lock lock(m_answer->mutex);
    while (!m_answer->isThere && !isUnwanted() && Clock::now() < until)
        m_answer->came.wait_for(lock, betweenLooks);
    return m_answer->isThere ? m_answer->free : std::nullopt;
}

std::optional<std::int64_t> freeSpaceBehind(const std::set<std::string>& folders) {
    std::map<std::string, std::uint64_t> spaces;
    for (const std::string& folder : folders) {
        const auto [place, isNew] = spaces.try_emplace(spaceOf(folder));
        if (!isNew) continue;
        const auto free = settledFreeSpace(folder);
        if (!free) return std::nullopt;
        place->second = *free;
    }
    std::int64_t sum = 0;
    for (const auto& [space, free] : spaces) sum += static_cast<std::int64_t>(free);
    return sum;
}

}  // namespace orrinvale
