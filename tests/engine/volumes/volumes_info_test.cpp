// The walk over the volumes and what it makes of each, on volumes and devices of the test's making.
#include "engine/volumes/VolumesInfo.h"

#include "platform/fake/FakeVolumes.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::uint32_t ejectable = 1U << 0;
constexpr std::uint32_t removable = 1U << 25;
constexpr std::uint32_t external = 1U << 27;

FakeVolumes::Volume volume(std::int16_t number, std::string root, std::uint64_t total = 2'000'000,
                           GetVolParmsInfoBuffer parms = {3, 0, 0, "vda"}) {
    FakeVolumes::Volume made;
    made.volume = IndexedVolume{number, {total, total / 4}, "name of " + root, std::move(root), 0};
    made.parms = std::move(parms);
    return made;
}

// A disk, a CD and a DVD with a partition each, and what only looks like one of them.
void addDevices(FakeVolumes& platform) {
    using Entry = FakeRegistryEntry;
    const auto add = [&](const char* name, auto... arguments) {
        return platform.devices[name] = std::make_shared<Entry>(arguments...);
    };
    using Classes = std::vector<std::string>;
    const auto bus = std::make_shared<Entry>(Classes{"IOBus"}, std::nullopt);
    const auto disk = add("vda", Classes{"IOMedia"}, true, bus);
    const auto cd = add("sr0", Classes{"IOMedia", "IOCDMedia"}, true, bus);
    const auto dvd = add("sr1", Classes{"IOMedia", "IODVDMedia"}, true, bus);
    add("sr0p1", Classes{"IOMedia"}, false,
        std::make_shared<Entry>(Classes{"IOPartitionScheme"}, std::nullopt, cd));
    add("sr1p1", Classes{"IOMedia"}, false, dvd);
    add("vda1", Classes{"IOMedia"}, false, disk);
    add("diskOverCd", Classes{"IOMedia"}, true, cd);  // the first whole medium decides
    add("cdTrack", Classes{"IOMedia", "IOCDMedia"}, false,
        disk);  // a part is not asked for its class
    add("noMedia", Classes{"IOCDMedia"}, true, nullptr);
    add("unreadable", Classes{"IOMedia"}, std::nullopt, cd);
}

TEST(VolumesInfo, KindAndEjectFlagFollowFromServerDiscBusAndBits) {
    const struct {
        const char* what;
        GetVolParmsInfoBuffer parms;
        std::int32_t type;
        bool canEject;
        bool isDeviceAsked = true;
    } cases[] = {
        {"fixed disk", {3, 0, 0, "vda1"}, 0, false},
        {"fixed, but the device lets go of it", {3, 0, ejectable, "vda1"}, 0, true},
        {"external", {3, 0, external, "vda1"}, 1, true},
        {"external and removable", {3, 0, external | removable, "vda1"}, 1, true},
        {"image that can not be ejected", {3, 0, removable, "vda1"}, 4, false},
        {"image", {3, 0, removable | ejectable, "vda1"}, 4, true},
        {"CD whose drive denies everything", {3, 0, 0, "sr0p1"}, 2, true},
        {"DVD", {3, 0, removable, "sr1p1"}, 2, true},
        {"whole CD on an external bus", {3, 0, external, "sr0"}, 2, true},
        {"CD by an old buffer", {2, 0, external | removable, "sr0"}, 2, true},
        {"server", {3, 5, 0, "sr0"}, 3, true, false},
        {"server by an old buffer", {0, 0x80000000U, 0, "sr0"}, 3, true, false},
        {"an old buffer has no bits", {2, 0, ejectable | removable | external, "vda1"}, 0, false},
        {"bits beside those that count",
         {4, 0, ~(ejectable | removable | external), "vda1"},
         0,
         false},
        {"whole medium before the disc", {3, 0, removable, "diskOverCd"}, 4, false},
        {"part of a disk that calls itself disc", {3, 0, 0, "cdTrack"}, 0, false},
        {"disc that is no medium", {3, 0, 0, "noMedia"}, 0, false},
        {"behind an unreadable one", {3, 0, 0, "unreadable"}, 2, true},
    };
    for (const auto& each : cases) {
        FakeVolumes platform;
        addDevices(platform);
        platform.volumes = {volume(7, "/x", 2'000'000, each.parms)};
        VolumesInfo info(platform);
        ASSERT_EQ(info.volsArray().size(), 1U) << each.what;
        EXPECT_EQ(info.volsArray()[0]->volType, each.type) << each.what;
        EXPECT_EQ(info.volsArray()[0]->bCanEject, each.canEject) << each.what;
        EXPECT_EQ(!platform.askedNames.empty(), each.isDeviceAsked) << each.what;
    }
}

TEST(VolumesInfo, TheRecordHoldsWhatThePlatformTold) {
    FakeVolumes platform;
    platform.volumes = {volume(-3, "//", 1'500'000'000), volume(9, "/", 1000)};
    VolumesInfo info(platform);
    ASSERT_EQ(info.volsArray().size(), 2U);
    const ZvVolumeInfo& first = *info.volsArray()[0];
    EXPECT_EQ(first.volRefNumber, -3);
    EXPECT_EQ(first.volumeName, "name of //");
    EXPECT_EQ(first.volRootDir, "//");
    EXPECT_FALSE(first.bIsDefaultVol);
    EXPECT_EQ(first.nTotalSize, 1'500'000'000U);
    EXPECT_EQ(first.nFreeSize, 375'000'000U);
    EXPECT_EQ(first.totalSpace, "1.50 GB");
    EXPECT_EQ(first.freeSpace, "375.00 MB");
    EXPECT_EQ(first.volIcon, (IconRequest{IconRequest::Path, "//"}));
    EXPECT_TRUE(info.volsArray()[1]->bIsDefaultVol);
}

TEST(VolumesInfo, FailuresLeaveOutOneVolumeAndOnlyTheEndEndsTheWalk) {
    FakeVolumes platform;
    addDevices(platform);
    platform.volumes = {volume(1, "/a"), volume(2, "/empty", 0), volume(3, "/noInfo"),
                        volume(4, "/noParms"), volume(5, "/b")};
    platform.volumes[2].infoStatus = -36;
    platform.volumes[3].parmsStatus = -50;
    const LogLines log;
    VolumesInfo info(platform);
    ASSERT_EQ(info.volsArray().size(), 2U);
    EXPECT_EQ(info.volsArray()[1]->volRootDir, "/b");
    EXPECT_EQ(platform.askedIndexes, (std::vector<std::uint32_t>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(log.lines, std::vector<std::string>{"FSGetVolumeParms failed returned -50"});

    platform.askedIndexes.clear();
    platform.volumes[3].parmsStatus = nsvErr;
    EXPECT_EQ(info.getAllVolsInfo().size(), 1U);
    EXPECT_EQ(platform.askedIndexes, (std::vector<std::uint32_t>{1, 2, 3, 4}));
}

TEST(VolumesInfo, AVolumeWithoutADeviceIsLoggedOnceWhileItStands) {
    FakeVolumes platform;
    platform.volumes = {volume(1, "/x", 1000, {3, 0, removable, ""}),
                        volume(2, "/y", 1000, {3, 0, removable, ""})};
    testing::LogLines log;
    VolumesInfo info(platform);
    EXPECT_EQ(info.getAllVolsInfo().size(), 2U);
    EXPECT_EQ(log.lines.size(), 2U);
    const auto standing = platform.volumes;
    platform.volumes.pop_back();
    info.getAllVolsInfo();
    platform.volumes = standing;
    info.getAllVolsInfo();
    EXPECT_EQ(log.lines.size(), 3U) << "it went and came back";
}

TEST(VolumesInfo, EachFailureOfTheDiscTestIsLoggedAndCountsAsNo) {
    const struct {
        const char* device;
        std::uint32_t iteratorStatus;
        bool hasIterator;
        std::vector<std::string> lines;
    } cases[] = {
        {"", 0, true, {"IOBSDNameMatching returned a NULL dictionary."}},
        {"none", 0, true, {"IOServiceGetMatchingService returned IO_OBJECT_NULL."}},
        {"sr0", 0xe00002c0, true, {"IORegistryEntryCreateIterator failed returned 0xe00002c0"}},
        {"sr0", 19, false, {"IORegistryEntryCreateIterator failed returned 0x00000013"}},
        {"sr0", 0, false, {"IORegistryEntryCreateIterator returned a NULL iterator"}},
        {"lone", 0, true, {"Could not retrieve Whole property"}},
        {"vda1", 0, true, {}},
    };
    for (const auto& each : cases) {
        FakeVolumes platform;
        addDevices(platform);
        platform.devices["lone"] = std::make_shared<FakeRegistryEntry>(
            std::vector<std::string>{"IOMedia", "IOCDMedia"}, std::nullopt);
        platform.iteratorStatus = each.iteratorStatus;
        platform.hasIterator = each.hasIterator;
        platform.volumes = {volume(1, "/cd", 1000, {3, 0, 0, "sr0"}),
                            volume(2, "/x", 1000, {3, 0, removable, each.device})};
        if (each.iteratorStatus != 0 || !each.hasIterator)
            platform.volumes.erase(platform.volumes.begin());
        const LogLines log;
        VolumesInfo info(platform);
        EXPECT_EQ(log.lines, each.lines);
        ASSERT_FALSE(info.volsArray().empty());
        EXPECT_EQ(info.volsArray().back()->volType, 4)
            << "the later tests still run, and the disc before is forgotten";
    }
}

TEST(VolumesInfo, TheArrayStaysAndItsRecordsAreNew) {
    FakeVolumes platform;
    platform.volumes = {volume(1, "/a"), volume(2, "/b")};
    VolumesInfo info(platform);
    auto& array = info.getAllVolsInfo();
    const auto kept = array[0];
    const std::weak_ptr<ZvVolumeInfo> released = array[1];
    platform.volumes.pop_back();
    EXPECT_EQ(&info.getAllVolsInfo(), &array);
    ASSERT_EQ(array.size(), 1U);
    EXPECT_NE(array[0], kept);
    EXPECT_TRUE(released.expired());
    info.enumVolumesInfo();
    EXPECT_EQ(array.size(), 2U) << "a walk alone appends";
}

}  // namespace
}  // namespace orrinvale
