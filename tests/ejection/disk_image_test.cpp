// Disk images on loop devices, ejected by the command through the real disk service. All services
// are the test's own, in name spaces that take them along.
#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/ServiceProcess.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Json = nlohmann::json;

constexpr const char* kSystemBus = "/usr/bin/dbus-daemon";
constexpr const char* kUdev = "/lib/systemd/systemd-udevd";
constexpr const char* kDisks = "/usr/libexec/udisks2/udisksd";

bool shell(const std::string& command) {
    return std::system(("{ " + command + "; } >/dev/null 2>&1").c_str()) == 0;
}

/// The services, among mounts that nobody else sees.
class DiskWorld {
public:
    DiskWorld() {
        for (const char* const program :
             {kSystemBus, kUdev, kDisks, "/usr/sbin/mkfs.ext4", "/usr/sbin/losetup"})
            if (::access(program, X_OK) != 0) obstacle = std::string(program) + " is not here";
        // A machine with a udevd has no need of a second one, which would disturb it.
        const bool isUdevThere = shell("udevadm control --ping --timeout=1");
        const bool isCovered =
            (!isUdevThere || shell("mkdir /mnt/udev && mount --bind /run/udev /mnt/udev")) &&
            ::mount("ram", "/run", "tmpfs", 0, "mode=755") == 0 &&
            shell("mkdir /run/dbus /run/udev") &&
            (!isUdevThere || shell("mount --move /mnt/udev /run/udev")) && hasStateFolder() &&
            ::mount("ram", "/var/lib/udisks2", "tmpfs", 0, "mode=700") == 0;
        if (!isCovered) obstacle = std::string("no mounts: ") + std::strerror(errno);
        if (!obstacle.empty()) return;
        m_services.emplace_back(
            std::vector<std::string>{kSystemBus, "--system", "--nofork", "--nopidfile"});
        bool isUp = comesTrue([] { return isThere("/run/dbus/system_bus_socket"); });
        if (!isUdevThere) {
            m_services.emplace_back(std::vector<std::string>{kUdev});
            isUp = isUp && comesTrue([] { return isThere("/run/udev/control"); });
        }
        m_services.emplace_back(std::vector<std::string>{kDisks});
        isUp = isUp && comesTrue([] {
                   return shell(
                       "gdbus call --system -d org.freedesktop.UDisks2 -o "
                       "/org/freedesktop/UDisks2/Manager "
                       "-m org.freedesktop.DBus.Peer.Ping");
               });
        if (!isUp) obstacle = "the services did not start";
    }

    std::string obstacle;

private:
    // The service makes it at its first start; where it never ran, a layer over the machine's own
    // folder has it.
    static bool hasStateFolder() {
        return ::access("/var/lib/udisks2", F_OK) == 0 ||
               shell(
                   "mkdir /run/upper /run/work && mount -t overlay overlay "
                   "-o lowerdir=/var/lib,upperdir=/run/upper,workdir=/run/work /var/lib && mkdir "
                   "/var/lib/udisks2");
    }

    std::vector<ServiceProcess> m_services;
};

ProgramRun ejectRun(const std::string& volume, std::vector<std::string> options = {"--json"}) {
    options.push_back(volume);
    return commandRun("eject", options, "/");
}

/// The service learns of a device a moment after udev.
bool isKnownToService(const std::string& device) {
    const std::string object =
        "/org/freedesktop/UDisks2/block_devices" + device.substr(std::strlen("/dev"));
    return shell("gdbus call --system -d org.freedesktop.UDisks2 -o " + object +
                 " -m org.freedesktop.DBus.Properties.Get org.freedesktop.UDisks2.Block IdUsage | "
                 "grep filesystem");
}

/// The loop devices that show a file below this folder.
std::vector<std::string> loopsOf(const std::string& folder) {
    std::vector<std::string> loops;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/block")) {
        const std::string image = contentOf(entry.path().string() + "/loop/backing_file");
        if (image.find(folder) != std::string::npos)
            loops.push_back("/dev/" + entry.path().filename().string());
    }
    return loops;
}

// Of a file of 40 MiB: two partitions of 16 MiB.
std::string partitionTable() {
    std::string sector(512, '\0');
    const auto put = [&](std::size_t at, std::uint32_t number) {
        for (std::size_t i = 0; i < 4; ++i)
            sector[at + i] = static_cast<char>(number >> (8 * i) & 0xFFU);
    };
    constexpr std::uint32_t size = 16U * 2048;
    for (const std::uint32_t partition : {0U, 1U}) {
        const std::size_t entry = 446 + 16 * std::size_t{partition};
        put(entry + 4, 0x83);
        put(entry + 8, 2048 + partition * size);
        put(entry + 12, size);
    }
    sector[510] = '\x55';
    sector[511] = '\xAA';
    return sector;
}

/// Images in a folder of the test, shown by loop devices that are let go at the end, also of a
/// child that was killed.
class DiskImages : public ::testing::Test {
protected:
    void TearDown() override {
        for (const std::string& loop : loopsOf(tree.path())) shell("losetup -d " + loop);
        EXPECT_EQ(loopsOf(tree.path()), std::vector<std::string>());
    }

    [[nodiscard]] std::string fault(const std::string& what,
                                    const ProgramRun::Result& result) const {
        return fmt::format("{}: status {}, {}{}\n", what, result.status, result.output,
                           result.error);
    }

    /// Makes the image, with a file system that has a line break in its name, and shows it.
    [[nodiscard]] std::string showImage() {
        tree.sparse("image", 16 << 20);
        if (!shell("mkfs.ext4 -q -L \"$(printf 'a\\nb')\" " + tree.at("image"))) return {};
        if (!shell("losetup -f " + tree.at("image"))) return {};
        const auto loops = loopsOf(tree.path());
        return loops.size() == 1 ? loops.front() : std::string();
    }

    TestTree tree;
};

TEST_F(DiskImages, AnImageGoesWithItsDeviceAndNotWhileItIsHeld) {
    withOwnMounts([this]() -> std::string {
        const DiskWorld world;
        if (!world.obstacle.empty()) return "skip: " + world.obstacle;
        const std::string loop = showImage();
        if (loop.empty()) return "skip: no loop device here";
        ::mkdir("/mnt/disk", 0755);
        if (!comesTrue([&] { return isKnownToService(loop); })) return "not known";
        if (::mount(loop.c_str(), "/mnt/disk", "ext4", 0, nullptr) != 0) return "no mount";

        std::string faults;
        ServiceProcess child({"/usr/bin/env", "-C", "/mnt/disk", "/usr/bin/sleep", "100"});
        if (!comesTrue(
                [&] { return shell(fmt::format("grep -q sleep /proc/{}/comm", child.number())); }))
            return "no child";
        auto result = ejectRun("a\nb").run();
        const Json held = Json::parse(result.output, nullptr, false);
        const Json holder{{"pid", child.number()}, {"name", "sleep"}, {"path", "/mnt/disk"}};
        if (result.status != 1 || held.value("ejected", true) ||
            held.value("holders", Json()) != Json::array({holder}) ||
            result.error.find("\"a\\nb\" could not be ejected: The volume is in use, held open by "
                              "sleep (process ") == std::string::npos)
            faults += fault("held", result);
        child.end();

        ProgramRun byOther = ejectRun("/mnt/disk");
        byOther.user = 65534;
        result = byOther.run();
        if (result.status != 1 || result.error.find("uthorized") == std::string::npos)
            faults += fault("no right", result);
        if (loopsOf(tree.path()).empty()) faults += "gone too early\n";

        result = ejectRun("a\nb").run();
        const Json gone = Json::parse(result.output, nullptr, false);
        if (result.status != 0 || !gone.value("ejected", false) || gone.value("name", "") != "a\nb")
            faults += fault("free", result);
        if (!loopsOf(tree.path()).empty()) faults += "the loop device is still there\n";
        result = ejectRun("/mnt/disk").run();
        return result.status == 3 ? faults : faults + fault("gone", result);
    });
}

TEST_F(DiskImages, AllPartitionsGoTogetherAndAnImageMayLetGoByItself) {
    withOwnMounts([this]() -> std::string {
        const DiskWorld world;
        if (!world.obstacle.empty()) return "skip: " + world.obstacle;
        tree.sparse("parts", 40 << 20);
        tree.patch("parts", 0, partitionTable());
        // With -P the partitions go when the image does. Some kernels look for none by themselves.
        if (!shell("losetup -P -f " + tree.at("parts"))) return "skip: no loop device here";
        const std::string loop = loopsOf(tree.path()).at(0);
        const std::string first = loop + "p1";
        const std::string second = loop + "p2";
        if (!isThere(first)) shell("partx -a " + loop);
        if (!comesTrue([&] { return isThere(first) && isThere(second); }))
            return "skip: no partitions on loop devices";
        // A device that changes while udev looks at it for the first time would be looked at once
        // only.
        if (!shell("udevadm settle && mkfs.ext4 -q " + first + " && mkfs.ext4 -q " + second))
            return "no file systems";
        if (!comesTrue([&] { return isKnownToService(first) && isKnownToService(second); }))
            return "not known";
        ::mkdir("/mnt/a", 0755);
        if (::mount(first.c_str(), "/mnt/a", "ext4", 0, nullptr) != 0 ||
            ::mkdir("/mnt/a/b", 0755) != 0 ||
            ::mount(second.c_str(), "/mnt/a/b", "ext4", 0, nullptr) != 0)
            return "no mounts";
        std::string faults;
        auto result = ejectRun("/mnt/a", {"-0"}).run();
        if (result.status != 0 || result.output != std::string("/mnt/a\0", 7))
            faults += fault("partitions", result);
        if (isThere("/mnt/a/b")) faults += "the second partition is still mounted\n";
        if (!loopsOf(tree.path()).empty()) faults += "the loop device is still there\n";

        tree.sparse("image", 16 << 20);
        if (!shell("mkfs.ext4 -q " + tree.at("image") + " && mount -o loop " + tree.at("image") +
                   " /mnt/a"))
            return faults + "no mount";
        if (!comesTrue([&] { return isKnownToService(loopsOf(tree.path()).at(0)); }))
            return faults + "not known";
        result = ejectRun("/mnt/a", {}).run();
        if (result.status != 0 || result.output != "Ejected a from /mnt/a\n")
            faults += fault("lets go", result);
        if (!loopsOf(tree.path()).empty()) faults += "the image is still shown\n";
        return faults;
    });
}

}  // namespace
}  // namespace orrinvale::testing
