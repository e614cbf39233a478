// Confinement (platform/confinement.h): resource limits, and a seccomp(2) filter that lists what is
// let through. A list of what is refused would miss the calls of kernels to come.
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <malloc.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <vector>

#include "platform/confinement.h"

namespace orrinvale {
namespace {

// A sanitizer maps terabytes that it never uses, and makes calls of its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isInstrumented = true;
#else
constexpr bool isInstrumented = false;
#endif

#if defined(__x86_64__)
constexpr std::uint32_t ownArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t ownArchitecture = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t ownArchitecture = 0;  // the limits are all that holds there
#endif

void bound(decltype(RLIMIT_CPU) which, rlim_t most) {
    rlimit now{};
    if (::getrlimit(which, &now) != 0) return;
    if (now.rlim_max != RLIM_INFINITY && now.rlim_max < most) most = now.rlim_max;
    const rlimit wanted{most, most};
    (void)::setrlimit(which, &wanted);
}

class CallFilter final {
public:
    CallFilter() {
        add(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch));
        addJump(BPF_JEQ, ownArchitecture, 1, 0);
        answer(SECCOMP_RET_KILL_PROCESS);
        add(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr));
    }

    void allow(long call) {
        addJump(BPF_JEQ, static_cast<std::uint32_t>(call), 0, 1);
        answer(SECCOMP_RET_ALLOW);
    }
    void refuse(long call, int error) {
        addJump(BPF_JEQ, static_cast<std::uint32_t>(call), 0, 1);
        answer(SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error));
    }
    /// Lets it through where one of these bits of an argument is set, or where none of them is.
    void allowByBits(long call, unsigned argument, std::uint32_t bits, bool isSet) {
        addJump(BPF_JEQ, static_cast<std::uint32_t>(call), 0, 4);
        add(BPF_LD | BPF_W | BPF_ABS,
            static_cast<std::uint32_t>(offsetof(seccomp_data, args) + argument * 8));
        addJump(BPF_JSET, bits, isSet ? 0 : 1, isSet ? 1 : 0);
        answer(SECCOMP_RET_ALLOW);
        answer(SECCOMP_RET_ERRNO | EPERM);
    }
    [[nodiscard]] bool install() {
        answer(SECCOMP_RET_ERRNO | EPERM);
        const sock_fprog program{static_cast<unsigned short>(m_steps.size()), m_steps.data()};
        return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) == 0;
    }

private:
    void add(unsigned code, std::uint32_t value) {
        m_steps.push_back({static_cast<std::uint16_t>(code), 0, 0, value});
    }
    void addJump(unsigned test, std::uint32_t value, std::uint8_t ifSo, std::uint8_t ifNot) {
        m_steps.push_back({static_cast<std::uint16_t>(BPF_JMP | test | BPF_K), ifSo, ifNot, value});
    }
    void answer(std::uint32_t value) { add(BPF_RET | BPF_K, value); }

    std::vector<sock_filter> m_steps;
};

// What computing, memory, locks and threads of this process need. fstat(3) is newfstatat(2) with
// the empty name. A filter sees no names, so that of any path it could be told what stat(2) tells:
// that it is there, its size, times, owner and mode. None of its bytes, and nobody to tell it to
// but who asked.
constexpr long allowedCalls[] = {
    SYS_read,
    SYS_pread64,
    SYS_readv,
    SYS_write,
    SYS_writev,
    SYS_lseek,
    SYS_close,
    SYS_fstat,
    SYS_newfstatat,
    SYS_munmap,
    SYS_mremap,
    SYS_madvise,
    SYS_brk,
    SYS_futex,
    SYS_exit,
    SYS_exit_group,
    SYS_rt_sigaction,
    SYS_rt_sigprocmask,
    SYS_rt_sigreturn,
    SYS_sigaltstack,
    SYS_clock_gettime,
    SYS_gettimeofday,
    SYS_clock_nanosleep,
    SYS_getrandom,
    SYS_sched_yield,
    SYS_getpid,
    SYS_gettid,
    SYS_sched_getaffinity,
    SYS_set_robust_list,
#if defined(SYS_rseq)
    SYS_rseq,
#endif
    // What wakes a thread of the toolkit up; it makes one for itself.
    SYS_eventfd2,
    SYS_pipe2,
};

}  // namespace

void limitThisProcess(const ConfinementLimits& limits) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    bound(RLIMIT_CORE, 0);
    bound(RLIMIT_FSIZE, 0);
    bound(RLIMIT_NOFILE, 64);
    bound(RLIMIT_CPU, limits.seconds);
    if (isInstrumented) return;
    // One heap, and small stacks: the address space that each thread would set aside otherwise
    // would leave nothing of the limit on a machine with many processors.
    ::mallopt(M_ARENA_MAX, 1);
    pthread_attr_t attributes{};
    ::pthread_attr_init(&attributes);
    ::pthread_attr_setstacksize(&attributes, std::size_t{1} << 20U);
    ::pthread_setattr_default_np(&attributes);
    ::pthread_attr_destroy(&attributes);
    bound(RLIMIT_AS, limits.memory);
}

bool allowReadingAndWritingOnly() {
    if (ownArchitecture == 0 || isInstrumented) return false;
    CallFilter filter;
    for (const long call : allowedCalls) filter.allow(call);
    filter.allowByBits(SYS_mmap, 2, PROT_EXEC, false);
    filter.allowByBits(SYS_mprotect, 2, PROT_EXEC, false);
    // A thread, and no other process. The newer call keeps its flags where no filter can look, and
    // the library asks by the older one where there is no newer.
    filter.allowByBits(SYS_clone, 0, CLONE_THREAD, true);
#if defined(SYS_clone3)
    filter.refuse(SYS_clone3, ENOSYS);
#endif
    return filter.install();
}

}  // namespace orrinvale
