// What is done to drives that no test machine has, in which order, and what is left alone.
#include "ejection/MadeUpDrives.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

// Of the stick and its neighbour, unless the row says otherwise.
struct Case {
    const char* what;
    std::string disks = kStick;
    std::string mounts = kStickMounts;
    std::string path = "/media/a";
    std::string swaps = {};
    Texts holders = {};  // "sdb1 dm-3 253:3": a device made of the first
    Answers answers = {};
    std::int32_t status = noErr;
    std::string reason = {};
    Texts calls = {};
};

constexpr const char* kStays = "The volume is unmounted, but its drive stays: ";
constexpr const char* kRunsFrom = "The system runs from this drive: ";
constexpr const char* kMadeOfIt = "sdb2 dm-3 253:3";
const std::string kSingle = "sdb 8:16 on=d at=/media/a\n";
const std::string kSingleMount = mountLine(50, "8:16", "/media/a");
const Texts kUnmounts{"Unmount sdb2", "Unmount sdb1"};
const Texts kAll{"Unmount sdb2", "Unmount sdb1", "Eject stick", "PowerOff stick"};
const Texts kVaultCalls{"Unmount sdd1", "Unmount dm-1", "Lock dm-0", "Lock sdd2", "PowerOff disk"};

Case vault(Case row) {
    row.disks = kVault;
    row.mounts = kVaultMounts;
    row.path = "/media/vault";
    return row;
}

Case single(Case row) {
    row.disks += kSingle;
    row.mounts = kSingleMount;
    return row;
}

std::vector<Case> whatGoes() {
    return {
        {.what = "all of a stick, the deeper mount first", .calls = kAll},
        vault({.what = "a vault in a vault", .calls = kVaultCalls}),
        single({.what = "one slot of a reader",
                .disks = "d drive eject power siblings=hub\ne drive eject power siblings=hub\n",
                .calls = {"Unmount sdb", "Eject d"}}),
        single({.what = "a disc",
                .disks = "d drive eject power optical\n",
                .calls = {"Unmount sdb", "Eject d"}}),
        {.what = "twice mounted",
         .disks = "d drive\nsdb 8:16 on=d at=/media/a,/media/b\n",
         .mounts = kSingleMount + mountLine(51, "8:16", "/media/b"),
         .calls = {"Unmount sdb", "Unmount sdb"}},
        {.what = "an image",
         .disks = "loop3 7:3 loop\nloop3p1 259:1 in=loop3 at=/media/a\n",
         .mounts = mountLine(50, "259:1", "/media/a"),
         .calls = {"Unmount loop3p1", "Delete loop3"}},
        {.what = "an image that lets go by itself",
         .disks = "loop3 7:3 loop autoclear\nloop3p1 259:1 in=loop3 at=/media/a\n",
         .mounts = mountLine(50, "259:1", "/media/a"),
         .calls = {"Unmount loop3p1"}},
        {.what = "no drive at all",
         .disks = "vda 254:0\nvda1 254:1 in=vda at=/media/a\n",
         .mounts = mountLine(50, "254:1", "/media/a"),
         .calls = {"Unmount vda1"}},
        {.what = "unmounted by somebody else",
         .path = "/media/c",
         .answers = {{"Unmount sdc", "not mounted"}},
         .calls = {"Unmount sdc", "Eject other"}},
        {.what = "switched off, though it does not eject",
         .answers = {{"Eject stick", "failed"}},
         .calls = kAll},
        {.what = "ejected, though it stays switched on",
         .answers = {{"PowerOff stick", "denied"}},
         .calls = kAll},
        {.what = "pulled when all is unmounted",
         .answers = {{"Eject stick", "gone"}},
         .calls = {"Unmount sdb2", "Unmount sdb1", "Eject stick"}},
        {.what = "memory swapped to a neighbour",
         .path = "/media/c",
         .swaps = "/media/card/swap file 1 0 -2\n",
         .calls = {"Unmount sdc", "Eject other"}},
    };
}

std::vector<Case> whatStays() {
    return {
        {.what = "in use",
         .answers = {{"Unmount sdb2", "busy"}},
         .status = fBsyErr,
         .reason = "The volume is in use",
         .calls = {"Unmount sdb2"}},
        {.what = "in use, in words",
         .answers = {{"Unmount sdb1", "busy in words"}},
         .status = fBsyErr,
         .reason = "The volume is in use",
         .calls = kUnmounts},
        {.what = "no right",
         .answers = {{"Unmount sdb2", "denied"}},
         .status = ioErr,
         .reason = "Not authorized to perform operation",
         .calls = {"Unmount sdb2"}},
        {.what = "a lie is found out before the drive is touched",
         .path = "/media/c",
         .answers = {{"Unmount sdc", "lie"}},
         .status = ioErr,
         .reason = "The disk service unmounted it, but it is still mounted here",
         .calls = {"Unmount sdc"}},
        {.what = "a drive that keeps its medium",
         .path = "/media/c",
         .answers = {{"Eject other", "failed"}},
         .status = ioErr,
         .reason = std::string(kStays) + "Error ejecting: medium error",
         .calls = {"Unmount sdc", "Eject other"}},
        vault({.what = "a disk that stays switched on",
               .answers = {{"PowerOff disk", "denied"}},
               .status = ioErr,
               .reason = std::string(kStays) + "Not authorized to perform operation",
               .calls = kVaultCalls}),
        vault({.what = "a vault that stays open",
               .answers = {{"Lock dm-0", "failed"}},
               .status = ioErr,
               .reason = std::string(kStays) + "Error ejecting: medium error",
               .calls = {"Unmount sdd1", "Unmount dm-1", "Lock dm-0"}}),
        {.what = "pulled before it is unmounted",
         .path = "/media/c",
         .answers = {{"Unmount sdc", "gone"}},
         .status = nsvErr,
         .reason = "The drive is not there any more",
         .calls = {"Unmount sdc"}},
        {.what = "the service goes away",
         .answers = {{"Unmount sdb1", "exit"}},
         .status = ioErr,
         .reason = "The disk service does not answer",
         .calls = kUnmounts},
    };
}

// Before anything is touched.
std::vector<Case> whatIsRefused() {
    const auto system = [](Case row, const char* use) {
        row.status = ioErr;
        row.reason = std::string(kRunsFrom) + use;
        return row;
    };
    const auto busy = [](Case row, const char* reason) {
        row.status = fBsyErr;
        row.reason = reason;
        return row;
    };
    const char* const swapped = "memory is swapped to it";
    return {
        {.what = "a device that the service does not know",
         .disks = "d drive\n" + kSingle,
         .mounts = mountLine(50, "8:64", "/media/a"),
         .status = ioErr,
         .reason = "The disk service can not tell what the volume lies on"},
        system({.what = "the system beside it",
                .mounts = kStickMounts + mountLine(53, "8:18", "/boot/efi")},
               "it is mounted on /boot/efi"),
        system({.what = "the system on something made of it",
                .mounts = kStickMounts + mountLine(53, "253:3", "/usr"),
                .holders = {kMadeOfIt}},
               "it is mounted on /usr"),
        system({.what = "a partition to swap to",
                .disks = kStick + "sdb3 8:19 on=stick in=sdb swap\n"},
               swapped),
        system({.what = "swapping to what is made of it",
                .swaps = "/dev/dm-3 partition 1 0 -2\n",
                .holders = {kMadeOfIt}},
               swapped),
        system({.what = "a file to swap to", .swaps = "/media/a/deep/swap file 1 0 -2\n"}, swapped),
        busy({.what = "another volume on it",
              .mounts = kStickMounts + mountLine(53, "8:64", "/media/a/x", 50)},
             "Another volume is mounted on it at /media/a/x"),
        busy({.what = "a volume group on it, of which nothing is mounted", .holders = {kMadeOfIt}},
             "In use: another device is made of it: dm-3"),
    };
}

void expectOutcome(const Case& each) {
    MadeUpDrives drives(each.disks, each.mounts, each.answers);
    ASSERT_TRUE(drives.isReady) << each.what;
    drives.addDevice("sde 8:64");
    for (const std::string& holder : each.holders) {
        const std::string below = holder.substr(0, holder.find(' '));
        const std::string above = holder.substr(below.size() + 1);
        drives.addDevice(above);
        const std::string name = above.substr(0, above.find(' '));
        drives.tree.symlink(drives.tree.at("sys/devices/" + name),
                            "sys/devices/" + below + "/holders/" + name);
    }
    if (!each.swaps.empty()) drives.tree.write("swaps", "Filename\n" + each.swaps);
    const std::int16_t number = drives.numberOf(each.path);
    ASSERT_GT(number, 0) << each.what;
    EjectDissent dissent;
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), each.status) << each.what;
    EXPECT_EQ(dissent.reason, each.reason) << each.what;
    EXPECT_EQ(drives.calls(), each.calls) << each.what;
    const bool isLeft =
        contentOf(drives.tree.at("mounts")).find(' ' + each.path + ' ') != std::string::npos;
    EXPECT_TRUE(isLeft ? each.status != noErr : !each.calls.empty()) << each.what;
}

TEST(MadeUpDrives, EachStepInItsOrderAndNothingElse) {
    if (const std::string reason = obstacle(); !reason.empty()) GTEST_SKIP() << reason;
    for (const auto& rows : {whatGoes(), whatStays(), whatIsRefused()})
        for (const Case& each : rows) expectOutcome(each);
}

}  // namespace
}  // namespace orrinvale::testing
