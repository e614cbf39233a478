// SpawnPlan: what every program that this one starts begins with.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>

namespace orrinvale {

/// What posix_spawn(3) is told; freed with it. The program has the three standard descriptors and
/// no other, the root as its folder, since that of ours may be gone, no signal blocked, and all of
/// them as they are by default.
class SpawnPlan final {
public:
    static constexpr int nothing = -1;  ///< in place of a descriptor: /dev/null

    SpawnPlan(int input, int output, int errors) {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
        use(input, STDIN_FILENO, O_RDONLY);
        use(output, STDOUT_FILENO, O_WRONLY);
        use(errors, STDERR_FILENO, O_WRONLY);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        ::posix_spawn_file_actions_addchdir_np(&actions, "/");
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes, &signals);
        ::sigfillset(&signals);
        setDefaultSignals(signals);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnPlan() {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    /// Others stay ignored where they are.
    void setDefaultSignals(const sigset_t& signals) {
        ::posix_spawnattr_setsigdefault(&attributes, &signals);
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};

private:
    void use(int descriptor, int place, int mode) {
        if (descriptor == nothing)
            ::posix_spawn_file_actions_addopen(&actions, place, "/dev/null", mode, 0);
        else ::posix_spawn_file_actions_adddup2(&actions, descriptor, place);
    }
};

}  // namespace orrinvale
