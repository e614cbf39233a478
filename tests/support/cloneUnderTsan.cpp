// In programs under ThreadSanitizer only. The toolkit starts processes by a child that works in its
// parent's memory until it is another program; what the sanitizer notes of the child's calls stays
// with the parent's thread then, whose locks it sees no more. Here the child gets memory of its
// own.
#include <dlfcn.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>

// The system's own signature. Weak, since each library of a program brings it.
extern "C" __attribute__((weak)) int clone(int (*child)(void*), void* stack, int flags,
                                           void* argument, ...) {
    std::va_list more;
    va_start(more, argument);
    auto* const parentTid = va_arg(more, pid_t*);
    void* const storage = va_arg(more, void*);
    auto* const childTid = va_arg(more, pid_t*);
    va_end(more);
    constexpr int borrowsMemory = CLONE_VM | CLONE_VFORK;
    if ((flags & (borrowsMemory | CLONE_THREAD)) != borrowsMemory) {
        using Clone = int (*)(int (*)(void*), void*, int, void*, ...);
        const auto next = reinterpret_cast<Clone>(::dlsym(RTLD_NEXT, "clone"));
        return next(child, stack, flags, argument, parentTid, storage, childTid);
    }
    const pid_t process = ::fork();
    if (process == 0) ::_exit(child(argument));
    if (process > 0 && (flags & CLONE_PIDFD) != 0)
        *parentTid = static_cast<int>(::syscall(SYS_pidfd_open, process, 0U));
    return process;
}
