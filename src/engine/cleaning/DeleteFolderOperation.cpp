// The job tells of entries in the order of the list, and so of one folder after another.
#include "engine/cleaning/DeleteFolderOperation.h"

#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/QnAuthorization.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Notices of one turn of the main thread: a few milliseconds of them.
constexpr std::size_t mostNews = 1000;

CleanedFile cleaned(const std::string& path, std::optional<std::uint64_t> size) {
    return {path, size};
}

}  // namespace

DeleteFolderOperation::DeleteFolderOperation(std::vector<std::string> folders,
                                             std::vector<CleanRow> rows, CleanTaskParts parts,
                                             CleanPosts posts, SpaceGain::FreeSpace freeSpace)
    : folderPathArr(std::move(folders)),
      m_parts(std::move(parts)),
      m_posts(posts),
      m_list(std::make_shared<CleanList>(m_parts.clean, std::move(rows))),
      m_gain(std::make_shared<SpaceGain>(m_list->rows(), std::move(freeSpace))) {}

DeleteFolderOperation::~DeleteFolderOperation() = default;

void DeleteFolderOperation::main() {
    ZvBeginFastClean.post(*m_posts.center);
    if (isCancelled()) return ZvCleanCanceled.post(*m_posts.center);
    if (m_list->rows().empty()) return ZvFastCleanFinish.post(*m_posts.center);
    // The door is made on the removing thread, just before the first entry: the one place where a
    // slow disk may be asked for its free space.
    const auto makeDoor = [gain = m_gain, make = m_parts.makeDoor] {
        gain->begin();
        return std::make_unique<QuietDoor>(make());
    };
    m_job = std::make_unique<RemovalJob>(RemovalJob::Parts{.files = m_parts.clean.files,
                                                           .mainQueue = m_posts.mainQueue,
                                                           .makeDoor = makeDoor,
                                                           .stateFolder = m_parts.stateFolder},
                                         m_list, [this] { takeNews(); });
}

void DeleteFolderOperation::cancel() {
    CleanOperation::cancel();
    if (m_job != nullptr) m_job->stop();
}

void DeleteFolderOperation::takeNews() {
    RemovalJob::News news = m_job->takeNews(mostNews);
    for (const RemovalJob::Settled& each : news.settled) take(each);
    if (news.isMore) m_job->callAgain();
    if (!news.ending) return;
    m_outcome = *std::move(news.ending);
    end();
}

// A folder that is a row counts as its entry in the listing does, and not with what is in it.
void DeleteFolderOperation::take(const RemovalJob::Settled& settled) {
    const std::string path = m_list->path(settled.index);
    const auto identity = m_list->identity(settled.index);
    const auto size = identity ? std::optional(identity->size) : std::nullopt;
    if (std::string folder = folderAt(path); folder != m_folder) {
        endFolder();
        m_folder = std::move(folder);
    }
    if (settled.gone) ZvDeleteFileSuccess.post(*m_posts.center, cleaned(path, size));
    else if (settled.hasFailed) m_failed.push_back({path, size});
}

std::string DeleteFolderOperation::folderAt(const std::string& path) const {
    const auto holds = [&](const std::string& folder) { return isWithin(path, folder); };
    const auto found = std::ranges::find_if(folderPathArr, holds);
    return found != folderPathArr.end() ? *found : folderOf(path);
}

void DeleteFolderOperation::endFolder() {
    if (!cleanDeletableFolder()) cleanUndeletableFolder(m_folder);
    m_failed.clear();
}

// An entry that failed with the right is told as failed and as gone, one after the other: progress
// counts what was tried.
void DeleteFolderOperation::cleanUndeletableFolder(const std::string& folder) {
    if (isCancelled()) return;
    if (!QnAuthorization::shareQnAuthorization().isValidAuth) return notifyDeleteFailed(folder);
    for (const Failed& each : m_failed) {
        ZvDeleteFileFailed.post(*m_posts.center, cleaned(each.path, each.size));
        Log::line("Delete file failed: " + each.path);
        ZvDeleteFileSuccess.post(*m_posts.center, cleaned(each.path, each.size));
    }
}

void DeleteFolderOperation::notifyDeleteFailed(const std::string& folder) const {
    ZvDeleteFileFailed.post(*m_posts.center, cleaned(folder, std::nullopt));
}

void DeleteFolderOperation::end() {
    endFolder();
    if (isCancelled()) ZvCleanCanceled.post(*m_posts.center);
    else ZvFastCleanFinish.post(*m_posts.center);
}

bool DeleteFolderOperation::isWaiting() const {
    return m_job != nullptr && m_job->progress().isWaiting;
}

std::string DeleteFolderOperation::inHand() const {
    return m_job != nullptr ? m_job->progress().current : std::string();
}

bool DeleteFolderOperation::hasRemoved() const {
    return m_outcome.removed > 0 || (m_job != nullptr && m_list->goneBytes() > 0);
}

}  // namespace orrinvale
