// Starts the real helper as pkexec would: as root, with the caller's socket for standard input.
// Needs root.
#pragma once

#include "platform/descriptor.h"
#include "platform/linux/HelperPacket.h"
#include "support/test.h"

namespace orrinvale::testing {

constexpr uid_t ordinaryUser = 65534;

/// One end of a packet socket that belongs to this user, as SO_PEERCRED tells.
struct SocketPair {
    explicit SocketPair(uid_t user, int type);
    Descriptor ours;
    Descriptor theirs;
};

class HelperRun final {
public:
    /// Starts it for this user; the first packet is awaited.
    explicit HelperRun(uid_t caller = ordinaryUser) : HelperRun(caller, [] {}) {}
    /// With what the new process does before it becomes the helper.
    HelperRun(uid_t caller, const std::function<void()>& before);
    ~HelperRun();  ///< ends it, by force if need be
    HelperRun(const HelperRun&) = delete;
    HelperRun& operator=(const HelperRun&) = delete;

    [[nodiscard]] bool isReady() const { return m_isReady; }
    [[nodiscard]] pid_t process() const { return m_process; }
    [[nodiscard]] int socket() const { return m_socket.get(); }
    void letGo() { m_socket.reset(); }

    bool send(const std::string& packet) const;
    /// Nothing when the helper is gone.
    [[nodiscard]] std::optional<HelperReply> receive() const;
    /// A request for the entry as it is now.
    [[nodiscard]] static HelperRequest requestFor(const std::string& path);
    [[nodiscard]] HelperReply ask(const HelperRequest& request) const;
    [[nodiscard]] HelperReply ask(const std::string& path) const { return ask(requestFor(path)); }

    /// True when the process ends by itself within the time.
    [[nodiscard]] bool endsWithin(std::chrono::milliseconds time);

private:
    Descriptor m_socket;
    pid_t m_process = -1;
    bool m_isReady = false;
};

/// A test of what only root can have.
class HelperTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "the helper runs as root only";
    }
};

/// The first process whose parent this is, or -1. Waits for one for up to a second.
[[nodiscard]] pid_t childOf(pid_t process);

/// True when a signal holds the process; false when it is gone. One of the two has to come about.
[[nodiscard]] bool isStopped(pid_t process);

/// True when the process is gone, or a corpse, within the time.
[[nodiscard]] bool isGoneWithin(pid_t process, std::chrono::milliseconds time);

}  // namespace orrinvale::testing
