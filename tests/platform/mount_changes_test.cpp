// What came and what went between two looks at a table of the test's making. Real mounts are in
// services/volumes.
#include "platform/linux/LinuxMountChanges.h"
#include "support/test.h"

namespace orrinvale {
namespace {

// "+name path" or "-name path" a change.
std::string textOf(const std::vector<MountChange>& changes) {
    std::string text;
    for (const MountChange& each : changes)
        text += (each.came ? "+" : "-") + each.name + ' ' + each.path + ';';
    return text;
}

// With a stick of this label, in the lines of udev.
bool plugIn(TestTree& tree, const std::string& label) {
    return tree.write("sys/devices/sdb/dev", "8:16\n") &&
           tree.symlink(tree.at("sys/devices/sdb"), "sys/dev/block/8:16") &&
           tree.write("udev/data/b8:16", label);
}

TEST(MountChanges, OneVolumeComesOrGoesWhateverItsMountsDo) {
    const std::string root = "1 0 8:0 / / rw - ext4 x rw\n";
    const std::string stick = "50 1 8:16 / /media/stick rw - vfat /dev/sdb rw\n";
    const std::string bind = "51 1 8:16 / /mnt/a rw - vfat /dev/sdb rw\n";
    const std::string far = "60 1 0:40 / /far rw - nfs host:/a rw\n";
    const struct {
        const char* what;
        std::string before;
        std::string after;
        std::string changes;
    } cases[] = {
        {"nothing", stick, stick, ""},
        {"one comes", "", stick, "+My Stick /media/stick;"},
        {"one goes", stick, "", "-My Stick /media/stick;"},
        {"what goes is told first, each in the table's order",
         "52 1 8:50 / /mnt/p rw - ext4 x rw\n" + stick, far + "53 1 8:51 / /mnt/q rw - ext4 x rw\n",
         "-p /mnt/p;-My Stick /media/stick;+far /far;+q /mnt/q;"},
        {"another device in the same place", "50 1 8:80 / /media/stick rw - vfat /dev/sdf rw\n",
         stick, "-stick /media/stick;+My Stick /media/stick;"},
        {"what is no volume", "",
         "90 1 0:9 / /run/user/0 rw - tmpfs tmpfs rw\n91 1 0:8 / /proc rw - proc proc rw\n", ""},
        {"seen at a shorter path from now on", stick, stick + bind, ""},
        {"the shorter path goes", stick + bind, stick, ""},
        {"mounted on itself", stick, stick + "51 50 8:16 / /media/stick rw - vfat /dev/sdb rw\n",
         ""},
        {"taken down here and put up there", stick, bind,
         "-My Stick /media/stick;+My Stick /mnt/a;"},
        {"other options, and the lines in another order", stick + far,
         far + "50 1 8:16 / /media/stick ro - vfat /dev/sdb ro\n", ""},
        {"two shares of one server", far, far + "61 1 0:40 / /near rw - nfs host:/b rw\n",
         "+near /near;"},
        {"one mounted over another, which is out of reach", "70 1 8:70 / /mnt/x rw - ext4 x rw\n",
         "70 1 8:70 / /mnt/x rw - ext4 x rw\n71 70 8:71 / /mnt/x rw - ext4 y rw\n",
         "-x /mnt/x;+x /mnt/x;"},
        {"a line that is cut short", stick, stick + "99 1 8:99 / /mnt/z rw - ext4", ""},
    };
    TestTree tree;
    ASSERT_TRUE(plugIn(tree, "E:ID_FS_LABEL_ENC=My\\x20Stick\n"));
    for (const auto& each : cases) {
        ASSERT_TRUE(tree.write("mounts", root + each.before));
        LinuxMountChanges watched({tree.at("mounts"), tree.at("sys"), tree.at("udev")});
        ASSERT_TRUE(tree.write("mounts", root + each.after));
        EXPECT_EQ(textOf(watched.look()), each.changes) << each.what;
        EXPECT_EQ(textOf(watched.look()), "") << each.what;
    }
}

TEST(MountChanges, WhatWentIsCalledAsItWas) {
    TestTree tree;
    const std::string stick = "50 1 8:16 / /media/folder rw - vfat /dev/sdb rw\n";
    ASSERT_TRUE(plugIn(tree, "E:ID_FS_LABEL=Label\n") && tree.write("mounts", stick));
    LinuxMountChanges watched({tree.at("mounts"), tree.at("sys"), tree.at("udev")});
    ASSERT_TRUE(tree.write("udev/data/b8:16", ""));
    ASSERT_TRUE(tree.write("mounts", stick + "90 1 0:9 / /proc rw - proc proc rw\n"));
    EXPECT_EQ(textOf(watched.look()), "");
    ASSERT_TRUE(tree.write("mounts", "90 1 0:9 / /proc rw - proc proc rw\n"));
    EXPECT_EQ(textOf(watched.look()), "-Label /media/folder;");
}

TEST(MountChanges, WithoutATableNothingIsTold) {
    TestTree tree;
    LinuxMountChanges watched({tree.at("nothing"), "/sys", "/run/udev"});
    EXPECT_LT(watched.descriptor(), 0);
    EXPECT_TRUE(watched.look().empty());
}

}  // namespace
}  // namespace orrinvale
