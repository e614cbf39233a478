// The UUID as the kernel tells everybody who may open a folder, since 6.9; before
// that what statfs(2) makes of it.
#include "platform/lastingVolume.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>

namespace orrinvale {
namespace {

// Magic numbers of statfs(2), not all of them in the headers of every C library.
constexpr std::uint64_t ext4Magic = 0xEF53;  // ext2 and ext3 too, whose times are whole seconds
constexpr std::uint64_t xfsMagic = 0x58465342;
constexpr std::uint64_t btrfsMagic = 0x9123683E;
constexpr std::uint64_t f2fsMagic = 0xF2F52010;

constexpr std::array knownMagics{ext4Magic, xfsMagic, btrfsMagic, f2fsMagic};

bool isKnownMagic(std::uint64_t magic) {
    return std::ranges::find(knownMagics, magic) != knownMagics.end();
}

// ext4 and btrfs make their f_fsid of their UUID, btrfs of the subvolume as well, in each of which
// inode numbers begin anew; the others make it of the device.
std::uint64_t digestOf(const struct statfs& system, std::uint64_t magic) {
    std::uint64_t digest = 0;
    static_assert(sizeof digest == sizeof system.f_fsid);
    if (magic == ext4Magic || magic == btrfsMagic)
        std::memcpy(&digest, &system.f_fsid, sizeof digest);
    return digest;
}

struct KernelUuid {  // struct fsuuid2 of linux/fs.h
    std::uint8_t length;
    std::array<std::uint8_t, 16> bytes;
};
constexpr unsigned long askUuid = _IOR(0x15, 0, KernelUuid);  // FS_IOC_GETFSUUID

VolumeName uuidOf(int folder) {
    KernelUuid uuid{};
    VolumeName name;
    if (::ioctl(folder, askUuid, &uuid) != 0) return name;
    std::memcpy(&name.first, uuid.bytes.data(), sizeof name.first);
    std::memcpy(&name.second, uuid.bytes.data() + sizeof name.first, sizeof name.second);
    return name;
}

}  // namespace

SysResult<VolumeName> lastingVolume(int folder) {
    struct statfs system {};
    struct stat status {};
    if (::fstatfs(folder, &system) != 0 || ::fstat(folder, &status) != 0)
        return tl::unexpected(errno);
    const auto magic = static_cast<std::uint64_t>(system.f_type);
    if (!isKnownMagic(magic)) return tl::unexpected(ENOTSUP);
    VolumeName name = uuidOf(folder);
    name.first ^= digestOf(system, magic);
    if (name == VolumeName{}) return tl::unexpected(ENOTSUP);
    // Two copies of one disk have one UUID. Devices without a number of their own get another one
    // with each mount.
    if (::major(status.st_dev) != 0) name.second ^= status.st_dev;
    return name;
}

// The digest alone where there is one: a kernel that begins to tell the UUID changes no name then.
SysResult<VolumeName> volumeAtPlace(int folder) {
    struct statfs system {};
    if (::fstatfs(folder, &system) != 0) return tl::unexpected(errno);
    const auto magic = static_cast<std::uint64_t>(system.f_type);
    VolumeName name{digestOf(system, magic), 0};
    if (name == VolumeName{} && isKnownMagic(magic)) name = uuidOf(folder);
    if (name == VolumeName{}) name.second = magic;
    return name;
}

std::int64_t fileClock() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    constexpr std::int64_t second = 1'000'000'000;
    return now.tv_sec * second + now.tv_nsec;
}

}  // namespace orrinvale
