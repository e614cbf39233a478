// What is told of the volumes between two looks.
#include "engine/volumes/VolumeEvents.h"

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
        {"root 1 / 4800\n", "unmount key 1100;"},
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

}  // namespace
}  // namespace orrinvale
