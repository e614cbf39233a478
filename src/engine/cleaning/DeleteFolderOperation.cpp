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
      m_gain(std::make_shared<SpaceGain>(rows, std::move(freeSpace))),
      m_list(std::make_shared<CleanList>(m_parts.clean, std::move(rows), m_gain)) {}

DeleteFolderOperation::~DeleteFolderOperation() = default;

void DeleteFolderOperation::main() {
    ZvBeginFastClean.post(*m_posts.center);
    if (isCancelled()) return ZvCleanCanceled.post(*m_posts.center);
    if (m_list->rows().empty()) return ZvFastCleanFinish.post(*m_posts.center);
    const auto makeDoor = [make = m_parts.makeDoor] { return std::make_unique<QuietDoor>(make()); };
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
    if (m_hasEnded) return;
    const bool isThrough = m_taken == m_news.settled.size() && m_told == m_toTell.size();
    if (isThrough) {
        m_news = m_job->takeNews(mostNews);
        m_taken = 0;
    }
    std::size_t told = 0;
    while (told < mostNews && takeNext()) ++told;
    if (told < mostNews && m_news.ending) return end();
    // The job calls by itself only once it was asked for its news.
    if (told == mostNews || m_news.isMore || !isThrough) m_job->callAgain();
}

// False when all that is known by now is told.
bool DeleteFolderOperation::takeNext() {
    if (tellFailed()) return true;
    if (m_taken == m_news.settled.size()) {
        if (!m_news.ending || m_failed.empty()) return false;
        endFolder();
        return true;
    }
    const RemovalJob::Settled& next = m_news.settled[m_taken];
    const std::string path = m_list->path(next.index);
    if (std::string folder = folderAt(path); folder != m_folder) {
        endFolder();
        m_folder = std::move(folder);
        return true;
    }
    take(next, path);
    ++m_taken;
    return true;
}

// A folder that is a row counts as its entry in the listing does, and not with what is in it.
void DeleteFolderOperation::take(const RemovalJob::Settled& settled, const std::string& path) {
    const auto identity = m_list->identity(settled.index);
    const auto size = identity ? std::optional(identity->size) : std::nullopt;
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
    m_toTell = std::exchange(m_failed, {});
    m_told = 0;
}

// False when there is none.
bool DeleteFolderOperation::tellFailed() {
    if (isCancelled()) m_told = m_toTell.size();
    if (m_told == m_toTell.size()) return false;
    const Failed& each = m_toTell[m_told++];
    ZvDeleteFileFailed.post(*m_posts.center, cleaned(each.path, each.size));
    Log::line("Delete file failed: " + each.path);
    ZvDeleteFileSuccess.post(*m_posts.center, cleaned(each.path, each.size));
    return true;
}

void DeleteFolderOperation::notifyDeleteFailed(const std::string& folder) const {
    ZvDeleteFileFailed.post(*m_posts.center, cleaned(folder, std::nullopt));
}

void DeleteFolderOperation::end() {
    m_hasEnded = true;
    m_outcome = *std::move(m_news.ending);
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
