// LinuxPermissions: see LinuxPermissions.h. Everything is asked of the held parent; O_PATH opens what may not be read.
#include "platform/linux/LinuxPermissions.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr mode_t kPermissions = 07777;

struct HeldName {
    Descriptor parent;
    std::string name;
};

HeldName hold(const std::string& path) {
    if (path.find('/') == std::string::npos || path.ends_with('/')) return {};
    return {Descriptor(::open(folderOf(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
            std::string(lastPathComponent(path))};
}

bool isHeldBySticky(const struct stat& parent, const struct stat& entry, uid_t user) {
    return (parent.st_mode & S_ISVTX) != 0 && user != 0 && user != parent.st_uid && user != entry.st_uid;
}

bool isClosedToOwner(const struct stat& entry, uid_t user) {
    return S_ISDIR(entry.st_mode) && user != 0 && user == entry.st_uid && (entry.st_mode & S_IRWXU) != S_IRWXU;
}

}  // namespace

bool LinuxPermissions::isDeletable(const std::string& path) const {
    const HeldName place = hold(path);
    if (!place.parent.isOpen()) return false;
    struct stat parent {};
    struct stat entry {};
    if (::fstat(place.parent.get(), &parent) != 0 ||
        ::fstatat(place.parent.get(), place.name.c_str(), &entry, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    if (::faccessat(place.parent.get(), ".", W_OK | X_OK, AT_EACCESS) != 0) return false;
    const uid_t user = ::geteuid();
    return !isHeldBySticky(parent, entry, user) && !isClosedToOwner(entry, user);
}

SysResult<std::uint32_t> LinuxPermissions::exchangeMode(const std::string& path, std::uint64_t device,
                                                        std::uint64_t inode, std::uint32_t mode) const {
    const HeldName place = hold(path);
    if (!place.parent.isOpen()) return tl::unexpected(errno);
    const Descriptor entry(::openat(place.parent.get(), place.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat seen {};
    if (!entry.isOpen() || ::fstat(entry.get(), &seen) != 0) return tl::unexpected(errno);
    if (seen.st_dev != device || seen.st_ino != inode) return tl::unexpected(ESTALE);
    if (!S_ISDIR(seen.st_mode) && !S_ISREG(seen.st_mode)) return tl::unexpected(EOPNOTSUPP);
    // fchmod(2) refuses an O_PATH descriptor; its name in /proc leads to the very entry that is held.
    const std::string held = fmt::format("/proc/self/fd/{}", entry.get());
    if (::chmod(held.c_str(), mode & kPermissions) != 0) return tl::unexpected(errno);
    return seen.st_mode & kPermissions;
}

}  // namespace orrinvale
