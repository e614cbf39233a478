// What uses block devices without being mounted, the second source of LinuxVolumesDevices. The
// kernel lists what is made of a device in its "holders", the members of a btrfs in /sys/fs/btrfs
// (btrfs(5)); of storage pools only udev knows.
#include <algorithm>

#include "platform/linux/LinuxVolumesDevices.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t nameLimit = 4096;  // a page, as sysfs gives at most

bool isAmong(const std::vector<std::string>& devices, const std::string& wanted) {
    return std::find(devices.begin(), devices.end(), wanted) != devices.end();
}

std::string lineIn(const std::string& path) {
    const std::string text = readSystemText(path, nameLimit).value_or(std::string());
    return text.substr(0, text.find('\n'));
}

}  // namespace

std::string LinuxVolumesDevices::otherUseOf(const std::vector<std::string>& devices) const {
    for (const std::string& device : devices) {
        for (const std::string& name : systemNamesIn(device + "/holders")) {
            const std::string above = deviceNamed(name);
            if (isAmong(devices, above)) continue;
            const std::string label = lineIn(above + "/dm/name");
            return "another device is made of it: " + (label.empty() ? name : label);
        }
        if (udevProperties(device).find("\nE:ID_FS_TYPE=zfs_member\n") != std::string::npos)
            return "it belongs to a storage pool";
    }
    return spanningUseOf(devices);
}

std::string LinuxVolumesDevices::spanningUseOf(const std::vector<std::string>& devices) const {
    const std::string fileSystems = m_sys + "/fs/btrfs/";
    for (const std::string& each : systemNamesIn(fileSystems)) {
        const std::vector<std::string> members = systemNamesIn(fileSystems + each + "/devices");
        const auto isPlanned = [&](const std::string& name) {
            return isAmong(devices, deviceNamed(name));
        };
        if (std::ranges::any_of(members, isPlanned) && !std::ranges::all_of(members, isPlanned))
            return "a file system on it spans other drives";
    }
    return {};
}

std::vector<std::string> LinuxVolumesDevices::attachedImages() const {
    std::vector<std::string> images;
    for (const std::string& name : systemNamesIn(m_sys + "/class/block"))
        if (name.starts_with("loop"))
            if (std::string image = lineIn(deviceNamed(name) + "/loop/backing_file");
                !image.empty())
                images.push_back(std::move(image));
    return images;
}

}  // namespace orrinvale
