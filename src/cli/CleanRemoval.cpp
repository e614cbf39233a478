// What is gained is measured and not added up: the free space of each file system before and after.
#include "cli/CleanRemoval.h"

#include <fmt/format.h>

#include <algorithm>
#include <future>
#include <map>
#include <optional>
#include <utility>

#include "cli/SearchWatch.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/CleanList.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalJob.h"
#include "engine/settings/UserFolders.h"
#include "platform/freeSpace.h"
#include "platform/linux/ProgramFiles.h"
#include "platform/paths.h"

namespace orrinvale::cli {
namespace {

// One folder for each file system that the rows lie on.
std::vector<std::string> groundsOf(const std::vector<CleanRow>& rows) {
    std::map<std::uint64_t, std::string> byDevice;
    for (const CleanRow& row : rows) byDevice.try_emplace(row.identity.device, folderOf(row.path));
    std::vector<std::string> out;
    for (auto& [device, folder] : byDevice) out.push_back(std::move(folder));
    return out;
}

std::optional<std::int64_t> freeSpaceOf(const std::vector<std::string>& folders) {
    std::int64_t sum = 0;
    for (const std::string& folder : folders) {
        const auto free = settledFreeSpace(folder);
        if (!free) return std::nullopt;
        sum += static_cast<std::int64_t>(*free);
    }
    return sum;
}

std::vector<CleanRow> rowsOf(const std::vector<ScannedCategory>& scanned) {
    std::vector<CleanRow> rows;
    for (const ScannedCategory& each : scanned)
        rows.insert(rows.end(), each.listing.rows.begin(), each.listing.rows.end());
    return rows;
}

}  // namespace

void WaitingQueue::async(std::function<void()> work) {
    {
        const std::lock_guard lock(m_mutex);
        m_work.push_back(std::move(work));
    }
    m_come.notify_one();
}

bool WaitingQueue::sync(std::function<void()> work) {
    if (std::this_thread::get_id() == m_owner) {
        work();
        return true;
    }
    std::promise<void> done;
    async([&] {
        work();
        done.set_value();
    });
    done.get_future().wait();
    return true;
}

void WaitingQueue::runUntil(const std::function<bool()>& isDone) {
    while (!isDone()) {
        std::unique_lock lock(m_mutex);
        m_come.wait(lock, [this] { return !m_work.empty(); });
        const std::function<void()> work = std::move(m_work.front());
        m_work.pop_front();
        lock.unlock();
        work();
    }
}

CleanRemovalResult removeRows(const CleanParts& parts, const std::vector<ScannedCategory>& scanned,
                              Telling telling) {
    CleanRemovalResult result;
    const auto list = std::make_shared<CleanList>(parts, rowsOf(scanned));
    for (const CleanRow& row : list->rows()) addSaturating(result.outcome.promised, row.onDisk);
    const auto grounds = groundsOf(list->rows());
    const auto before = freeSpaceOf(grounds);
    WaitingQueue queue;
    std::optional<RemovalOutcome> ending;
    {
        std::optional<RemovalJob> job;
        const auto takeNews = [&] {
            auto news = job->takeNews();
            if (news.ending) ending = std::move(news.ending);
        };
        job.emplace(
            RemovalJob::Parts{
                .files = parts.files,
                .mainQueue = &queue,
                .makeDoor =
                    [files = parts.files] {
                        return std::make_unique<QuietDoor>(std::make_unique<PlainDoor>(
                            *files, ProtectedPlaces::ofThisMachine(*files, programFiles())));
                    },
                .stateFolder = userStateFolder()},
            list, takeNews);
        const SearchWatch watch([&job] { job->stop(); },
                                [&job] {
                                    const auto progress = job->progress();
                                    return fmt::format("{} of {}  {}", progress.done, progress.of,
                                                       progress.current);
                                },
                                telling);
        queue.runUntil([&ending] { return ending.has_value(); });
        result.ending = watch.ending();
    }
    for (std::size_t row = 0; row < list->rows().size(); ++row)
        if (list->isDone(row)) result.outcome.removed.push_back(list->rows()[row].path);
    result.outcome.failed = std::move(ending->stayed);
    result.goneBytes = list->goneBytes();
    // Of many that stay the ending tells the first; the list has seen all that it came to.
    result.isWhole = !list->hasFailed() &&
                     std::ranges::all_of(result.outcome.failed, [](const StayedEntry& each) {
                         return CleanList::isByRule(each.kind);
                     });
    if (!result.outcome.removed.empty() || result.goneBytes > 0)
        static_cast<void>(
            ParseFileLog(userStateFolder()).setSize(result.goneBytes, FileLog().date.value()));
    const auto after = freeSpaceOf(grounds);
    if (before && after) result.outcome.gained = *after - *before;
    return result;
}

}  // namespace orrinvale::cli
