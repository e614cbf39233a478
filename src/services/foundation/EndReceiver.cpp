#include "services/foundation/EndReceiver.h"

namespace orrinvale {

EndReceiver::EndReceiver(std::function<void(const std::any&)> endMethod)
    : m_endMethod(std::move(endMethod)), m_gate(std::make_shared<Gate>()) {
    connect(this, &EndReceiver::called, this, &EndReceiver::serve, Qt::QueuedConnection);
}

void EndReceiver::callAndWait() {
    const std::shared_ptr<Gate> gate =
        m_gate;  // outlives the receiver, which may be gone before this thread wakes
    std::unique_lock lock(gate->mutex);
    Q_EMIT called();
    gate->passed.wait(lock, [&] { return gate->done; });
}

void EndReceiver::serve() {
    {
        // The calling thread holds the lock until it waits: what it wrote before is seen by the
        // function.
        const std::lock_guard guard(m_gate->mutex);
    }
    m_endMethod({});
    deleteLater();
    const std::lock_guard guard(m_gate->mutex);
    m_gate->done = true;
    m_gate->passed.notify_all();
}

}  // namespace orrinvale
