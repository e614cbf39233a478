// The programs that free memory on Linux: a copy of ours among the installed resources, and this
// program. "/usr/bin/purge" is the name of anybody's program here and is never run.
#include <sys/stat.h>

#include <string_view>

#include "platform/linux/ProgramFiles.h"
#include "platform/memory.h"

namespace orrinvale {
namespace {

bool isRootsAlone(const std::string& path, mode_t type) {
    struct stat seen {};
    return ::lstat(path.c_str(), &seen) == 0 && (seen.st_mode & S_IFMT) == type &&
           seen.st_uid == 0 && (seen.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

// The file and every folder on the way to it.
bool onlyRootCanHavePut(const std::string& path) {
    if (!isRootsAlone(path, S_IFREG)) return false;
    for (std::size_t end = path.rfind('/'); end != 0; end = path.rfind('/', end - 1))
        if (!isRootsAlone(path.substr(0, end), S_IFDIR)) return false;
    return true;
}

}  // namespace

PurgePrograms purgePrograms() {
    const std::string ours = ORRINVALE_RESOURCE_PATH "/purge";
    return {.systemPurge = {},
            .resourcePurge = onlyRootCanHavePut(ours) ? ours : std::string(),
            .executable = ownExecutable()};
}

}  // namespace orrinvale
