// The programs that free memory on Linux: a copy of ours among the installed resources, and this
// program. "/usr/bin/purge" is the name of anybody's program here and is never run.
#include <sys/stat.h>

#include <algorithm>

#include "platform/linux/ProgramFiles.h"
#include "platform/memory.h"

namespace orrinvale {
namespace {

bool isRootsAlone(const std::string& path, mode_t type) {
    struct stat seen {};
    return ::lstat(path.c_str(), &seen) == 0 && (seen.st_mode & S_IFMT) == type &&
           seen.st_uid == 0 && (seen.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

bool onlyRootCanHavePut(const std::string& path) {
    if (!path.starts_with('/') || !isRootsAlone(path, S_IFREG)) return false;
    std::size_t end = path.size();
    while (end != 0) {
        end = path.rfind('/', end - 1);
        if (!isRootsAlone(path.substr(0, std::max<std::size_t>(end, 1)), S_IFDIR)) return false;
    }
    return true;
}

PurgePrograms purgePrograms() {
    return {.systemPurge = {},
            .resourcePurge = ORRINVALE_RESOURCE_PATH "/purge",
            .executable = ownExecutable()};
}

}  // namespace orrinvale
