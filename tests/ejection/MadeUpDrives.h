// Drives that no test machine has, on a disk service of the test's making and a bus of its own. The
// devices and the mounts are files of the test.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <nlohmann/json.hpp>

#include "engine/volumes/VolumesInfo.h"
#include "platform/descriptor.h"
#include "platform/linux/LinuxVolumes.h"
#include "support/ServiceProcess.h"
#include "support/test.h"

namespace orrinvale::testing {

using Texts = std::vector<std::string>;
using Answers = std::map<std::string, std::string>;

inline constexpr const char* kPython = "/usr/bin/python3";
inline constexpr const char* kBus = "/usr/bin/dbus-daemon";

inline Texts linesOf(const std::string& text) {
    Texts lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

inline std::string obstacle() {
    if (::access(kBus, X_OK) != 0) return "dbus-daemon is not here";
    const int status = std::system("/usr/bin/python3 -c 'import dbusmock' >/dev/null 2>&1");
    return status == 0 ? std::string() : "python3-dbusmock is not here";
}

// The name of a socket is there before anybody listens.
inline bool isListening(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const Descriptor end(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const auto* const to = reinterpret_cast<const sockaddr*>(&address);
    return ::connect(end.get(), to, sizeof address) == 0;
}

/// The disks as disk_service.py reads them, the lines of the table of mounts below "/", and the
/// service's answers that are not the usual ones. No disks, no service. While it lives the system
/// bus is the test's.
class MadeUpDrives {
public:
    MadeUpDrives(const std::string& disks, const std::string& mounts, const Answers& answers = {}) {
        const std::string address = "unix:path=" + tree.at("bus");
        tree.write("mounts", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n" + mounts);
        tree.write("swaps", "Filename Type Size Used Priority\n");
        for (const std::string& line : linesOf(disks)) addDevice(line);
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
        bus.emplace(Texts{kBus, "--session", "--nofork", "--nopidfile", "--address=" + address});
        isReady = comesTrue([&] { return isListening(tree.at("bus")); });
        if (disks.empty()) return;
        const nlohmann::json parameters{{"disks", disks},
                                        {"mounts", tree.at("mounts")},
                                        {"calls", tree.at("calls")},
                                        {"answers", answers}};
        service.emplace(Texts{kPython, "-m", "dbusmock", "-t", ORRINVALE_DISK_SERVICE, "-p",
                              parameters.dump()});
        isReady = isReady && comesTrue([&] { return contentOf(tree.at("calls")) == "ready\n"; });
    }
    ~MadeUpDrives() { ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    /// A device is the first of its line, with its number behind it.
    void addDevice(const std::string& line) {
        std::istringstream words(line);
        std::string name, number;
        words >> name >> number;
        if (number.find(':') == std::string::npos) return;
        tree.write("sys/devices/" + name + "/dev", number + '\n');
        tree.write("sys/devices/" + name + "/diskseq", "7\n");
        if (line.ends_with(" loop"))
            tree.write("sys/devices/" + name + "/loop/backing_file", "/image\n");
        tree.symlink(tree.at("sys/devices/" + name), "sys/dev/block/" + number);
        tree.symlink(tree.at("sys/devices/" + name), "sys/class/block/" + name);
    }

    std::int16_t numberOf(const std::string& path) {
        VolumesInfo info(volumes);
        for (const auto& each : info.volsArray())
            if (each->volRootDir == path) return each->volRefNumber;
        return -1;
    }

    /// What was asked of the service, in order.
    [[nodiscard]] Texts calls() const {
        Texts lines = linesOf(contentOf(tree.at("calls")));
        if (!lines.empty()) lines.erase(lines.begin());
        return lines;
    }

    TestTree tree;
    bool isReady = false;
    std::optional<ServiceProcess> bus;
    std::optional<ServiceProcess> service;
    LinuxVolumes volumes{{tree.at("mounts"), sysfs(), tree.at("udev"), tree.at("swaps")},
                         std::chrono::seconds(10),
                         [](const SpaceQuestion&) {
                             return SpaceAnswer{0, false, 1000, 500};
                         }};

private:
    std::string sysfs() {
        tree.folder("sys");  // it is looked for at once
        return tree.at("sys");
    }
};

inline std::string mountLine(int id, const std::string& device, const std::string& point,
                             int parent = 1) {
    return fmt::format("{} {} {} / {} rw - vfat /dev/x rw\n", id, parent, device, point);
}

inline const std::string kStick =
    "stick drive eject power\nsdb 8:16 on=stick\nsdb1 8:17 on=stick in=sdb at=/media/a\n"
    "sdb2 8:18 on=stick in=sdb at=/media/a/deep\nother drive eject\nsdc 8:32 on=other "
    "at=/media/c\n";
inline const std::string kStickMounts = mountLine(50, "8:17", "/media/a") +
                                        mountLine(51, "8:18", "/media/a/deep", 50) +
                                        mountLine(52, "8:32", "/media/c");
inline const std::string kVault =
    "disk drive power\nsdd 8:48 on=disk\nsdd1 8:49 on=disk in=sdd at=/media/plain\nsdd2 8:50 "
    "on=disk in=sdd "
    "unlocked=dm-0\ndm-0 253:0 locked=sdd2 unlocked=dm-1\ndm-1 253:1 locked=dm-0 at=/media/vault\n";
inline const std::string kVaultMounts =
    mountLine(60, "8:49", "/media/plain") + mountLine(61, "253:1", "/media/vault");

}  // namespace orrinvale::testing
