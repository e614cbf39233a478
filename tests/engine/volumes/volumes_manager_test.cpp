// Ejecting one volume or all of them, and opening a root, on volumes of the test's making.
#include "engine/volumes/VolumesManager.h"

#include "platform/fake/FakeVolumes.h"
#include "support/test.h"

namespace orrinvale {
namespace {

FakeVolumes::Volume volume(std::int16_t number, const std::string& root, bool canEject) {
    return FakeVolumes::volume(number, "name of " + root, root, canEject);
}

TEST(VolumesManager, AllAreEjectedInOrderFromOneListAndAFailureStopsNothing) {
    FakeVolumes platform;
    platform.volumes = {volume(-5, "/", true), volume(2, "/fixed", false), volume(3, "/b", true),
                        volume(4, "/c", true)};
    platform.ejections[-5] = {fBsyErr, {"in use", {{12, "cat", "/x"}}}};
    // What goes and what comes meanwhile changes nothing.
    platform.onEjection = [&](std::int16_t number) {
        if (number == 3) platform.volumes = {volume(4, "/c", true), volume(9, "/new", true)};
    };
    const LogLines log;
    VolumesManager manager(platform, {});
    EXPECT_EQ(manager.ejectAllVolumes(), 1);
    EXPECT_EQ(platform.ejectedNumbers, (std::vector<std::int16_t>{-5, 3, 4}));
    EXPECT_EQ(log.lines.back(), "Eject the volume -5 failed result: -47");
    ASSERT_EQ(manager.failures().size(), 1U);
    const EjectFailure& failure = manager.failures()[0];
    EXPECT_EQ(failure.volRefNumber, -5);
    EXPECT_EQ(failure.volumeName, "name of /");
    EXPECT_EQ(failure.volRootDir, "/");
    EXPECT_EQ(failure.status, fBsyErr);
    EXPECT_EQ(failure.dissent.holders, (std::vector<VolumeHolder>{{12, "cat", "/x"}}));

    EXPECT_EQ(manager.ejectAllVolumes(), 0);
    EXPECT_TRUE(manager.failures().empty()) << "of the last call";
}

TEST(VolumesManager, NothingToEjectIsNoFailure) {
    FakeVolumes platform;
    platform.volumes = {volume(2, "/fixed", false)};
    VolumesManager manager(platform, {});
    EXPECT_EQ(manager.ejectAllVolumes(), -1);
    EXPECT_TRUE(platform.ejectedNumbers.empty());
    EXPECT_TRUE(manager.failures().empty());
}

TEST(VolumesManager, ANumberEjectsOnlyWhatIsSeenAtItsRoot) {
    FakeVolumes platform;
    platform.volumes = {volume(1, "/c", true), volume(2, "/d", true), volume(3, "/dead", true)};
    platform.volumes[2].infoStatus = ioErr;
    VolumesManager manager(platform, {});
    EXPECT_FALSE(manager.ejectVolumeAt(1, "/d")) << "the numbers have moved on";
    EXPECT_FALSE(manager.ejectVolumeAt(4, "/c"));
    ASSERT_EQ(manager.failures().size(), 1U);
    EXPECT_EQ(manager.failures()[0].volRootDir, "/c");
    EXPECT_EQ(manager.failures()[0].status, nsvErr);
    EXPECT_TRUE(platform.ejectedNumbers.empty());
    EXPECT_TRUE(manager.ejectVolumeAt(2, "/d"));
    EXPECT_TRUE(manager.ejectVolumeAt(3, "/dead")) << "also one that does not answer";
    EXPECT_EQ(platform.ejectedNumbers, (std::vector<std::int16_t>{2, 3}));
    EXPECT_TRUE(manager.failures().empty());
}

TEST(VolumesManager, AVolumeThatWentAlongWithAnotherIsNoFailure) {
    FakeVolumes platform;
    platform.volumes = {volume(7, "/s/1", true), volume(8, "/s/2", true), volume(9, "/c", true)};
    platform.onEjection = [&](std::int16_t) {
        platform.volumes.erase(platform.volumes.begin(), platform.volumes.begin() + 2);
    };
    VolumesManager manager(platform, {});
    EXPECT_TRUE(manager.ejectVolumeAt(7, "/s/1"));
    EXPECT_TRUE(manager.ejectVolumeAt(8, "/s/2"));
    EXPECT_TRUE(manager.failures().empty());
    EXPECT_EQ(platform.ejectedNumbers, std::vector<std::int16_t>{7});
    EXPECT_FALSE(manager.ejectVolumeAt(9, "/s/1")) << "moved, and it stands";
}

TEST(VolumesManager, OneVolumeIsEjectedOrItsFailureKept) {
    FakeVolumes platform;
    platform.volumes = {volume(1, "/dead", true), volume(2, "/a", false)};
    platform.volumes[0].infoStatus =
        ioErr;  // a volume that does not answer has no name, and those behind it do
    platform.ejections[2] = {ioErr, {"no", {}}};
    const LogLines log;
    VolumesManager manager(platform, {});
    EXPECT_FALSE(manager.ejectSingleVolume(2));
    ASSERT_EQ(manager.failures().size(), 1U);
    EXPECT_FALSE(manager.ejectSingleVolume(7)) << "gone";
    ASSERT_EQ(manager.failures().size(), 1U);
    EXPECT_EQ(manager.failures()[0].status, nsvErr);
    EXPECT_EQ(manager.failures()[0].volRootDir, "");
    EXPECT_EQ(log.lines, (std::vector<std::string>{"Eject the volume 2 failed result: -36",
                                                   "Eject the volume 7 failed result: -35"}));
    EXPECT_TRUE(manager.ejectSingleVolume(1));
    EXPECT_TRUE(manager.failures().empty());
}

TEST(VolumesManager, AFailureIsOneSentenceOnOneLine) {
    const VolumeHolder cat{1, "cat", "/s/a"};
    const struct {
        EjectFailure failure;
        const char* text;
    } cases[] = {
        {{1, "Stick", "/s", fBsyErr, {"In use", {}}}, "\"Stick\" could not be ejected: In use."},
        {{1, "", "/s", ioErr, {}}, "\"/s\" could not be ejected."},
        {{1, "", "", nsvErr, {"Gone", {}}}, "The volume could not be ejected: Gone."},
        {{1, "a\nb", "/s", fBsyErr, {"In\tuse", {{7, "x\x1b", "/s/\n"}}}},
         "\"a\\nb\" could not be ejected: In\\tuse, held open by x\\x1b (process 7, /s/\\n)."},
        {{1, "S", "/s", fBsyErr, {"In use", {cat, {2, "sh", "/s"}}}},
         "\"S\" could not be ejected: In use, held open by cat (process 1, /s/a) and sh (process "
         "2, /s)."},
        {{1, "S", "/s", fBsyErr, {"In use", {cat, cat, cat}}},
         "\"S\" could not be ejected: In use, held open by cat (process 1, /s/a), cat (process 1, "
         "/s/a) and cat "
         "(process "
         "1, /s/a)."},
        {{1, "S", "/s", fBsyErr, {"In use", {cat, cat, cat, cat, cat}}},
         "\"S\" could not be ejected: In use, held open by cat (process 1, /s/a), cat (process 1, "
         "/s/a), cat (process "
         "1, "
         "/s/a) and 2 more."},
    };
    for (const auto& each : cases) EXPECT_EQ(ejectFailureText(each.failure), each.text);
}

TEST(VolumesManager, ARootIsOpenedByItsPlainPath) {
    FakeVolumes platform;
    std::vector<std::string> opened;
    bool answer = true;
    VolumesManager manager(platform, [&](const std::string& path) {
        opened.push_back(path);
        return answer;
    });
    EXPECT_FALSE(manager.openVolRootDir(std::nullopt));
    EXPECT_FALSE(manager.openVolRootDir(""));
    EXPECT_TRUE(opened.empty());
    for (const char* const path :
         {"/", "/media/a", "//media///a/", "/media/./b/../a/.", "/media/\xff\n"})
        EXPECT_TRUE(manager.openVolRootDir(path)) << path;
    EXPECT_EQ(opened,
              (std::vector<std::string>{"/", "/media/a", "/media/a", "/media/a", "/media/\xff\n"}));
    answer = false;
    EXPECT_FALSE(manager.openVolRootDir("/media/a"));
}

}  // namespace
}  // namespace orrinvale
