// Volumes as Linux shows them: tables of mounts and trees of devices of the test's making, then
// real mounts in a name space of their own, which takes them along when it ends.
#include <condition_variable>

#include "engine/volumes/SpaceLevel.h"
#include "engine/volumes/VolumesInfo.h"
#include "platform/linux/LinuxVolumes.h"
#include "platform/linux/LinuxVolumesChoice.h"
#include "platform/paths.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Texts = std::vector<std::string>;

TEST(MountInfo, WholeLinesAreReadAndOthersLeftOut) {
    const struct {
        std::string line;
        bool isEntry;
        std::string point = "/mnt";
        std::string source = "/dev/sda1";
    } cases[] = {
        {"36 35 8:1 / /mnt rw,noatime shared:1 master:2 - ext4 /dev/sda1 rw,errors=continue", true},
        {"36 35 8:1 / /mnt rw - ext4 /dev/sda1 rw", true},
        {R"(36 35 8:1 / /a\040b\011c\012d\134e\043 rw - ext4 /dev/sda1 rw)", true,
         "/a b\tc\nd\\e#"},
        {R"(36 35 8:1 / /\04\08\400\\\1 rw - ext4 /dev/sda1 rw)", true, R"(/\04\08\400\\\1)"},
        {"36 35 8:1 / /\xff\xc3 rw - ext4 /dev/sda1 rw", true, "/\xff\xc3"},
        {"36 35 0:42 / /mnt rw - tmpfs  rw", true, "/mnt", ""},
        {R"(36 35 0:42 / /mnt rw - cifs //nas/my\040share rw)", true, "/mnt", "//nas/my share"},
        {"", false},
        {" - ", false},
        {"36 35 8:1 / /mnt rw ext4 /dev/sda1 rw", false},
        {"36 35 8:1 / /mnt rw - ext4 /dev/sda1", false},
        {"36 35 8:1 / /mnt - ext4 /dev/sda1 rw", false},
        {"36 35 8:1 / mnt rw - ext4 /dev/sda1 rw", false},
        {"36 35 8 / /mnt rw - ext4 /dev/sda1 rw", false},
        {"36 35 8:1x / /mnt rw - ext4 /dev/sda1 rw", false},
        {"-36 35 8:1 / /mnt rw - ext4 /dev/sda1 rw", false},
        {"99999999999999999999 35 8:1 / /mnt rw - ext4 /dev/sda1 rw", false},
        {R"(36 35 8:1 / /m\000nt rw - ext4 /dev/sda1 rw)", false},
        {std::string("36 35 8:1 / /m\0nt rw - ext4 /dev/sda1 rw", 40), false},
    };
    for (const auto& each : cases) {
        const auto entries = parseMountInfo("1 0 8:9 / / rw - xfs a rw\n" + each.line +
                                            "\n2 1 8:9 / /z rw - xfs a rw\n");
        ASSERT_EQ(entries.size(), each.isEntry ? 3U : 2U) << each.line;
        EXPECT_EQ(entries.back().point, "/z");
        if (!each.isEntry) continue;
        EXPECT_EQ(entries[1].point, each.point);
        EXPECT_EQ(entries[1].source, each.source);
    }
    EXPECT_TRUE(parseMountInfo("1 0 8:9 / / rw - xfs a rw").empty())
        << "a line without its end may be cut short";
    const std::string line = "1 0 8:9 / /" + std::string(4000, 'x') + " rw - xfs a rw\n";
    std::string endless;
    while (endless.size() < 2 * mountInfoLimit) endless += line;
    EXPECT_EQ(parseMountInfo(endless).size(), mountInfoLimit / line.size());
}

Texts pointsOf(const std::string& table) {
    Texts points;
    for (const MountEntry& each : chooseVolumes(parseMountInfo(table)))
        points.push_back(each.point);
    return points;
}

TEST(VolumeChoice, WhatAPersonCallsAVolumeIsChosen) {
    const std::string root = "20 1 8:2 / / rw - ext4 /dev/sda2 rw\n";
    const struct {
        const char* what;
        std::string mounts;
        Texts points;
    } cases[] = {
        {"\"/\" first, then the table's order",
         "30 20 8:3 / /home rw - ext4 /dev/sda3 rw\n31 20 8:1 / /boot/efi rw - vfat /dev/sda1 "
         "rw\n" +
             root,
         {"/", "/home", "/boot/efi"}},
        {"a container's root",
         "20 1 0:50 / / rw - overlay overlay rw\n30 20 8:2 /c/hosts /etc/hosts rw - ext4 /dev/sda2 "
         "rw\n",
         {"/"}},
        {"the system's own",
         root + "30 20 0:20 / /proc rw - proc proc rw\n31 20 0:21 / /tmp rw - tmpfs tmpfs rw\n"
                "32 20 0:22 / /dev/shm rw - tmpfs tmpfs rw\n33 20 0:23 / /run/user/1000 rw - tmpfs "
                "tmpfs rw\n"
                "34 20 7:1 / /snap/core/1 ro - squashfs /dev/loop1 ro\n35 20 7:2 / "
                "/var/lib/snapd/snap/x ro - squashfs "
                "/dev/loop2 ro\n"
                "36 20 0:24 / /var/lib/docker/overlay2/x/merged rw - overlay overlay rw\n"
                "37 20 0:25 / /run/user/1000/doc rw - fuse.portal portal rw\n38 20 0:26 / "
                "/mnt/gvfs rw - "
                "fuse.gvfsd-fuse gvfsd-fuse rw\n"
                "39 20 7:3 / /run/live/image ro - squashfs /dev/loop3 ro\n40 20 0:27 / "
                "/home/u/crypt rw - "
                "fuse.gocryptfs g rw\n"
                "41 20 0:28 / /net rw - autofs systemd-1 rw\n42 20 0:29 net:[4] /run/netns/a rw - "
                "nsfs nsfs rw\n",
         {"/"}},
        {"what people mount",
         root + "30 20 0:30 / /mnt/ram rw - tmpfs tmpfs rw\n31 20 7:5 / /mnt/image rw - ext4 "
                "/dev/loop5 rw\n"
                "32 20 7:6 / /media/u/CD ro - squashfs /dev/loop6 ro\n33 20 0:31 / "
                "/run/media/u/disk rw - fuseblk "
                "/dev/sdb1 rw\n"
                "34 20 0:32 / /home/u/far rw - fuse.sshfs u@host: rw\n35 20 0:33 / /srv/dav rw - "
                "fuse https://h/d rw\n"
                "36 20 0:34 / /nfs rw - nfs4 h:/ rw\n37 20 0:35 / /tank rw - zfs tank rw\n38 20 "
                "0:36 / /media/mnt rw - "
                "fuse.mergerfs a:b rw\n",
         {"/", "/mnt/ram", "/mnt/image", "/media/u/CD", "/run/media/u/disk", "/home/u/far",
          "/srv/dav", "/nfs", "/tank", "/media/mnt"}},
        {"one mount a device",
         "30 20 8:2 / /a rw - ext4 /dev/sda2 rw\n" + root +
             "31 20 8:3 /sub /b rw - ext4 /dev/sda3 rw\n32 20 8:3 / /media/whole rw - ext4 "
             "/dev/sda3 rw\n"
             "33 20 8:3 / /mnt/longer/whole rw - ext4 /dev/sda3 rw\n34 20 0:40 /@home /home rw - "
             "btrfs /dev/sdc1 rw\n"
             "35 20 0:40 /@srv /srv rw - btrfs /dev/sdc1 rw\n",
         {"/", "/media/whole", "/srv"}},
        {"one mount a share",
         root + "30 20 0:41 / /x rw - nfs h:/x rw\n31 20 0:41 / /y rw - nfs h:/y rw\n"
                "32 20 0:41 / /xx rw - nfs h:/x rw\n",
         {"/", "/x", "/y"}},
        {"the one on top counts",
         "1 1 0:2 / / rw - rootfs rootfs rw\n" + root +
             "30 20 8:3 / /mnt/a rw - ext4 /dev/sda3 rw\n"
             "31 30 8:4 / /mnt/a rw - ext4 /dev/sda4 rw\n32 31 8:5 / /mnt/a/b rw - ext4 /dev/sda5 "
             "rw\n",
         {"/", "/mnt/a", "/mnt/a/b"}},
        {"what lies below a covered folder is out of reach, with all on it",
         root + "30 20 8:3 / /mnt/a/b rw - ext4 /dev/sda3 rw\n31 30 8:4 / /mnt/a/b/c rw - ext4 "
                "/dev/sda4 rw\n"
                "32 20 8:5 / /mnt/a rw - ext4 /dev/sda5 rw\n33 20 8:6 / /mnt/ab rw - ext4 "
                "/dev/sda6 rw\n",
         {"/", "/mnt/a", "/mnt/ab"}},
        {"a hidden mount leaves its device to another",
         root + "30 20 8:3 / /a rw - ext4 /dev/sda3 rw\n31 30 8:4 / /a rw - ext4 /dev/sda4 rw\n"
                "32 20 8:3 / /mnt/long rw - ext4 /dev/sda3 rw\n",
         {"/", "/a", "/mnt/long"}},
        {"a table that goes in circles",
         "5 6 8:1 / /a rw - ext4 x rw\n6 5 8:2 / /b rw - ext4 x rw\n",
         {"/a", "/b"}},
    };
    for (const auto& each : cases) EXPECT_EQ(pointsOf(each.mounts), each.points) << each.what;
}

TEST(VolumeChoice, AServerHasANumberMadeOfItsName) {
    const struct {
        std::string type, source, options, server;
        bool isServer = true;
    } cases[] = {
        {"nfs4", "nas:/export/a", "rw", "nas"},
        {"nfs", "[fe80::1]:/x", "rw", "fe80::1"},
        {"cifs", "//nas/share@home", "rw", "nas"},
        {"fuse.sshfs", "me@host:/p", "rw", "host"},
        {"fuse", "https://me@dav.org:443/x", "", "dav.org"},
        {"nfs", "", "", ""},
        {"ceph", ":/", "", ":/"},
        {"9p", "10.0.0.1", "trans=tcp,x", "10.0.0.1"},
        {"9p", "hostshare", "trans=virtio", "hostshare", false},
        {"ext4", "nas:/x", "rw", "nas", false},
        {"fuse.mergerfs", "/a:/b", "rw", "/a:/b", false},
        {"tmpfs", "//nas/x", "rw", "nas", false},
    };
    for (const auto& each : cases) {
        MountEntry mount;
        mount.type = each.type;
        mount.source = each.source;
        mount.superOptions = each.options;
        EXPECT_EQ(serverOfSource(each.source), each.server);
        EXPECT_EQ(serverAddressOf(mount) != 0, each.isServer) << each.source;
    }
}

// A tree of devices as sysfs shows it, udev's state, and one mount on "/" that lies on any of them.
class MadeUpSight {
public:
    // A device below /sys/devices; attributes are "name=text".
    void add(const std::string& folder, const std::string& number, const Texts& attributes = {}) {
        const std::string device = "sys/devices/" + folder;
        const std::string name = folder.substr(folder.rfind('/') + 1);
        ok &= tree.write(device + "/dev", number + "\n");
        ok &= tree.symlink("../../class/block", device + "/subsystem");
        ok &= tree.symlink(tree.at(device), "sys/class/block/" + name);
        ok &= tree.symlink(tree.at(device), "sys/dev/block/" + number);
        for (const std::string& each : attributes)
            ok &= tree.write(device + '/' + each.substr(0, each.find('=')),
                             each.substr(each.find('=') + 1) + "\n");
    }

    // Through the engine, so that the whole way is seen.
    VolumesInfo::VolumeArray volumesOn(const std::string& number,
                                       const std::string& rest = "- ext4 /dev/x rw") {
        struct statx root {};
        ::statx(AT_FDCWD, "/", 0, 0x1000U, &root);
        ok &= tree.write(
            "mounts", std::to_string(root.stx_mnt_id) + " 1 " + number + " / / rw " + rest + "\n");
        LinuxVolumes platform({tree.at("mounts"), tree.at("sys"), tree.at("udev")});
        return VolumesInfo(platform).volsArray();
    }

    TestTree tree;
    bool ok = true;
};

TEST(LinuxVolumes, KindsOfDevicesAreToldByBusDriveAndMedium) {
    const std::string sata = "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/";
    const std::string usb =
        "pci0000:00/0000:00:14.0/usb2/2-1/2-1:1.0/host6/target6:0:0/6:0:0:0/block/";
    MadeUpSight machine;
    machine.add(sata + "sda", "8:0", {"removable=0", "device/type=0"});
    machine.add(sata + "sda/sda1", "8:1", {"partition=1"});
    machine.add(usb + "sdb", "8:16", {"removable=1", "device/type=0"});
    machine.add(usb + "sdb/sdb1", "8:17", {"partition=1"});
    machine.add(usb + "sdc", "8:32", {"removable=0"});
    machine.add(sata + "sr0", "11:0", {"removable=1", "device/type=5"});
    machine.add(usb + "sr1", "11:1", {"removable=1", "device/type=5"});
    machine.add("virtual/block/loop0", "7:0", {"removable=0"});
    machine.add("virtual/block/loop0/loop0p1", "259:0", {"partition=1"});
    machine.add("pci0/mmc_host/mmc0/mmc0:1/block/mmcblk0", "179:0", {"device/type=SD"});
    machine.add("pci0/mmc_host/mmc1/mmc1:1/block/mmcblk1", "179:8", {"device/type=MMC"});
    machine.add("pci0/thunder/nvme/nvme1/nvme1n1", "259:1");
    machine.add("virtual/block/dm-0", "252:0", {"removable=0"});
    machine.add("virtual/block/dm-1", "252:1", {"removable=0"});
    machine.ok &= machine.tree.write("sys/devices/pci0/thunder/removable", "removable\n");
    machine.ok &= machine.tree.symlink("../../../../" + usb + "sdb/sdb1",
                                       "sys/devices/virtual/block/dm-0/slaves/sdb1");
    machine.ok &= machine.tree.symlink("../../dm-0", "sys/devices/virtual/block/dm-1/slaves/dm-0");
    machine.ok &= machine.tree.symlink(
        "../../dm-1", "sys/devices/virtual/block/dm-0/slaves/dm-1");  // a circle ends
    machine.ok &= machine.tree.write("udev/data/b11:1", "S:cdrom\nE:ID_CDROM_MEDIA_DVD=1\n");
    const struct {
        const char* what;
        const char* number;
        std::int32_t type;
        bool canEject;
        const char* rest = "- ext4 /dev/x rw";
    } cases[] = {
        {"disk inside", "8:1", 0, false},
        {"stick", "8:17", 1, true},
        {"external disk that is not removable", "8:32", 1, true},
        {"btrfs, which has a device number of its own", "0:40", 1, true, "- btrfs /dev/sdb1 rw"},
        {"disc", "11:0", 2, true},
        {"DVD in an external drive", "11:1", 2, true},
        {"image", "7:0", 4, true},
        {"partition of an image", "259:0", 4, true},
        {"card", "179:0", 1, true},
        {"soldered card", "179:8", 0, false},
        {"disk behind an outside port", "259:1", 1, true},
        {"encrypted stick", "252:0", 1, true},
        {"volume on an encrypted stick", "252:1", 1, true},
        {"device that is not there", "99:9", 0, false},
        {"no device", "0:41", 0, false, "- overlay overlay rw"},
        {"server", "0:42", 3, true, "- nfs host:/ rw"},
    };
    for (const auto& each : cases) {
        const auto volumes = machine.volumesOn(each.number, each.rest);
        ASSERT_EQ(volumes.size(), 1U) << each.what;
        EXPECT_EQ(volumes[0]->volType, each.type) << each.what;
        EXPECT_EQ(volumes[0]->bCanEject, each.canEject) << each.what;
    }
    EXPECT_TRUE(machine.ok);
}

TEST(LinuxVolumes, ALabelNamesTheVolume) {
    MadeUpSight machine;
    machine.add("virtual/block/sda", "8:0");
    EXPECT_EQ(machine.volumesOn("8:0").at(0)->volumeName, "System");
    const std::pair<const char*, const char*> cases[] = {
        {R"(E:ID_FS_LABEL=My_Disk E:ID_FS_LABEL_ENC=My\x20Disk)", "My Disk"},
        {R"(E:ID_FS_LABEL_ENC=\xff\x0a\xg1\x4)", "\xff\n\\xg1\\x4"},
        {"E:ID_FS_LABEL=plain", "plain"},
        {"E:ID_FS_LABEL_ENC= E:ID_FS_TYPE=ext4", "System"},
        {"ID_FS_LABEL=x E:MY_ID_FS_LABEL=x E:ID_FS_LABELS=x", "System"},
    };
    for (const auto& [state, name] : cases) {
        std::string lines = state;
        std::replace(lines.begin(), lines.end(), ' ', '\n');
        machine.ok &= machine.tree.write("udev/data/b8:0", lines);
        EXPECT_EQ(machine.volumesOn("8:0").at(0)->volumeName, name);
    }
    EXPECT_TRUE(machine.ok);
}

// Space questions that are answered when the test says so.
struct Gate {
    SpaceAnswer ask(const SpaceQuestion& question) {
        std::unique_lock lock(mutex);
        ++asked[question.path];
        opened.wait(lock, [&] { return open || question.path.find("dead") == std::string::npos; });
        return {0, false, 1000, 500};
    }
    int countOf(const std::string& path) {
        const std::lock_guard lock(mutex);
        return asked[path];
    }
    std::mutex mutex;
    std::condition_variable opened;
    bool open = false;
    std::map<std::string, int> asked;
};

// A table of mounts of the test's own, behind the gate.
struct GatedVolumes {
    explicit GatedVolumes(milliseconds patience)
        : platform({tree.at("mounts"), tree.at("sys"), tree.at("udev")}, patience,
                   [asked = gate](const SpaceQuestion& question) { return asked->ask(question); }) {
    }
    TestTree tree;
    const std::shared_ptr<Gate> gate = std::make_shared<Gate>();
    LinuxVolumes platform;
};

TEST(LinuxVolumes, DeadMountsHoldNobodyUpAndAreAskedOnce) {
    GatedVolumes gated(500ms);
    auto& [tree, gate, platform] = gated;
    std::string table = "20 1 8:2 / / rw - ext4 /dev/sda2 rw\n";
    for (int i = 30; i < 50; ++i)
        table += fmt::format("{0} 20 0:{0} / /dead{0} rw - nfs h:/{0} rw\n", i);
    table += "60 20 8:6 / /alive rw - ext4 /dev/sda6 rw\n";
    ASSERT_TRUE(tree.write("mounts", table));
    const auto start = Clock::now();
    VolumesInfo info(platform);
    EXPECT_LT(Clock::now() - start, 1500ms) << "twenty dead servers cost one patience";
    ASSERT_EQ(info.volsArray().size(), 2U);
    EXPECT_EQ(info.volsArray()[1]->volRootDir, "/alive");
    EXPECT_EQ(gate->countOf("/dead49"), 1);

    const auto again = Clock::now();
    EXPECT_EQ(info.getAllVolsInfo().size(), 2U);
    EXPECT_LT(Clock::now() - again, 400ms) << "no further patience for who is known to be dead";
    EXPECT_EQ(gate->countOf("/dead30"), 1);
    IndexedVolume dead;
    EXPECT_EQ(platform.FSGetVolumeInfo(1, dead), noErr);
    EXPECT_EQ(platform.FSGetVolumeInfo(2, dead), ioErr);
    EXPECT_EQ(dead.rootPath, "/dead30");
    EXPECT_EQ(dead.errorNumber, ETIMEDOUT);

    {
        const std::lock_guard lock(gate->mutex);
        gate->open = true;
    }
    gate->opened.notify_all();
    const auto deadline = Clock::now() + 20s;
    while (info.getAllVolsInfo().size() != 22U && Clock::now() < deadline) ::usleep(1000);
    EXPECT_EQ(info.volsArray().size(), 22U) << "who comes back is asked and listed again";
}

TEST(LinuxVolumes, OnlyWhatMayWaitIsAskedOnAnotherThread) {
    TestTree tree;
    const auto aside = std::make_shared<Strings>();
    std::mutex mutex;
    LinuxVolumes platform({tree.at("mounts"), tree.at("sys"), tree.at("udev")}, 10s,
                          [&, here = std::this_thread::get_id()](const SpaceQuestion& question) {
                              const std::lock_guard lock(mutex);
                              if (std::this_thread::get_id() != here)
                                  aside->push_back(question.path);
                              return SpaceAnswer{0, false, 1000, 500};
                          });
    ASSERT_TRUE(tree.write("mounts",
                           "20 1 8:2 / / rw - ext4 /dev/sda2 rw\n"
                           "21 20 0:40 / /home rw - btrfs /dev/sda3 rw\n"
                           "22 20 0:41 / /nas rw - nfs h:/ rw\n"
                           "23 22 8:7 / /nas/disk rw - ext4 /dev/sda7 rw\n"
                           "24 20 8:8 / /nasty rw - ext4 /dev/sda8 rw\n"
                           "25 20 8:9 / /media/stick rw - vfat /dev/sdb1 rw\n"
                           "26 20 0:42 / /net rw - autofs systemd-1 rw\n"
                           "27 26 8:10 / /net/disk rw - xfs /dev/sdc1 rw\n"));
    EXPECT_EQ(VolumesInfo(platform).volsArray().size(), 7U);
    EXPECT_THAT(*aside,
                ::testing::UnorderedElementsAre("/nas", "/nas/disk", "/media/stick", "/net/disk"));
}

TEST(LinuxVolumes, ASlowServerIsToldByItsLateAnswerOnce) {
    const auto answersLeft = std::make_shared<std::atomic<int>>(0);
    LinuxVolumesSpace space(20ms, [answersLeft](const SpaceQuestion&) -> SpaceAnswer {
        while (*answersLeft == 0) answersLeft->wait(0);
        --*answersLeft;
        return {0, false, 1000, 500};
    });
    const std::vector<SpaceQuestion> slow{{30, 30, "/slow"}};
    EXPECT_EQ(space.ask(slow)[0].error, ETIMEDOUT);
    *answersLeft = 1;  // this question is answered, the next one is not
    answersLeft->notify_all();
    const auto deadline = Clock::now() + 20s;
    int error = ETIMEDOUT;
    while (error != 0 && Clock::now() < deadline) error = space.ask(slow)[0].error;
    EXPECT_EQ(error, 0);
    EXPECT_EQ(space.ask(slow)[0].error, ETIMEDOUT);
    *answersLeft = 1000;
    answersLeft->notify_all();
}

TEST(LinuxVolumes, WalksOfSeveralThreadsDoNotMix) {
    GatedVolumes gated(10s);
    std::string table;
    for (int i = 0; i < 50; ++i)
        table += fmt::format("{0} 1 8:{0} / /v{0} rw - ext4 /dev/x rw\n", i + 20);
    ASSERT_TRUE(gated.tree.write("mounts", "1 0 8:0 / / rw - ext4 x rw\n" + table));
    std::atomic<int> faults{0};
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 3; ++i)
            threads.emplace_back([&] {
                VolumesInfo info(gated.platform);
                for (int round = 0; round < 20; ++round)
                    if (info.getAllVolsInfo().size() != 51) ++faults;
            });
    }
    EXPECT_EQ(faults, 0);
}

TEST(LinuxVolumes, ANumberDoesNotPassToAnotherMount) {
    GatedVolumes gated(10s);
    LinuxVolumes& platform = gated.platform;
    const auto numberOfSecond = [&](const std::string& mount) {
        EXPECT_TRUE(gated.tree.write("mounts", "1 0 8:0 / / rw - ext4 x rw\n" + mount + "\n"));
        VolumesInfo info(platform);
        return info.volsArray().size() == 2 ? info.volsArray()[1]->volRefNumber : std::int16_t{-1};
    };
    const std::string stick = "50 1 8:16 / /media/a rw - vfat /dev/sdb rw";
    EXPECT_EQ(numberOfSecond(stick), 50);
    const std::int16_t other = numberOfSecond(
        "50 1 8:32 / /media/b rw - vfat /dev/sdc rw");  // the kernel reuses ids at once
    EXPECT_GT(other, 50);
    GetVolParmsInfoBuffer buffer;
    EXPECT_EQ(platform.FSGetVolumeParms(other, buffer), noErr);
    EXPECT_EQ(platform.FSGetVolumeParms(50, buffer), ioErr) << "gone";
    EXPECT_EQ(numberOfSecond(stick), 50) << "back again";
    EXPECT_GT(numberOfSecond("5 1 8:64 / /media/d rw - vfat /dev/sde rw"), 5)
        << "that one is the memory's row";
    EXPECT_GT(numberOfSecond("4294967296 1 8:48 / /media/c rw - vfat /dev/sdd rw"), 0);
    IndexedVolume volume;
    EXPECT_EQ(platform.FSGetVolumeInfo(0, volume), nsvErr);
    EXPECT_EQ(platform.FSGetVolumeInfo(2, volume), nsvErr) << "no walk is under way";
}

std::string describe(VolumesInfo& info) {
    std::string text;
    for (const auto& each : info.getAllVolsInfo())
        if (isWithin(each->volRootDir, "/mnt"))
            text +=
                fmt::format("{} {} {};", each->volRootDir, each->volType, each->bCanEject ? 1 : 0);
    return text;
}

// The first text where the two differ, for checks in a child.
std::string difference(const std::string& found, const std::string& expected) {
    return found == expected ? "" : "found \"" + found + "\" instead of \"" + expected + "\"\n";
}

TEST(RealVolumes, ImagesAreListedBindsAreNotAndWhatGoesIsGone) {
    withOwnMounts([]() -> std::string {
        if (::mkdir("/mnt/image", 0755) != 0 || ::mkdir("/mnt/b", 0755) != 0) return "no folders";
        if (std::system("truncate -s 16M /mnt/file && mkfs.ext4 -q -L 'My Disk' -m 10 /mnt/file "
                        ">/dev/null 2>&1 && "
                        "mount -o loop /mnt/file /mnt/image 2>/dev/null") != 0)
            return "skip: no loop device or no mkfs.ext4 here";
        LinuxVolumes platform;
        VolumesInfo info(platform);
        std::string fault = difference(describe(info), "/mnt 0 0;/mnt/image 4 1;");
        const ZvVolumeInfo& image = *info.volsArray().back();
        if (image.nTotalSize < 10'000'000 || image.nTotalSize > 16 * 1024 * 1024)
            fault += "odd size\n";
        if (image.nTotalSize - image.nFreeSize < image.nTotalSize / 12)
            fault += "what is held back counts as free\n";
        if (image.nReservedSize < image.nTotalSize / 12) fault += "what is held back is not told\n";
        const std::string percent = std::to_string(usedPercent(spaceOf(image)).value_or(-1)) + "%";
        if (std::system(("df --output=pcent /mnt/image | grep -qw " + percent).c_str()) != 0)
            fault += "df sees another share than " + percent + "\n";
        const std::int16_t number = image.volRefNumber;

        ::mount("/mnt/image", "/mnt/b", nullptr, MS_BIND, nullptr);
        fault += difference(describe(info), "/mnt 0 0;/mnt/b 4 1;");  // the shorter path
        ::umount("/mnt/b");
        fault += difference(describe(info), "/mnt 0 0;/mnt/image 4 1;");
        if (info.volsArray().back()->volRefNumber != number) fault += "another number\n";

        ::umount("/mnt/image");
        GetVolParmsInfoBuffer buffer;
        if (platform.FSGetVolumeParms(number, buffer) != ioErr) fault += "still there\n";
        return fault + difference(describe(info), "/mnt 0 0;");
    });
}

TEST(RealVolumes, AMountThatWentAfterTheListingIsNotTakenForWhatLiesBelow) {
    withOwnMounts([]() -> std::string {
        for (const char* folder : {"/mnt/ram", "/mnt/file", "/mnt/gone"})
            if (::mkdir(folder, 0755) != 0 || ::mount("ram", folder, "tmpfs", 0, "size=1m") != 0)
                return "no mount";
        const TestTree tree("/mnt");
        if (std::system(("cat /proc/self/mountinfo > " + tree.at("mounts")).c_str()) != 0)
            return "no table";
        ::umount("/mnt/ram");
        ::umount("/mnt/file");
        if (::rmdir("/mnt/file") != 0 || !std::ofstream("/mnt/file")) return "no file";
        ::umount("/mnt/gone");
        ::rmdir("/mnt/gone");
        LinuxVolumes platform({tree.at("mounts"), "/sys", "/run/udev"});
        VolumesInfo info(platform);
        return difference(describe(info), "/mnt 0 0;");
    });
}

TEST(RealVolumes, AServerThatNeverAnswersIsLeftOut) {
    withOwnMounts([]() -> std::string {
        if (::mkdir("/mnt/dead", 0755) != 0) return "no folder";
        // A file system in user space whose program never reads a request.
        const int program = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
        const std::string options =
            fmt::format("fd={},rootmode=40000,user_id=0,group_id=0", program);
        if (program < 0 || ::mount("host:", "/mnt/dead", "fuse.sshfs", 0, options.c_str()) != 0)
            return "skip: no FUSE here";
        LinuxVolumes platform;
        const auto start = Clock::now();
        VolumesInfo info(platform);
        const auto first = Clock::now() - start;
        std::string fault = difference(describe(info), "/mnt 0 0;");
        const auto second = Clock::now() - start - first;
        if (first < 900ms || first > 1500ms)
            fault += fmt::format("first walk took {} ms\n", first / 1ms);
        if (second > 100ms) fault += fmt::format("second walk took {} ms\n", second / 1ms);
        ::close(program);  // the kernel answers in its place from here on
        return fault;
    });
}

}  // namespace
}  // namespace orrinvale
