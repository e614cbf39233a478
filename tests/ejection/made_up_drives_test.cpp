// What is done to drives that no test machine has, in which order, and what is left alone.
#include <gtest/gtest.h>

#include "ejection/MadeUpDrives.h"

namespace orrinvale::testing {
namespace {

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
        {"an image that lets go by itself",
         "loop3 7:3 loop autoclear\nloop3p1 259:1 in=loop3 at=/media/a\n",
         mountLine(50, "259:1", "/media/a"),
         "/media/a",
         {},
         noErr,
         "",
         {"Unmount loop3p1"}},
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

}  // namespace
}  // namespace orrinvale::testing
