// RemovalJob: the one removal of the whole program. A page hands it a RemovalList and a
// RemovalDoor; it works through the list on a thread of its own and tells the page what became of
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/base/Progress.h"
#include "engine/removal/RemovalDoor.h"
#include "engine/removal/RemovalList.h"
#include "engine/removal/RemovalRun.h"

namespace orrinvale {

/// Made, used and destroyed on the main thread, but for what says otherwise.
class RemovalJob final {
public:
    struct Parts {
        const FileSystem* files = nullptr;
        MainQueue* mainQueue = nullptr;
        std::function<std::unique_ptr<RemovalDoor>()>
            makeDoor;             ///< called on the removing thread, at the start
        std::string stateFolder;  ///< where journal and lock are; empty: without both, and nothing
                                  ///< is set aside
    };

    /// One entry of the list and what became of it.
    struct Settled {
        std::size_t index = 0;
        bool gone = false;                    ///< by us or by somebody else
        bool isPartly = false;                ///< a stop or a failure left a part of a folder
        bool isShared = false;                ///< it has its bytes in common with another copy now
        bool hasFailed = false;               ///< something stays that no rule of cleaning keeps
        std::optional<std::int64_t> changed;  ///< RemovalResult::changed
    };
    struct News {
        std::vector<Settled> settled;          ///< in the order of the list
        std::optional<RemovalOutcome> ending;  ///< the last of all news has it
        bool isMore = false;                   ///< call takeNews() again
    };
    /// Any thread.
    struct Progress : orrinvale::Progress {
        bool isWaiting = false;  ///< for another removal's end
    };

    /// Starts. `onNews` is called on the main thread, at most every 50 ms, while there are news;
    /// never once this object is gone.
    RemovalJob(Parts parts, std::shared_ptr<RemovalList> list, std::function<void()> onNews);
    /// Has it stopped, and lets go of it: it ends by itself, a disk that hangs holds nobody up.
    /// Until then it uses list, door and files; the queue no more.
    ~RemovalJob();
    RemovalJob(const RemovalJob&) = delete;
    RemovalJob& operator=(const RemovalJob&) = delete;

    /// Ends it before the next entry, and within a folder or a comparison that is in hand. Any
    /// thread.
    void stop();
    /// Ends it, and returns when the entry in hand is settled: list, door and queue are used no
    /// more.
    void abandon();

    [[nodiscard]] Progress progress() const;

    /// What has happened since the last call, up to this many entries.
    [[nodiscard]] News takeNews(std::size_t most = ~std::size_t{0});
    /// Has onNews called in a later turn of the main thread.
    void callAgain();

private:
    class Work;
    std::shared_ptr<Work> m_work;
};

}  // namespace orrinvale
