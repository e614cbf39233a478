// The signal is never taken, so that everybody who asks is told.
#include "helper/EndSignal.h"

#include <poll.h>
#include <sys/signalfd.h>

namespace orrinvale::helper {

EndSignal::EndSignal() {
    sigset_t end;
    ::sigemptyset(&end);
    ::sigaddset(&end, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &end, &m_before);
    m_signal = Descriptor(::signalfd(-1, &end, SFD_CLOEXEC | SFD_NONBLOCK));
}

EndSignal::~EndSignal() { letThrough(); }

bool EndSignal::hasCome() const {
    pollfd source{m_signal.get(), POLLIN, 0};
    return ::poll(&source, 1, 0) > 0;
}

void EndSignal::letThrough() const { ::sigprocmask(SIG_SETMASK, &m_before, nullptr); }

}  // namespace orrinvale::helper
