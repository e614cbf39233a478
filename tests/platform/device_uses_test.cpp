// What uses a drive without being mounted, in made-up folders of the kernel: a drive must not be
// switched off under it.
#include "platform/linux/LinuxVolumesDevices.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

// Two sticks with a partition each, and what a row adds.
struct Machine {
    Machine() {
        for (const char* const name : {"sda", "sda1", "sdb", "sdb1", "dm-0", "loop3"}) {
            tree.folder(std::string("sys/devices/") + name);
            tree.symlink(std::string("../../devices/") + name,
                         std::string("sys/class/block/") + name);
        }
        tree.write("udev/data/b8:1", "I:1\nE:ID_FS_TYPE=ext4\n");
        tree.write("sys/devices/sda1/dev", "8:1\n");
    }
    std::string use(const std::vector<std::string>& names) {
        const LinuxVolumesDevices devices(tree.at("sys"), tree.at("udev"));
        std::vector<std::string> folders;
        for (const std::string& name : names) folders.push_back(devices.deviceNamed(name));
        return devices.otherUseOf(folders);
    }
    TestTree tree;
};

TEST(DeviceUses, WhatIsMadeOfADriveOrSpansItIsTold) {
    const std::vector<std::string> stick{"sda", "sda1"};
    EXPECT_EQ(Machine().use(stick), "");

    Machine unlocked;
    unlocked.tree.symlink("../../dm-0", "sys/devices/sda1/holders/dm-0");
    EXPECT_EQ(unlocked.use({"sda", "sda1", "dm-0"}), "") << "it is locked again on the way";
    EXPECT_EQ(unlocked.use(stick), "another device is made of it: dm-0");
    unlocked.tree.write("sys/devices/dm-0/dm/name", "vg-home\n");
    EXPECT_EQ(unlocked.use(stick), "another device is made of it: vg-home");

    Machine spanned;
    spanned.tree.symlink("../../../../devices/sda1", "sys/fs/btrfs/1234/devices/sda1");
    EXPECT_EQ(spanned.use(stick), "");
    spanned.tree.symlink("../../../../devices/sdb1", "sys/fs/btrfs/1234/devices/sdb1");
    EXPECT_EQ(spanned.use(stick), "a file system on it spans other drives");
    EXPECT_EQ(spanned.use({"sda", "sda1", "sdb", "sdb1"}), "");

    Machine pool;
    pool.tree.write("udev/data/b8:1", "I:1\nE:ID_FS_TYPE=zfs_member\n");
    EXPECT_EQ(pool.use(stick), "it belongs to a storage pool");
}

TEST(DeviceUses, AttachedImagesAreFoundByTheirFiles) {
    Machine machine;
    const LinuxVolumesDevices devices(machine.tree.at("sys"), machine.tree.at("udev"));
    EXPECT_TRUE(devices.attachedImages().empty());
    machine.tree.write("sys/devices/loop3/loop/backing_file", "/media/stick/disk \xff.img\n");
    EXPECT_EQ(devices.attachedImages(), std::vector<std::string>{"/media/stick/disk \xff.img"});
}

}  // namespace
}  // namespace orrinvale::testing
