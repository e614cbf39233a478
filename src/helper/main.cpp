// The administrator's helper: started by pkexec when the padlock opens, it removes single entries as root and does nothing else.
// Checks.h says whom it serves, Session.h how.
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <syslog.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include "helper/Checks.h"
#include "helper/Session.h"
#include "platform/linux/LinuxFiles.h"

namespace orrinvale::helper {
namespace {

/// Nothing that the caller set is left in force: signals, descriptors, folder, variables. The signals of a terminal are ignored; the
/// helper's one reason to end is that the socket closes.
void forgetTheCaller() {
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (int number = 1; number < NSIG; ++number) ::signal(number, SIG_DFL);
    for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU}) ::signal(number, SIG_IGN);
    ::prctl(PR_SET_PDEATHSIG, 0);  // pkexec's; it would leave a tool without us
    ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    ::syscall(SYS_close_range, 3U, ~0U, 0U);
    (void)!::chdir("/");
    ::umask(077);
    ::clearenv();
}

/// Descriptors 0 to 2 stand for what they are named after, whatever the caller closed. Opened for writing only, so that a missing
/// standard input is no socket.
void fillStandardDescriptors() {
    for (int opened = 0; opened >= 0 && opened <= STDERR_FILENO;) {
        opened = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (opened > STDERR_FILENO) ::close(opened);
    }
}

/// What stands beside the helper, and what an installed program has elsewhere.
std::vector<std::string> ownFiles() {
    std::vector<std::string> files = programFiles();
    for (const char* const path : {ORRINVALE_HELPER_PATH, ORRINVALE_POLICY_PATH, ORRINVALE_PROGRAM_PATHS})
        files.emplace_back(path);
    return files;
}

int serve(int argc) {
    fillStandardDescriptors();
    ::openlog("orrinvale-helper", LOG_PID, LOG_AUTHPRIV);
    const auto caller = callerOf(howStarted(argc));
    forgetTheCaller();
    if (!caller) {
        report(caller.error().line);
        return caller.error().status;
    }
    Session(STDIN_FILENO, *caller, ownFiles()).run();
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace orrinvale::helper

int main(int argc, char** /*argv*/) { return orrinvale::helper::serve(argc); }
