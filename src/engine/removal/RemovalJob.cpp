// RemovalRun has the loop; here is the thread, and what it shares with the main one.
#include "engine/removal/RemovalJob.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/error.h"

namespace orrinvale {
namespace {

// Nobody reads names and sizes that change faster, and the list is not drawn again for each entry.
constexpr std::chrono::milliseconds newsInterval{50};

// An entry that a stop left has no failures.
bool hasFailed(const RemovalResult& result) {
    return std::ranges::any_of(result.failures,
                               [](const StayedEntry& each) { return !isByRule(each.kind); });
}

}  // namespace

/// Shared by the job and its thread, which outlives the job while it makes durable what went.
class RemovalJob::Work final : public std::enable_shared_from_this<Work> {
public:
    Work(Parts parts, std::shared_ptr<RemovalList> list, std::function<void()> onNews)
        : m_parts(std::move(parts)), m_list(std::move(list)), m_onNews(std::move(onNews)) {
        m_progress.of = m_list->size();
    }

    void start();
    void stop() { m_stop = true; }
    void letGo();
    void abandon();
    [[nodiscard]] Progress progress() const;
    [[nodiscard]] News takeNews(std::size_t most);
    void callAgain();

private:
    void run();
    void waiting(bool isWaiting);
    void begins(std::size_t index, const std::string& path, bool isFolder);
    void settled(std::size_t index, const RemovalResult& result);
    void end(RemovalOutcome outcome);
    void tell(std::unique_lock<std::mutex>& lock);
    void call();

    const Parts m_parts;
    const std::shared_ptr<RemovalList> m_list;
    const std::function<void()> m_onNews;  // called on the main thread alone
    std::atomic<bool> m_stop{false};

    mutable std::mutex m_mutex;
    std::condition_variable m_home;  // these are guarded by m_mutex
    Progress m_progress;
    std::vector<Settled> m_settled;
    std::optional<RemovalOutcome> m_outcome;
    bool m_isCalled = false;  // the main thread knows that there are news
    bool m_isAbandoned = false;
    std::chrono::steady_clock::time_point m_told;
};

void RemovalJob::Work::start() {
    try {
        std::thread([self = shared_from_this()] { self->run(); }).detach();
    } catch (const std::system_error& error) {  // no thread left for this user
        RemovalOutcome outcome;
        outcome.chosen = outcome.failed = m_list->size();
        if (outcome.chosen > 0)
            outcome.stayed.push_back(
                {m_list->path(0), systemError("start", {}, error.code().value()).reason()});
        end(std::move(outcome));
    }
}

void RemovalJob::Work::run() {
    const auto door = m_parts.makeDoor();
    RemovalRun removal(
        *m_parts.files, m_parts.stateFolder, *m_list, *door, m_stop,
        {.waiting = [this](bool isWaiting) { waiting(isWaiting); },
         .begins = [this](auto index, const auto& path,
                          bool isFolder) { begins(index, path, isFolder); },
         .settled = [this](auto index, const auto& result) { settled(index, result); }});
    end(removal.run());
    removal.settleJournal();
}

void RemovalJob::Work::waiting(bool isWaiting) {
    const std::lock_guard guard(m_mutex);
    m_progress.isWaiting = isWaiting;
    m_progress.of = m_list->size();
}

// A folder may take its time, so that what went before it, and that it has begun, is told first; so
// is the very first entry.
void RemovalJob::Work::begins(std::size_t index, const std::string& path, bool isFolder) {
    std::unique_lock lock(m_mutex);
    m_progress.current = path;
    if (isFolder || index == 0) tell(lock);
}

void RemovalJob::Work::settled(std::size_t index, const RemovalResult& result) {
    std::unique_lock lock(m_mutex);
    ++m_progress.done;
    m_settled.push_back({index, result.gone, !result.gone && result.removed > 0,
                         result.shared.has_value(), !result.gone && hasFailed(result),
                         result.changed});
    if (std::chrono::steady_clock::now() - m_told >= newsInterval) tell(lock);
}

void RemovalJob::Work::end(RemovalOutcome outcome) {
    std::unique_lock lock(m_mutex);
    m_outcome = std::move(outcome);
    m_home.notify_all();
    tell(lock);
}

void RemovalJob::Work::tell(std::unique_lock<std::mutex>& lock) {
    if (m_isCalled || m_isAbandoned) return;
    m_isCalled = true;
    m_told = std::chrono::steady_clock::now();
    call();
    lock.unlock();
}

// With the lock held, since the queue may go once the job is abandoned.
void RemovalJob::Work::call() {
    m_parts.mainQueue->async([work = weak_from_this()] {
        const auto self = work.lock();
        if (self == nullptr) return;
        {
            const std::lock_guard guard(self->m_mutex);
            if (self->m_isAbandoned) return;
        }
        self->m_onNews();
    });
}

void RemovalJob::Work::callAgain() {
    const std::lock_guard guard(m_mutex);
    m_isCalled = true;
    if (!m_isAbandoned) call();
}

void RemovalJob::Work::letGo() {
    m_stop = true;
    const std::lock_guard guard(m_mutex);
    m_isAbandoned = true;
}

void RemovalJob::Work::abandon() {
    letGo();
    std::unique_lock lock(m_mutex);
    m_home.wait(lock, [this] { return m_outcome.has_value(); });
}

RemovalJob::Progress RemovalJob::Work::progress() const {
    const std::lock_guard guard(m_mutex);
    return m_progress;
}

RemovalJob::News RemovalJob::Work::takeNews(std::size_t most) {
    News news;
    const std::lock_guard guard(m_mutex);
    m_isCalled = false;
    const auto end =
        m_settled.begin() + static_cast<std::ptrdiff_t>(std::min(most, m_settled.size()));
    news.settled.assign(m_settled.begin(), end);
    m_settled.erase(m_settled.begin(), end);
    news.isMore = !m_settled.empty();
    if (!news.isMore) news.ending = m_outcome;
    return news;
}

RemovalJob::RemovalJob(Parts parts, std::shared_ptr<RemovalList> list, std::function<void()> onNews)
    : m_work(std::make_shared<Work>(std::move(parts), std::move(list), std::move(onNews))) {
    m_work->start();
}

RemovalJob::~RemovalJob() { m_work->letGo(); }
void RemovalJob::stop() { m_work->stop(); }
void RemovalJob::abandon() { m_work->abandon(); }
RemovalJob::Progress RemovalJob::progress() const { return m_work->progress(); }
RemovalJob::News RemovalJob::takeNews(std::size_t most) { return m_work->takeNews(most); }
void RemovalJob::callAgain() { m_work->callAgain(); }

}  // namespace orrinvale
