// A world of its own for polkit: real dbus-daemon and polkitd, actions of the test, and an
// administrator with a password, all in a mount namespace, so that the machine and other tests see
// nothing of it.
#pragma once

#include "platform/descriptor.h"
#include "support/ServiceProcess.h"
#include "support/test.h"

namespace orrinvale::testing {

class PolkitWorld final {
public:
    static constexpr const char* password =
        "orrinvale at the padlock";  ///< of the user nobody, who is an administrator here

    /// Only in a process of its own: its mounts stay changed. Needs root.
    PolkitWorld();
    ~PolkitWorld();
    PolkitWorld(const PolkitWorld&) = delete;
    PolkitWorld& operator=(const PolkitWorld&) = delete;

    /// Why there is none here; empty when it can be begun.
    [[nodiscard]] const std::string& obstacle() const { return m_obstacle; }

    /// A copy of the helper with an action of its own: the project's, with another answer for
    /// callers without a seat. Before begin().
    [[nodiscard]] std::string addHelper(const std::string& name, const std::string& allowAny);

    /// The actions of another program. Before begin().
    void addPolicy(const std::string& name, const std::string& text) {
        (void)m_tree.write("actions/" + name, text);
    }

    /// Starts the services; true when polkit knows the actions.
    [[nodiscard]] bool begin();

    /// Ends polkitd and the bus.
    void end();

private:
    [[nodiscard]] std::string enter() const;

    TestTree m_tree;
    std::string m_obstacle;
    std::vector<ServiceProcess> m_services;
};

/// An agent that asks on behalf of one process, at a terminal of its own.
class PolkitAgent final {
public:
    /// pkttyagent, which asks for the password, or one whose person closes every dialog.
    enum class Kind { Password, Dismissing };

    PolkitAgent(Kind kind, pid_t subject);
    ~PolkitAgent();
    PolkitAgent(const PolkitAgent&) = delete;
    PolkitAgent& operator=(const PolkitAgent&) = delete;

    /// Waits until it has said this; false when it has not within ten seconds.
    [[nodiscard]] bool says(const std::string& words);
    void type(const std::string& line) const;
    void kill();

private:
    Descriptor m_terminal;
    std::string m_said;
    pid_t m_process = -1;
};

/// Why there can be no dismissing agent here; empty when there can.
[[nodiscard]] std::string obstacleToDismissing();

}  // namespace orrinvale::testing
