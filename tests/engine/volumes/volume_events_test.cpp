// What is told of the volumes between two looks.
#include "engine/volumes/VolumeEvents.h"

#include "platform/fake/FakeVolumes.h"
#include "support/test.h"

namespace orrinvale {
namespace {

// "NAME NUMBER ROOT FREE" of a whole of 10000, a volume a line.
std::vector<SeenVolume> lookOf(const std::string& lines) {
    std::vector<SeenVolume> volumes;
    std::istringstream text(lines);
    ZvVolumeInfo volume;
    volume.nTotalSize = 10'000;
    while (text >> volume.volumeName >> volume.volRefNumber >> volume.volRootDir >>
           volume.nFreeSize)
        volumes.push_back({std::make_shared<ZvVolumeInfo>(volume)});
    return volumes;
}

TEST(VolumeEvents, LooksAreToldByWhatDiffersFromWhatWasTold) {
    VolumeEvents events(10.0F);
    const struct {
        const char* look;
        const char* told;
    } steps[] = {
        {"root 1 / 5000\nstick 2 /s 1200\n", ""},
        {"root 1 / 5000\nstick 2 /s 1200\n", ""},
        {"root 1 / 4901\nstick 2 /s 1200\n", ""},
        {"root 1 / 4900\nstick 2 /s 1200\n", "free root 4900;"},
        {"root 1 / 4801\nstick 2 /s 1100\n", "free stick 1100;"},
        {"root 1 / 4801\nstick 2 /s 1099\n", "free stick 1099;"},  // 10 per cent is the level
        {"root 1 / 4801\nstick 2 /s 1099\n", ""},
        {"root 1 / 4801\nstick 2 /s 1100\n", "free stick 1100;"},
        {"root 1 / 4801\nkey 2 /s 1100\n", "rename key 1100;"},
        {"root 1 / 4801\nkey 2 /s 1100\n", ""},
        {"root 1 / 4800\nkey 3 /s 1100\n", "unmount key 1100;free root 4800;mount key 1100;"},
        {"root 1 / 4800\nkey 3 /s 1150\n", ""},
        {"root 1 / 4800\n", "unmount key 1150;"},  // as it was seen last
        {"", "unmount root 4800;"},
    };
    constexpr std::array names{"mount", "unmount", "rename", "free"};
    for (const auto& step : steps) {
        std::string told;
        for (const VolumeEvent& each : events.take(lookOf(step.look)))
            told += fmt::format("{} {} {};", names.at(static_cast<std::size_t>(each.kind)),
                                each.volume->volumeName, each.volume->nFreeSize);
        EXPECT_EQ(told, step.told) << step.look;
    }
}

// Who slept when the watch began has not come when it wakes; who came asleep has.
TEST(VolumeEvents, AFirstAnswerIsNoMountOfWhatStoodFromTheStart) {
    FakeVolumes platform;
    platform.volumes = {FakeVolumes::volume(1, "root", "/", false),
                        FakeVolumes::volume(2, "nas", "/nas", true)};
    platform.volumes[1].infoStatus = ioErr;
    VolumeLook look(platform);
    VolumeEvents events(10.0F);
    const auto told = [&] {
        std::string text;
        for (const VolumeEvent& each : events.take(look.take()))
            text += fmt::format("{} {};", static_cast<int>(each.kind), each.volume->volumeName);
        return text;
    };
    EXPECT_EQ(told(), "");
    EXPECT_EQ(told(), "") << "still asleep";
    platform.volumes[1].infoStatus = noErr;
    platform.volumes.push_back(FakeVolumes::volume(3, "late", "/late", true));
    platform.volumes[2].infoStatus = ioErr;
    EXPECT_EQ(told(), "");
    platform.volumes[2].infoStatus = noErr;
    EXPECT_EQ(told(), "0 late;");
    platform.volumes.resize(1);
    EXPECT_EQ(told(), "1 nas;1 late;");
}

}  // namespace
}  // namespace orrinvale
