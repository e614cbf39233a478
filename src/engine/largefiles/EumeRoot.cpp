// NodeTreeOperator walks, TreeGrowth makes the tree; here is what lies between them: the chunks
// that wait, and who takes them in when.
#include "engine/largefiles/EumeRoot.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/SkipList.h"
#include "engine/largefiles/NodeTreeOperator.h"
#include "engine/largefiles/TreeGrowth.h"

namespace orrinvale {
namespace {

// Of the 16 ms that a turn may take, the rest is for bringing sizes up to date and for the chunk in
// hand.
constexpr std::chrono::milliseconds turn{10};

// Entries directly in chosen folders that were finished since the program began. Nobody sets it
// back, so that the end of a scan is told only as long as it was the first, or all before it found
// nothing.
std::atomic<std::int32_t> s_finishedEntries{0};

}  // namespace

/// Shared by its owner, the walking threads and the work that waits in the main queue.
class EumeRoot::Scan final : public std::enable_shared_from_this<Scan> {
public:
    Scan(const ScanParts& parts, std::shared_ptr<FileNodeTree> tree, FileNode& start)
        : m_files(*parts.files),
          m_queue(parts.mainQueue),
          m_isOfAll(&start == &tree->root()),
          m_hasQueue(parts.mainQueue != nullptr),
          m_grown(parts.grown) {
        tree->keep(m_arenas);
        m_growth = std::make_unique<TreeGrowth>(std::move(tree), start, m_counts);
    }
    ~Scan() { drop(); }

    void start(const std::string& path);
    void stop();
    void waitForEnd();
    [[nodiscard]] bool isEnded() const { return m_isEnded; }
    [[nodiscard]] bool hasQueue() const { return m_hasQueue; }
    [[nodiscard]] const ScanCounts& counts() const { return *m_counts; }
    [[nodiscard]] const SkipList& skipped() const { return m_skipped; }

private:
    void walk(const std::string& path);
    void walked();
    void receive(FoundChunk&& chunk);
    void ask();
    void takeTurn();
    void emptyFirst();
    void takeAll();
    bool takeNext();
    void drop();
    void end();

    const FileSystem& m_files;
    const std::shared_ptr<ScanCounts> m_counts = std::make_shared<ScanCounts>();
    const NodeTreeOperator::Arenas m_arenas = NodeTreeOperator::makeArenas();
    SkipList m_skipped;

    std::mutex m_mutex;  // guards what follows
    std::vector<FoundChunk> m_waiting;
    MainQueue* m_queue;         // null from a stop on: it may be gone then
    bool m_isAsked = false;     // somebody takes in what waits, or will
    bool m_isHome = false;      // all walking threads are through
    bool m_isDropping = false;  // nothing is taken in any more
    std::condition_variable m_home;

    const bool m_isOfAll;  // not of a part of the tree, anew
    const bool m_hasQueue;
    std::atomic<bool> m_isEnded{false};

    // Of the thread that owns the tree; without a queue of whoever set m_isAsked.
    std::unique_ptr<TreeGrowth> m_growth;
    std::vector<FoundChunk> m_inHand;
    std::size_t m_next = 0;         // in m_inHand
    bool m_isEmptied = false;       // of a scan anew: the folder is
    std::function<void()> m_grown;  // empty from a stop on
};

void EumeRoot::Scan::start(const std::string& path) {
    try {
        std::thread([self = shared_from_this(), path] { self->walk(path); }).detach();
    } catch (const std::system_error&) {  // no thread left for this user
        m_skipped.add(systemError("walk", path, EAGAIN));
        walked();
    }
}

void EumeRoot::Scan::walk(const std::string& path) {
    NodeTreeOperator walker(m_files, m_counts, m_skipped, m_arenas,
                            [this](FoundChunk&& chunk) { receive(std::move(chunk)); });
    walker.eumeAllFilesWithPath(path);
    walked();
}

void EumeRoot::Scan::walked() {
    if (!m_hasQueue) end();
    const std::lock_guard lock(m_mutex);
    m_isHome = true;
    if (m_hasQueue && !m_isAsked) ask();
    m_home.notify_all();
}

void EumeRoot::Scan::receive(FoundChunk&& chunk) {
    std::unique_lock lock(m_mutex);
    if (m_isDropping) {
        lock.unlock();
        NodeTreeOperator::releaseFolders(chunk);
        return;
    }
    m_waiting.push_back(std::move(chunk));
    if (m_isAsked) return;
    m_isAsked = true;
    if (m_hasQueue) {
        ask();
        return;
    }
    lock.unlock();
    takeAll();
}

// With the lock held, since the queue may go as soon as a stop has taken it away.
void EumeRoot::Scan::ask() {
    m_isAsked = true;
    if (m_queue != nullptr) m_queue->async([self = shared_from_this()] { self->takeTurn(); });
}

void EumeRoot::Scan::takeTurn() {
    if (m_isEnded) return;
    emptyFirst();
    const auto until = std::chrono::steady_clock::now() + turn;
    while (takeNext() && std::chrono::steady_clock::now() < until) {}
    m_growth->passUp();
    if (m_grown) m_grown();
    {
        const std::lock_guard lock(m_mutex);
        m_isAsked = false;
        if (m_next < m_inHand.size() || !m_waiting.empty()) {
            ask();
            return;
        }
        if (!m_isHome) return;
    }
    end();
}

// Not before there is something to take its place, so that the folder does not show nothing in
// between.
void EumeRoot::Scan::emptyFirst() {
    if (!m_isOfAll && !std::exchange(m_isEmptied, true)) m_growth->startAnew();
}

// Without a queue one of the walking threads takes in what all of them found, and none waits for
// it.
void EumeRoot::Scan::takeAll() {
    while (takeNext()) {}
}

// False when nothing waits.
bool EumeRoot::Scan::takeNext() {
    if (m_next == m_inHand.size()) {
        m_inHand.clear();
        m_next = 0;
        const std::lock_guard lock(m_mutex);
        m_inHand.swap(m_waiting);
        if (m_inHand.empty() && !m_hasQueue) m_isAsked = false;
        if (m_inHand.empty()) return false;
    }
    m_growth->take(std::exchange(m_inHand[m_next++], {}));
    return true;
}

void EumeRoot::Scan::stop() {
    m_counts->stop = true;
    m_grown = nullptr;
    if (!m_hasQueue || m_isEnded) return;
    drop();
    end();
}

void EumeRoot::Scan::drop() {
    std::vector<FoundChunk> dropped;
    {
        const std::lock_guard lock(m_mutex);
        m_isDropping = true;
        m_queue = nullptr;
        dropped.swap(m_waiting);
    }
    for (const FoundChunk& chunk : dropped) NodeTreeOperator::releaseFolders(chunk);
    for (; m_next < m_inHand.size(); ++m_next) NodeTreeOperator::releaseFolders(m_inHand[m_next]);
}

// Once. The tree is not touched any more, and let go of.
void EumeRoot::Scan::end() {
    m_growth->passUp();
    m_growth.reset();
    m_isEnded = true;
    if (!m_isOfAll) return;
    const auto finished = static_cast<std::int32_t>(m_counts->finished);
    const std::int32_t finishedEver = s_finishedEntries.fetch_add(finished) + finished;
    if (m_counts->all >= 0 && m_counts->all == finishedEver && Log::isEnabled())
        Log::line("---end----");
}

void EumeRoot::Scan::waitForEnd() {
    {
        std::unique_lock lock(m_mutex);
        m_home.wait(lock, [this] { return m_isHome; });
    }
    if (m_isEnded) return;
    emptyFirst();
    takeAll();
    end();
}

EumeRoot::EumeRoot(ScanParts parts) : m_parts(std::move(parts)) {}

EumeRoot::~EumeRoot() {
    if (!m_scan) return;
    m_scan->stop();
    if (!m_scan->hasQueue()) m_scan->waitForEnd();
}

void EumeRoot::eumeAllRootFileNodeWithRootArr(std::shared_ptr<FileNodeTree> rootArr,
                                              const std::string& rootPath) {
    FileNode& root = rootArr->root();
    m_scan = std::make_shared<Scan>(m_parts, std::move(rootArr), root);
    m_scan->start(rootPath);
}

void EumeRoot::scanAgain(std::shared_ptr<FileNodeTree> rootArr, FileNode& folder) {
    m_scan = std::make_shared<Scan>(m_parts, std::move(rootArr), folder);
    m_scan->start(folder.path());
}

Progress EumeRoot::progress() const {
    if (!m_scan) return {};
    const std::int64_t all = m_scan->counts().all;
    return {m_scan->counts().finished, all < 1 ? 0 : static_cast<std::uint64_t>(all), {}};
}

void EumeRoot::stopScan() {
    if (m_scan) m_scan->stop();
}

bool EumeRoot::isEnded() const { return m_scan && m_scan->isEnded(); }

void EumeRoot::waitForEnd() {
    if (m_scan) m_scan->waitForEnd();
}

bool EumeRoot::isEmptyFolder() const { return m_scan && m_scan->counts().all == 0; }

std::uint64_t EumeRoot::foundCount() const { return m_scan ? m_scan->counts().found.load() : 0; }

std::vector<Error> EumeRoot::skipped() const {
    return m_scan ? m_scan->skipped().entries() : std::vector<Error>();
}

}  // namespace orrinvale
