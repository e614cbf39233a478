// Own mounts: see OwnMounts.h.
#include "support/OwnMounts.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "support/TestTree.h"

namespace orrinvale::testing {

void withOwnMounts(const std::function<std::string()>& check) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may mount";
    const std::string said = runInChild({}, [&]() -> std::string {
        if (::unshare(CLONE_NEWNS | CLONE_NEWPID) != 0)
            return "skip: no name spaces: " + std::to_string(errno);
        if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            return "skip: mounts can not be private";
        if (::mount("ram", "/mnt", "tmpfs", 0, "size=64m") != 0) return "skip: no tmpfs";
        // The first process of its kind: with it end all others. It hears no alarm of its own, only
        // the end of its parent.
        return runInChild({}, [&]() -> std::string {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (::mount("proc", "/proc", "proc", 0, nullptr) != 0)
                return "skip: no /proc of its own";
            return check();
        });
    });
    if (said.starts_with("skip: ")) GTEST_SKIP() << said.substr(6);
    EXPECT_EQ(said, "");
}

bool unshareMounts() {
    return ::unshare(CLONE_NEWNS) == 0 &&
           ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool bindMount(const std::string& what, const std::string& where) {
    return ::mount(what.c_str(), where.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

bool mountRam(const char* folder) {
    ::mkdir(folder, 0777);
    return ::mount("ram", folder, "tmpfs", 0, "size=1m") == 0;
}

}  // namespace orrinvale::testing
