// Which of the drives goes when things change between listing and ejecting, and when the disk
// service is silent.
#include "ejection/MadeUpDrives.h"
#include "engine/volumes/VolumesManager.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

TEST(DriveIdentity, WhatTookTheirPlaceIsNeverEjected) {
    if (const std::string reason = obstacle(); !reason.empty()) GTEST_SKIP() << reason;
    MadeUpDrives drives(kStick, kStickMounts);
    ASSERT_TRUE(drives.isReady);
    EjectDissent dissent;
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(50, 0, dissent), nsvErr)
        << "a number that nobody was given";

    const std::int16_t number = drives.numberOf("/media/c");
    drives.tree.write("mounts",
                      contentOf(drives.tree.at("mounts")) + mountLine(59, "8:64", "/media/c", 52));
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), fBsyErr)
        << "another stands over it";
    drives.tree.write("mounts", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n" + kStickMounts +
                                    mountLine(59, "8:64", "/media"));
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), fBsyErr)
        << "another stands over its folder";
    EXPECT_EQ(dissent.reason, "Another volume is mounted over it");
    drives.tree.write("sys/devices/sdc/diskseq", "8\n");
    drives.tree.write("mounts", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n" + kStickMounts);
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), nsvErr)
        << "another stick, mounted just as the first";
    EXPECT_EQ(dissent.reason, "The volume is not mounted any more");
    EXPECT_NE(drives.numberOf("/media/c"), number);
    drives.tree.write("mounts", mountLine(52, "8:17", "/media/c"));
    EXPECT_EQ(drives.volumes.FSEjectVolumeSync(number, 0, dissent), nsvErr)
        << "another device under the same id";
    EXPECT_EQ(drives.calls(), Texts{});
}

TEST(DriveIdentity, AllVolumesOfADriveGoTogetherWithoutAFailure) {
    if (const std::string reason = obstacle(); !reason.empty()) GTEST_SKIP() << reason;
    MadeUpDrives drives(kStick, kStickMounts);
    ASSERT_TRUE(drives.isReady);
    for (const char* const device : {"sdb1", "sdb2", "sdc"})
        drives.tree.write(std::string("sys/devices/") + device + "/removable", "1\n");
    const std::int16_t second = drives.numberOf("/media/a/deep");
    VolumesManager manager(drives.volumes, {});
    EXPECT_EQ(manager.ejectAllVolumes(), 0);
    EXPECT_EQ(drives.calls(), (Texts{"Unmount sdb2", "Unmount sdb1", "Eject stick",
                                     "PowerOff stick", "Unmount sdc", "Eject other"}));
    EXPECT_FALSE(manager.ejectSingleVolume(second)) << "told once";
    ASSERT_EQ(manager.failures().size(), 1U);
    EXPECT_EQ(manager.failures()[0].status, nsvErr);
    EXPECT_EQ(manager.ejectAllVolumes(), -1);
}

TEST(DiskService, NobodyWaitsForAServiceThatDoesNotAnswer) {
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
