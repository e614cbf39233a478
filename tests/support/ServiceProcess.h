// A program that a test needs beside it for a while: a bus, a service on it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace orrinvale::testing {

/// Runs from its construction to its destruction, and no longer than the test's process, however
/// that ends. It reads and writes nothing. Start it on the test's main thread.
class ServiceProcess final {
public:
    /// The program's absolute path and its arguments.
    explicit ServiceProcess(std::vector<std::string> command);
    ~ServiceProcess();
    ServiceProcess(ServiceProcess&& other) noexcept;
    ServiceProcess& operator=(ServiceProcess&& other) noexcept;
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    [[nodiscard]] pid_t number() const { return m_process; }
    void signal(int number) const;
    void end();
    /// Until it ends by itself.
    void wait();
    [[nodiscard]] bool hasEnded();

private:
    pid_t m_process = -1;
};

/// Asks every few milliseconds; false when it has not come true within ten seconds.
[[nodiscard]] bool comesTrue(const std::function<bool()>& condition);

}  // namespace orrinvale::testing
