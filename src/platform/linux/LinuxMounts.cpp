// What scans and removals ask of the table of mounts. The table itself is in MountTable.h.
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "platform/linux/LinuxFiles.h"
#include "platform/linux/MountTable.h"

namespace orrinvale {
namespace {

// File systems that hold no files of people: kernel interfaces, and the trigger of the automounter.
constexpr std::array<std::string_view, 21> kernelFileSystems{
    "proc",    "sysfs",      "devtmpfs", "devpts",    "cgroup", "cgroup2",    "debugfs",
    "tracefs", "securityfs", "pstore",   "bpf",       "mqueue", "hugetlbfs",  "configfs",
    "fusectl", "efivarfs",   "autofs",   "selinuxfs", "nsfs",   "rpc_pipefs", "binfmt_misc"};

bool mayHang(std::string_view type) {
    constexpr std::array<std::string_view, 12> starts{"fuse", "nfs",  "cifs", "smb",  "9p",     "afs",
                                                      "ceph", "coda", "ncp",  "gfs2", "lustre", "autofs"};
    return std::any_of(starts.begin(), starts.end(), [&](std::string_view start) { return type.starts_with(start); });
}

}  // namespace

std::vector<std::uint64_t> LinuxFileSystem::kernelDevices() const {
    std::vector<std::uint64_t> devices;
    for (const MountEntry& mount : parseMountInfo(readMountInfo().value_or(std::string())))
        if (std::find(kernelFileSystems.begin(), kernelFileSystems.end(), mount.type) != kernelFileSystems.end())
            devices.push_back(::makedev(mount.major, mount.minor));
    std::sort(devices.begin(), devices.end());
    devices.erase(std::unique(devices.begin(), devices.end()), devices.end());
    return devices;
}

SysResult<std::vector<MountPoint>> LinuxFileSystem::mountPoints() const {
    const auto text = readMountInfo();
    if (!text) return tl::unexpected(text.error());
    // A table that was read in part would leave the rest unprotected.
    if (text->size() >= mountInfoLimit) return tl::unexpected(EFBIG);
    std::vector<MountPoint> mounts;
    for (MountEntry& mount : parseMountInfo(*text)) mounts.push_back({std::move(mount.point), mayHang(mount.type)});
    return mounts;
}

}  // namespace orrinvale
