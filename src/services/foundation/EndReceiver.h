// EndReceiver: lets another thread call one function on the thread that made the receiver, and wait
// for it.
#pragma once

#include <QObject>
#include <any>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace orrinvale {

/// Serves one call and then deletes itself on its own thread. A bare signal crosses; everything
/// else is under a lock of ours.
class EndReceiver final : public QObject {
    Q_OBJECT
public:
    explicit EndReceiver(std::function<void(const std::any&)> endMethod);

    /// From another thread, once: returns when the function has run. The receiver is not to be
    /// touched afterwards.
    void callAndWait();

Q_SIGNALS:
    void called();

private:
    struct Gate {
        std::mutex mutex;
        std::condition_variable passed;
        bool done = false;  // guarded by mutex
    };
    void serve();

    std::function<void(const std::any&)> m_endMethod;
    std::shared_ptr<Gate> m_gate;
};

}  // namespace orrinvale
