#include "cli/RemovalRun.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/WaitingQueue.h"
#include "engine/settings/UserFolders.h"

namespace orrinvale::cli {

RemovalRun runRemoval(const FileSystem& files, const std::shared_ptr<RemovalList>& list,
                      std::function<std::unique_ptr<RemovalDoor>()> makeDoor, Telling telling) {
    WaitingQueue queue;
    std::optional<RemovalOutcome> outcome;
    std::optional<RemovalJob> job;
    const auto takeNews = [&] {
        auto news = job->takeNews();
        if (news.ending) outcome = std::move(news.ending);
    };
    job.emplace(RemovalJob::Parts{.files = &files,
                                  .mainQueue = &queue,
                                  .makeDoor = std::move(makeDoor),
                                  .stateFolder = userStateFolder()},
                list, takeNews);
    const auto progress = [&job] {
        const auto now = job->progress();
        return fmt::format("{} of {}  {}", now.done, now.of, printable(now.current));
    };
    const SearchWatch watch([&job] { job->stop(); }, progress, telling);
    queue.runUntil([&outcome] { return outcome.has_value(); });
    return {*std::move(outcome), watch.ending()};
}

}  // namespace orrinvale::cli
