// The free space of a file system (platform/freeSpace.h), asked for after syncfs(2).
#include "platform/freeSpace.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>

namespace orrinvale {

SysResult<std::uint64_t> settledFreeSpace(const std::string& folder) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen()) return tl::unexpected(errno);
    if (::syncfs(opened.get()) != 0) return tl::unexpected(errno);
    struct statvfs space {};
    if (::fstatvfs(opened.get(), &space) != 0) return tl::unexpected(errno);
    return std::uint64_t{space.f_bfree} * space.f_frsize;
}

}  // namespace orrinvale
