// When a volume counts as short of space, and what picture shows it.
#include "engine/volumes/SpaceLevel.h"

#include <limits>

#include "engine/volumes/VolumesInfo.h"
#include "platform/fake/FakeVolumes.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

TEST(SpaceLevel, ComparesWholePerCentOfFreeSpaceInclusively) {
    const struct {
        const char* what;
        VolumeSpace space;
        float alarm;
        bool isShort;
    } cases[] = {
        {"exactly at the level", {10, 100}, 0.1F, true},
        {"above it by less than a per cent", {109, 1000}, 0.1F, true},
        {"above it by a per cent", {110, 1000}, 0.1F, false},
        {"below it", {1, 1000}, 0.1F, true},
        {"a level between two per cent", {1150, 10000}, 0.115F, true},
        {"the per cent above that level", {1200, 10000}, 0.115F, false},
        {"29 hundredths are 29 per cent in single precision", {29, 100}, 0.29F, true},
        {"nothing free, and never to be warned of", {0, 100}, 0, true},
        {"no total", {0, 0}, 0.1F, false},
        {"no total, everything warned of", {0, 0}, 1, false},
        {"more free than there is", {300, 100}, 1, false},
        {"the largest volume that can be told of, a tenth free", {kMost / 10, kMost}, 0.1F, true},
        {"the same, half free", {kMost / 2, kMost}, 0.1F, false},
    };
    for (const auto& each : cases)
        EXPECT_EQ(isShortOfSpace(each.space, warningLevel(each.alarm)), each.isShort) << each.what;
}

TEST(SpaceLevel, TheLevelOfARowIsTheWholeNumberInItsText) {
    const std::pair<const char*, std::int32_t> texts[] = {
        {"10", 10}, {"10.000000", 10}, {"10.900000", 10}, {" 7", 7}, {"-1", -1}, {"", 0}, {"x", 0}};
    for (const auto& [text, level] : texts) EXPECT_EQ(warningLevelIn(text), level) << text;
    const std::pair<const char*, const char*> settings[] = {
        {"0.100000", "10"}, {"0.290000", "29"}, {"0.109000", "10"}, {"", "0"}, {"1e30", "1000000"}};
    for (const auto& [setting, text] : settings) EXPECT_EQ(errorValueOf(setting), text) << setting;
}

TEST(SpaceLevel, PicturesAreNumberedByTheUsedShareRoundedUp) {
    using enum UsagePicture;
    const struct {
        UsagePicture family;
        VolumeSpace space;
        float level;
        std::int64_t group;
        const char* name;
    } cases[] = {
        {Status, {9000, 10000}, 10, LocalVolume, "10%.png"},
        {Status, {1000, 10000}, 10, LocalVolume, "90%-1.png"},
        {Status, {10000, 10000}, 10, LocalVolume, "0%.png"},
        {Status, {kMost - 1, kMost}, 10, LocalVolume, "1%.png"},
        {Row, {99, 10000}, 0, LocalVolume, "100-1.png"},
        {Row, {0, 10000}, 10, ExternalVolume, "100-1.png"},
        {Row, {0, 10000}, 10, OpticalVolume, "100.png"},
        {Row, {0, 10000}, 10, NetworkVolume, "100.png"},
        {Row, {0, 10000}, 10, DiskImageVolume, "100.png"},
        {Row, {0, 10000}, 10, 5, "100-1.png"},
        {Page, {5, 100}, 10, LocalVolume, "95_r_index.png"},
        {Page, {5, 100}, 4, LocalVolume, "95_index.png"},
        {Page, {5, 100}, 10, NetworkVolume, "95_index.png"},
        {Row, {0, 0}, 10, LocalVolume, ""},
        {Status, {101, 100}, 10, LocalVolume, ""},
    };
    for (const auto& each : cases)
        EXPECT_EQ(usagePictureName(each.family, each.space, each.level, each.group), each.name);
}

// 1000 bytes, 50 of them held back: 950 can be filled, of which 95 are free.
TEST(SpaceLevel, AReserveOfTheAdministratorIsNoPartOfTheWhole) {
    FakeVolumes platform;
    platform.volumes.push_back(FakeVolumes::volume(1, "System", "/", false));
    platform.volumes.front().volume.info = {1000, 95, 50};
    VolumesInfo volumes(platform);
    ZvVolumeInfo& volume = *volumes.volsArray().front();
    EXPECT_EQ(volume.nTotalSize, 1000U);
    EXPECT_EQ(spaceOf(volume).total, 950U);
    EXPECT_EQ(freePercent(spaceOf(volume)), 10U);
    EXPECT_EQ(usedPercent(spaceOf(volume)), 90);
    volume.nReservedSize = 2000;
    EXPECT_EQ(usedPercent(spaceOf(volume)), std::nullopt);
}

}  // namespace
}  // namespace orrinvale
