// Thread and object share one block, which the last of them frees, so that neither needs the other.
#include "engine/cleaning/ScanErrand.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace orrinvale {

struct ScanErrand::Shared {
    std::atomic<bool> stop{false};
    std::atomic<std::uint64_t> total{0};
    std::atomic<std::uint64_t> entries{0};
    std::mutex mutex;  // guards what follows
    std::condition_variable home;
    bool isEnded = false;
    CategoryListing listing;

    void end(CategoryListing result) {
        {
            const std::lock_guard lock(mutex);
            listing = std::move(result);
            isEnded = true;
        }
        home.notify_all();
    }
};

ScanErrand::ScanErrand(const CleanParts& parts, FolderNames folders,
                       std::chrono::milliseconds patience)
    : m_shared(std::make_shared<Shared>()), m_patience(patience) {
    try {
        std::thread([shared = m_shared, parts, folders = std::move(folders)] {
            CategoryScan scan(
                parts,
                {.stop = &shared->stop, .total = &shared->total, .entries = &shared->entries});
            shared->end(scan.run(folders()));
        }).detach();
    } catch (const std::system_error& error) {  // no thread left for this user
        CategoryListing none;
        none.closed.push_back({{}, error.what()});
        m_shared->end(std::move(none));
    }
}

ScanErrand::~ScanErrand() { m_shared->stop = true; }

void ScanErrand::stop() { m_shared->stop = true; }

std::uint64_t ScanErrand::total() const { return m_shared->total; }
std::uint64_t ScanErrand::entries() const { return m_shared->entries; }

ScanErrand::State ScanErrand::wait(std::chrono::milliseconds atMost) {
    std::unique_lock lock(m_shared->mutex);
    if (m_shared->home.wait_for(lock, atMost, [this] { return m_shared->isEnded; }))
        return State::Ended;
    const auto now = std::chrono::steady_clock::now();
    const std::uint64_t heard = m_shared->entries;
    if (std::exchange(m_heard, heard) != heard) m_since = now;
    return now - m_since < m_patience ? State::Running : State::Silent;
}

CategoryListing ScanErrand::take() {
    const std::lock_guard lock(m_shared->mutex);
    return std::move(m_shared->listing);
}

}  // namespace orrinvale
