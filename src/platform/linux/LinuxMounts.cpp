// LinuxFileSystem: what scans and removals ask of the table of mounts. The table itself is in
// MountTable.h.
#include <fcntl.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "platform/accessTimes.h"
#include "platform/descriptor.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/MountTable.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// File systems that hold no files of people: kernel interfaces, and the trigger of the automounter.
constexpr std::array<std::string_view, 21> kernelFileSystems{
    "proc",    "sysfs",      "devtmpfs", "devpts",    "cgroup", "cgroup2",    "debugfs",
    "tracefs", "securityfs", "pstore",   "bpf",       "mqueue", "hugetlbfs",  "configfs",
    "fusectl", "efivarfs",   "autofs",   "selinuxfs", "nsfs",   "rpc_pipefs", "binfmt_misc"};

bool mayHang(std::string_view type) {
    constexpr std::array<std::string_view, 12> starts{"fuse", "nfs",  "cifs",   "smb",
                                                      "9p",   "afs",  "ceph",   "coda",
                                                      "ncp",  "gfs2", "lustre", "autofs"};
    return std::any_of(starts.begin(), starts.end(),
                       [&](std::string_view start) { return type.starts_with(start); });
}

// FUSE hands out numbers as it looks entries up unless the serving program gives its own, which
// nobody can see from outside; the FATs have none on the disk. "fuseblk" and "fuse.NAME" are FUSE
// too, "fusectl" is not.
bool hasPassingInodes(std::string_view type) {
    constexpr std::array<std::string_view, 5> exact{"fuse", "fuseblk", "vfat", "msdos", "exfat"};
    return type.starts_with("fuse.") || std::find(exact.begin(), exact.end(), type) != exact.end();
}

template <class Wanted> std::vector<std::uint64_t> devicesOf(Wanted isWanted) {
    std::vector<std::uint64_t> devices;
    for (const MountEntry& mount : parseMountInfo(readMountInfo().value_or(std::string())))
        if (isWanted(mount.type)) devices.push_back(::makedev(mount.major, mount.minor));
    std::sort(devices.begin(), devices.end());
    devices.erase(std::unique(devices.begin(), devices.end()), devices.end());
    return devices;
}

}  // namespace

std::vector<std::uint64_t> LinuxFileSystem::kernelDevices() const {
    return devicesOf([](std::string_view type) {
        return std::find(kernelFileSystems.begin(), kernelFileSystems.end(), type) !=
               kernelFileSystems.end();
    });
}

std::vector<std::uint64_t> LinuxFileSystem::devicesOfPassingInodes() const {
    return devicesOf(hasPassingInodes);
}

bool LinuxFileSystem::renamesSafely(int folder) const {
    constexpr std::array<std::string_view, 4> unsafe{"ext2", "vfat", "msdos", "exfat"};
    const auto seen = attributes(folder);
    if (!seen) return true;  // the rename itself will tell
    const auto devices = devicesOf([&](std::string_view type) {
        return std::find(unsafe.begin(), unsafe.end(), type) != unsafe.end();
    });
    return !std::binary_search(devices.begin(), devices.end(), seen->device);
}

std::optional<bool> keepsAccessTimes(const std::string& path) {
    // Where a link leads is another place; what has gone since it was listed lay in its folder.
    Descriptor place(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!place.isOpen())
        place = Descriptor(::open(folderOf(path).c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct statvfs volume {};
    if (!place.isOpen() || ::fstatvfs(place.get(), &volume) != 0) return std::nullopt;
    return (volume.f_flag & (ST_NOATIME | ST_RDONLY)) == 0;
}

SysResult<std::vector<MountPoint>> LinuxFileSystem::mountPoints() const {
    const auto text = readMountInfo();
    if (!text) return tl::unexpected(text.error());
    // A table that was read in part would leave the rest unprotected.
    if (text->size() >= mountInfoLimit) return tl::unexpected(EFBIG);
    std::vector<MountPoint> mounts;
    for (MountEntry& mount : parseMountInfo(*text))
        mounts.push_back({std::move(mount.point), mayHang(mount.type)});
    return mounts;
}

}  // namespace orrinvale
