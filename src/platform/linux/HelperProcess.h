// HelperProcess: one run of the administrator's helper, from the password dialog to its end. Read
// HelperPacket.h first.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/authorization.h"
#include "platform/descriptor.h"
#include "platform/linux/HelperPacket.h"

namespace orrinvale {

/// Where the two programs lie. Absolute; never looked up in $PATH, which anybody may set.
struct HelperPaths {
    std::string pkexec;
    std::string helper;
    /// As this build installs them.
    [[nodiscard]] static HelperPaths installed();
};

/// The operations may be called from any thread. A thread of its own starts the helper, watches it
/// and reaps it: pkexec asks to be sent SIGTERM when the thread that started it ends, so a passing
/// worker may not start it. While that thread runs the process is non-dumpable, so that no other
/// program of the same user reads its memory or its descriptors.
class HelperProcess final {
public:
    /// `lost` is called on that thread when a helper that was ready ends by itself.
    HelperProcess(HelperPaths paths, std::function<void(AuthorizationRefusal)> lost);
    ~HelperProcess();  ///< ends the helper and waits for it
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// Starts it, once, and waits as long as the dialog stands. None when it is ready.
    [[nodiscard]] AuthorizationRefusal start();

    /// Sends a request and waits for its reply; the sequence is filled in here. Nothing when the
    /// helper is not there (any more) or the request is too large for a packet.
    [[nodiscard]] std::optional<HelperReply> ask(HelperRequest request);

    /// Lets go of the helper, which ends a running tool and itself; does not wait. Ends a dialog as
    /// well.
    void end();

    [[nodiscard]] bool isReady() const { return m_isReady; }
    [[nodiscard]] bool isDone() const {
        return m_isDone;
    }  ///< there is no thread, or it has nothing left to do

private:
    void run(std::promise<AuthorizationRefusal> answer);
    [[nodiscard]] int spawn();
    [[nodiscard]] bool awaitReady();
    void watch();
    void readErrors();
    [[nodiscard]] AuthorizationRefusal reasonOfDeath();
    [[nodiscard]] std::optional<HelperReply> receive(int flags);

    const HelperPaths m_paths;
    const std::function<void(AuthorizationRefusal)> m_lost;
    Descriptor
        m_socket;  // stays open from the constructor on, so that end() may come at any moment
    Descriptor m_theirs;      // the helper's end, until it has it
    Descriptor m_errors;      // what pkexec and the helper say
    std::string m_errorText;  // of the thread
    std::atomic<pid_t> m_child{-1};
    std::mutex m_asking;           // one request in flight
    std::uint32_t m_sequence = 0;  // guarded by m_asking
    std::atomic<bool> m_isReady{false};
    std::atomic<bool> m_isEnding{false};
    std::atomic<bool> m_isIdle{false};
    std::atomic<bool> m_isDone{true};
    std::thread m_thread;
};

}  // namespace orrinvale
