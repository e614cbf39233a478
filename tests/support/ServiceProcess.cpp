// ServiceProcess: see ServiceProcess.h.
#include "support/ServiceProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <thread>
#include <utility>

namespace orrinvale::testing {

ServiceProcess::ServiceProcess(std::vector<std::string> command) : m_process(::fork()) {
    if (m_process != 0) return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int number = 0; number <= 2; ++number) ::dup2(nothing, number);
    std::vector<char*> arguments;
    for (std::string& each : command) arguments.push_back(each.data());
    arguments.push_back(nullptr);
    ::execv(arguments[0], arguments.data());
    ::_exit(125);
}

ServiceProcess::~ServiceProcess() { end(); }

ServiceProcess::ServiceProcess(ServiceProcess&& other) noexcept
    : m_process(std::exchange(other.m_process, -1)) {}

ServiceProcess& ServiceProcess::operator=(ServiceProcess&& other) noexcept {
    std::swap(m_process, other.m_process);
    return *this;
}

void ServiceProcess::signal(int number) const {
    if (m_process > 0) ::kill(m_process, number);
}

void ServiceProcess::end() {
    if (m_process <= 0) return;
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    m_process = -1;
}

void ServiceProcess::wait() {
    if (m_process > 0) ::waitpid(m_process, nullptr, 0);
    m_process = -1;
}

bool ServiceProcess::hasEnded() {
    if (m_process > 0 && ::waitpid(m_process, nullptr, WNOHANG) == m_process) m_process = -1;
    return m_process <= 0;
}

bool comesTrue(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace orrinvale::testing
