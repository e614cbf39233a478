// First all that speaks against an ejection, then the ejection itself.
#include "platform/linux/LinuxVolumesEjection.h"

#include <fmt/format.h>
#include <sys/mount.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/error.h"
#include "platform/linux/DiskEjection.h"
#include "platform/linux/DiskService.h"
#include "platform/linux/EjectionPlan.h"
#include "platform/linux/LinuxVolumesChoice.h"
#include "platform/linux/SystemText.h"
#include "platform/linux/VolumeHolders.h"
#include "platform/paths.h"
#include "platform/process.h"

namespace orrinvale {
namespace {

using Outcome = LinuxVolumesEjection::Outcome;
using Mounts = std::vector<MountEntry>;
using FailureKind = DiskServiceFailure::Kind;

constexpr std::chrono::seconds kPatienceWithService{1};
constexpr std::chrono::milliseconds kPatienceWithHolders{300};
constexpr std::chrono::minutes kLongestUnmount{10};
constexpr std::size_t kSwapsLimit = 64 * 1024;

constexpr const char* kInUse = "The volume is in use";
constexpr const char* kIsGone = "The volume is not mounted any more";

// Without these the system does not run. A stick that somebody mounted below their home folder is
// not among them.
bool isSystemPlace(std::string_view point) {
    constexpr std::array<std::string_view, 6> exact{"/", "/home", "/root", "/srv", "/tmp", "/run"};
    // The last ones are where systems that run from a stick have mounted it.
    constexpr std::array<std::string_view, 14> withAllBelow{
        "/boot", "/efi",      "/usr",           "/var",         "/etc",   "/opt",       "/nix",
        "/gnu",  "/run/live", "/run/initramfs", "/run/archiso", "/cdrom", "/isodevice", "/sysroot"};
    constexpr std::array<std::string_view, 4> personal{"/var/mnt", "/var/media", "/var/run/media",
                                                       "/var/home/"};
    if (std::any_of(personal.begin(), personal.end(),
                    [&](auto each) { return point.starts_with(each); }))
        return false;
    return std::find(exact.begin(), exact.end(), point) != exact.end() ||
           std::any_of(withAllBelow.begin(), withAllBelow.end(),
                       [&](auto each) { return isWithin(point, each); });
}

Outcome failure(std::int32_t status, std::string reason) {
    return {status, {std::move(reason), {}}, {}};
}

Outcome refusalFor(std::string_view use) {
    return failure(ioErr, fmt::format("The system runs from this drive: {}", use));
}

Outcome busy(Mounts mounts, std::vector<std::string> nodes) {
    Outcome outcome = failure(fBsyErr, kInUse);
    outcome.dissent.holders =
        findVolumeHolders({std::move(mounts), std::move(nodes)}, kPatienceWithHolders);
    return outcome;
}

bool isAmong(const Mounts& mounts, const MountEntry& wanted) {
    return std::any_of(mounts.begin(), mounts.end(),
                       [&](const MountEntry& each) { return isSameMount(each, wanted); });
}

// Something else that is mounted on one of these; the kernel would call them busy and name nothing.
const MountEntry* strangerOn(const Mounts& mounts, const Mounts& table) {
    for (const MountEntry& each : table) {
        const bool isOnOne =
            std::any_of(mounts.begin(), mounts.end(), [&](const MountEntry& mount) {
                return each.parent == mount.id && each.id != mount.id;
            });
        if (isOnOne && !isAmong(mounts, each)) return &each;
    }
    return nullptr;
}

Outcome strangerFailure(const MountEntry& stranger) {
    return failure(fBsyErr, fmt::format("Another volume is mounted on it at {}", stranger.point));
}

// One line an area, its path first; the line above them names the columns.
std::vector<std::string> swapPathsIn(std::string_view text) {
    std::vector<std::string> paths;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.starts_with('/')) paths.emplace_back(line.substr(0, line.find_first_of(" \t")));
    }
    return paths;
}

// Runs the first of these programs that is there, to its end.
void runTool(const std::vector<std::string>& programs, const std::vector<std::string>& arguments) {
    struct End {
        std::mutex mutex;
        std::condition_variable came;
        bool isHere = false;  // guarded by mutex
    };
    const auto end = std::make_shared<End>();
    for (const std::string& program : programs) {
        if (::access(program.c_str(), X_OK) != 0) continue;
        const auto process = Process::start(program, arguments, [end] {
            const std::lock_guard lock(end->mutex);
            end->isHere = true;
            end->came.notify_all();
        });
        if (!process) continue;
        std::unique_lock lock(end->mutex);
        const bool ended = end->came.wait_for(lock, kLongestUnmount, [&] { return end->isHere; });
        lock.unlock();
        if (!ended) (*process)->terminate();
        return;
    }
}

// The programs that may unmount what the user mounted, though the user may not.
void unmountWithTool(const MountEntry& mount) {
    if (mount.type == "fuse" || mount.type.starts_with("fuse."))
        runTool({"/usr/bin/fusermount3", "/bin/fusermount3", "/usr/bin/fusermount"},
                {"-u", "--", mount.point});
    else runTool({"/usr/bin/umount", "/bin/umount"}, {"--", mount.point});
}

}  // namespace

Mounts LinuxVolumesEjection::table() const {
    return parseMountInfo(readMountInfo(m_mountInfo).value_or(std::string()));
}

bool LinuxVolumesEjection::stands(const MountEntry& mount) const { return isAmong(table(), mount); }

Outcome LinuxVolumesEjection::eject(const MountEntry& mount,
                                    const std::string& diskSequence) const {
    const Mounts now = table();
    const auto found = std::find_if(
        now.begin(), now.end(), [&](const MountEntry& each) { return isSameMount(each, mount); });
    if (found == now.end()) return failure(nsvErr, kIsGone);
    const std::string device = m_devices.deviceOf(mount);
    if (!diskSequence.empty() && m_devices.sequenceOf(device) != diskSequence)
        return failure(nsvErr, kIsGone);
    // A path leads to the mount on top, so that the other one would go.
    if (isHiddenMount(now, static_cast<std::size_t>(found - now.begin())))
        return failure(fBsyErr, "Another volume is mounted over it");
    return device.empty() ? unmount(mount, now) : ejectDevice(mount, device, now);
}

Outcome LinuxVolumesEjection::unmount(const MountEntry& mount, const Mounts& table) const {
    if (isSystemPlace(mount.point)) return refusalFor("it is mounted on " + mount.point);
    if (const MountEntry* const stranger = strangerOn({mount}, table))
        return strangerFailure(*stranger);
    int error = ::umount2(mount.point.c_str(), UMOUNT_NOFOLLOW) == 0 ? 0 : errno;
    if (error == EPERM || error == EACCES) unmountWithTool(mount);
    if (error == 0 || !stands(mount)) return {noErr, {}, {mount}};
    Outcome outcome = busy({mount}, {});
    if (error == EBUSY || !outcome.dissent.holders.empty()) return outcome;
    return failure(ioErr, systemError("umount", mount.point, error).reason());
}

// The folders in sysfs of all that goes, and of all that is made of it.
std::vector<std::string> LinuxVolumesEjection::devicesOf(const EjectionPlan& plan) const {
    std::vector<std::string> devices;
    for (const DiskObject& each : plan.devices) {
        const std::string device =
            m_devices.deviceNumbered(gnu_dev_major(each.number), gnu_dev_minor(each.number));
        if (device.empty()) continue;
        devices.push_back(device);
        for (std::string& layer : m_devices.layersOn(device)) devices.push_back(std::move(layer));
    }
    return devices;
}

// The service learns of a mount a moment after it is made.
void LinuxVolumesEjection::addMounts(std::vector<DiskObject>& objects, const Mounts& table) const {
    for (const MountEntry& mount : table) {
        const auto number = m_devices.numberOf(m_devices.deviceOf(mount));
        for (DiskObject& object : objects) {
            const auto& points = object.mountPoints;
            if (number && object.isBlock && object.number == *number &&
                std::find(points.begin(), points.end(), mount.point) == points.end())
                object.mountPoints.push_back(mount.point);
        }
    }
}

// What of the system lies there, in words; empty when nothing does.
std::string LinuxVolumesEjection::useBySystem(const EjectionPlan& plan,
                                              const std::vector<std::string>& devices,
                                              const Mounts& mounts) const {
    for (const MountEntry& each : mounts)
        if (isSystemPlace(each.point)) return "it is mounted on " + each.point;
    for (const DiskObject& each : plan.devices) {
        if (each.isActiveSwap) return "memory is swapped to it";
        for (const std::string& point : each.mountPoints)
            if (isSystemPlace(point)) return "it is mounted on " + point;
    }
    for (const std::string& path :
         swapPathsIn(readSystemText(m_swaps, kSwapsLimit).value_or(std::string()))) {
        const bool isFile = std::any_of(mounts.begin(), mounts.end(), [&](const MountEntry& each) {
            return isWithin(path, each.point);
        });
        const std::string device =
            isWithin(path, "/dev") ? m_devices.deviceNamed(lastPathComponent(path)) : "";
        if (isFile || std::find(devices.begin(), devices.end(), device) != devices.end())
            return "memory is swapped to it";
    }
    return {};
}

// What would break, or would hold the drive, though it is no mount of it; empty when there is
// nothing.
std::string LinuxVolumesEjection::useByOthers(const EjectionPlan& plan,
                                              const Mounts& mounts) const {
    std::vector<std::string> planned;
    for (const DiskObject& each : plan.devices)
        planned.push_back(
            m_devices.deviceNumbered(gnu_dev_major(each.number), gnu_dev_minor(each.number)));
    for (const std::string& image : m_devices.attachedImages())
        if (std::ranges::any_of(
                mounts, [&](const MountEntry& each) { return isWithin(image, each.point); }))
            return "a disk image on it is attached: " + image;
    return m_devices.otherUseOf(planned);
}

Outcome LinuxVolumesEjection::ejectDevice(const MountEntry& mount, const std::string& device,
                                          const Mounts& table) const {
    if (isSystemPlace(mount.point)) return refusalFor("it is mounted on " + mount.point);
    auto service = DiskService::open(kPatienceWithService);
    if (!service) return failure(ioErr, service.error().reason);
    std::vector<DiskObject> objects = service->objects();
    addMounts(objects, table);
    const auto number = m_devices.numberOf(device);
    const auto plan = number ? planEjection(objects, *number) : std::nullopt;
    if (!plan) return failure(ioErr, "The disk service can not tell what the volume lies on");

    const std::vector<std::string> devices = devicesOf(*plan);
    Mounts mounts;
    for (const MountEntry& each : table)
        if (std::find(devices.begin(), devices.end(), m_devices.deviceOf(each)) != devices.end())
            mounts.push_back(each);
    if (const std::string use = useBySystem(*plan, devices, mounts); !use.empty())
        return refusalFor(use);
    if (const MountEntry* const stranger = strangerOn(mounts, table))
        return strangerFailure(*stranger);
    if (const std::string use = useByOthers(*plan, mounts); !use.empty())
        return failure(fBsyErr, "In use: " + use);

    const auto failureOf = [&](const DiskServiceFailure& obstacle, std::string_view before) {
        if (obstacle.kind != FailureKind::Busy)
            return failure(ioErr, fmt::format("{}{}", before, obstacle.reason));
        std::vector<std::string> nodes;
        for (const DiskObject& each : plan->devices) nodes.push_back(each.node);
        return busy(mounts, std::move(nodes));
    };
    const auto isAnyLeft = [&] {
        const Mounts now = this->table();
        return std::any_of(mounts.begin(), mounts.end(),
                           [&](const MountEntry& each) { return isAmong(now, each); });
    };
    DiskEjection ejection(*service, *plan, m_devices);
    if (const auto obstacle = ejection.unmount(isAnyLeft)) {
        if (obstacle->kind == FailureKind::Gone && !stands(mount))
            return failure(nsvErr, obstacle->reason);
        return failureOf(*obstacle, "");
    }
    if (isAnyLeft())
        return failure(ioErr, "The disk service unmounted it, but it is still mounted here");
    if (const auto obstacle = ejection.release())
        return failureOf(*obstacle, "The volume is unmounted, but its drive stays: ");
    return {noErr, {}, std::move(mounts)};
}

}  // namespace orrinvale
