// The administrator's helper: started by pkexec when the padlock opens, it removes single entries
// as root and does nothing else. Checks.h says whom it serves, Session.h how.
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include "helper/Checks.h"
#include "helper/RootJournal.h"
#include "helper/Session.h"
#include "platform/linux/ProgramFiles.h"

namespace orrinvale::helper {
namespace {

/// Nothing that the caller set is left in force: signals, descriptors, folder, variables. The
/// signals of a terminal are ignored; the helper's one reason to end is that the socket closes.
void forgetTheCaller() {
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (int number = 1; number < NSIG; ++number) ::signal(number, SIG_DFL);
    for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU})
        ::signal(number, SIG_IGN);
    ::prctl(PR_SET_PDEATHSIG, 0);  // pkexec's; it would leave a tool without us
    ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    ::syscall(SYS_close_range, 3U, ~0U, 0U);
    (void)!::chdir("/");
    ::umask(077);
    ::clearenv();
}

/// Within the caller's hard limit where this root may not raise it, as in containers.
void setLimit(decltype(RLIMIT_CPU) which, rlim_t soft, rlim_t hard) {
    const rlimit wanted{soft, hard};
    if (::setrlimit(which, &wanted) == 0) return;
    rlimit now{};
    ::getrlimit(which, &now);
    now.rlim_cur = std::min(soft, now.rlim_max);
    ::setrlimit(which, &now);
}

/// What a caller may leave in force over the change of the user: a file size of nothing would break
/// the journal, a second of processor time or a timer that is about to end would end a removal in
/// the middle.
void liftLimits() {
    for (const auto which : {ITIMER_REAL, ITIMER_VIRTUAL, ITIMER_PROF}) {
        const itimerval never{};
        ::setitimer(which, &never, nullptr);
    }
    for (const auto each :
         {RLIMIT_CPU, RLIMIT_FSIZE, RLIMIT_DATA, RLIMIT_AS, RLIMIT_RSS, RLIMIT_NPROC})
        setLimit(each, RLIM_INFINITY, RLIM_INFINITY);
    setLimit(RLIMIT_STACK, rlim_t{8} << 20U, RLIM_INFINITY);
    setLimit(RLIMIT_NOFILE, 1024, 524'288);  // what systemd gives to services
    setLimit(RLIMIT_CORE, 0, 0);
}

/// Descriptors 0 to 2 stand for what they are named after, whatever the caller closed. Opened for
/// writing only, so that a missing standard input is no socket.
void fillStandardDescriptors() {
    for (int opened = 0; opened >= 0 && opened <= STDERR_FILENO;) {
        opened = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (opened > STDERR_FILENO) ::close(opened);
    }
}

/// What stands beside the helper, what an installed program has elsewhere, and the journals.
std::vector<std::string> ownFiles() {
    std::vector<std::string> files = programFiles();
    for (const char* const path : {ORRINVALE_HELPER_PATH, ORRINVALE_POLICY_PATH,
                                   ORRINVALE_PROGRAM_PATHS, RootJournal::usualFolder})
        files.emplace_back(path);
    return files;
}

int serve(int argc) {
    liftLimits();
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
