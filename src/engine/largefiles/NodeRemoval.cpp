// NodeRemoval: see NodeRemoval.h. SafeRemoval does the work.
#include "engine/largefiles/NodeRemoval.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "engine/base/Log.h"
#include "engine/largefiles/SystemFolder.h"
#include "platform/error.h"

namespace orrinvale {
namespace {

// Nobody reads names that change faster, and the list is not drawn again for each of them.
constexpr std::chrono::milliseconds newsInterval{50};

}  // namespace

ProtectedPlaces protectedFromLargeFiles(const FileSystem& files, const std::vector<std::string>& ownFiles) {
    auto places = ProtectedPlaces::ofThisMachine(files, ownFiles);
    for (const std::string& path : SystemFolder::paths()) places.add(files, path, "part of the system");
    return places;
}

NodeRemoval::NodeRemoval(const ControllerParts& parts, std::shared_ptr<FileNodeTree> tree,
                         const std::vector<FileNode*>& nodes, std::function<void()> onNews)
    : m_files(*parts.files),
      m_mainQueue(*parts.mainQueue),
      m_ownFiles(parts.ownFiles),
      m_tree(std::move(tree)),
      m_onNews(std::make_shared<const std::function<void()>>(std::move(onNews))) {
    m_plan.reserve(nodes.size());
    for (FileNode* const node : nodes) m_plan.push_back({node, node->identity(), node->isDirectory()});
    m_result.chosen = m_plan.size();
    try {
        m_caller = std::thread([this] { callForNews(); });
        m_remover = std::thread([this] { removeAll(); });
    } catch (const std::system_error& error) {
        std::string path = m_plan.front().node->path();
        m_result.failed = m_result.chosen;
        m_result.failures.push_back({path, systemError("start", {}, error.code().value()).reason()});
        end(std::move(path));
        callAgain();
    }
}

NodeRemoval::~NodeRemoval() { abandon(); }

void NodeRemoval::abandon() {
    m_stop = true;
    {
        const std::lock_guard guard(m_mutex);
        m_isAbandoned = true;
    }
    m_changed.notify_all();
    if (m_remover.joinable()) m_remover.join();
    if (m_caller.joinable()) m_caller.join();
}

void NodeRemoval::removeAll() {
    const auto places = protectedFromLargeFiles(m_files, m_ownFiles);
    m_passing = m_files.devicesOfPassingInodes();
    const SafeRemoval removal(m_files, places, &m_tree->ownChanges());
    std::string path;
    for (std::size_t index = 0; index < m_plan.size(); ++index) {
        const Entry& entry = m_plan[index];
        path = entry.node->path();
        if (m_stop) {
            m_result.stopped = true;
            break;
        }
        notice(index, path);
        if (!settle(entry, path, removeOne(removal, entry, path))) break;
    }
    end(std::move(path));
}

RemovalResult NodeRemoval::removeOne(const SafeRemoval& removal, const Entry& entry, const std::string& path) {
    if (!entry.isFolder) return removal.remove(path, entry.identity, &m_stop);
    const bool inodesPass = std::ranges::count(m_passing, entry.identity.device) != 0;
    const SeenEntries seen = m_tree->seenBelow(*entry.node, inodesPass);
    return removal.remove(path, entry.identity, &m_stop, &seen);
}

// False when it was stopped: what is left of such a folder stays in the tree. Everything else leaves it, since a node whose entry is
// there in part shows sizes that are no longer true; the next scan brings it back.
bool NodeRemoval::settle(const Entry& entry, const std::string& path, RemovalResult removal) {
    m_result.failedEntries += removal.failed;
    for (auto& [failed, reason, kind] : removal.failures) {
        if (m_result.failures.size() >= RemovalResult::mostFailures) break;
        m_result.failures.push_back({std::move(failed), std::move(reason)}), static_cast<void>(kind);
    }
    m_result.stopped = removal.stopped && !removal.gone;
    if (removal.gone) ++m_result.gone;
    else if (removal.failed > 0) ++m_result.failed;
    if (m_result.stopped) return false;
    if (!removal.gone)
        Log::line(fmt::format("--delete file error ---::{} ({} entries are still there)", path, removal.failed));
    const std::lock_guard guard(m_mutex);
    m_leaving.push_back(entry.node);
    wakeCaller();
    return true;
}

// Of thousands of nodes hundreds share a percentage, and each of them is gone before its name could be read.
void NodeRemoval::notice(std::size_t index, const std::string& path) {
    const auto percent = m_plan.size() == 1 ? 30 : static_cast<std::int32_t>(index * 100 / m_plan.size());
    const auto now = std::chrono::steady_clock::now();
    if (percent == m_percent && now - m_noticed < newsInterval) return;
    m_percent = percent;
    m_noticed = now;
    const std::lock_guard guard(m_mutex);
    m_notices.push_back({percent, path});
    wakeCaller();
}

void NodeRemoval::end(std::string path) {
    const std::lock_guard guard(m_mutex);
    m_lastPath = std::move(path);
    m_isEnded = true;
    m_changed.notify_all();
}

// With the lock held.
void NodeRemoval::wakeCaller() {
    if (m_isResting && !m_isCalled) m_changed.notify_all();
}

void NodeRemoval::callForNews() {
    std::unique_lock lock(m_mutex);
    for (bool isLast = false; !isLast;) {
        m_isResting = true;
        m_changed.wait(lock, [this] { return m_isAbandoned || (hasNews() && !m_isCalled); });
        m_isResting = false;
        if (m_isAbandoned) return;
        isLast = m_isEnded;
        m_isCalled = true;
        lock.unlock();
        call();
        lock.lock();
        m_changed.wait_for(lock, newsInterval, [this] { return m_isAbandoned || m_isEnded; });
    }
}

void NodeRemoval::call() {
    m_mainQueue.async([onNews = std::weak_ptr(m_onNews)] {
        if (const auto function = onNews.lock()) (*function)();
    });
}

void NodeRemoval::callAgain() {
    {
        const std::lock_guard guard(m_mutex);
        m_isCalled = true;
    }
    call();
}

NodeRemoval::News NodeRemoval::takeNews(std::size_t mostNodes) {
    News news;
    const std::lock_guard guard(m_mutex);
    m_isCalled = false;
    const auto end = m_leaving.begin() + static_cast<std::ptrdiff_t>(std::min(mostNodes, m_leaving.size()));
    news.leaving.assign(m_leaving.begin(), end);
    m_leaving.erase(m_leaving.begin(), end);
    news.isMore = !m_leaving.empty();
    if (!news.isMore) {
        news.notices = std::exchange(m_notices, {});
        if (m_isEnded) {
            news.ending = m_result;
            news.lastPath = m_lastPath;
        }
    }
    wakeCaller();
    return news;
}

}  // namespace orrinvale
