// EndSignals: the signals that ask a process to end, as calls on the event loop.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "platform/descriptor.h"

namespace orrinvale {

/// While it lives, SIGTERM, SIGINT and SIGHUP run the handler on the thread that made this, from
/// its event loop, instead of ending the process where it stands; at its end they do again what
/// they do usually. One that is ignored stays ignored. Where no pipe can be had, all stay as they
/// are. One object a process.
class EndSignals final : public QObject {
    Q_OBJECT
public:
    explicit EndSignals(std::function<void(int signal)> handler);
    ~EndSignals() override;

    /// Ends the process as that signal does, so that whoever sent it sees that it worked.
    [[noreturn]] static void endBy(int signal);

private:
    void receive();

    const std::function<void(int)> m_handler;
    Descriptor m_read;
    Descriptor m_write;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

}  // namespace orrinvale
