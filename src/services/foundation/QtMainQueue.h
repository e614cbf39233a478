// QtMainQueue: the main queue over the event loop of the thread that makes it.
#pragma once

#include <QObject>
#include <memory>

#include "engine/base/MainQueue.h"

namespace orrinvale {

/// Make and end it on the main thread. Work moves through a queue under a lock of our own; what
/// crosses through Qt is a bare wake-up. One turn of the event loop runs at most 16 ms of waiting
/// work, so that a flood of batches can not freeze the window.
class QtMainQueue final : public QObject, public MainQueue {
    Q_OBJECT
public:
    QtMainQueue();
    /// Work that has not begun is dropped; who waits for it in sync() is told so.
    ~QtMainQueue() override;

    void async(std::function<void()> work) override;
    bool sync(std::function<void()> work) override;

Q_SIGNALS:
    void woken();

private:
    struct Shared;
    void wake();
    void drain();

    std::shared_ptr<Shared> m_shared;
};

}  // namespace orrinvale
