#include "platform/linux/LinuxPermissions.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orrinvale {
namespace {

constexpr mode_t kPermissions = 07777;

// fchmod(2) refuses a descriptor that only holds; its name in /proc leads to the very entry that is
// held, by whatever name it goes.
bool setMode(int folder, mode_t mode) {
    return ::chmod(fmt::format("/proc/self/fd/{}", folder).c_str(), mode & kPermissions) == 0;
}

}  // namespace

std::optional<std::uint32_t> LinuxPermissions::openToOwner(int folder) const {
    struct stat seen {};
    const uid_t user = ::geteuid();
    if (user == 0 || ::fstat(folder, &seen) != 0 || !S_ISDIR(seen.st_mode) || seen.st_uid != user)
        return std::nullopt;
    if ((seen.st_mode & S_IRWXU) == S_IRWXU || !setMode(folder, seen.st_mode | S_IRWXU))
        return std::nullopt;
    return seen.st_mode & kPermissions;
}

void LinuxPermissions::setPermissions(int folder, std::uint32_t permissions) const {
    (void)setMode(folder, permissions);
}

}  // namespace orrinvale
