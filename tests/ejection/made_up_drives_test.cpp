// Drives that no test machine has, on a disk service of the test's making and a bus of its own: what is done to them, in which
// order, and what is left alone. The devices and the mounts are files of the test.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "engine/volumes/VolumesInfo.h"
#include "engine/volumes/VolumesManager.h"
#include "platform/linux/LinuxVolumes.h"
#include "support/ServiceProcess.h"
#include "support/TestTree.h"

namespace orrinvale::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::string>;
using Answers = std::map<std::string, std::string>;

constexpr const char* kPython = "/usr/bin/python3";
constexpr const char* kBus = "/usr/bin/dbus-daemon";

Texts linesOf(const std::string& text) {
    Texts lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string obstacle() {
    if (::access(kBus, X_OK) != 0) return "dbus-daemon is not here";
    const int status = std::system("/usr/bin/python3 -c 'import dbusmock' >/dev/null 2>&1");
    return status == 0 ? std::string() : "python3-dbusmock is not here";
}

/// "8:17" or "8:17 at=... " of the service's text; the same number in the table of mounts, and a device in sysfs.
class MadeUpDrives {
public:
    MadeUpDrives(const std::string& disks, const std::string& mounts, const Answers& answers = {}) {
        const std::string address = "unix:path=" + tree.at("bus");
        tree.write("mounts", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n" + mounts);
        tree.write("swaps", "Filename Type Size Used Priority\n");
        for (const std::string& line : linesOf(disks)) addDevice(line);
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
        bus.emplace(Texts{kBus, "--session", "--nofork", "--nopidfile", "--address=" + address});
        isReady = comesTrue([&] { return isThere(tree.at("bus")); });
        if (disks.empty()) return;
        const nlohmann::json parameters{
            {"disks", disks}, {"mounts", tree.at("mounts")}, {"calls", tree.at("calls")}, {"answers", answers}};
        service.emplace(Texts{kPython, "-m", "dbusmock", "-t", ORRINVALE_DISK_SERVICE, "-p", parameters.dump()});
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
        if (line.ends_with(" loop")) tree.write("sys/devices/" + name + "/loop/backing_file", "/image\n");
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

std::string mountLine(int id, const std::string& device, const std::string& point, int parent = 1) {
    return fmt::format("{} {} {} / {} rw - vfat /dev/x rw\n", id, parent, device, point);
}

const std::string kStick =
    "stick drive eject power\nsdb 8:16 on=stick\nsdb1 8:17 on=stick in=sdb at=/media/a\n"
    "sdb2 8:18 on=stick in=sdb at=/media/a/deep\nother drive eject\nsdc 8:32 on=other at=/media/c\n";
const std::string kStickMounts =
    mountLine(50, "8:17", "/media/a") + mountLine(51, "8:18", "/media/a/deep", 50) + mountLine(52, "8:32", "/media/c");
const std::string kVault =
    "disk drive power\nsdd 8:48 on=disk\nsdd1 8:49 on=disk in=sdd at=/media/plain\nsdd2 8:50 on=disk in=sdd "
    "unlocked=dm-0\ndm-0 253:0 locked=sdd2 unlocked=dm-1\ndm-1 253:1 locked=dm-0 at=/media/vault\n";
const std::string kVaultMounts = mountLine(60, "8:49", "/media/plain") + mountLine(61, "253:1", "/media/vault");

struct Case {
    const char* what;
    std::string disks, mounts, path;
    Answers answers;
    std::int32_t status = noErr;
    std::string reason;
    Texts calls;
    std::string swaps = {};
    Texts holders = {};  // "sdb1 dm-3 253:3": a device made of the first
};

std::vector<Case> cases() {
    const Texts unmounts{"Unmount sdb2", "Unmount sdb1"};
    const auto after = [&](Texts more, Texts start = {"Unmount sdb2", "Unmount sdb1"}) {
        start.insert(start.end(), more.begin(), more.end());
        return start;
    };
    const std::string single = "sdb 8:16 on=d at=/media/a\n";
    const std::string singleMount = mountLine(50, "8:16", "/media/a");
    const std::string stays = "The volume is unmounted, but its drive stays: ";
    const std::string runsFrom = "The system runs from this drive: ";
    return {
        {"all of a stick, the deeper mount first",
         kStick,
         kStickMounts,
         "/media/a",
         {},
         noErr,
         "",
         after({"Eject stick", "PowerOff stick"})},
        {"a vault in a vault",
         kVault,
         kVaultMounts,
         "/media/vault",
         {},
         noErr,
         "",
         {"Unmount sdd1", "Unmount dm-1", "Lock dm-0", "Lock sdd2", "PowerOff disk"}},
        {"one slot of a reader",
         "d drive eject power siblings=hub\ne drive eject power siblings=hub\n" + single,
         singleMount,
         "/media/a",
         {},
         noErr,
         "",
         {"Unmount sdb", "Eject d"}},
        {"a disc",
         "d drive eject power optical\n" + single,
         singleMount,
         "/media/a",
         {},
         noErr,
         "",
         {"Unmount sdb", "Eject d"}},
        {"twice mounted",
         "d drive\nsdb 8:16 on=d at=/media/a,/media/b\n",
         singleMount + mountLine(51, "8:16", "/media/b"),
         "/media/a",
         {},
         noErr,
         "",
         {"Unmount sdb", "Unmount sdb"}},
        {"an image",
         "loop3 7:3 loop\nloop3p1 259:1 in=loop3 at=/media/a\n",
         mountLine(50, "259:1", "/media/a"),
         "/media/a",
         {},
         noErr,
         "",
         {"Unmount loop3p1", "Delete loop3"}},
        {"no drive at all",
         "vda 254:0\nvda1 254:1 in=vda at=/media/a\n",
         mountLine(50, "254:1", "/media/a"),
         "/media/a",
         {},
         noErr,
         "",
         {"Unmount vda1"}},

        {"in use",
         kStick,
         kStickMounts,
         "/media/a",
         {{"Unmount sdb2", "busy"}},
         fBsyErr,
         "The volume is in use",
         {"Unmount sdb2"}},
        {"in use, in words",
         kStick,
         kStickMounts,
         "/media/a",
         {{"Unmount sdb1", "busy in words"}},
         fBsyErr,
         "The volume is in use",
         unmounts},
        {"no right",
         kStick,
         kStickMounts,
         "/media/a",
         {{"Unmount sdb2", "denied"}},
         ioErr,
         "Not authorized to perform operation",
         {"Unmount sdb2"}},
        {"unmounted by somebody else",
         kStick,
         kStickMounts,
         "/media/c",
         {{"Unmount sdc", "not mounted"}},
         noErr,
         "",
         {"Unmount sdc", "Eject other"}},
        {"a lie is found out before the drive is touched",
         kStick,
         kStickMounts,
         "/media/c",
         {{"Unmount sdc", "lie"}},
         ioErr,
         "The disk service unmounted it, but it is still mounted here",
         {"Unmount sdc"}},
        {"a drive that keeps its medium",
         kStick,
         kStickMounts,
         "/media/c",
         {{"Eject other", "failed"}},
         ioErr,
         stays + "Error ejecting: medium error",
         {"Unmount sdc", "Eject other"}},
        {"switched off, though it does not eject",
         kStick,
         kStickMounts,
         "/media/a",
         {{"Eject stick", "failed"}},
         noErr,
         "",
         after({"Eject stick", "PowerOff stick"})},
        {"ejected, though it stays switched on",
         kStick,
         kStickMounts,
         "/media/a",
         {{"PowerOff stick", "denied"}},
         noErr,
         "",
         after({"Eject stick", "PowerOff stick"})},
        {"a disk that stays switched on",
         kVault,
         kVaultMounts,
         "/media/vault",
         {{"PowerOff disk", "denied"}},
         ioErr,
         stays + "Not authorized to perform operation",
         {"Unmount sdd1", "Unmount dm-1", "Lock dm-0", "Lock sdd2", "PowerOff disk"}},
        {"a vault that stays open",
         kVault,
         kVaultMounts,
         "/media/vault",
         {{"Lock dm-0", "failed"}},
         ioErr,
         stays + "Error ejecting: medium error",
         {"Unmount sdd1", "Unmount dm-1", "Lock dm-0"}},

        {"pulled before it is unmounted",
         kStick,
         kStickMounts,
         "/media/c",
         {{"Unmount sdc", "gone"}},
         nsvErr,
         "The drive is not there any more",
         {"Unmount sdc"}},
        {"pulled when all is unmounted",
         kStick,
         kStickMounts,
         "/media/a",
         {{"Eject stick", "gone"}},
         noErr,
         "",
         after({"Eject stick"})},
        {"the service goes away",
         kStick,
         kStickMounts,
         "/media/a",
         {{"Unmount sdb1", "exit"}},
         ioErr,
         "The disk service does not answer",
         unmounts},
        {"a device that the service does not know",
         "d drive\n" + single,
         mountLine(50, "8:64", "/media/a"),
         "/media/a",
         {},
         ioErr,
         "The disk service can not tell what the volume lies on",
         {}},

        {"the system beside it",
         kStick,
         kStickMounts + mountLine(53, "8:18", "/boot/efi"),
         "/media/a",
         {},
         ioErr,
         runsFrom + "it is mounted on /boot/efi",
         {}},
        {"the system on something made of it",
         kStick,
         kStickMounts + mountLine(53, "253:3", "/usr"),
         "/media/a",
         {},
         ioErr,
         runsFrom + "it is mounted on /usr",
         {},
         "",
         {"sdb2 dm-3 253:3"}},
        {"memory swapped to a partition",
         kStick + "sdb3 8:19 on=stick in=sdb swap\n",
         kStickMounts,
         "/media/a",
         {},
         ioErr,
         runsFrom + "memory is swapped to it",
         {}},
        {"memory swapped to something made of it",
         kStick,
         kStickMounts,
         "/media/a",
         {},
         ioErr,
         runsFrom + "memory is swapped to it",
         {},
         "/dev/dm-3 partition 1 0 -2\n",
         {"sdb2 dm-3 253:3"}},
        {"memory swapped to a file",
         kStick,
         kStickMounts,
         "/media/a",
         {},
         ioErr,
         runsFrom + "memory is swapped to it",
         {},
         "/media/a/deep/swap file 1 0 -2\n"},
        {"memory swapped to a neighbour",
         kStick,
         kStickMounts,
         "/media/c",
         {},
         noErr,
         "",
         {"Unmount sdc", "Eject other"},
         "/media/card/swap file 1 0 -2\n"},
        {"another volume on it",
         kStick,
         kStickMounts + mountLine(53, "8:64", "/media/a/x", 50),
         "/media/a",
         {},
         fBsyErr,
         "Another volume is mounted on it at /media/a/x",
         {}},
    };
}

TEST(MadeUpDrives, EachStepInItsOrderAndNothingElse) {
    if (const std::string reason = obstacle(); !reason.empty()) GTEST_SKIP() << reason;
    for (const Case& each : cases()) {
        MadeUpDrives drives(each.disks, each.mounts, each.answers);
        ASSERT_TRUE(drives.isReady) << each.what;
        drives.addDevice("sde 8:64");
        for (const std::string& holder : each.holders) {
            const std::string below = holder.substr(0, holder.find(' '));
            const std::string above = holder.substr(below.size() + 1);
            drives.addDevice(above);
            const std::string name = above.substr(0, above.find(' '));
            drives.tree.symlink(drives.tree.at("sys/devices/" + name), "sys/devices/" + below + "/holders/" + name);
        }
        if (!each.swaps.empty()) drives.tree.write("swaps", "Filename\n" + each.swaps);
        const std::int16_t number = drives.numberOf(each.path);
        ASSERT_GT(number, 0) << each.what;
        EjectDissent dissent;
        EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), each.status) << each.what;
        EXPECT_EQ(dissent.reason, each.reason) << each.what;
        EXPECT_EQ(drives.calls(), each.calls) << each.what;
        const bool isLeft = contentOf(drives.tree.at("mounts")).find(' ' + each.path + ' ') != std::string::npos;
        EXPECT_TRUE(isLeft ? each.status != noErr : !each.calls.empty()) << each.what;
    }
}

TEST(MadeUpDrives, WhatTookTheirPlaceIsNeverEjected) {
    if (const std::string reason = obstacle(); !reason.empty()) GTEST_SKIP() << reason;
    MadeUpDrives drives(kStick, kStickMounts);
    ASSERT_TRUE(drives.isReady);
    EjectDissent dissent;
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(50, 0, dissent), nsvErr) << "a number that nobody was given";

    const std::int16_t number = drives.numberOf("/media/c");
    drives.tree.write("mounts", contentOf(drives.tree.at("mounts")) + mountLine(59, "8:64", "/media/c", 52));
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), fBsyErr) << "another stands over it";
    drives.tree.write("sys/devices/sdc/diskseq", "8\n");
    drives.tree.write("mounts", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n" + kStickMounts);
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), nsvErr)
        << "another stick, mounted just as the first";
    EXPECT_EQ(dissent.reason, "The volume is not mounted any more");
    EXPECT_NE(drives.numberOf("/media/c"), number);
    drives.tree.write("mounts", mountLine(52, "8:17", "/media/c"));
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), nsvErr) << "another device under the same id";
    EXPECT_EQ(drives.calls(), Texts{});
}

TEST(MadeUpDrives, AllVolumesOfADriveGoTogetherWithoutAFailure) {
    if (const std::string reason = obstacle(); !reason.empty()) GTEST_SKIP() << reason;
    MadeUpDrives drives(kStick, kStickMounts);
    ASSERT_TRUE(drives.isReady);
    for (const char* const device : {"sdb1", "sdb2", "sdc"})
        drives.tree.write(std::string("sys/devices/") + device + "/removable", "1\n");
    const std::int16_t second = drives.numberOf("/media/a/deep");
    VolumesManager manager(drives.volumes, {});
    EXPECT_EQ(manager.ejectAllVolumes(), 0);
    EXPECT_EQ(drives.calls(),
              (Texts{"Unmount sdb2", "Unmount sdb1", "Eject stick", "PowerOff stick", "Unmount sdc", "Eject other"}));
    EXPECT_FALSE(manager.ejectSingleVolume(second)) << "told once";
    ASSERT_EQ(manager.failures().size(), 1U);
    EXPECT_EQ(manager.failures()[0].status, nsvErr);
    EXPECT_EQ(manager.ejectAllVolumes(), -1);
}

TEST(MadeUpDrives, NobodyWaitsForAServiceThatDoesNotAnswer) {
    if (const std::string reason = obstacle(); !reason.empty()) GTEST_SKIP() << reason;
    const auto eject = [](MadeUpDrives& drives, const char* reason) {
        const std::int16_t number = drives.numberOf("/media/c");
        ASSERT_GT(number, 0);
        EjectDissent dissent;
        const auto start = Clock::now();
        EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), ioErr);
        EXPECT_LT(Clock::now() - start, 1500ms) << reason;
        EXPECT_EQ(dissent.reason, reason);
    };
    MadeUpDrives empty("", kStickMounts);
    ASSERT_TRUE(empty.isReady);
    for (const std::string& line : linesOf(kStick)) empty.addDevice(line);
    eject(empty, "The disk service, udisks2, is not there");
    empty.bus->signal(SIGSTOP);
    eject(empty, "The system bus does not answer");
    empty.bus->end();
    eject(empty, "The disk service can not be asked: no system bus");

    MadeUpDrives silent(kStick, kStickMounts);
    ASSERT_TRUE(silent.isReady);
    silent.service->signal(SIGSTOP);
    eject(silent, "The disk service does not answer");
    silent.service->signal(SIGCONT);
    EXPECT_EQ(silent.calls(), Texts{});
}

}  // namespace
}  // namespace orrinvale::testing
