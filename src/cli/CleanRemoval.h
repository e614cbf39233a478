// The removal of `orrinvale-cli clean --remove`: the program's one removal job, waited for.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "cli/CleanReport.h"
#include "engine/base/MainQueue.h"

namespace orrinvale::cli {

enum class Ending : std::uint8_t;
enum class Telling : std::uint8_t;

/// The main thread of a command that waits for one thing: the one that makes it.
class WaitingQueue final : public MainQueue {
public:
    void async(std::function<void()> work) override;
    bool sync(std::function<void()> work) override;
    /// Runs what is handed over, on the calling thread, until this is true.
    void runUntil(const std::function<bool()>& isDone);

private:
    const std::thread::id m_owner = std::this_thread::get_id();
    std::mutex m_mutex;  // guards m_work
    std::condition_variable m_come;
    std::deque<std::function<void()>> m_work;
};

struct CleanRemovalResult {
    CleanOutcome outcome;
    std::uint64_t goneBytes = 0;  ///< as the rows count them
    bool isWhole = true;          ///< nothing failed; what rules keep, changed or came since the
                                  ///< scan is no failure
    Ending ending{};
};

/// Removes all rows of the categories.
[[nodiscard]] CleanRemovalResult removeRows(const CleanParts& parts,
                                            const std::vector<ScannedCategory>& scanned,
                                            Telling telling);

}  // namespace orrinvale::cli
