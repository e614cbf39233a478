// What a look at the volumes sees, and which differences count.
#include "engine/volumes/SystemSight.h"

#include "platform/fake/FakeVolumes.h"
#include "support/test.h"

namespace orrinvale {
namespace {

// Root, whether it answered, and how much is free.
std::string textOf(const std::vector<SeenVolume>& volumes) {
    std::string text;
    for (const SeenVolume& each : volumes)
        text += fmt::format("{} {}{};", each.record->volRootDir, each.record->nFreeSize,
                            each.silence.empty() ? "" : " silent");
    return text;
}

TEST(VolumeLook, WhoFallsSilentKeepsItsPlaceAndItsLastFigures) {
    FakeVolumes platform;
    platform.volumes = {FakeVolumes::volume(1, "root", "/", false),
                        FakeVolumes::volume(2, "nas", "/nas", true),
                        FakeVolumes::volume(3, "never", "/never", true),
                        FakeVolumes::volume(4, "stick", "/stick", true),
                        FakeVolumes::volume(5, "theirs", "/theirs", true)};
    FakeVolumes::Volume& nas = platform.volumes[1];
    FakeVolumes::Volume& never = platform.volumes[2];
    platform.volumes[4].infoStatus = ioErr;
    platform.volumes[4].volume.errorNumber = EACCES;
    never.infoStatus = ioErr;
    never.volume.errorNumber = EHOSTDOWN;
    VolumeLook look(platform);
    const auto first = look.take();
    ASSERT_EQ(textOf(first), "/ 500;/nas 500;/never 0 silent;/stick 500;");
    EXPECT_EQ(first[2].silence, "Host is down");
    EXPECT_EQ(first[2].record->volumeName + first[2].record->totalSpace, "never");
    EXPECT_EQ(first[2].record->volType, DiskImageVolume);
    never.infoStatus = noErr;
    const SystemSight woken{look.take(), {}};
    EXPECT_EQ(textOf(woken.volumes), "/ 500;/nas 500;/never 500;/stick 500;");
    EXPECT_TRUE(hasSameRows({first, {}}, woken)) << "its figures come into the row it has";
    platform.volumes.erase(platform.volumes.begin() + 2);

    nas.infoStatus = ioErr;
    nas.volume.errorNumber = ETIMEDOUT;
    nas.volume.info = {};
    EXPECT_EQ(textOf(look.take()), "/ 500;/nas 500 silent;/stick 500;");
    const auto seen = look.take();
    EXPECT_EQ(textOf(seen), "/ 500;/nas 500 silent;/stick 500;") << "however long it lasts";
    EXPECT_EQ(seen[1].silence, "Connection timed out");

    nas.infoStatus = noErr;
    nas.volume.info = {1000, 200, 0};
    EXPECT_EQ(textOf(look.take()), "/ 500;/nas 200;/stick 500;");

    // Another mount at its root is somebody else, whose figures nobody knows yet.
    nas.infoStatus = ioErr;
    nas.volume.refNumber = 9;
    EXPECT_EQ(textOf(look.take()), "/ 500;/nas 0 silent;/stick 500;");
    for (FakeVolumes::Volume& each : platform.volumes) each.parmsStatus = ioErr;
    nas.volume.refNumber = 10;
    platform.volumes.front().volume.info.totalBytes = 0;
    const LogLines log;
    EXPECT_EQ(textOf(look.take()), "") << "left out by the walk's own rules, not silent";
}

TEST(SystemSight, WhatPeopleCanSeeIsADifferenceAndNothingElse) {
    constexpr std::uint64_t gigabyte = 1'000'000'000;
    ZvVolumeInfo volume;
    volume.volRefNumber = 7;
    volume.volRootDir = "/a";
    volume.nTotalSize = 100 * gigabyte;
    volume.nFreeSize = 50 * gigabyte;
    const auto sightOf = [](const ZvVolumeInfo& info, const std::string& silence = "") {
        return SystemSight{{{std::make_shared<ZvVolumeInfo>(info), silence}}, {}};
    };
    const struct {
        const char* what;
        std::function<void(ZvVolumeInfo&)> change;
        bool isSame = false;
        bool isSameSequence = true;
    } cases[] = {
        {"a byte", [](auto& info) { ++info.nFreeSize; }, true},
        {"the text", [](auto& info) { info.freeSpace = "49.9 GB"; }},
        {"the free percent", [](auto& info) { info.nFreeSize = 50 * gigabyte - 1; }},
        {"what is held back", [](auto& info) { info.nReservedSize = 5 * gigabyte; }},
        {"the name", [](auto& info) { info.volumeName = "b"; }},
        {"the group", [](auto& info) { info.volType = NetworkVolume; }},
        {"ejection", [](auto& info) { info.bCanEject = true; }},
        {"the root", [](auto& info) { info.volRootDir = "/b"; }, false, false},
        {"the number", [](auto& info) { info.volRefNumber = 8; }, false, false},
    };
    for (const auto& each : cases) {
        ZvVolumeInfo changed = volume;
        each.change(changed);
        EXPECT_EQ(showsSameVolumes(sightOf(volume), sightOf(changed)), each.isSame) << each.what;
        EXPECT_EQ(hasSameSequence(sightOf(volume), sightOf(changed)), each.isSameSequence)
            << each.what;
    }
    EXPECT_FALSE(showsSameVolumes(sightOf(volume), sightOf(volume, "gone quiet")));
    EXPECT_FALSE(hasSameSequence(sightOf(volume), {}));
    EXPECT_NE(findVolume(sightOf(volume), 7, "/a"), nullptr);
    EXPECT_EQ(findVolume(sightOf(volume), 7, "/b"), nullptr);

    SystemSight memory;
    SystemSight other;
    memory.memoryState = other.memoryState = MemoryState{3 * gigabyte, 0, 0, {}};
    ++*other.memoryState->available;
    EXPECT_TRUE(showsSameMemory(memory, other));
    other.memoryState->swapUsed = gigabyte;
    EXPECT_FALSE(showsSameMemory(memory, other));
    EXPECT_FALSE(showsSameMemory(memory, {}));
}

}  // namespace
}  // namespace orrinvale
