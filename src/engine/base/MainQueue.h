// MainQueue: how work reaches the main thread from another one, without a toolkit.
// services/foundation/QtMainQueue implements it over an event loop.
#pragma once

#include <functional>

namespace orrinvale {

/// Both operations may be called from any thread. Pieces of work run on the main thread one after
/// another, in the order in which they were handed over. Hand over batches, never one entry at a
/// time: a crossing costs more than the entry.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Hands the work over and returns.
    virtual void async(std::function<void()> work) = 0;

    /// Hands the work over and returns when it has run; on the main thread itself it runs at once.
    /// False when it will never run, because the queue has ended.
    virtual bool sync(std::function<void()> work) = 0;

protected:
    MainQueue() = default;
    MainQueue(const MainQueue&) = default;
    MainQueue& operator=(const MainQueue&) = default;
};

}  // namespace orrinvale
