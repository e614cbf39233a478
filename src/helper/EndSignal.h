// EndSignal: SIGTERM as something to wait for, so that whatever is at work comes to an end of its
// own.
#pragma once

#include <csignal>

#include "platform/descriptor.h"

namespace orrinvale::helper {

/// Keeps SIGTERM from ending this thread while it lives. A process that is forked meanwhile asks
/// about its own SIGTERM by the same object; one that becomes another program calls letThrough()
/// first.
class EndSignal final {
public:
    EndSignal();
    ~EndSignal();
    EndSignal(const EndSignal&) = delete;
    EndSignal& operator=(const EndSignal&) = delete;

    /// Readable, and for good, once it came; -1 where there can be none.
    [[nodiscard]] int descriptor() const { return m_signal.get(); }
    [[nodiscard]] bool hasCome() const;

    /// In this process it ends again whoever it is sent to.
    void letThrough() const;

private:
    sigset_t m_before{};
    Descriptor m_signal;
};

}  // namespace orrinvale::helper
