// UsageWalk tells what it finds from many threads; here it waits, and comes into the tree on the
// thread that owns that.
#include "engine/diskusage/DiskUsageScan.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/diskusage/UsageSelection.h"
#include "engine/diskusage/UsageWalk.h"

namespace orrinvale {
namespace {

using namespace std::chrono_literals;

constexpr auto betweenNews = 50ms;
// After a stop; a disk that does not answer keeps its threads longer than that.
constexpr auto patience = 900ms;

// Of a folder that a scan anew did not come to: what it held before is no longer true.
UsageResult uncounted() {
    return {.contents = {.marks = FSNode::CutWithin},
            .marks = FSNode::Undecided | FSNode::CutWithin};
}

}  // namespace

/// Shared by its owner, the walking threads and the work that waits in the main queue.
class DiskUsageScan::Scan final : public std::enable_shared_from_this<Scan>, private UsageSink {
public:
    Scan(const UsageScanParts& parts, std::shared_ptr<FSNodeTree> tree, UsageOptions options)
        : m_files(*parts.files),
          m_tree(std::move(tree)),
          m_options(options),
          m_queue(parts.mainQueue),
          m_hasQueue(parts.mainQueue != nullptr),
          m_news(parts.news) {
        m_tree->keep(m_storage);
    }

    void start(std::vector<FSNode*> again);
    void stop();
    void abandon();
    void waitForEnd();
    [[nodiscard]] bool isEnded() const { return m_isEnded; }
    [[nodiscard]] const UsageCounts& counts() const { return *m_counts; }
    [[nodiscard]] const SkipList& skipped() const { return *m_skipped; }
    [[nodiscard]] std::shared_ptr<ScanRecord> record();

private:
    struct Finished {
        FSNode* node;
        UsageResult found;
        bool stays;
    };
    /// What waits for the thread that owns the tree.
    struct Waiting {
        std::optional<std::span<FSNode*>> level;
        std::vector<CountedTop*> grown;
        std::vector<Finished> finished;
        std::optional<UsageResult> whole;
        [[nodiscard]] bool isEmpty() const {
            return !level && grown.empty() && finished.empty() && !whole;
        }
    };

    void levelStands(std::span<FSNode*> level) override;
    void grew(CountedTop& top) override;
    void finished(FSNode& node, const UsageResult& found, bool stays) override;

    void walk(const std::vector<FSNode*>& again);
    void walkAgain(UsageErrand errand, const std::vector<FSNode*>& again);
    void keepRecord(const UsageWalk& walk, const UsageResult& whole,
                    std::shared_ptr<UsageStorage> storage);
    void walked();
    void ask(bool atOnce);
    void takeTurn();
    void take(Waiting waiting, UsageNews& news);
    void putAgain(const std::vector<Finished>& done, UsageNews& news);
    void end(UsageNews& news);

    const FileSystem& m_files;
    const std::shared_ptr<FSNodeTree> m_tree;
    const UsageOptions m_options;
    const std::shared_ptr<UsageCounts> m_counts = std::make_shared<UsageCounts>();
    const std::shared_ptr<SkipList> m_skipped = std::make_shared<SkipList>();
    const std::shared_ptr<UsageStorage> m_storage = std::make_shared<UsageStorage>();

    std::mutex m_mutex;  // guards what follows
    Waiting m_waiting;
    MainQueue* m_queue;        // null once nothing may be told any more: it may be gone then
    bool m_isAsked = false;    // a turn of the main thread is under way
    bool m_isHome = false;     // all walking threads are through
    bool m_isGivenUp = false;  // a stop does not wait for them any longer
    std::chrono::steady_clock::time_point m_lastAsked;
    std::condition_variable m_home;
    std::vector<std::unique_ptr<CountedTop>> m_tops;  // kept for what waits
    std::shared_ptr<ScanRecord> m_record;

    const std::int64_t m_started = std::chrono::duration_cast<std::chrono::seconds>(
                                       std::chrono::system_clock::now().time_since_epoch())
                                       .count();
    const bool m_hasQueue;
    std::atomic<bool> m_isEnded{false};
    bool m_isAgain = false;
    // Of the thread that owns the tree.
    bool m_hasLevel = false;
    bool m_hasWhole = false;
    std::vector<Finished> m_early;  // was told before the level
    std::set<FSNode*> m_toCome;     // of a scan anew: folders that are not in the tree anew yet
    std::function<void(const UsageNews&)> m_news;
};

void DiskUsageScan::Scan::start(std::vector<FSNode*> again) {
    m_isAgain = !again.empty();
    m_toCome.insert(again.begin(), again.end());
    try {
        std::thread([self = shared_from_this(), again = std::move(again)] {
            self->walk(again);
        }).detach();
    } catch (const std::system_error&) {  // no thread left for this user
        m_skipped->add(systemError("walk", m_tree->rootPath(), EAGAIN));
        walked();
    }
}

void DiskUsageScan::Scan::walk(const std::vector<FSNode*>& again) {
    UsageErrand errand;
    errand.files = &m_files;
    errand.tree = m_tree.get();
    errand.storage = m_storage.get();
    errand.counts = m_counts.get();
    errand.skipped = m_skipped.get();
    errand.limit = m_options.limit;
    errand.allFileSystems = m_options.allFileSystems;
    if (m_isAgain) {
        errand.own = m_tree->ownChanges().get();
        walkAgain(errand, again);
    } else {
        if (m_hasQueue) errand.sink = this;
        const auto records = m_options.records ? std::make_shared<UsageStorage>() : nullptr;
        errand.records = records.get();
        UsageWalk walk(errand);
        const UsageResult whole = walk.run(&m_tree->root(), m_tree->rootPath(), Links::Follow);
        const std::lock_guard lock(m_mutex);
        m_tops = walk.takeTops();
        m_waiting.whole = whole;
        if (records != nullptr) keepRecord(walk, whole, records);
    }
    walked();
}

// With the lock held.
void DiskUsageScan::Scan::keepRecord(const UsageWalk& walk, const UsageResult& whole,
                                     std::shared_ptr<UsageStorage> storage) {
    if (m_counts->stop || (whole.contents.marks & FSNode::Unread) != 0) return;
    auto record = std::make_shared<ScanRecord>();
    record->facts = {.root = m_tree->rootPath(),
                     .time = m_started,
                     .entries = m_counts->found,
                     .size = whole.size,
                     .onDisk = whole.onDisk,
                     .marks = static_cast<std::uint8_t>(whole.marks & ~FSNode::LeftOutWithin),
                     .allFileSystems = m_options.allFileSystems,
                     .volume = walk.volume()};
    record->first = walk.recorded();
    record->storage = std::move(storage);
    m_record = std::move(record);
}

std::shared_ptr<ScanRecord> DiskUsageScan::Scan::record() {
    const std::lock_guard lock(m_mutex);
    return m_isEnded && !m_counts->stop ? m_record : nullptr;
}

void DiskUsageScan::Scan::walkAgain(UsageErrand errand, const std::vector<FSNode*>& again) {
    for (FSNode* const folder : again) {
        if (m_counts->stop) return;
        m_counts->all = -1;
        m_counts->finished = 0;
        UsageWalk walk(errand);
        const bool isRoot = folder->father() == nullptr;
        const UsageResult found =
            walk.run(folder, folder->path(), isRoot ? Links::Follow : Links::Keep);
        // A stop may come before the first entry was looked at.
        if (m_counts->stop && found.contents.childCount == 0 && !found.isGone) return;
        const std::lock_guard lock(m_mutex);
        m_waiting.finished.push_back({folder, found, !found.isGone});
        ask(false);
    }
}

void DiskUsageScan::Scan::walked() {
    const std::lock_guard lock(m_mutex);
    m_isHome = true;
    ask(true);
    m_home.notify_all();
}

void DiskUsageScan::Scan::levelStands(std::span<FSNode*> level) {
    const std::lock_guard lock(m_mutex);
    m_waiting.level = level;
    ask(true);
}

void DiskUsageScan::Scan::grew(CountedTop& top) {
    if (top.isDirty.exchange(true)) return;
    const std::lock_guard lock(m_mutex);
    m_waiting.grown.push_back(&top);
    ask(false);
}

void DiskUsageScan::Scan::finished(FSNode& node, const UsageResult& found, bool stays) {
    const std::lock_guard lock(m_mutex);
    m_waiting.finished.push_back({&node, found, stays});
    ask(false);
}

// With the lock held, since the queue may go as soon as it was taken away. What comes too early
// waits for the next call; the end comes in any case.
void DiskUsageScan::Scan::ask(bool atOnce) {
    if (m_queue == nullptr || m_isGivenUp || m_isAsked) return;
    const auto now = std::chrono::steady_clock::now();
    if (!atOnce && now - m_lastAsked < betweenNews) return;
    m_isAsked = true;
    m_lastAsked = now;
    m_queue->async([self = shared_from_this()] { self->takeTurn(); });
}

void DiskUsageScan::Scan::takeTurn() {
    if (m_isEnded) return;
    Waiting waiting;
    bool isLast = false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_queue == nullptr) return;
        m_isAsked = false;
        waiting = std::exchange(m_waiting, {});
        isLast = m_isHome || m_isGivenUp;
    }
    UsageNews news;
    take(std::move(waiting), news);
    if (isLast) end(news);
    if (m_news) m_news(news);
}

void DiskUsageScan::Scan::take(Waiting waiting, UsageNews& news) {
    if (waiting.level) {
        m_tree->putLevel(*waiting.level);
        m_hasLevel = news.levelStands = true;
    }
    for (CountedTop* const top : waiting.grown) {
        top->isDirty = false;
        if (!m_hasLevel) continue;
        m_tree->countUp(*top->node, top->size);
        news.counted.push_back(top->node);
    }
    std::vector<Finished> done = std::exchange(m_early, {});
    done.insert(done.end(), waiting.finished.begin(), waiting.finished.end());
    if (m_isAgain) return putAgain(done, news);
    if (!m_hasLevel) m_early.swap(done);
    for (const Finished& each : done) {
        m_tree->countUp(*each.node, each.found.size);
        m_tree->put(*each.node, each.found);
        (each.stays ? news.counted : news.left).push_back(each.node);
    }
    if (!news.left.empty()) m_tree->leaveOut(news.left);
    if (waiting.whole) m_tree->putWhole(*waiting.whole);
    m_hasWhole = m_hasWhole || waiting.whole;
}

// States and marks of a folder above are worked out once for all that came in it.
void DiskUsageScan::Scan::putAgain(const std::vector<Finished>& done, UsageNews& news) {
    std::set<FSNode*> fathers;
    for (const Finished& each : done)
        if (FSNode* const father = each.node->father(); father != nullptr)
            if (fathers.insert(father).second) passStatesDown(*father);
    std::vector<FSNode*> gone;
    for (const Finished& each : done) {
        m_toCome.erase(each.node);
        if (!each.stays && each.node->father() != nullptr) {
            gone.push_back(each.node);
            continue;
        }
        m_tree->put(*each.node, each.found);
        each.node->setIsButtonState(FSNode::NotSelected);
        news.counted.push_back(each.node);
    }
    m_tree->takeOut(gone);
    news.left.insert(news.left.end(), gone.begin(), gone.end());
    for (FSNode* const father : fathers) {
        FSNodeTree::settleMarks(*father);
        setAllSelectListsStae(*father);
    }
}

// Once. The tree is not touched any more.
void DiskUsageScan::Scan::end(UsageNews& news) {
    std::vector<Finished> cut;
    for (FSNode* const folder : m_toCome) cut.push_back({folder, uncounted(), true});
    if (m_isAgain) putAgain(cut, news);
    else if (!m_hasWhole) m_tree->closeLevel();
    news.ended = true;
    m_isEnded = true;
}

void DiskUsageScan::Scan::stop() {
    if (m_isEnded || m_counts->stop.exchange(true) || !m_hasQueue) return;
    const auto giveUp = [self = shared_from_this()] {
        std::unique_lock lock(self->m_mutex);
        if (self->m_home.wait_for(lock, patience, [&] { return self->m_isHome; })) return;
        self->ask(true);
        self->m_isGivenUp = true;
    };
    try {
        std::thread(giveUp).detach();
    } catch (const std::system_error&) {  // then the end comes when the walk does
        return;
    }
}

void DiskUsageScan::Scan::abandon() {
    m_counts->stop = true;
    m_news = nullptr;
    const std::lock_guard lock(m_mutex);
    m_queue = nullptr;
}

void DiskUsageScan::Scan::waitForEnd() {
    Waiting waiting;
    {
        std::unique_lock lock(m_mutex);
        m_home.wait(lock, [this] { return m_isHome; });
        waiting = std::exchange(m_waiting, {});
    }
    if (m_isEnded) return;
    UsageNews news;
    take(std::move(waiting), news);
    end(news);
    if (m_news) m_news(news);
}

DiskUsageScan::DiskUsageScan(UsageScanParts parts) : m_parts(std::move(parts)) {}

DiskUsageScan::~DiskUsageScan() {
    if (m_scan == nullptr) return;
    m_scan->abandon();
    if (m_parts.mainQueue == nullptr) m_scan->waitForEnd();
}

void DiskUsageScan::start(std::shared_ptr<FSNodeTree> tree, UsageOptions options) {
    m_scan = std::make_shared<Scan>(m_parts, std::move(tree), options);
    m_scan->start({});
}

void DiskUsageScan::scanAgain(std::shared_ptr<FSNodeTree> tree, std::vector<FSNode*> folders,
                              UsageOptions options) {
    m_scan = std::make_shared<Scan>(m_parts, std::move(tree), options);
    m_scan->start(std::move(folders));
}

void DiskUsageScan::stopScan() {
    if (m_scan != nullptr) m_scan->stop();
}

Progress DiskUsageScan::progress() const {
    if (m_scan == nullptr) return {};
    const std::int64_t all = m_scan->counts().all;
    return {m_scan->counts().finished, all < 1 ? 0 : static_cast<std::uint64_t>(all), {}};
}

std::uint64_t DiskUsageScan::foundCount() const {
    return m_scan == nullptr ? 0 : m_scan->counts().found.load();
}

bool DiskUsageScan::isEnded() const { return m_scan != nullptr && m_scan->isEnded(); }

bool DiskUsageScan::wasStopped() const { return m_scan != nullptr && m_scan->counts().stop; }

void DiskUsageScan::waitForEnd() {
    if (m_scan != nullptr) m_scan->waitForEnd();
}

std::shared_ptr<ScanRecord> DiskUsageScan::record() const {
    return m_scan == nullptr ? nullptr : m_scan->record();
}

std::vector<Error> DiskUsageScan::skipped() const {
    return m_scan == nullptr ? std::vector<Error>() : m_scan->skipped().entries();
}

std::uint64_t FSNode::getFistListTree(const FileSystem& files, FSNode& root, std::uint64_t limit) {
    FSNodeTree& tree = FSNodeTree::of(root);
    const auto storage = std::make_shared<UsageStorage>();
    tree.keep(storage);
    UsageCounts counts;
    UsageErrand errand;
    errand.files = &files;
    errand.tree = &tree;
    errand.storage = storage.get();
    errand.counts = &counts;
    errand.limit = limit;
    UsageWalk walk(errand);
    const UsageResult found = walk.run(&root, root.path(), Links::Keep);
    tree.put(root, found);
    return found.size;
}

}  // namespace orrinvale
