// Session: the life of one helper, packet by packet, until its caller lets go of it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "helper/EndSignal.h"
#include "helper/RootJournal.h"
#include "platform/descriptor.h"
#include "platform/linux/HelperPacket.h"

namespace orrinvale::helper {

/// Each request is worked on in a process of its own: a file system that hangs then never keeps the
/// helper from seeing that its caller is gone, and a fault costs one request. One thread.
class Session final {
public:
    static constexpr std::chrono::milliseconds idleLimit = std::chrono::minutes(10);

    /// `socket` is the caller's and is not owned.
    Session(int socket, uid_t caller, std::vector<std::string> ownFiles,
            std::chrono::milliseconds idle = idleLimit);

    /// Brings back what killed sessions left aside, says Ready and serves until the caller is gone,
    /// has been idle for too long, or SIGTERM comes. A removal at work then has a second to end,
    /// and what it set aside gets its own name back.
    void run();

private:
    void serve();
    [[nodiscard]] bool receive();
    void begin(const HelperRequest& request);
    [[noreturn]] void work(const HelperRequest& request, pid_t parent, int result);
    void openJournal();
    void apart(const std::function<void()>& task) const;
    void finish();
    void stop();
    void answer(const HelperReply& reply) const;
    void note(const HelperReply& reply) const;

    const int m_socket;
    const uid_t m_caller;
    const std::vector<std::string> m_ownFiles;
    const std::chrono::milliseconds m_idle;
    pid_t m_worker = -1;  // -1 when no request is in flight; also the number of its process group
    Descriptor m_result;  // the worker's reply; its end is the worker's end
    std::string m_reply;  // what came out of it so far
    HelperRequest m_request;  // the one in flight, or the last
    EndSignal m_end;
    RootJournal m_journal;
    bool m_saidNoJournal = false;
};

/// One line to the system's log and to standard error, control bytes escaped. Never waits for a
/// reader of standard error.
void report(const std::string& line);

}  // namespace orrinvale::helper
